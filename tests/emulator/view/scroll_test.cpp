// Smooth scroll and jump scroll, as the user or the host wants them.

#include "viewbench.h"

#include <gtest/gtest.h>

namespace kestrune {

namespace {

struct ScrollBench : ViewBench
{
    // A red line in row 5 of 10, all rows full; the next line end scrolls.
    explicit ScrollBench(int scrollMode)
    {
        control.Settings().SetValue(Setting("ScrollMode"), scrollMode);
        HostSays("1\r\n2\r\n3\r\n4\r\n5\r\n\x1b[41m\x1b[K\x1b[m\r\n7\r\n8\r\n9\r\n10");
        EXPECT_TRUE(QTest::qWaitFor([this] { return RedIn(5); }));
    }
    bool RedIn(int row) { return IsRed(ColorAt(3, row)); }
    static bool IsRed(const QColor& color) { return color.red() > 2 * color.green() + 20; }
    // A moment later the red line stands at rest in `row`; true: it was seen between two rows before.
    bool GlidesTo(int row)
    {
        const QRect above = view.CellRect(3, row);
        bool between = false;
        for (bool rests = false; !rests;) {
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 5000);
            const QImage picture = Picture();
            const bool top = IsRed(picture.pixelColor(above.center().x(), above.top() + 1));
            const bool bottom = IsRed(picture.pixelColor(above.center().x(), above.bottom() - 1));
            between |= !top && bottom;
            rests = top && bottom;
        }
        return between;
    }
};

TEST(ViewScroll, IsSmoothWhenTheSettingsOrTheHostWantIt)
{
    const struct
    {
        const char* name;
        int mode;
        const char* host;
        bool smooth;
    } cases[] = {
        {"always", 0, "", true},
        {"never", 1, "\x1b[?4h", false},
        {"the host has asked", 2, "\x1b[?4h", true},
        {"the host has not", 2, "", false},
        {"no longer", 2, "\x1b[?4h\x1b[?4l", false},
    };
    for (const auto& test : cases) {
        ScrollBench bench(test.mode);
        bench.HostSays(std::string(test.host) + "\r\n");
        EXPECT_EQ(bench.RedIn(5), test.smooth) << test.name << ": it still stands where it was";
        EXPECT_EQ(bench.RedIn(4), !test.smooth) << test.name;
        if (test.smooth) {
            EXPECT_TRUE(bench.GlidesTo(4)) << test.name;
        }
    }
}

TEST(ViewScroll, JumpsWhenLinesComeFaster)
{
    ScrollBench bench(0);
    bench.HostSays("\r\n");
    EXPECT_TRUE(bench.RedIn(5));
    bench.HostSays("\r\n");
    EXPECT_TRUE(bench.RedIn(3)) << "a second line in the same frame";
    bench.HostSays("\r\n\r\n");
    EXPECT_TRUE(bench.RedIn(1));
}

TEST(ViewScroll, WhatIsWrittenWhileItGlidesIsSeen)
{
    ScrollBench bench(0);
    bench.HostSays("\r\n\x1b[2;1H\x1b[41m\x1b[K");
    EXPECT_TRUE(bench.RedIn(2)) << "a row lower until it has arrived";
    EXPECT_TRUE(QTest::qWaitFor([&bench] { return bench.RedIn(1); }));
    EXPECT_TRUE(bench.RedIn(4));
}

} // namespace

} // namespace kestrune
