// Pages of memory, the extended size and the status line: what a host does with them, and what is shown.

#include "conformance.h"

namespace kestrune::emu::conformance {
namespace {

using enum Model;

constexpr const char* kStay = "one|two";

// With three pages, the first of which says "one", "two"; the cursor is at column 1 of row 1.
struct ThreePages : Bench
{
    explicit ThreePages(int type = Type::Vt420) : Bench(Options(), type) { HostSays("one\r\ntwo\x1b[2;2H"); }
    static TerminalOptions Options()
    {
        TerminalOptions options;
        options.size = {10, 5};
        options.pages = 3;
        options.historyRows = 20;
        return options;
    }
};

struct PageCase
{
    const char* name;
    std::string act;
    std::string rows; // of what is shown
    Position cursor;
    int page;
};

const PageCase kPages[] = {
    {"NP goes home", "\x1b[U", "", {0, 0}, 1},
    {"NP stops at the last", "\x1b[9U", "", {0, 0}, 2},
    {"PP comes back", "\x1b[2U\x1b[2V", kStay, {0, 0}, 0},
    {"PP stops at the first", "\x1b[Ux\x1b[5V", kStay, {0, 0}, 0},
    {"PPA keeps the place", "\x1b[2 P", "", {1, 1}, 1},
    {"PPA of a page too far", "\x1b[7 P", "", {1, 1}, 2},
    {"PPR and PPB", "\x1b[2 Q\x1b[ R", "", {1, 1}, 1},
    {"pages keep their text", "\x1b[Usecond\x1b[U\x1b[2Vx\x1b[U", "second", {0, 0}, 1},
    {"erasing works on one page", "\x1b[Ux\x1b[2J\x1b[V", kStay, {0, 0}, 0},
    {"DECRC returns to the page",
     "\x1b"
     "7\x1b[2U\x1b"
     "8",
     kStay,
     {1, 1},
     0},
    {"DECPCCM off: the display stays", "\x1b[?64l\x1b[Uhidden", kStay, {6, 0}, 1},
    {"DECPCCM on: the display follows", "\x1b[?64l\x1b[Uhidden\x1b[?64h", "hidden", {6, 0}, 1},
    {"DECCRA between pages", "\x1b[1;1;2;3;1;1;4;2$v\x1b[2 P", "   one|   two", {1, 1}, 1},
    {"DECCRA to the page of the cursor", "\x1b[3 P\x1b[1;1;1;3;1;2;1$v", "|one", {1, 1}, 2},
    {"the alternate screen has no pages", "\x1b[?1049h\x1b[U\x1b[2 Palt\x1b[?1049l", kStay, {1, 1}, 0},
    {"RIS goes to the first, clears all",
     "\x1b[Ux\x1b"
     "c\x1b[3 P\x1b[2 P",
     "",
     {0, 0},
     1},
    {"DECRSPS names the page", "\x1bP1$t4;3;2;@;@;@;0;2;@;BBBB\x1b\\", "", {2, 3}, 1},
};

TEST(Conformance, PagesOfMemory)
{
    for (const PageCase& test : kPages) {
        ThreePages bench;
        bench.HostSays(test.act);
        EXPECT_EQ(bench.Rows(), test.rows) << test.name;
        EXPECT_EQ(bench.terminal.Cursor(), test.cursor) << test.name;
        EXPECT_EQ(bench.terminal.Page(), test.page) << test.name;
    }
}

TEST(Conformance, OnlyTheLastModelHasPagesForTheHost)
{
    for (const int type : {Type::Vt100, Type::Vt220, Type::Vt320})
        for (const char* act : {"\x1b[U", "\x1b[2 P", "\x1b[ Q"}) {
            ThreePages bench(type);
            EXPECT_EQ(bench.HostSays(act).terminal.Page(), 0) << type;
            EXPECT_EQ(bench.terminal.Cursor(), (Position{1, 1})) << type;
        }
    Bench one(5, 10, Type::Vt420); // a model with one page passes them over
    EXPECT_EQ(one.HostSays("text\x1b[2;2H\x1b[U\x1b[V\x1b[3 P").Rows(), "text");
    EXPECT_EQ(one.terminal.Cursor(), (Position{1, 1}));
}

TEST(Conformance, ReportsNameThePage)
{
    ThreePages bench;
    EXPECT_EQ(bench.HostSays("\x1b[2 P\x1b[?6n\x1b[\"v\x1b[1$w").Replies(),
              "\x1b[?2;2;2R\x1b[5;10;1;1;2\"w\x1bP1$u2;2;2;@;@;@;0;2;L;BBAA\x1b\\");
    // Where the cursor is and what is shown are two things.
    EXPECT_EQ(bench.HostSays("\x1b[?64l\x1b[3 P\x1b[?6n\x1b[\"v").Replies(), "\x1b[?2;2;3R\x1b[5;10;1;1;2\"w");
    EXPECT_FALSE(bench.terminal.Modes().cursorVisible);
    // Of one cell on a page that is named, and of all pages.
    EXPECT_EQ(bench.HostSays("A\x1b[9;1;1;1;1;1*y\x1b[8;3;2;2;2;2*y").Replies(),
              "\x1bP9!~FF91\x1b\\\x1bP8!~FFBF\x1b\\");
    EXPECT_EQ(bench.HostSays("\x1b[7;0;2;2;2;2*y").Replies(), "\x1bP7!~FF28\x1b\\"); // w, blank, A
}

TEST(Conformance, HistoryBelongsToTheFirstPage)
{
    ThreePages bench;
    bench.HostSays("\x1b[2 P\x1b[5;1Ha\r\nb\r\nc");
    EXPECT_EQ(bench.HistoryRows(), "");
    bench.HostSays("\x1b[ R\x1b[5;1H\r\n");
    EXPECT_EQ(bench.HistoryRows(), "one");
}

// A window that becomes smaller and larger takes nothing away from the first page while another is in use.
TEST(Conformance, PagesOutliveResizes)
{
    ThreePages bench;
    bench.HostSays("\x1b[3;1Hthree\x1b[2 Psecond");
    bench.terminal.Resize({10, 2});
    bench.terminal.Resize({10, 5});
    EXPECT_EQ(bench.HostSays("\x1b[1 P").Rows(), "one|two|three");
    TerminalOptions options;
    options.size = {10, 5};
    bench.HostSays("\x1b[3 Plost");
    bench.terminal.SetOptions(options); // one page from now on
    EXPECT_EQ(bench.terminal.Page(), 0);
    EXPECT_EQ(bench.Rows(), "one|two|three");
    options.pages = 1000;
    bench.terminal.SetOptions(options);
    EXPECT_EQ(bench.terminal.PageCount(), 32);
}

// --- extended size

TEST(Conformance, ExtendedSizeIsThatOfTheOptions)
{
    TerminalOptions options;
    options.size = {20, 4};
    options.extended = {30, 6};
    Bench bench(options, Type::Vt320);
    bench.HostSays("text\x1b[?3h");
    EXPECT_EQ(bench.terminal.ScreenSize(), (Size{30, 6}));
    EXPECT_EQ(bench.Rows(), "");
    EXPECT_TRUE(bench.terminal.Modes().extended);
    bench.terminal.Resize({25, 5}); // the window: what it goes back to
    EXPECT_EQ(bench.terminal.ScreenSize(), (Size{30, 6}));
    bench.HostSays("wide\x1b[80$|");
    EXPECT_EQ(bench.terminal.ScreenSize(), (Size{25, 5}));
    bench.terminal.ShowExtended(true);
    EXPECT_EQ(bench.Rows(), "wide");
    EXPECT_EQ(bench.HostSays("\x1b[?3$p").Replies(), "\x1b[?3;1$y");

    options.startsExtended = true;
    Bench starts(options);
    EXPECT_EQ(starts.terminal.ScreenSize(), (Size{30, 6}));
    starts.HostSays("\x1b[?3l");
    EXPECT_EQ(starts.terminal.ScreenSize(), (Size{20, 4}));
    starts.terminal.Reset();
    EXPECT_EQ(starts.terminal.ScreenSize(), (Size{30, 6}));
}

// --- status line

std::string Status(const Bench& bench) { return bench.Line(bench.terminal.ScreenSize().rows); }

struct StatusCase
{
    const char* name;
    std::string act;
    std::string rows;
    std::string status; // "-": there is none
    Position cursor{1, 1};
};

// The cursor of the screen is at column 1 of row 1 before.
const StatusCase kStatusLine[] = {
    {"none", "", kStay, "-"},
    {"to be written on", "\x1b[2$~", kStay, ""},
    {"text goes there", "\x1b[2$~\x1b[1$}\x1b[3`hi\x1b[0$}", kStay, "  hi"},
    {"and then back to where it was", "\x1b[2$~\x1b[1$}hi\x1b[0$}X", "one|tXo", "hi", {2, 1}},
    {"rows are taken as the first", "\x1b[2$~\x1b[1$}\x1b[4;2Hx\x1b[0$}", kStay, " x"},
    {"ED clears it alone", "\x1b[2$~\x1b[1$}abc\x1b[2J\x1b[0$}", kStay, ""},
    {"line feeds do not scroll the screen", "\x1b[2$~\x1b[1$}abc\n\n\n\rd\x1b[0$}", kStay, "d"},
    {"its own save",
     "\x1b[2$~\x1b[1$}ab\x1b"
     "7cd\x1b"
     "8X\x1b[0$}",
     kStay, "abXd"},
    {"not while it is the indicator", "\x1b[1$~\x1b[1$}x", "one|txo", " 1 (2,3)", {2, 1}},
    {"not while there is none", "\x1b[1$}x", "one|txo", "-", {2, 1}},
    {"taken away while in use", "\x1b[2$~\x1b[1$}abc\x1b[0$~x", "one|txo", "-", {2, 1}},
    {"soft reset ends its use", "\x1b[2$~\x1b[1$}abc\x1b[!px", "one|txo", "abc", {2, 1}},
    {"hard reset takes it away",
     "\x1b[2$~\x1b[1$}abc\x1b"
     "c",
     "",
     "-",
     {0, 0}},
    {"DECCOLM ends its use", "\x1b[2$~\x1b[1$}abc\x1b[?3lx", "x", "abc", {1, 0}},
    {"unknown kind", "\x1b[3$~", kStay, "-"},
};

TEST(Conformance, StatusLine)
{
    for (const StatusCase& test : kStatusLine)
        for (const Model model : {Vt220, Vt320, Vt420}) {
            Bench bench = Fresh(model);
            bench.HostSays("one\r\ntwo\x1b[2;2H");
            if (model == Vt220) {
                bench.HostSays("\x1b[2$~\x1b[1$}");
                EXPECT_EQ(bench.terminal.StatusRows(), 0);
                continue;
            }
            bench.HostSays(test.act);
            EXPECT_EQ(bench.Rows(), test.rows) << test.name;
            EXPECT_EQ(bench.terminal.Cursor(), test.cursor) << test.name;
            EXPECT_EQ(bench.terminal.StatusRows() == 0 ? "-" : Status(bench), test.status) << test.name;
        }
}

TEST(Conformance, StatusLineAndItsSurroundings)
{
    Bench bench = Fresh(Vt420);
    bench.HostSays("\x1b[31;1m\x1b[2$~\x1b[1$}\x1b[7mstatus");
    EXPECT_EQ(bench.StyleAt(5, 0).attributes, Attr::Reverse); // a rendition of its own
    EXPECT_EQ(bench.HostSays("\x1bP$q$}\x1b\\\x1bP$q$~\x1b\\").Replies(), "\x1bP1$r1$}\x1b\\\x1bP1$r2$~\x1b\\");
    bench.terminal.PutText({0, 0}, "ours", {}); // programs on this side mean the screen
    bench.terminal.MoveCursor({3, 1});
    bench.terminal.Resize({4, 3});
    bench.terminal.Resize({12, 6});
    EXPECT_EQ(bench.Rows(), "ours");
    EXPECT_EQ(Status(bench), "status"); // columns that were out of sight
    EXPECT_EQ(bench.HostSays("\x1b[0$}x").StyleAt(bench.terminal.Cursor().row, 3).attributes, Attr::Bold);
    bench.terminal.PrintNotice("gone");
    EXPECT_EQ(bench.terminal.StatusRows(), 0);
}

TEST(Conformance, MessageRowsAreTheUsersChoice)
{
    const struct
    {
        int messageRows, before, while_, after;
    } rows[] = {{-1, 0, 1, 0}, {0, 0, 0, 0}, {1, 1, 1, 1}, {3, 3, 3, 3}, {99, 4, 4, 4}};
    for (const auto& row : rows) {
        TerminalOptions options;
        options.size = {10, 5};
        options.messageRows = row.messageRows;
        Bench bench(options, Type::Vt320);
        EXPECT_EQ(bench.terminal.StatusRows(), row.before) << row.messageRows;
        EXPECT_EQ(bench.HostSays("\x1b[2$~\x1b[1$}x").terminal.StatusRows(), row.while_) << row.messageRows;
        EXPECT_EQ(bench.HostSays("\x1b[0$~").terminal.StatusRows(), row.after) << row.messageRows;
        EXPECT_EQ(bench.terminal.ScreenSize(), (Size{10, 5})) << row.messageRows; // the window decides
    }
}

} // namespace
} // namespace kestrune::emu::conformance
