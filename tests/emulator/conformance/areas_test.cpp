// Rectangular areas (VT420).

#include "conformance.h"

namespace kestrune::emu::conformance {
namespace {

using enum Model;

const Case kAreas[] = {
    {"DECCRA",
     Vt420,
     kLetters,
     "\x1b[1;1;2;3;1;4;6;1$v",
     "ABCDEFGHIJ|KLMNOPQRST|UVWXYZabcd|efghiABCmn|opqrsKLMwx",
     {0, 0}},
    {"DECCRA overlaps downwards",
     Vt420,
     kLetters,
     "\x1b[1;1;4;3;1;2;2;1$v",
     "ABCDEFGHIJ|KABCOPQRST|UKLMYZabcd|eUVWijklmn|oefgstuvwx",
     {0, 0}},
    {"DECCRA overlaps upwards",
     Vt420,
     kLetters,
     "\x1b[2;2;5;4;1;1;1;1$v",
     "LMNDEFGHIJ|VWXNOPQRST|fghXYZabcd|pqrhijklmn|opqrstuvwx",
     {0, 0}},
    {"DECCRA overlaps in its rows",
     Vt420,
     kLetters,
     "\x1b[1;1;1;5;1;1;3;1$v",
     "ABABCDEHIJ|KLMNOPQRST|UVWXYZabcd|efghijklmn|opqrstuvwx",
     {0, 0}},
    {"DECCRA is cut at the edges",
     Vt420,
     kLetters,
     "\x1b[1;1;3;3;1;5;9;1$v",
     "ABCDEFGHIJ|KLMNOPQRST|UVWXYZabcd|efghijklmn|opqrstuvAB",
     {0, 0}},
    {"DECFRA", Vt420, kLetters, "\x1b[42;2;3;3;5$x", "ABCDEFGHIJ|KL***PQRST|UV***Zabcd|efghijklmn|opqrstuvwx", {0, 0}},
    {"DECFRA of all", Vt420, kLetters, "\x1b[35$x", "##########|##########|##########|##########|##########", {0, 0}},
    {"DECFRA takes graphic characters only", Vt420, kLetters, "\x1b[7$x\x1b[127$x\x1b[155$x", kLetterRows, {0, 0}},
    {"DECFRA of nothing", Vt420, kLetters, "\x1b[42;3;3;2;5$x\x1b[42;2;5;3;4$x", kLetterRows, {0, 0}},
    {"DECFRA in origin mode",
     Vt420,
     kLetters + "\x1b[2;4r\x1b[?6h",
     "\x1b[42;1;1;9;2$x",
     "ABCDEFGHIJ|**MNOPQRST|**WXYZabcd|**ghijklmn|opqrstuvwx",
     {0, 1}},
    {"DECERA", Vt420, kLetters, "\x1b[2;3;3;5$z", "ABCDEFGHIJ|KL   PQRST|UV   Zabcd|efghijklmn|opqrstuvwx", {0, 0}},
    {"DECSERA", Vt420, "ab\x1b[1\"qcd\x1b[0\"qef\r\nghijkl\x1b[H", "\x1b[1;2;2;5${", "a cd f|g    l", {0, 0}},
};

const Case kChecksums[] = {
    {"of one cell", Vt420, "A", "\x1b[7;1;1;1;1;1*y", "A", {1, 0}, "\x1bP7!~FFBF\x1b\\"},
    {"of a blank cell", Vt420, "A", "\x1b[1;1;2;2;2;2*y", "A", {1, 0}, "\x1bP1!~FFE0\x1b\\"},
    {"blanks at the end do not count", Vt420, "AB", "\x1b[1;1;1;1;1;9*y", "AB", {2, 0}, "\x1bP1!~FF7D\x1b\\"},
    {"renditions count", Vt420, "\x1b[1;4;5;7mA", "\x1b[1;1;1;1;1;1*y", "A", {1, 0}, "\x1bP1!~FECF\x1b\\"},
    {"line drawing counts as its letter",
     Vt420,
     "\x1b(0q\x1b(B",
     "\x1b[1;1;1;1;1;1*y",
     "─",
     {1, 0},
     "\x1bP1!~FF8F\x1b\\"},
    {"of all", Vt420, "A\r\n\nB", "\x1b[1*y", "A||B", {1, 2}, "\x1bP1!~FF7D\x1b\\"},
};

TEST(Conformance, Areas) { RunCases(kAreas); }
TEST(Conformance, Checksums) { RunCases(kChecksums); }

// Which cells of three rows of six have become bold.
std::string BoldCells(const std::string& bytes)
{
    Bench bench(3, 6, Type::Vt420);
    bench.HostSays("abcdef\r\nghijkl\r\nmnopqr" + bytes);
    std::string out;
    for (int row = 0; row < 3; ++row) {
        out += row > 0 ? "|" : "";
        for (int col = 0; col < 6; ++col)
            out += bench.StyleAt(row, col).attributes & Attr::Bold ? '*' : '.';
    }
    return out;
}

TEST(Conformance, AttributesOfAreas)
{
    const struct
    {
        const char* name;
        std::string bytes;
        const char* bold;
    } cases[] = {
        {"DECCARA runs as text at first", "\x1b[1;4;3;2;1$r", "...***|******|**...."},
        {"DECCARA of a rectangle", "\x1b[2*x\x1b[1;2;3;3;1$r", ".**...|.**...|.**..."},
        {"DECSACE back to a stream", "\x1b[2*x\x1b[1*x\x1b[1;4;2;2;1$r", "...***|**....|......"},
        {"DECCARA takes bold away", "\x1b[2*x\x1b[1;1;3;6;1$r\x1b[2;2;2;3;22$r", "******|*..***|******"},
        {"DECCARA with nothing is normal", "\x1b[2*x\x1b[1;1;3;6;1$r\x1b[2;2;2;3$r", "******|*..***|******"},
        {"DECRARA toggles", "\x1b[2*x\x1b[1;1;1;4;1$t\x1b[1;3;1;6;1$t", "**..**|......|......"},
        {"DECRARA of all attributes", "\x1b[2*x\x1b[1;1;1;2;0$t", "**....|......|......"},
        {"other renditions cannot be set so", "\x1b[2*x\x1b[1;1;1;2;3;9;31$r", "......|......|......"},
        {"DECSACE with another number", "\x1b[2*x\x1b[5*x\x1b[1;2;2;2;1$r", ".*....|.*....|......"},
    };
    for (const auto& test : cases)
        EXPECT_EQ(BoldCells(test.bytes), test.bold) << test.name;

    Bench bench(2, 4, Type::Vt420);
    bench.HostSays("\x1b[1\"q\x1b[31mab\x1b[2*x\x1b[1;1;1;1;4;7$r");
    EXPECT_EQ(bench.StyleAt(0, 0).attributes, Attr::Protected | Attr::Reverse);
    EXPECT_EQ(bench.StyleAt(0, 0).underline, Underline::Single);
    EXPECT_EQ(bench.StyleAt(0, 0).foreground, Color::Palette(1));
    EXPECT_EQ(bench.StyleAt(0, 1).attributes, Attr::Protected);
}

TEST(Conformance, FilledAreaHasThePensRendition)
{
    Bench bench(2, 4, Type::Vt420);
    bench.HostSays("\x1b[1;31m\x1b(0\x1b[113;1;1;1;2$x");
    EXPECT_EQ(bench.Rows(), "──");
    EXPECT_EQ(bench.StyleAt(0, 1).attributes, Attr::Bold);
    EXPECT_EQ(bench.StyleAt(0, 1).foreground, Color::Palette(1));
}

} // namespace
} // namespace kestrune::emu::conformance
