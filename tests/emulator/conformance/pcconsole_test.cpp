// ANSI of the mail boxes, and the SCO console.

#include "conformance.h"

namespace kestrune::emu::conformance {
namespace {

// The last column is filled without the wrap that these consoles do at once.
const std::string kPage = "\x1b[?7l" + kLetters + "\x1b[?7h";

struct ConsoleCase
{
    const char* name;
    int type;
    std::string bytes;
    const char* rows;
    Position cursor;
    const char* replies = "";
};

const ConsoleCase kCases[] = {
    {"wrap is at once", Type::Ansi, "0123456789", "0123456789", {0, 1}},
    {"wrap is at once on SCO too", Type::Sco, "0123456789", "0123456789", {0, 1}},
    {"upper half is the ROM's", Type::Ansi, "\xb3\x9b\xda", "│¢┌", {3, 0}},
    {"controls without a meaning are drawn", Type::Ansi, "\x01\x06\x0e\x10\x1c", "☺♠♫►∟", {5, 0}},
    {"SCO does not draw them", Type::Sco, "\x01\x06x", "x", {1, 0}},
    {"FF clears and homes", Type::Ansi, "ab\fc", "c", {1, 0}},
    {"ED 2 homes", Type::Ansi, "ab\x1b[2Jc", "c", {1, 0}},
    {"ED 2 leaves the cursor on SCO", Type::Sco, "ab\x1b[2Jc", "  c", {3, 0}},
    {"CSI U clears", Type::Ansi, "\x1b[44mab\x1b[Uc", "c", {1, 0}},
    {"ESC D scrolls wherever the cursor is",
     Type::Ansi,
     kPage + "\x1b"
             "D",
     "KLMNOPQRST|UVWXYZabcd|efghijklmn|opqrstuvwx",
     {0, 0}},
    {"ESC M scrolls wherever the cursor is",
     Type::Ansi,
     kPage + "\x1b[3;1H\x1bM",
     "|ABCDEFGHIJ|KLMNOPQRST|UVWXYZabcd|efghijklmn",
     {0, 2}},
    {"CSI Y deletes lines", Type::Ansi, kPage + "\x1b[2;1H\x1b[3Y", "ABCDEFGHIJ|opqrstuvwx", {0, 1}},
    {"CSI s and u", Type::Ansi, "\x1b[2;3H\x1b[s\x1b[H\x1b[ux", "|  x", {3, 1}},
    {"DA1", Type::Ansi, "\x1b[c", "", {0, 0}, "\x1b[?1;2c"},
    {"size of the screen", Type::Ansi, "\x1b[255n", "", {0, 0}, "\x1b[5;10R"},
    {"SCO is silent", Type::Sco, "\x1b[c\x1b[>c\x1b[=c\x1b[=0M", "", {0, 0}},
    {"REP takes a number and a count", Type::Sco, "\x1b[42;3b\x1b[196;2b", "***──", {5, 0}},
    {"REP with a count alone repeats the last one", Type::Sco, "a\x1b[2bb", "aaab", {4, 0}},
    {"REP elsewhere repeats the last one", Type::Ansi, "a\x1b[2b", "aaa", {3, 0}},
    {"REP fills no more than the screen",
     Type::Sco,
     "\x1b[42;9999b",
     "**********|**********|**********|**********",
     {0, 4}},
    {"glyph by number", Type::Sco, "\x1b[=3g\x1b[=219;1;2g", "♥█", {2, 0}},
    {"font of control codes", Type::Sco, "\x1b[11m\x01\x1b[10m", "☺", {1, 0}},
    {"font of the upper half", Type::Sco, "\x1b[12mD3\x1b[10mD", "─│D", {3, 0}},
    {"window",
     Type::Sco,
     kPage + "\x1b[2;3;4;7r\x1b[S",
     "ABCDEFGHIJ|KLWXYZaRST|UVghijkbcd|ef     lmn|opqrstuvwx",
     {2, 1}},
    {"margins one by one",
     Type::Sco,
     kPage + "\x1b[=0;2m\x1b[=1;4m\x1b[=2;3m\x1b[=3;7m\x1b[S",
     "ABCDEFGHIJ|KLWXYZaRST|UVghijkbcd|ef     lmn|opqrstuvwx",
     {0, 0}},
    {"margins opened",
     Type::Sco,
     kPage + "\x1b[2;3;4;7r\x1b[=r\x1b[S",
     "KLMNOPQRST|UVWXYZabcd|efghijklmn|opqrstuvwx",
     {2, 1}},
    {"two values are a scroll region",
     Type::Sco,
     kPage + "\x1b[2;4r\x1b[S",
     "ABCDEFGHIJ|UVWXYZabcd|efghijklmn||opqrstuvwx",
     {0, 0}},
    {"locked lines", Type::Sco, kPage + "\x1b[3;2H\x1bl\x1b[S", "ABCDEFGHIJ|KLMNOPQRST|efghijklmn|opqrstuvwx", {1, 2}},
    {"clear screen", Type::Sco, kPage + "\x1b[2;3;4;7r\x1b[5;5H\x1b[=l", "", {2, 1}},
};

TEST(PcConsole, Screen)
{
    for (const ConsoleCase& test : kCases) {
        TerminalOptions options;
        options.size = {10, 5};
        options.charset = HostCharset::Cp437;
        Bench bench(options, test.type);
        bench.HostSays(test.bytes);
        EXPECT_EQ(bench.Rows(), test.rows) << test.name;
        EXPECT_EQ(bench.terminal.Cursor().col, test.cursor.col) << test.name;
        EXPECT_EQ(bench.terminal.Cursor().row, test.cursor.row) << test.name;
        EXPECT_EQ(bench.Replies(), test.replies) << test.name;
    }
}

// The PC counts its colours another way round: 1 is blue, which elsewhere is 4.
TEST(PcConsole, ScoColors)
{
    const struct
    {
        const char* name;
        std::string bytes;
        Color foreground;
        Color background;
        uint16_t attributes;
    } cases[] = {
        {"colour pair", "\x1b[2;1;4m", Color::Palette(4), Color::Palette(1), 0},
        {"one by one", "\x1b[=14F\x1b[=2G", Color::Palette(11), Color::Palette(2), 0},
        {"bright ones count as the PC does", "\x1b[91;104m", Color::Palette(12), Color::Palette(9), 0},
        {"plain ones count as elsewhere", "\x1b[31;44m", Color::Palette(1), Color::Palette(4), 0},
        {"background intensity", "\x1b[44m\x1b[=1D", Color::Default(), Color::Palette(12), 0},
        {"and its inverse", "\x1b[44m\x1b[=1D\x1b[=1E", Color::Default(), Color::Palette(4), 0},
        {"original pair", "\x1b[31;44m\x1b[50m", Color::Default(), Color::Default(), 0},
        {"steady", "\x1b[5m\x1b[6m", Color::Default(), Color::Default(), 0},
        {"dim and bold are no colours", "\x1b[2;1m", Color::Default(), Color::Default(), Attr::Bold | Attr::Dim},
        {"no such colour", "\x1b[=77F", Color::Default(), Color::Default(), 0},
    };
    for (const auto& test : cases) {
        Bench bench(2, 10, Type::Sco);
        const Style style = bench.HostSays(test.bytes + "x").StyleAt(0, 0);
        EXPECT_EQ(style.foreground, test.foreground) << test.name;
        EXPECT_EQ(style.background, test.background) << test.name;
        EXPECT_EQ(style.attributes, test.attributes) << test.name;
    }
}

TEST(PcConsole, CursorOfSco)
{
    Bench bench(2, 10, Type::Sco);
    EXPECT_FALSE(bench.HostSays("\x1b[=0c").terminal.Modes().cursorVisible);
    EXPECT_TRUE(bench.HostSays("\x1b[=1c").terminal.Modes().cursorVisible);
    EXPECT_FALSE(bench.HostSays("\x1b[=14;12C").terminal.Modes().cursorVisible);
    EXPECT_EQ(bench.HostSays("\x1b[=2c").terminal.Modes().cursor, CursorShape::BlinkBlock);
}

TEST(PcConsole, Keys)
{
    const struct
    {
        int type;
        KeyPress key;
        const char* bytes;
    } cases[] = {
        {Type::Ansi, {Key::End, 0, {}}, "\x1b[K"},
        {Type::Ansi, {Key::F4, 0, {}}, "\x1bOS"},
        {Type::Ansi, {Key::F10, 0, {}}, "\x1b[21~"},
        {Type::Ansi, {Key::Backspace, 0, {}}, "\b"},
        {Type::Sco, {Key::End, 0, {}}, "\x1b[F"},
        {Type::Sco, {Key::F1, 0, {}}, "\x1b[M"},
        {Type::Sco, {Key::F12, 0, {}}, "\x1b[X"},
        {Type::Sco, {Key::F2, Modifier::Shift, {}}, "\x1b[Z"},
        {Type::Sco, {Key::F3, Modifier::Shift, {}}, "\x1b[a"},
        {Type::Sco, {Key::F1, Modifier::Control, {}}, "\x1b[k"},
        {Type::Sco, {Key::F12, Modifier::Shift | Modifier::Control, {}}, "\x1b[{"},
        {Type::Sco, {Key::Pad5, 0, {}}, "5"},
        {Type::Lanpar, {Key::Home, 0, {}}, "\x1b[H"},
        {Type::Lanpar, {Key::F6, 0, {}}, "\x1b[17~"},
    };
    for (const auto& test : cases) {
        Bench bench(2, 10, test.type);
        EXPECT_EQ(bench.terminal.KeyBytes(test.key), test.bytes) << test.type;
    }
}

} // namespace
} // namespace kestrune::emu::conformance
