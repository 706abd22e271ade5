// Bytes to characters: the host's encodings, designated sets, shifts, the PC consoles' ROM.

#include "bench.h"

#include <gtest/gtest.h>

namespace kestrune::emu {
namespace {

struct CharsetCase
{
    const char* name;
    int type;
    HostCharset charset;
    std::string bytes;
    const char* row;
};

using enum HostCharset;

TEST(EngineCharset, BytesBecomeCharacters)
{
    const CharsetCase cases[] = {
        {"Latin-1", Type::Vt220, Latin1, "\xe4\xa3", "ä£"},
        {"Windows-1252", Type::Vt220, Windows1252, "\x80\x93x\x94", "€“x”"},
        {"code page 437", Type::Vt220, Cp437, "\xc9\xcd\xbb\x9b", "╔═╗¢"},
        {"code page 850", Type::Vt220, Cp850, "\x9d\xf5", "Ø§"},
        {"8-bit CSI", Type::Vt220, Latin1,
         "abc\x9b"
         "2Dx",
         "axc"},
        {"no 8-bit CSI on a VT100", Type::Vt100, Latin1,
         "abc\x9b"
         "2Dx",
         "abc2Dx"},
        {"no 8-bit CSI in UTF-8", Type::Vt220, Utf8,
         "abc\x9b"
         "2Dx",
         "abc\xef\xbf\xbd"
         "2Dx"},
        {"no 8-bit CSI in 1252", Type::Vt220, Windows1252,
         "abc\x9b"
         "2Dx",
         "abc›2Dx"},
        {"special graphics", Type::Vt220, Utf8, "\x1b(0lqkx\x1b(Bq", "┌─┐│q"},
        {"special graphics in G1", Type::Linux, Utf8, "\x1b)0\x0eq\x0fq", "─q"},
        {"every special graphic", Type::Vt220, Utf8, "\x1b(0`afgjmnotuvwyz{|}~", "◆▒°±┘└┼⎺├┤┴┬≤≥π≠£·"},
        {"UK", Type::Vt220, Utf8, "\x1b(A#", "£"},
        {"German, national mode", Type::Vt220, Latin1, "\x1b[?42h\x1b(K[\\]{|}~@", "ÄÖÜäöüß§"},
        {"German, without national mode", Type::Vt220, Latin1, "\x1b(K[\\]", "[\\]"},
        {"Swiss", Type::Vt220, Latin1, "\x1b[?42h\x1b(=#_", "ùè"},
        {"technical", Type::Vt320, Utf8, "\x1b(>abFW", "αβΦΩ"},
        {"technical is not a VT220's", Type::Vt220, Utf8, "\x1b(>ab", "ab"},
        {"supplemental by SS2", Type::Vt220, Utf8, "\x1b*<\x1bNdd", "äd"},
        {"supplemental fixed name", Type::Vt320, Utf8, "\x1b(%5W", "Œ"},
        {"Latin-1 of 96 by LS2", Type::Vt320, Utf8,
         "\x1b.A\x1bnd\x0f"
         "d",
         "äd"},
        {"SS3", Type::Vt220, Utf8, "\x1b+0\x1bOqq", "─q"},
        {"LS1R", Type::Vt220, Latin1, "\x1b)0\x1b~\xf1", "─"},
        {"upper half of the host's by LS2", Type::Vt220, Latin1, "\x1bnd", "ä"},
        {"unknown set is ignored", Type::Vt220, Utf8, "\x1b(0\x1b(xq", "─"},
        {"DECSC keeps sets", Type::Vt220, Utf8,
         "\x1b(0\x1b"
         "7\x1b(B\x1b"
         "8q",
         "─"},
        {"RIS gives ASCII back", Type::Vt220, Utf8,
         "\x1b(0\x1b"
         "cq",
         "q"},
        {"to Latin-1 and back", Type::Linux, Utf8, "\x1b%@\xe4\x1b%G\xc3\xa4", "ää"},
        {"console font 11", Type::Linux, Utf8, "\x1b[11m\x01\x10\x1b[10m\x01", "☺►"},
        {"console font 12", Type::Linux, Utf8, "\x1b[12mM\x1b[10mM", "═M"},
        {"console font is not DEC's", Type::Vt220, Utf8, "\x1b[12mM", "M"},
        {"typewriter takes no sets", Type::Tty, Utf8, "\x1b(0q\x1b[2Jx", "qx"},
    };
    for (const CharsetCase& test : cases) {
        TerminalOptions options = Utf8Options(2, 30);
        options.charset = test.charset;
        Bench bench(options, test.type);
        bench.HostSays(test.bytes);
        EXPECT_EQ(bench.Line(0), test.row) << test.name;
    }
}

TEST(EngineCharset, EncodesTypedText)
{
    const struct
    {
        HostCharset charset;
        const char* bytes;
    } cases[] = {
        {Utf8, "aä€中"}, {Latin1, "a\xe4??"}, {Windows1252, "a\xe4\x80?"}, {Cp437, "a\x84??"}, {Cp850, "a\x84??"},
    };
    for (const auto& test : cases) {
        Bench bench(2, 10);
        bench.terminal.SetCharset(test.charset);
        EXPECT_EQ(bench.terminal.EncodeText("aä€中"), test.bytes) << int(test.charset);
    }
}

TEST(EngineCharset, WidthsOfOneCharacterEach)
{
    const struct
    {
        const char* text;
        int cols;
    } cases[] = {
        {"a", 1},
        {"ä", 1},
        {"─", 1},
        {"中", 2},
        {"ｱ", 1},
        {"Ａ", 2},
        {"😀", 2},
        {"한", 2},
        {"ᄒ\xe1\x85\xa1", 2},
        {"\xef\xa3\xbf", 1},
        {"\xe2\x80\x8b", 0},
        {"🇩🇪", 2},
        {"☃", 1},
        {"\xc2\xad", 1},
    };
    for (const auto& test : cases) {
        Bench bench(2, 10);
        bench.HostSays(test.text);
        EXPECT_EQ(bench.terminal.Cursor().col, test.cols) << test.text;
    }
}

} // namespace
} // namespace kestrune::emu
