// Switches and resets: what they show outside, what a reset of each kind leaves.

#include "bench.h"

#include <gtest/gtest.h>

namespace kestrune::emu {
namespace {

TEST(EngineModes, ShowInTheView)
{
    const struct
    {
        const char* number;
        bool ModesView::*flag;
        bool inverse = false;
    } cases[] = {
        {"?1", &ModesView::applicationCursor},     {"?5", &ModesView::reverseScreen},
        {"?25", &ModesView::cursorVisible},        {"?2004", &ModesView::bracketedPaste},
        {"?1004", &ModesView::focusReports},       {"20", &ModesView::newLine},
        {"12", &ModesView::localEcho, true},       {"?67", &ModesView::backspaceSendsBs},
        {"?2026", &ModesView::synchronizedUpdate}, {"2", &ModesView::keyboardLocked},
        {"?1049", &ModesView::alternateScreen},
    };
    for (const auto& test : cases) {
        Bench bench(2, 10);
        bench.HostSays(std::string("\x1b[") + test.number + 'h');
        EXPECT_EQ(bench.terminal.Modes().*test.flag, !test.inverse) << test.number;
        bench.HostSays(std::string("\x1b[") + test.number + 'l');
        EXPECT_EQ(bench.terminal.Modes().*test.flag, test.inverse) << test.number;
    }
}

TEST(EngineModes, KeyboardLockIsTold)
{
    Bench bench(2, 10);
    bench.HostSays("\x1b[2h\x1b[2l\x1b[2h\x1b"
                   "c");
    EXPECT_EQ(bench.heard.locks, (std::vector<bool>{true, false, true, false}));
}

TEST(EngineModes, CursorShapes)
{
    const struct
    {
        int type;
        const char* bytes;
        CursorShape shape;
    } cases[] = {
        {Type::Vt220, "\x1b[ q", CursorShape::BlinkBlock},
        {Type::Vt220, "\x1b[2 q", CursorShape::Block},
        {Type::Vt220, "\x1b[4 q", CursorShape::UnderlineBar},
        {Type::Vt220, "\x1b[6 q", CursorShape::Bar},
        {Type::Vt220, "\x1b[99 q", CursorShape::BlinkBlock},
        {Type::Linux, "\x1b[?2c", CursorShape::BlinkUnderline},
        {Type::Linux, "\x1b[?2c\x1b[?8c", CursorShape::BlinkBlock},
    };
    for (const auto& test : cases) {
        Bench bench(2, 10, test.type);
        EXPECT_EQ(bench.HostSays(test.bytes).terminal.Modes().cursor, test.shape) << test.bytes;
    }
}

TEST(EngineModes, SoftResetLeavesTextAndCursor)
{
    Bench bench(4, 10);
    bench.HostSays("ab\x1b[1m\x1b[4h\x1b[?1h\x1b[2;3r\x1b[?6h\x1b[?25l\x1b(0\x1b[2;2H\x1b[!pq\rx");
    EXPECT_EQ(bench.Rows(), "ab||xq");
    EXPECT_EQ(bench.StyleAt(2, 1), Style{});
    EXPECT_TRUE(bench.terminal.Modes().cursorVisible);
    EXPECT_FALSE(bench.terminal.Modes().applicationCursor);
    bench.HostSays("\x1b[4;1H\n");
    EXPECT_EQ(bench.Rows(), "|xq"); // margins full again
}

TEST(EngineModes, HardResetKeepsHistoryOnly)
{
    Bench bench(2, 10);
    const std::string fresh = Bench(2, 10).Everything();
    bench.HostSays("a\r\nb\r\nc\x1b[?1049h\x1b[?6;1;1000;2004h\x1b[3g\x1b[1;31m\x1b]4;1;#102030\x07\x1b[5 qx");
    EXPECT_EQ(bench.terminal.PaletteOverride(1), 0x01102030u);
    bench.HostSays("\x1b"
                   "c");
    EXPECT_EQ(bench.HistoryRows(), "a");
    EXPECT_EQ(bench.terminal.PaletteOverride(1), 0u);
    EXPECT_EQ(bench.terminal.Modes().mouse, MouseReport::None);
    EXPECT_EQ(bench.terminal.Modes().cursor, CursorShape::BlinkBlock);
    bench.terminal.ClearHistory();
    EXPECT_EQ(bench.Everything(), fresh);
}

TEST(EngineModes, OneHundredAndThirtyTwoColumns)
{
    Bench bench(2, 90);
    bench.HostSays("text\x1b[?3h");
    EXPECT_EQ(bench.terminal.ScreenSize(), (Size{132, 2}));
    EXPECT_EQ(bench.Rows(), "");
    bench.HostSays("\x1b[?3l"); // back to what the user had, not to 80
    EXPECT_EQ(bench.terminal.ScreenSize(), (Size{90, 2}));
    EXPECT_EQ(bench.heard.sizes, (std::vector<Size>{{132, 2}, {90, 2}}));
    bench.HostSays("\x1b[?3l"); // some hosts' reset strings begin so
    EXPECT_EQ(bench.terminal.ScreenSize(), (Size{90, 2}));
}

TEST(EngineModes, Vt52Mode)
{
    const struct
    {
        int type;
        std::string bytes;
        const char* rows;
    } cases[] = {
        {Type::Vt220, "\x1b[?2l\x1bY\x21\x22x", "|  x"},
        {Type::Vt220,
         "\x1b[?2lab\x1b"
         "D\x1b"
         "A\x1b"
         "B\x1b"
         "Cx",
         "ab|  x"},
        {Type::Vt220,
         "\x1b[?2la\x1b"
         "Fq\x1b"
         "Gq",
         "a─q"},
        {Type::Vt220,
         "\x1b[?2labc\x1b"
         "D\x1b"
         "D\x1b"
         "K",
         "a"},
        {Type::Vt220, "\x1b[?2l\x1b<\x1b[2;2Hx", "| x"},
        {Type::Vt220, "\x1b[?2la\x1bY~~b", "a        b"},
        {Type::Vt52, "\x1b[2Jx", "2Jx"},
        {Type::Vt52, "0123456789xy", "012345678y"},
        {Type::Vt52,
         "\x1b"
         "Ia",
         "a"},
    };
    for (const auto& test : cases) {
        Bench bench(3, 10, test.type);
        EXPECT_EQ(bench.HostSays(test.bytes).Rows(), test.rows) << test.bytes;
    }
}

TEST(EngineModes, LevelsLimitWhatIsUnderstood)
{
    Bench bench(2, 10);
    bench.HostSays("\x1b[61\"p\x1b[c\x1b[1\"qa\x1b[0\"qb\x1b[?2K");
    EXPECT_EQ(bench.Line(0), "ab"); // level 1 has no selective erase
    bench.HostSays("\x1b[62;1\"p");
    EXPECT_EQ(bench.Replies(), "\x1b[?1;2c");
}

TEST(EngineModes, TypesCanBeChangedAtWork)
{
    Bench bench(2, 10);
    bench.HostSays("ab\x1b[?2l");
    bench.terminal.SelectPersonality(*FindPersonality(Type::Linux));
    bench.HostSays("\x1b[[Acd\x1b[c");
    EXPECT_EQ(bench.Line(0), "abcd");
    EXPECT_EQ(bench.Replies(), "\x1b[?6c");
    EXPECT_EQ(bench.terminal.CurrentPersonality().hostName, "linux");
}

} // namespace
} // namespace kestrune::emu
