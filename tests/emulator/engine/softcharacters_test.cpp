// Characters that a host draws (DECDLD): their shapes, the sets they are reached by, and what a host learns of them.

#include "bench.h"

#include <gtest/gtest.h>

namespace kestrune::emu {
namespace {

// The shape of a character in rows of dots: "#.#|.#."; empty: none.
std::string Dots(const Terminal& terminal, char32_t point)
{
    const SoftGlyph* glyph = terminal.SoftGlyphOf(point);
    std::string out;
    for (int y = 0; glyph != nullptr && y < glyph->height; ++y) {
        out += y > 0 ? "|" : "";
        for (int x = 0; x < glyph->width; ++x)
            out += glyph->HasDot(x, y) ? '#' : '.';
    }
    return out;
}

constexpr char32_t kFirst = FirstSoftPoint + 0x21;        // of the first set
constexpr char32_t kFirstOfSecond = kFirst + 0x80;        // and of the second
const std::string kTwoDots = "\x1bP1;1;1;5;0;2;2{ @@?@;"; // one shape, five dots by two

TEST(EngineSoftCharacters, ShapesAreDrawnInSixels)
{
    const struct
    {
        const char* name;
        int type;
        const char* string; // between DCS and ST
        const char* dots;
    } cases[] = {
        {"full cell", Type::Vt220, "1;1;1;5;0;2;2;0{ @@AB?@", "#.#.#|.##.."},
        {"text stands in the middle of the cell", Type::Vt220, "1;1;1;5;0;1;2;0{ @@AB?@", "..#.#.#...|...##....."},
        {"second row of sixels", Type::Vt220, "1;1;1;2;0;2;7{ @@/?@", "#....|.....|.....|.....|.....|.....|.#..."},
        {"too much to the right and below", Type::Vt220, "1;1;1;5;0;2;2{ @??@?@@@/~", "..#.#|....."},
        {"too wide a matrix for the text", Type::Vt420, "1;1;1;12;0;1;1{ @@??????????@@", "#..........#"},
        {"matrix of seven", Type::Vt220, "1;1;1;4;0;2;1{ @??????@", "......#"},
        {"for 132 columns", Type::Vt420, "1;1;1;0;2;2;1{ @?????@", ".....#"},
        {"36 lines", Type::Vt420, "1;1;1;5;11;2{ @?", ".....|.....|.....|.....|.....|.....|.....|.....|.....|....."},
        {"line ends among the sixels", Type::Vt220, "1;1;1;5;0;2;1{ @@\r\n@", "##..."},
    };
    for (const auto& test : cases) {
        Bench bench(2, 10, test.type);
        bench.HostSays(std::string("\x1bP").append(test.string).append("\x1b\\"));
        EXPECT_EQ(Dots(bench.terminal, kFirst), test.dots) << test.name;
        EXPECT_EQ(bench.Rows(), "") << test.name;
    }
}

TEST(EngineSoftCharacters, ModelsHaveCellsOfTheirOwn)
{
    const struct
    {
        int type;
        int width;
        int height;
    } cases[] = {{Type::Vt220, 10, 10}, {Type::Vt320, 15, 12}, {Type::Vt420, 10, 16}, {Type::Lanpar, 10, 10}};
    for (const auto& test : cases) {
        Bench bench(2, 10, test.type);
        bench.HostSays("\x1bP1{ @~\x1b\\");
        const SoftGlyph* glyph = bench.terminal.SoftGlyphOf(kFirst);
        ASSERT_NE(glyph, nullptr) << test.type;
        EXPECT_EQ(glyph->width, test.width) << test.type;
        EXPECT_EQ(glyph->height, test.height) << test.type;
    }
}

std::string Soft(char32_t point)
{
    std::string out = "\xf4\x8f";
    return out.append({char(0xA0 + ((point - FirstSoftPoint) >> 6)), char(0x80 + (point & 0x3F))});
}

TEST(EngineSoftCharacters, AreReachedThroughSets)
{
    const std::string first = Soft(kFirst);
    const struct
    {
        const char* name;
        int type;
        std::string bytes;
        std::string row;
    } cases[] = {
        {"G0", Type::Vt220, kTwoDots + "\x1b\\\x1b( @!\x1b(B!", first + "!"},
        {"G2 for one character", Type::Vt220, kTwoDots + "\x1b\\\x1b* @\x1bN!!", first + "!"},
        {"the upper half", Type::Vt220, kTwoDots + "\x1b\\\x1b) @\x1b~\xa1!", first + "!"},
        {"not drawn", Type::Vt220, kTwoDots + "\x1b\\\x1b( @!~", first + "⸮"},
        {"a blank in a set of 94", Type::Vt220, kTwoDots + "\x1b\\\x1b( @! !", first + " " + first},
        {"from another place on", Type::Vt220, "\x1bP1;33;1{ @~\x1b\\\x1b( @AB", Soft(kFirst + 0x20) + "⸮"},
        {"a set of 96", Type::Vt320, "\x1bP1;0;1;5;0;2;2;1{ @~\x1b\\\x1b- @\x0e !\x0f!", Soft(kFirst - 1) + "⸮!"},
        {"which is none of 94", Type::Vt320, "\x1bP1;0;1;5;0;2;2;1{ @~\x1b\\\x1b( @!", "!"},
        {"a name of two intermediates", Type::Vt220, "\x1bP1{&!x~\x1b\\\x1b(&!x!", first},
        {"no name takes a built-in set away", Type::Vt220, "\x1bP1{B~\x1b\\\x1b(B!", "!"},
        {"the second set", Type::Vt420, "\x1bP2{ A~\x1b\\\x1b( A!", Soft(kFirstOfSecond)},
        {"a VT320 has but one", Type::Vt320, "\x1bP2{ A~\x1b\\\x1b( A!", "!"},
        {"a VT100 has none", Type::Vt100, "\x1bP1{ @~\x1b\\\x1b( @!", "!"},
        {"nor has level 1", Type::Vt220, "\x1bP1{ @~\x1b\\\x1b[61\"p\x1b( @!", "!"},
        {"another name", Type::Vt220, kTwoDots + "\x1b\\\x1bP1;2;1{!A~\x1b\\\x1b( @!\x1b(!A!", "!" + first},
        {"erased before", Type::Vt220, kTwoDots + "\x1b\\\x1bP1;5;0{ @~\x1b\\\x1b( @!", "⸮"},
        {"erased in all widths", Type::Vt220, kTwoDots + "\x1b\\\x1bP1;5;2;0;2{ @~\x1b\\\x1b( @!", "⸮"},
        {"not erased in the other width", Type::Vt220, kTwoDots + "\x1b\\\x1bP1;5;0;0;2{ @~\x1b\\\x1b( @!", first},
        {"nothing but erased", Type::Vt220, kTwoDots + "\x1b\\\x1bP1;1;2{ @\x1b\\\x1b( @!", "⸮"},
        {"past the last place", Type::Vt220, "\x1bP1;94{ @~;~;~\x1b\\\x1b( @~!", Soft(kFirst + 0x5D) + "⸮"},
        {"after DECSTR", Type::Vt220, kTwoDots + "\x1b\\\x1b( @!\x1b[!p!\x1b( @!", first + "!" + first},
        {"RIS forgets them", Type::Vt220,
         kTwoDots + "\x1b\\\x1b"
                    "c\x1b( @!",
         "!"},
        {"in VT52 mode they are out of reach", Type::Vt220, kTwoDots + "\x1b\\\x1b[?2l!", "!"},
    };
    for (const auto& test : cases) {
        TerminalOptions options = Utf8Options(2, 20);
        options.charset = HostCharset::Latin1;
        Bench bench(options, test.type);
        bench.HostSays(test.bytes);
        EXPECT_EQ(bench.Line(0), test.row) << test.name;
    }
}

TEST(EngineSoftCharacters, MalformedStringsChangeNothing)
{
    for (const char* wrong : {"1;1;1;1{ @~", "1;1;1;16{ @~", "1;1;1;5;3{ @~", "1;1;1;5;0;3{ @~", "1;1;1;5;0;2;17{ @~",
                              "1;1;1;5;0;2;2;2{ @~", "1;1;3{ @~", "1;95{ @~", "3{ @~", "1;1;1;5;0;2;2;0;1{ @~",
                              "1{   @~", "1{", "1{ ", "1;1;0}{ @~"}) {
        Bench bench(2, 10, Type::Vt420);
        bench.HostSays(kTwoDots + "\x1b\\");
        const uint64_t changes = bench.terminal.SoftGlyphChanges();
        bench.HostSays(std::string("\x1bP").append(wrong).append("\x1b\\\x1b( @!"));
        EXPECT_EQ(bench.terminal.SoftGlyphChanges(), changes) << wrong;
        EXPECT_EQ(Dots(bench.terminal, kFirst), "#.#..|.....") << wrong;
        EXPECT_EQ(bench.Line(0), Soft(kFirst)) << wrong;
    }
}

TEST(EngineSoftCharacters, EachWidthOfTheScreenHasItsShapes)
{
    Bench bench(2, 80, Type::Vt420);
    bench.HostSays("\x1bP1;1;1;5;0;2;1{ @@;~\x1b\\\x1bP1;1;1;5;2;2;1{ @?@\x1b\\");
    EXPECT_EQ(Dots(bench.terminal, kFirst), "#....");
    bench.HostSays("\x1b[?3h");
    EXPECT_EQ(Dots(bench.terminal, kFirst), ".#...");
    EXPECT_EQ(Dots(bench.terminal, kFirst + 1), "#....") << "the other width's stands in";
    bench.HostSays("\x1b[?3l");
    EXPECT_EQ(Dots(bench.terminal, kFirst), "#....");
    bench.terminal.Reset();
    EXPECT_EQ(Dots(bench.terminal, kFirst), "");
}

// Reports have names of ours: a host could have anything answered otherwise.
TEST(EngineSoftCharacters, NoReportHasTheHostsName)
{
    Bench bench(2, 10, Type::Vt420);
    bench.HostSays("\x1bP1{l~\x1b\\\x1bP2;0;0;0;0;0;0;1{s~\x1b\\\x1b(l\x1b-s\x1b[1$w");
    const std::string report = bench.Replies();
    EXPECT_EQ(report, "\x1bP1$u1;1;1;@;@;@;0;2;N; @ AAA\x1b\\");
    bench.HostSays("\x1b(B\x1b)B\x1bP1$t1;1;1;@;@;@;0;2;N; @ AAA\x1b\\!\x0e!");
    EXPECT_EQ(bench.Line(0), Soft(kFirst) + "⸮");
}

TEST(EngineSoftCharacters, CountAsTheByteInAChecksum)
{
    Bench bench(2, 10, Type::Vt420);
    bench.HostSays(kTwoDots + "\x1b\\!\x1b( @\x1b[2;1H!\x1b[1;1;1;1;1;1*y\x1b[2;1;2;1;2;1*y");
    EXPECT_EQ(bench.Replies(), "\x1bP1!~FFDF\x1b\\\x1bP2!~FFDF\x1b\\");
}

} // namespace
} // namespace kestrune::emu
