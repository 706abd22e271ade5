// Bytes to characters: the host's encodings, designated sets, shifts, the PC consoles' ROM.

#include "bench.h"

#include <emulator/engine/hostcharsets.h>

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

// What a byte shows, typed again, goes out as that byte.
TEST(EngineCharset, EachEncodingGoesBothWays)
{
    for (const std::string_view name : HostCharsetNames()) {
        const auto charset = FindHostCharset(name);
        ASSERT_TRUE(charset);
        TerminalOptions options = Utf8Options(2, 10);
        options.charset = *charset;
        options.eightBitControls = false;
        Bench bench(options, Type::Linux);
        for (unsigned byte = CharsetAllowsC1(*charset) ? 0xA0 : 0x80; byte <= 0xFF && *charset != Utf8; ++byte) {
            const std::string sent(1, char(byte));
            const std::string shown = bench.HostSays("\r\x1b[K" + sent).terminal.TextOf(0, 0, 1);
            if (shown == "\xe2\x90\xa6" || shown == " ")
                continue; // nothing there; a mark that joins the blank before it
            EXPECT_EQ(bench.terminal.EncodeText(shown), sent) << name << ' ' << byte;
        }
    }
    EXPECT_EQ(FindHostCharset("latin2"), Latin2);
    EXPECT_EQ(FindHostCharset("koi8-r"), Koi8R);
    EXPECT_FALSE(FindHostCharset("Klingon"));
    EXPECT_FALSE(FindHostCharset(""));
}

TEST(EngineCharset, MappingPutsOtherCharactersInPlaceOfSome)
{
    TerminalOptions options = Utf8Options(2, 10);
    options.charset = Latin1;
    options.upperHalf = MappedUpperHalf(Latin1, "A4=20AC, e4=0431;F6=2022").value_or(u"");
    Bench bench(options);
    EXPECT_EQ(bench
                  .HostSays("\xa4\xe4\xf6\xfc\x9b"
                            "5Gx")
                  .Rows(),
              "€б•üx");
    EXPECT_EQ(bench.terminal.EncodeText("€б•ü¤"), "\xa4\xe4\xf6\xfc?");
    EXPECT_EQ(MappedUpperHalf(Cp437, " ")->size(), 128u);
    for (const char* wrong : {"A4", "A4=", "=20AC", "41=20AC", "1A4=20AC", "A4=D800", "A4=10FFFF", "A4=7", "A4=20ACx",
                              "A4=20AC80=2022", "A4 = 20AC", "\xa4=20AC"})
        EXPECT_FALSE(MappedUpperHalf(Latin1, wrong)) << wrong;
}

TEST(EngineCharset, BytesBecomeCharacters)
{
    const CharsetCase cases[] = {
        {"Latin-1", Type::Vt220, Latin1, "\xe4\xa3", "ä£"},
        {"Windows-1252", Type::Vt220, Windows1252, "\x80\x93x\x94", "€“x”"},
        {"code page 437", Type::Vt220, Cp437, "\xc9\xcd\xbb\x9b", "╔═╗¢"},
        {"code page 850", Type::Vt220, Cp850, "\x9d\xf5", "Ø§"},
        {"Latin-9", Type::Vt220, Latin9, "\xa4\xbd\xe4", "€œä"},
        {"Cyrillic", Type::Vt220, Cyrillic, "\xbf\xe0\xd8\xd2\xd5\xe2", "Привет"},
        {"KOI8-R", Type::Vt220, Koi8R, "\xf0\xd2\xc9\xd7\xc5\xd4\x80", "Привет─"},
        {"code page 866", Type::Ansi, Cp866, "\x8f\xe0\xa8\xa2\xa5\xe2\xc4", "Привет─"},
        {"Greek", Type::Vt220, Greek, "\xe1\xe2\xe3", "αβγ"},
        {"8-bit CSI in Latin-2", Type::Vt220, Latin2,
         "\xb1"
         "abc\x9b"
         "3Dx",
         "ąxbc"},
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
        {"the last place of a set of 96", Type::Vt320, Latin1, "a\x7f\x1b-A\x0e\x7f\x0f\x7f\x1b.A\x1bN\x7f\x7f", "aÿÿ"},
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
