// Pages that are longer or shorter than the screen (DECSLPP), lines on the screen (DECSNLS), and what is shown then.

#include "conformance.h"

namespace kestrune::emu::conformance {
namespace {

struct Tall : Bench
{
    explicit Tall(int type = Type::Vt420, int rows = 24) : Bench(Options(rows), type) {}
    static TerminalOptions Options(int rows)
    {
        TerminalOptions options;
        options.size = {10, rows};
        options.historyRows = 50;
        return options;
    }
    std::string Asked(const std::string& setting) { return HostSays("\x1bP$q" + setting + "\x1b\\").Replies(); }
};

TEST(Conformance, LinesPerPageAndOnTheScreen)
{
    const struct
    {
        const char* name;
        int type;
        std::string act;
        int linesPerPage;
        int linesOnScreen;
        int pages;
    } cases[] = {
        {"nothing asked", Type::Vt420, "", 24, 24, 1},
        {"24", Type::Vt420, "\x1b[24t", 24, 24, 6},
        {"25", Type::Vt420, "\x1b[25t", 25, 24, 5},
        {"36", Type::Vt420, "\x1b[36t", 36, 24, 4},
        {"48", Type::Vt420, "\x1b[48t", 48, 24, 3},
        {"72", Type::Vt420, "\x1b[72t", 72, 24, 2},
        {"144", Type::Vt420, "\x1b[144t", 144, 24, 1},
        {"the next larger", Type::Vt420, "\x1b[49t", 72, 24, 2},
        {"too many", Type::Vt420, "\x1b[145t", 24, 24, 1},
        {"none", Type::Vt420, "\x1b[t", 24, 24, 1},
        {"what windows do", Type::Vt420, "\x1b[18t\x1b[48;50;90t", 24, 24, 1},
        {"a VT320 has one page", Type::Vt320, "\x1b[36t", 36, 24, 1},
        {"screen of 36", Type::Vt420, "\x1b[36*|", 36, 36, 1},
        {"screen of the next larger", Type::Vt420, "\x1b[37*|", 48, 48, 1},
        {"too large a screen", Type::Vt420, "\x1b[49*|", 24, 24, 1},
        {"screen and page", Type::Vt420, "\x1b[144t\x1b[48*|", 144, 48, 1},
        {"no more than the page", Type::Vt420, "\x1b[48*|\x1b[36t", 36, 36, 4},
        {"132 columns leave them", Type::Vt420, "\x1b[72t\x1b[36*|\x1b[?3h", 72, 36, 2},
        {"DECSTR leaves them", Type::Vt420, "\x1b[72t\x1b[36*|\x1b[!p", 72, 36, 2},
        {"RIS takes them back", Type::Vt420,
         "\x1b[72t\x1b[36*|\x1b"
         "c",
         24, 24, 1},
    };
    for (const auto& test : cases) {
        Tall bench(test.type);
        bench.HostSays(test.act);
        EXPECT_EQ(bench.Asked("t"), "\x1bP1$r" + std::to_string(test.linesPerPage) + "t\x1b\\") << test.name;
        EXPECT_EQ(bench.terminal.ScreenSize().rows, test.linesOnScreen) << test.name;
        EXPECT_EQ(bench.terminal.PageCount(), test.pages) << test.name;
        const std::string answer =
            test.type == Type::Vt420 ? "\x1bP1$r" + std::to_string(test.linesOnScreen) + "*|\x1b\\" : "\x1bP0$r\x1b\\";
        EXPECT_EQ(bench.Asked("*|"), answer) << test.name;
    }
    for (const int type : {Type::Vt100, Type::Vt220}) {
        Tall bench(type);
        EXPECT_EQ(bench.HostSays("\x1b[36t\x1b[36*|\x1b[30;1Hx").terminal.Cursor().row, 23) << type;
    }
}

// Pages of 24 lines on a screen of five; "L1" stands on the first line, "L24" on the last.
struct Window : Tall
{
    Window() : Tall(Type::Vt420, 5)
    {
        HostSays("\x1b[24t");
        for (int line = 1; line <= 24; ++line)
            HostSays("\x1b[" + std::to_string(line) + ";1HL" + std::to_string(line));
        HostSays("\x1b[H");
    }
};

struct WindowCase
{
    const char* name;
    std::string act;
    std::string rows;
    Position cursor;
    int above;        // rows of the page above the screen
    bool seen = true; // the cursor
};

const WindowCase kWindows[] = {
    {"home", "", "L1|L2|L3|L4|L5", {0, 0}, 0},
    {"just below", "\x1b[6;2H", "L2|L3|L4|L5|L6", {1, 4}, 1},
    {"far below", "\x1b[20;1H", "L16|L17|L18|L19|L20", {0, 4}, 15},
    {"and up again, as little as need be", "\x1b[20;1H\x1b[6A", "L14|L15|L16|L17|L18", {0, 0}, 13},
    {"by line feeds", "\n\n\n\n\n\n", "L3|L4|L5|L6|L7", {0, 4}, 2},
    {"by reverse line feeds", "\x1b[9;1H\x1bM\x1bM\x1bM\x1bM\x1bM", "L4|L5|L6|L7|L8", {0, 0}, 3},
    {"the last line scrolls the page", "\x1b[24;1H\n", "L21|L22|L23|L24", {0, 4}, 19},
    {"SU shows what is below", "\x1b[3S", "L4|L5|L6|L7|L8", {0, 0}, 3, false},
    {"SD shows what is above", "\x1b[24;1H\x1b[2T", "L18|L19|L20|L21|L22", {0, 4}, 17, false},
    {"no further than the page", "\x1b[99S", "L20|L21|L22|L23|L24", {0, 0}, 19, false},
    {"the next move comes back", "\x1b[9S\x1b[C", "L1|L2|L3|L4|L5", {1, 0}, 0},
    {"DECVCCM off", "\x1b[?61l\x1b[20;1Hx", "L1|L2|L3|L4|L5", {1, 4}, 0, false},
    {"DECVCCM on again", "\x1b[?61l\x1b[20;1Hx\x1b[?61h", "L16|L17|L18|L19|x20", {1, 4}, 15},
    {"DECRC",
     "\x1b"
     "7\x1b[20;1H\x1b"
     "8",
     "L1|L2|L3|L4|L5",
     {0, 0},
     0},
    {"another page", "\x1b[20;1H\x1b[2 P", "", {0, 4}, 15},
    {"a new length", "\x1b[20;1H\x1b[36t", "L16|L17|L18|L19|L20", {0, 4}, 15},
    {"RIS",
     "\x1b[20;1H\x1b"
     "c",
     "",
     {0, 0},
     0},
};

TEST(Conformance, TheScreenIsAWindowOfALongPage)
{
    for (const WindowCase& test : kWindows) {
        Window bench;
        const int before = bench.terminal.HistoryCount();
        bench.HostSays(test.act);
        EXPECT_EQ(bench.Rows(), test.rows) << test.name;
        EXPECT_EQ(bench.terminal.Cursor(), test.cursor) << test.name;
        EXPECT_EQ(bench.terminal.Modes().cursorVisible, test.seen) << test.name;
        const std::string extent = bench.HostSays("\x1b[\"v").Replies();
        EXPECT_EQ(extent.substr(0, extent.rfind(';')), "\x1b[5;10;1;" + std::to_string(test.above + 1)) << test.name;
        EXPECT_GE(bench.terminal.HistoryCount(), before + test.above) << test.name;
    }
}

TEST(Conformance, WhatIsAboveTheWindowIsReadLikeTheHistory)
{
    Window bench;
    const uint64_t second = bench.terminal.HistoryPushed() + 1; // where "L2" is
    bench.HostSays("\x1b[24;1H");
    EXPECT_EQ(bench.HistoryRows(), "L1|L2|L3|L4|L5|L6|L7|L8|L9|L10|L11|L12|L13|L14|L15|L16|L17|L18|L19");
    EXPECT_EQ(bench.Line(int(int64_t(second - bench.terminal.HistoryPushed()))), "L2");
    bench.HostSays("\n");
    EXPECT_EQ(bench.Line(int(int64_t(second - bench.terminal.HistoryPushed()))), "L2");
    EXPECT_EQ(bench.HistoryRows().substr(0, 6), "L1|L2|");
}

TEST(Conformance, ThisSideMeansWhatIsShown)
{
    Window bench;
    bench.HostSays("\x1b[20;1H");
    bench.terminal.PutText({4, 0}, "here", {});
    EXPECT_EQ(bench.Line(0), "L16 here");
    bench.terminal.EraseArea({0, 1}, {9, 1}, {});
    EXPECT_EQ(bench.Line(1), "");
    bench.terminal.MoveCursor({2, 3});
    EXPECT_EQ(bench.HostSays("\x1b[6n").Replies(), "\x1b[19;3R");
    bench.HostSays("\x1b[?1000h\x1b[?1006h");
    MouseAction click;
    click.row = 1;
    EXPECT_EQ(bench.terminal.MouseBytes(click), "\x1b[<0;1;17M");
    bench.HostSays("\x1b[?10i");
    EXPECT_EQ(bench.heard.printed, "L16 here\r\n\r\nL18\r\nL19\r\nL20\r\n");
}

TEST(Conformance, AWindowThatChangesShowsMoreOrLessOfThePage)
{
    Window bench;
    bench.HostSays("\x1b[20;1H");
    bench.terminal.Resize({10, 8});
    EXPECT_EQ(bench.Rows(), "L16|L17|L18|L19|L20|L21|L22|L23");
    bench.terminal.Resize({10, 3});
    EXPECT_EQ(bench.Rows(), "L18|L19|L20");
    bench.terminal.Resize({10, 40}); // the page has no more
    EXPECT_EQ(bench.terminal.ScreenSize(), (Size{10, 24}));
    EXPECT_EQ(bench.terminal.Cursor(), (Position{0, 19}));
    bench.terminal.SelectPersonality(*FindPersonality(Type::Vt220));
    EXPECT_EQ(bench.terminal.ScreenSize(), (Size{10, 40}));
}

// Text stays on the lines where the host has put it.
TEST(Conformance, ALongerPageGrowsDownwards)
{
    Tall bench(Type::Vt420, 5);
    bench.HostSays("a\r\nb\r\nc\r\nd\r\ne\r\nf\x1b[24t");
    EXPECT_EQ(bench.Rows(), "b|c|d|e|f");
    EXPECT_EQ(bench.HistoryRows(), "a");
    EXPECT_EQ(bench.HostSays("\x1b[6n").Replies(), "\x1b[5;2R");
    EXPECT_EQ(bench.HostSays("\x1b[20;1Hlow\x1b[H").Rows(), "b|c|d|e|f");
}

} // namespace
} // namespace kestrune::emu::conformance
