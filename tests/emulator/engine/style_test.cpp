// Renditions: attributes, colours, underlines, and what erasing leaves of them.

#include "bench.h"

#include <gtest/gtest.h>

namespace kestrune::emu {
namespace {

struct SgrCase
{
    const char* codes;
    Style style;
};

Style With(uint16_t attributes, Underline underline = Underline::None)
{
    Style style;
    style.attributes = attributes;
    style.underline = underline;
    return style;
}

Style Colored(Color foreground, Color background = {}, Color underline = {})
{
    Style style;
    style.foreground = foreground;
    style.background = background;
    style.underlineColor = underline;
    return style;
}

TEST(EngineStyle, SelectGraphicRendition)
{
    const SgrCase cases[] = {
        {"1", With(Attr::Bold)},
        {"1;2;3;5;7;8;9;53", With(Attr::Bold | Attr::Dim | Attr::Italic | Attr::Blink | Attr::Reverse |
                                  Attr::Invisible | Attr::Strike | Attr::Overline)},
        {"1;2;22", With(0)},
        {"3;5;7;8;9;53;23;25;27;28;29;55", With(0)},
        {"1;", With(0)},
        {"1;0;4", With(0, Underline::Single)},
        {"4;24", With(0)},
        {"21", With(0, Underline::Double)},
        {"4:3", With(0, Underline::Curly)},
        {"4:5", With(0, Underline::Dashed)},
        {"4:3;1", With(Attr::Bold, Underline::Curly)},
        {"4:0", With(0)},
        {"31;42", Colored(Color::Palette(1), Color::Palette(2))},
        {"97;103", Colored(Color::Palette(15), Color::Palette(11))},
        {"31;39;42;49", With(0)},
        {"38;5;200", Colored(Color::Palette(200))},
        {"38:5:200", Colored(Color::Palette(200))},
        {"38;2;1;2;3", Colored(Color::Direct(1, 2, 3))},
        {"38:2:1:2:3", Colored(Color::Direct(1, 2, 3))},
        {"38:2::1:2:3", Colored(Color::Direct(1, 2, 3))},
        {"48;2;300;0;0", Colored({}, Color::Direct(255, 0, 0))},
        {"58;5;9;59", With(0)},
        {"58:2::9:8:7", Colored({}, {}, Color::Direct(9, 8, 7))},
        {"38;5;1;1",
         [] {
             Style s = With(Attr::Bold);
             s.foreground = Color::Palette(1);
             return s;
         }()},
        {"38", With(0)},
        {"38;2;1", With(0)},
        {"999;77", With(0)},
    };
    for (const SgrCase& test : cases) {
        Bench bench(2, 10);
        bench.HostSays(std::string("\x1b[") + test.codes + "mx");
        EXPECT_EQ(bench.StyleAt(0, 0), test.style) << test.codes;
        EXPECT_EQ(bench.Line(0), "x") << test.codes;
    }
}

TEST(EngineStyle, ErasedCellsKeepTheBackgroundOnly)
{
    Bench bench(3, 6);
    bench.HostSays("\x1b[1;31;44mab\x1b[K\r\n\n\n");
    const Style blank = Colored({}, Color::Palette(4));
    EXPECT_EQ(bench.StyleAt(2, 3), blank); // scrolled in
    EXPECT_EQ(bench.StyleAt(-1, 0).attributes, Attr::Bold);
    EXPECT_EQ(bench.StyleAt(-1, 3), blank);
    bench.HostSays("\x1b[m\x1b[2J");
    EXPECT_EQ(bench.StyleAt(1, 3), Style{});
}

TEST(EngineStyle, SelectiveEraseKeepsRenditions)
{
    Bench bench(2, 6);
    bench.HostSays("\x1b[1mab\x1b[?1K");
    EXPECT_EQ(bench.Line(0), "");
    EXPECT_EQ(bench.StyleAt(0, 1), With(Attr::Bold));
}

// Ten times as many looks as there are numbers for them: what stands on the screen is never wrong.
TEST(EngineStyle, NumbersAreUsedAgain)
{
    Bench bench(Utf8Options(24, 80, 50));
    for (int i = 0; i < 300'000; ++i) {
        const Color color = Color::Direct(uint8_t(i >> 16), uint8_t(i >> 8), uint8_t(i));
        std::ostringstream bytes;
        bytes << "\x1b[38;2;" << int(color.Red()) << ';' << int(color.Green()) << ';' << int(color.Blue()) << "mx";
        bench.HostSays(bytes.str());
        if (i % 20'011 == 0) {
            const Position at = bench.terminal.Cursor();
            ASSERT_EQ(bench.StyleAt(at.row, at.col - 1).foreground, color) << i;
        }
    }
    EXPECT_EQ(bench.StyleAt(0, 0).foreground.What(), Color::Kind::Direct);
    EXPECT_EQ(bench.StyleAt(-50, 0).foreground.What(), Color::Kind::Direct);
}

} // namespace
} // namespace kestrune::emu
