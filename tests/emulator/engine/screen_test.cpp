// What controls do to the text on a screen of 4 rows and 10 columns.

#include "bench.h"

#include <gtest/gtest.h>

namespace kestrune::emu {
namespace {

struct ScreenCase
{
    const char* name;
    std::string bytes;
    const char* rows;
    Position cursor; // col, row
};

// A page of letters to work on; the cursor ends at the start of row 1.
const std::string kPage = "aaaa\r\nbbbb\r\ncccc\r\ndddd\x1b[2;1H";

const ScreenCase kScreenCases[] = {
    // text and wrapping
    {"plain text", "hello", "hello", {5, 0}},
    {"last column holds the cursor", "0123456789", "0123456789", {9, 0}},
    {"next character wraps", "0123456789x", "0123456789|x", {1, 1}},
    {"wrap stays pending over SGR", "0123456789\x1b[1mx", "0123456789|x", {1, 1}},
    {"wrap stays pending over HT", "0123456789\tx", "0123456789|x", {1, 1}},
    {"BS ends a pending wrap", "0123456789\bx", "01234567x9", {9, 0}},
    {"CR ends a pending wrap", "0123456789\rx", "x123456789", {1, 0}},
    {"no autowrap overwrites", "\x1b[?7l0123456789xyz", "012345678z", {9, 0}},
    {"run over several rows", std::string(25, 'x'), "xxxxxxxxxx|xxxxxxxxxx|xxxxx", {5, 2}},
    {"long run scrolls", std::string(45, 'x') + "y", "xxxxxxxxxx|xxxxxxxxxx|xxxxxxxxxx|xxxxxy", {6, 3}},
    {"insert mode", "abc\x1b[4h\x1b[Hxy", "xyabc", {2, 0}},
    {"insert mode drops at the edge", "0123456789\x1b[4h\x1b[Hx", "x012345678", {1, 0}},
    {"REP", "a\x1b[3b", "aaaa", {4, 0}},
    {"DEL is nothing",
     "a\x7f"
     "b",
     "ab",
     {2, 0}},
    {"controls inside a sequence act", "ab\x1b[1\b;2\rHx", "ax", {2, 0}},
    {"NUL is nothing", std::string("a\0b", 3), "ab", {2, 0}},
    // cursor
    {"CUP", "\x1b[3;5Hx", "||    x", {5, 2}},
    {"CUP clamps", "\x1b[99;99Hx", "|||         x", {9, 3}},
    {"CUP zero means one", "\x1b[0;0Hx", "x", {1, 0}},
    {"HVP", "\x1b[2;3fx", "|  x", {3, 1}},
    {"CUU CUD CUF CUB", "\x1b[3;5H\x1b[A\x1b[2D\x1b[B\x1b[3Cx", "||     x", {6, 2}},
    {"CUU stops at the top margin", "\x1b[2;4r\x1b[3;1H\x1b[9Ax", "|x", {1, 1}},
    {"CUU above the margin goes on", "\x1b[3;4r\x1b[2;1H\x1b[9Ax", "x", {1, 0}},
    {"CUD stops at the bottom margin", "\x1b[1;3r\x1b[9Bx", "||x", {1, 2}},
    {"CNL CPL", "\x1b[2;5H\x1b[2Ex\x1b[Fy", "||y|x", {1, 2}},
    {"CHA HPA VPA", "\x1b[5Ga\x1b[2`b\x1b[3dc", " b  a||  c", {3, 2}},
    {"HPR VPR", "\x1b[3a\x1b[2ex", "||   x", {4, 2}},
    {"IND keeps the column",
     "ab\x1b"
     "Dc",
     "ab|  c",
     {3, 1}},
    {"NEL",
     "ab\x1b"
     "Ec",
     "ab|c",
     {1, 1}},
    {"RI at the top scrolls", kPage + "\x1b[H\x1bM", "|aaaa|bbbb|cccc", {0, 0}},
    {"LF at the bottom scrolls", kPage + "\x1b[4;3H\n", "bbbb|cccc|dddd", {2, 3}},
    {"LNM", "\x1b[20hab\ncd", "ab|cd", {2, 1}},
    {"VT and FF move down", "a\vb\fc", "a| b|  c", {3, 2}},
    {"DECSC and DECRC",
     "\x1b[2;3H\x1b"
     "7\x1b[4;4H\x1b"
     "8x",
     "|  x",
     {3, 1}},
    {"DECRC with nothing saved goes home",
     "\x1b[3;3H\x1b"
     "8x",
     "x",
     {1, 0}},
    {"DECRC keeps a pending wrap",
     "0123456789\x1b"
     "7\x1b[H\x1b"
     "8x",
     "0123456789|x",
     {1, 1}},
    {"origin mode", "\x1b[2;3r\x1b[?6hx\x1b[9;2Hy", "|x| y", {2, 2}},
    {"DECOM homes when reset", "\x1b[2;3r\x1b[?6h\x1b[?6lx", "x", {1, 0}},
    // tabs
    {"HT", "a\tb", "a       b", {9, 0}},
    {"HT stops at the last column", "a\t\tb", "a        b", {9, 0}},
    {"HTS and TBC", "\x1b[3g\x1b[4G\x1bH\r\tx", "   x", {4, 0}},
    {"TBC at the cursor", "\x1b[9G\x1b[g\r\tx", "         x", {9, 0}},
    {"CBT and CHT", "\x1b[10G\x1b[Za\r\x1b[Ib", "        b", {9, 0}},
    // margins and scrolling
    {"region scrolls alone", kPage + "\x1b[2;3r\x1b[3;1H\nx", "aaaa|cccc|x|dddd", {1, 2}},
    {"reverse inside a region", kPage + "\x1b[2;3r\x1b[2;1H\x1bMx", "aaaa|x|bbbb|dddd", {1, 1}},
    {"below the region nothing scrolls", kPage + "\x1b[1;2r\x1b[4;1H\nx", "aaaa|bbbb|cccc|xddd", {1, 3}},
    {"margins need two rows", kPage + "\x1b[3;3r\x1b[4;1H\n", "bbbb|cccc|dddd", {0, 3}},
    {"margins reset", kPage + "\x1b[2;3r\x1b[r\x1b[4;1H\n", "bbbb|cccc|dddd", {0, 3}},
    {"SU", kPage + "\x1b[2S", "cccc|dddd", {0, 1}},
    {"SD", kPage + "\x1b[T", "|aaaa|bbbb|cccc", {0, 1}},
    {"SU further than there is", kPage + "\x1b[999S", "", {0, 1}},
    // editing
    {"ICH", "abcdef\x1b[3G\x1b[2@", "ab  cdef", {2, 0}},
    {"ICH at the edge", "0123456789\x1b[9G\x1b[5@", "01234567", {8, 0}},
    {"DCH", "abcdef\x1b[3G\x1b[2P", "abef", {2, 0}},
    {"DCH more than there is", "abcdef\x1b[3G\x1b[99P", "ab", {2, 0}},
    {"ECH", "abcdef\x1b[3G\x1b[2X", "ab  ef", {2, 0}},
    {"IL", kPage + "\x1b[L", "aaaa||bbbb|cccc", {0, 1}},
    {"DL", kPage + "\x1b[3G\x1b[M", "aaaa|cccc|dddd", {0, 1}},
    {"IL inside margins", kPage + "\x1b[1;3r\x1b[2;1H\x1b[L", "aaaa||bbbb|dddd", {0, 1}},
    {"IL outside margins", kPage + "\x1b[1;2r\x1b[4;1H\x1b[L", "aaaa|bbbb|cccc|dddd", {0, 3}},
    {"DL more than there is", kPage + "\x1b[99M", "aaaa", {0, 1}},
    // erasing
    {"EL to the end", "abcdef\x1b[3G\x1b[K", "ab", {2, 0}},
    {"EL to the start", "abcdef\x1b[3G\x1b[1K", "   def", {2, 0}},
    {"EL all", "abcdef\x1b[3G\x1b[2K", "", {2, 0}},
    {"EL of a kind unknown", "abcdef\x1b[3G\x1b[7K", "abcdef", {2, 0}},
    {"ED to the end", kPage + "\x1b[3G\x1b[J", "aaaa|bb", {2, 1}},
    {"ED to the start", kPage + "\x1b[3G\x1b[1J", "|   b|cccc|dddd", {2, 1}},
    {"ED all", kPage + "\x1b[2J", "", {0, 1}},
    {"DECALN", "\x1b[2;3r\x1b#8", "EEEEEEEEEE|EEEEEEEEEE|EEEEEEEEEE|EEEEEEEEEE", {0, 0}},
    {"DECSEL leaves the protected", "\x1b[1\"qab\x1b[0\"qcd\r\x1b[?2K", "ab", {0, 0}},
    {"DECSED leaves the protected", "\x1b[1\"qab\x1b[0\"qcd\x1b[?2J", "ab", {4, 0}},
    {"EL erases also the protected", "\x1b[1\"qab\x1b[0\"qcd\r\x1b[2K", "", {0, 0}},
    // wide characters
    {"wide", "中x", "中x", {3, 0}},
    {"wide at the last column wraps", "012345678中", "012345678|中", {2, 1}},
    {"wide fills the last two", "01234567中x", "01234567中|x", {1, 1}},
    {"left half overwritten", "中x\rA", "A x", {1, 0}},
    {"right half overwritten", "中x\x1b[2GA", " Ax", {2, 0}},
    {"EL cuts a wide one", "a中d\x1b[3G\x1b[K", "a", {2, 0}},
    {"DCH cuts a wide one", "a中d\x1b[2G\x1b[P", "a d", {1, 0}},
    {"ICH pushes half over the edge", "01234567中\x1b[H\x1b[@", " 01234567", {0, 0}},
    {"ICH parts a wide one", "a中d\x1b[3G\x1b[@", "a   d", {2, 0}},
    {"wide without autowrap", "\x1b[?7l012345678中", "01234567中", {9, 0}},
    // clusters
    {"combining mark", "e\xcc\x81x", "e\xcc\x81x", {2, 0}},
    {"combining mark with a wrap pending", "012345678e\xcc\x81", "012345678e\xcc\x81", {9, 0}},
    {"mark at the start of a row is dropped", "\xcc\x81x", "x", {1, 0}},
    {"joined emoji", "👩‍👧x", "👩‍👧x", {3, 0}},
    {"skin tone", "👍🏽x", "👍🏽x", {3, 0}},
    {"two flags", "🇩🇪🇫🇷x", "🇩🇪🇫🇷x", {5, 0}},
    {"variation selector", "❤️x", "❤️x", {2, 0}},
    {"direction marks are dropped",
     "a\xe2\x80\xae"
     "b\xe2\x80\x8f",
     "ab",
     {2, 0}},
    // UTF-8 faults
    {"stray continuation",
     "a\x80"
     "b",
     "a\xef\xbf\xbd"
     "b",
     {3, 0}},
    {"overlong", "\xc0\xaf", "\xef\xbf\xbd\xef\xbf\xbd", {2, 0}},
    {"surrogate", "\xed\xa0\x80", "\xef\xbf\xbd\xef\xbf\xbd\xef\xbf\xbd", {3, 0}},
    {"cut short by text", "\xe4\xb8x", "\xef\xbf\xbdx", {2, 0}},
    {"cut short by a control", "\xe4\xb8\rx", "x", {1, 0}},
    {"C1 in two bytes is nothing",
     "a\xc2\x9b"
     "2Jb",
     "a2Jb",
     {4, 0}},
    {"9C inside a character", "\xe6\x9c\xac", "本", {2, 0}},
    // aborting
    {"CAN in CSI", "a\x1b[1;\x18z", "a⸮z", {3, 0}},
    {"CAN outside is nothing", "a\x18z", "az", {2, 0}},
    {"SUB shows", "a\x1az", "a⸮z", {3, 0}},
    {"ESC restarts", "a\x1b[1;\x1b[2;2Hz", "a| z", {2, 1}},
    {"CAN in OSC", "a\x1b]0;t\x18z", "a⸮z", {3, 0}},
    {"unknown final is swallowed", "a\x1b[1;2wz\x1b[?5Wz\x1b!Az", "azzz", {4, 0}},
    {"two intermediates are swallowed", "a\x1b[1 !qz", "az", {2, 0}},
    {"colons outside SGR are swallowed", "a\x1b[2:3Hz", "az", {2, 0}},
    {"DCS, APC, PM and SOS are swallowed", "a\x1bPq#1~\x1b\\b\x1b_x\x1b\\c\x1b^y\x1b\\d\x1bXz\x1b\\e", "abcde", {5, 0}},
};

TEST(EngineScreen, ShowsWhatTheHostSent)
{
    for (const ScreenCase& test : kScreenCases) {
        Bench bench(4, 10);
        bench.HostSays(test.bytes);
        EXPECT_EQ(bench.Rows(), test.rows) << test.name;
        EXPECT_EQ(bench.terminal.Cursor(), test.cursor)
            << test.name << ": " << bench.terminal.Cursor().col << ',' << bench.terminal.Cursor().row;
    }
}

TEST(EngineScreen, WrappedRowsAreMarkedUntilRewritten)
{
    Bench bench(4, 10);
    bench.HostSays("0123456789ab\r\nshort");
    EXPECT_TRUE(bench.terminal.Row(0).wraps);
    EXPECT_FALSE(bench.terminal.Row(1).wraps);
    bench.HostSays("\x1b[H0123456789\r\n");
    EXPECT_FALSE(bench.terminal.Row(0).wraps);
}

TEST(EngineScreen, LineSizesHalveTheRow)
{
    Bench bench(4, 10);
    bench.HostSays("0123456789\r\x1b#6");
    EXPECT_EQ(bench.terminal.Row(0).size, LineSize::DoubleWidth);
    EXPECT_EQ(bench.Line(0), "01234");
    bench.HostSays("\x1b[1;9Hx");
    EXPECT_EQ(bench.Line(0), "0123x");
    bench.HostSays("\x1b[2;1H\x1b#3\x1b[3;1H\x1b#4");
    EXPECT_EQ(bench.terminal.Row(1).size, LineSize::DoubleTop);
    EXPECT_EQ(bench.terminal.Row(2).size, LineSize::DoubleBottom);
    bench.HostSays("\x1b[2J");
    EXPECT_EQ(bench.terminal.Row(1).size, LineSize::Normal);
}

TEST(EngineScreen, GenerationsChangeWithTheirRowsOnly)
{
    Bench bench(3, 10);
    bench.HostSays("a\r\nb\r\nc");
    const uint64_t first = bench.terminal.Row(0).generation;
    const uint64_t second = bench.terminal.Row(1).generation;
    const uint64_t whole = bench.terminal.Generation();
    bench.HostSays("\x1b[1;5Hx");
    EXPECT_NE(bench.terminal.Row(0).generation, first);
    EXPECT_EQ(bench.terminal.Row(1).generation, second);
    EXPECT_NE(bench.terminal.Generation(), whole);
    bench.HostSays("\x1b[3;1H\n"); // a scroll moves rows as they are
    EXPECT_EQ(bench.terminal.Row(0).generation, second);
}

struct AlternateCase
{
    const char* name;
    const char* in;
    const char* during;
    const char* out;
    const char* after;
};

TEST(EngineScreen, AlternateScreens)
{
    const AlternateCase cases[] = {
        {"1049 clears and restores the cursor", "main\x1b[?1049h", "", "alt\x1b[?1049lx", "mainx"},
        {"47 keeps what was there", "main\x1b[?47halt\x1b[?47l\x1b[?47h", "    alt", "\x1b[?47l", "main"},
        {"1047 clears when left", "main\x1b[?1047halt\x1b[?1047l\x1b[?1047h", "", "\x1b[?1047l", "main"},
        {"1048 saves the cursor only", "ab\x1b[?1048h\x1b[3;3H", "ab", "\x1b[?1048lx", "abx"},
    };
    for (const AlternateCase& test : cases) {
        Bench bench(4, 10);
        bench.HostSays(test.in);
        EXPECT_EQ(bench.Rows(), test.during) << test.name;
        bench.HostSays(test.out);
        EXPECT_EQ(bench.Rows(), test.after) << test.name;
        EXPECT_FALSE(bench.terminal.Modes().alternateScreen) << test.name;
    }
}

} // namespace
} // namespace kestrune::emu
