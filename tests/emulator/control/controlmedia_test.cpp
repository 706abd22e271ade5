// Pictures over the screen, and the bell.

#include <fakes/emulatorbench.h>
#include <fakes/failures.h>
#include <fakes/print.h>

#include <gtest/gtest.h>

namespace kestrune {

using namespace Qt::StringLiterals;

namespace {

TEST(EmulatorMedia, PicturesStayUntilTheyAreUnloaded)
{
    EmulatorBench bench;
    bench.media.pictures = {u"/a.png"_s, u"/b.png"_s};
    int changes = 0;
    QObject::connect(&bench.control, &ctlEmulator::PicturesChanged, [&] { ++changes; });
    bench.control.LoadImage(u"/a.png"_s, 1, 2, 10, 5, true, 1);
    bench.control.LoadImage(u"/b.png"_s, 0, 0);
    ASSERT_EQ(bench.control.Pictures().size(), 2U);
    EXPECT_EQ(FailureNumber([&] { bench.control.LoadImage(u"/gone.png"_s, 0, 0); }), int(ErrorNumber::FileNotFound));
    const struct
    {
        int col, row, width;
    } outside[] = {{-1, 0, 1}, {80, 0, 1}, {0, 24, 1}, {0, 0, 81}, {0, 0, -1}};
    for (const auto& place : outside)
        EXPECT_EQ(FailureNumber([&] { bench.control.LoadImage(u"/a.png"_s, place.col, place.row, place.width, 1); }),
                  5);
    EXPECT_EQ(changes, 2);
    bench.control.UnloadImage(u"/a.png"_s);
    ASSERT_EQ(bench.control.Pictures().size(), 1U);
    EXPECT_EQ(bench.control.Pictures()[0].fileName, u"/b.png"_s);
    bench.control.UnloadImage(u"/a.png"_s); // gone already
    EXPECT_EQ(changes, 3);
    bench.control.Reset(1);
    EXPECT_TRUE(bench.control.Pictures().empty());
}

TEST(EmulatorMedia, TheBellIsWhatTheSettingSays)
{
    EmulatorBench bench;
    bench.Connect();
    int rang = 0;
    QObject::connect(&bench.control, &ctlEmulator::Bell, [&] { ++rang; });
    bench.HostSays("\a");
    EXPECT_EQ(rang, 1);
    EXPECT_TRUE(bench.media.played.empty());
    bench.control.Settings().Set(u"Sound"_s, u"/ding.wav"_s);
    for (int i = 0; i < 5; ++i)
        bench.HostSays("\a");
    EXPECT_EQ(bench.media.played, QStringList{u"/ding.wav"_s}) << "a flood is one sound";
    bench.clock.Advance(std::chrono::milliseconds(250));
    bench.HostSays("\a");
    EXPECT_EQ(bench.media.played.size(), 2);
    bench.control.Settings().Set(u"Sound"_s, u"None"_s);
    rang = 0;
    bench.HostSays("\a");
    EXPECT_EQ(rang, 0);
}

} // namespace

} // namespace kestrune
