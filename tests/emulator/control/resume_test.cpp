// A session whose line is lost and comes back, as the control sees it.

#include <fakes/emulatorbench.h>

#include <gtest/gtest.h>

namespace kestrune {

using namespace Qt::StringLiterals;

namespace {

struct ResumeBench : EmulatorBench
{
    ResumeBench() : EmulatorBench(8, 20, 4)
    {
        QObject::connect(&control, &ctlEmulator::CommError,
                         [this](quint32* word, const QString&, bool) { log << QString::number(*word, 16); });
        QObject::connect(&control, &ctlEmulator::Disconnect, [this] { log << u"disconnect"_s; });
        control.SetOnLine(true);
        Host().Connect();
        Host().HostSays("\x1b[?1049hfull screen");
    }
    void Lose()
    {
        Host().resume = ticket;
        Host().Fail(Lost, u"gone"_s);
    }
    QString Top() const { return control.GetText(0, 0).trimmed(); }

    static constexpr quint32 Lost =
        LineErrorWord(Device::Telnet, LineErrorNumber::ConnectionReset) | LineErrorCanResume;
    const QString lostWord = QString::number(Lost, 16);
    std::shared_ptr<LineResume> ticket = std::make_shared<LineResume>();
    QStringList log;
};

TEST(EmulatorResume, BringsTheScreenBackAsItWas)
{
    ResumeBench bench;
    bench.Lose();
    EXPECT_EQ(bench.log, (QStringList{bench.lostWord, u"disconnect"_s}));
    EXPECT_EQ(bench.Top(), u"full screen"_s);
    EXPECT_TRUE(bench.control.Screen().Modes().alternateScreen) << "its program still draws there";

    bench.control.Reset(int(ResetMode::Resume));
    ASSERT_EQ(bench.lines.made.size(), 2U);
    EXPECT_EQ(bench.lines.made[1].resume.from, bench.ticket);
    bench.Host().Connect();
    bench.Host().HostSays("login:");
    EXPECT_EQ(bench.Top(), u"login:"_s);
    bench.control.Resize(30, 6, 300, 60);
    bench.Host().Resumed(true);
    bench.Host().HostSays(" goes on");
    EXPECT_EQ(bench.Top(), u"full screen goes on"_s);
    EXPECT_EQ(bench.control.Cols(), 30);
    EXPECT_TRUE(bench.control.Connected());
}

TEST(EmulatorResume, ANewSessionStandsUnderTheOldOne)
{
    ResumeBench bench;
    bench.Lose();
    bench.control.Reset(int(ResetMode::Resume));
    bench.Host().Connect();
    bench.Host().HostSays("\x1b[chello$ ");
    EXPECT_FALSE(bench.Host().TakeSent().empty());
    bench.Host().Resumed(false);
    EXPECT_TRUE(bench.Host().TakeSent().empty()) << "an answer given twice is typed into the shell";
    QString all;
    for (int row = 0; row < 4; ++row)
        all += bench.control.GetText(0, row) + u'|';
    EXPECT_TRUE(all.contains(u"hello$"_s)) << all.toStdString();
    EXPECT_FALSE(bench.control.Screen().Modes().alternateScreen);
}

TEST(EmulatorResume, TriesAsOftenAsTheSettingsSay)
{
    ResumeBench bench;
    bench.control.Settings().Set(u"ResumeRetryCount"_s, 2);
    bench.control.Settings().Set(u"ResumeReconnectInterval"_s, 3);
    bench.Lose();
    bench.log.clear();
    bench.control.Reset(int(ResetMode::Resume));
    bench.Lose();
    EXPECT_EQ(bench.log, QStringList{}) << "another try comes";
    bench.clock.Advance(std::chrono::milliseconds(2999));
    EXPECT_EQ(bench.lines.made.size(), 2U);
    bench.clock.Advance(std::chrono::milliseconds(1));
    ASSERT_EQ(bench.lines.made.size(), 3U);
    bench.Host().HostSays("login:");
    bench.Lose();
    EXPECT_EQ(bench.log, (QStringList{bench.lostWord, u"disconnect"_s}));
    EXPECT_EQ(bench.Top(), u"full screen"_s);
    bench.control.Reset(int(ResetMode::Resume));
    EXPECT_EQ(bench.lines.made.size(), 4U) << "and the user may ask again";
    EXPECT_EQ(bench.lines.made[3].resume.from, bench.ticket);
}

TEST(EmulatorResume, ByItselfWhenTheSettingsSaySo)
{
    ResumeBench bench;
    bench.control.Settings().Set(u"ResumeAfterDisconnect"_s, 1);
    bench.Lose();
    EXPECT_EQ(bench.log, QStringList{});
    bench.clock.Advance(std::chrono::seconds(2));
    ASSERT_EQ(bench.lines.made.size(), 2U);
    bench.Host().Connect();
    bench.Host().Resumed(true);
    EXPECT_EQ(bench.Top(), u"full screen"_s);
}

TEST(EmulatorResume, TheUserCanStopIt)
{
    ResumeBench bench;
    bench.Lose();
    bench.control.Reset(int(ResetMode::Resume));
    bench.Lose();
    bench.control.SetOnLine(false);
    bench.clock.Advance(std::chrono::hours(1));
    EXPECT_EQ(bench.lines.made.size(), 2U);
    EXPECT_EQ(bench.Top(), u"full screen"_s);

    // Who closes the line himself leaves nothing to resume.
    bench.control.SetOnLine(true);
    bench.Host().Connect();
    bench.Host().resume = bench.ticket;
    bench.control.SetOnLine(false);
    bench.Host().Drop();
    bench.control.Reset(int(ResetMode::Resume));
    EXPECT_EQ(bench.lines.made.back().resume.from, nullptr);
}

} // namespace
} // namespace kestrune
