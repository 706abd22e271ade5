// Strings from the host: title, palette, links, clipboard; and the printer.

#include "bench.h"

#include <gtest/gtest.h>

namespace kestrune::emu {
namespace {

TEST(EngineStrings, Title)
{
    const struct
    {
        const char* name;
        std::string bytes;
        std::string title;
    } cases[] = {
        {"OSC 0", "\x1b]0;hello\x07", "hello"},
        {"OSC 2 with ST", "\x1b]2;hello\x1b\\", "hello"},
        {"OSC 1 is an icon's", "\x1b]1;hello\x07", ""},
        {"UTF-8 with 9C inside", "\x1b]0;\xe6\x9c\xac\x07", "本"},
        {"controls and direction marks go",
         "\x1b]0;a\tb\xe2\x80\xae"
         "c\xc2\x9b\x07",
         "abc"},
        {"cut in length", "\x1b]0;" + std::string(1000, 'x') + "\x07", std::string(256, 'x')},
        {"too long altogether", "\x1b]0;" + std::string(300'000, 'x') + "\x07", ""},
        {"no number", "\x1b]hello\x07", ""},
        {"never ended", "\x1b]0;hello", ""},
    };
    for (const auto& test : cases) {
        Bench bench(2, 10);
        bench.HostSays(test.bytes);
        EXPECT_EQ(bench.heard.title, test.title) << test.name;
        EXPECT_EQ(bench.Rows(), "") << test.name;
    }
}

TEST(EngineStrings, Palette)
{
    const struct
    {
        int type;
        const char* bytes;
        int index;
        uint32_t color;
    } cases[] = {
        {Type::Vt220, "\x1b]4;7;rgb:ff/80/00\x07", 7, 0x01FF8000},
        {Type::Vt220, "\x1b]4;7;rgb:ffff/8080/0000\x07", 7, 0x01FF8000},
        {Type::Vt220, "\x1b]4;7;#123;8;#abcdef\x07", 8, 0x01ABCDEF},
        {Type::Vt220, "\x1b]4;7;#123\x07", 7, 0x01112233},
        {Type::Vt220, "\x1b]4;7;nonsense\x07", 7, 0},
        {Type::Vt220, "\x1b]4;7;rgb:12345/1/1\x07", 7, 0},
        {Type::Vt220, "\x1b]4;300;#123\x07", 300, 0},
        {Type::Vt220, "\x1b]4;7;#123\x07\x1b]104;7\x07", 7, 0},
        {Type::Vt220, "\x1b]4;7;#123\x07\x1b]104\x07", 7, 0},
        {Type::Vt220, "\x1b]10;#010203\x07", 256, 0x01010203},
        {Type::Vt220, "\x1b]10;#010203;#040506\x07", 257, 0x01040506},
        {Type::Vt220, "\x1b]12;#010203\x07\x1b]112\x07", 258, 0},
        {Type::Linux, "\x1b]P1aabbcc", 1, 0x01AABBCC},
        {Type::Linux, "\x1b]P1aabbcc\x1b]R", 1, 0},
    };
    for (const auto& test : cases) {
        Bench bench(2, 10, test.type);
        bench.HostSays(std::string(test.bytes) + "ok");
        EXPECT_EQ(bench.terminal.PaletteOverride(test.index), test.color) << test.bytes;
        EXPECT_EQ(bench.Line(0), "ok") << test.bytes;
        EXPECT_EQ(bench.Replies(), "") << test.bytes;
    }
}

TEST(EngineStrings, Links)
{
    Bench bench(3, 30);
    bench.HostSays(
        "\x1b]8;;https://a.example/\x07one\x1b]8;;\x07 two\x1b]8;id=7;https://a.example/\x07three\x1b]8;;\x07");
    const uint16_t first = bench.StyleAt(0, 0).link;
    const uint16_t second = bench.StyleAt(0, 7).link;
    EXPECT_EQ(bench.terminal.LinkOf(first), "https://a.example/");
    EXPECT_EQ(bench.StyleAt(0, 4).link, 0);
    EXPECT_EQ(bench.terminal.LinkOf(second), "https://a.example/");
    EXPECT_NE(first, second); // the host calls them two
    bench.HostSays("\r\n\x1b]8;;https://a.example/\x07x\x1b[0my\x1b]8;;bad\x1b\\z\x1b]8;;with space\x07w");
    EXPECT_EQ(bench.StyleAt(1, 0).link, first);
    EXPECT_EQ(bench.StyleAt(1, 1).link, first); // not a rendition
    EXPECT_EQ(bench.StyleAt(1, 3).link, 0);
    EXPECT_EQ(bench.terminal.LinkOf(0), "");
}

TEST(EngineStrings, LinksAreBoundedAndUsedAgain)
{
    Bench bench(Utf8Options(5, 30, 3));
    for (int i = 0; i < 20'000; ++i)
        bench.HostSays("\x1b]8;;http://x/" + std::to_string(i) +
                       "\x07"
                       "a\r\n");
    EXPECT_EQ(bench.terminal.LinkOf(bench.StyleAt(3, 0).link), "http://x/19999");
    EXPECT_EQ(bench.terminal.LinkOf(bench.StyleAt(-3, 0).link), "http://x/19993");
}

TEST(EngineStrings, Clipboard)
{
    const struct
    {
        std::string bytes;
        std::string offered;
    } cases[] = {
        {"\x1b]52;c;aGVsbG8=\x07", "hello"},
        {"\x1b]52;;w6TwnZWP\x1b\\", "ä𝕏"},
        {"\x1b]52;c;?\x07", ""},
        {"\x1b]52;c;not base64!\x07", ""},
        {"\x1b]52;c;\x07", ""},
        {"\x1b]52;c;" + std::string(40'000, 'A') + "\x07", std::string(30'000, '\0')},
    };
    for (const auto& test : cases) {
        Bench bench(2, 10);
        EXPECT_EQ(bench.HostSays(test.bytes).heard.clipboard, test.offered);
        EXPECT_EQ(bench.Replies(), "");
    }
}

TEST(EnginePrinter, GetsWhatTheHostSendsThere)
{
    const struct
    {
        const char* name;
        std::string bytes;
        std::string printed;
        const char* rows;
        std::vector<int> states;
    } cases[] = {
        {"controller mode", "a\x1b[5ib\x1b[1mc\r\n\x1b[4id", "b\x1b[1mc\r\n", "ad", {1, 0}},
        {"flow control is not printed",
         std::string("\x1b[5ia\0\x11\x13"
                     "b\x1b[4i",
                     13),
         "ab",
         "",
         {1, 0}},
        {"starts of the end mark are data", "\x1b[5ia\x1b[4\x1b[4m\x1b\x1b[4i", "a\x1b[4\x1b[4m\x1b", "", {1, 0}},
        {"never ended", "\x1b[5iab\x1b[4", "ab", "", {1}},
        {"print page", "ab \r\ncd\x1b[i", "ab\r\ncd\r\n\r\n", "ab|cd", {}},
        {"print page with form feed", "ab\x1b[?18h\x1b[i", "ab\r\n\r\n\r\n\f", "ab", {}},
        {"print region", "ab\r\ncd\r\nef\x1b[2;3r\x1b[?19l\x1b[i", "cd\r\nef\r\n", "ab|cd|ef", {}},
        {"print line", "ab\r\nc\x1b[?1i", "c\r\n", "ab|c", {}},
        {"auto print", "\x1b[?5iab\r\ncd\r\n\x1b[?4ief\n", "ab\r\ncd\r\n", "cd|ef", {1, 0}},
        {"auto print of a wrap", "\x1b[?5i01234567890", "0123456789\r\n", "0123456789|0", {1}},
        {"VT52 controller", "\x1b[?2l\x1bWab\x1b[4ic\x1bXd", "ab\x1b[4ic", "d", {1, 0}},
    };
    for (const auto& test : cases) {
        Bench bench(3, 10);
        bench.HostSays(test.bytes);
        EXPECT_EQ(bench.heard.printed, test.printed) << test.name;
        EXPECT_EQ(bench.Rows(), test.rows) << test.name;
        EXPECT_EQ(bench.heard.printerStates, test.states) << test.name;
    }
}

TEST(EnginePrinter, TheUserCanEndControllerMode)
{
    Bench bench(2, 10);
    bench.HostSays("\x1b[5iforgotten\x1b[4");
    bench.terminal.Reset();
    bench.HostSays("back");
    EXPECT_EQ(bench.Line(0), "back");
    EXPECT_EQ(bench.heard.printed, "forgotten");
    EXPECT_EQ(bench.heard.printerStates, (std::vector<int>{1, 0}));
}

} // namespace
} // namespace kestrune::emu
