// Attribute colours and palette, and pieces of the screen that programs keep with them.

#include <dispatch/object.h>
#include <emulator/control/colorscheme.h>
#include <emulator/control/contrast.h>
#include <fakes/emulatorbench.h>
#include <fakes/failures.h>
#include <fakes/print.h>

#include <gtest/gtest.h>

namespace kestrune {

using namespace Qt::StringLiterals;

namespace {

CellColors LooksAt(const EmulatorBench& bench, int col, int row)
{
    ColorScheme scheme;
    scheme.Load(bench.control.Settings(), bench.control.DesktopGround());
    scheme.Follow(bench.control.Screen());
    const auto cells = bench.control.Screen().Row(row).cells;
    return scheme.Of(bench.control.Screen().StyleOf(cells[size_t(col)].style));
}

// A colour of its own for each entry, and each attribute value its own pair of them.
void GiveEachItsOwn(EmulatorSettings& settings)
{
    for (int i = 0; i < PaletteSize; ++i)
        settings.SetPalette(i, 0x010000 * (i + 1));
    for (int i = 0; i < AttributeCount; ++i)
        settings.SetColors(i, AttributeColor(i % 16, (i + 3) % 16));
}

TEST(AttributeColors, EachOfTheSixtyFourIsShownAsItWasGiven)
{
    EmulatorBench bench;
    GiveEachItsOwn(bench.control.Settings());
    for (int i = 0; i < AttributeCount; ++i) {
        SCOPED_TRACE(i);
        bench.control.SetText(u"x"_s, i, 0, i);
        bench.control.SetColor(i);
        bench.control.SetText(u"y"_s, i, 1);
        const CellColors looks = LooksAt(bench, i, 0);
        const bool invisible = (i & 1) != 0; // shows its background, whatever the colours
        EXPECT_EQ(BlueOf(looks.background), (i + 3) % 16 + 1);
        EXPECT_EQ(BlueOf(looks.foreground), invisible ? (i + 3) % 16 + 1 : i % 16 + 1);
        EXPECT_EQ(LooksAt(bench, i, 1), looks);
    }
    for (const int wrong : {-2, 64})
        EXPECT_EQ(FailureNumber([&] { bench.control.SetText(u"x"_s, 0, 0, wrong); }), 5);
}

TEST(AttributeColors, OnlyWhatTheHostHasNotColoured)
{
    EmulatorBench bench(EmulatorBench::LinuxConsole);
    bench.Connect();
    GiveEachItsOwn(bench.control.Settings());
    bench.HostSays("\x1b[4;36mx");
    EXPECT_EQ(BlueOf(LooksAt(bench, 0, 0).foreground), 7);
}

TEST(AttributeColors, OfDimTextAreDimmedUnlessTheyWereGiven)
{
    EmulatorBench bench;
    bench.control.SetText(u"x"_s, 0, 0, 16);
    const Rgb usual = LooksAt(bench, 0, 0).foreground;
    bench.control.SetText(u"y"_s, 1, 0, 0);
    EXPECT_LT(GreenOf(usual), GreenOf(LooksAt(bench, 1, 0).foreground));
}

TEST(AttributeColors, ThoseThatNameNoEntryAreRefused)
{
    MemoryKeyFiles files;
    EmulatorSettings settings(files);
    for (const int wrong : {-1, int(AttributeColor(22, 0)), int(AttributeColor(0, 22)), 0x7FFF})
        EXPECT_EQ(FailureNumber([&] { settings.SetColors(5, qint16(wrong)); }), 5) << wrong;
    EXPECT_FALSE(settings.Changed());
    PropertyBag bag;
    bag.WriteProperty(u"sAttrColor5"_s, Variant(qint32(0x7FFF)), Variant(qint32(0)));
    bag.WriteProperty(u"sPalette3"_s, Variant(qint32(0x7F123456)), Variant(qint32(0)));
    settings.ReadProperties(bag);
    EXPECT_EQ(settings.Colors(5), EmulatorSettings::DefaultColors(5));
    EXPECT_EQ(settings.Palette(3), 0x123456);
}

// --- light and dark

struct GroundCase
{
    const char* name;
    const char* before; // what the host has said about the screen
    std::string (*colors)(int index);
};

class Grounds : public testing::TestWithParam<GroundCase>
{};

TEST_P(Grounds, TextIsLegibleOnALightDesktopInEachOfTheSixteenColours)
{
    EmulatorBench bench(EmulatorBench::LinuxConsole);
    bench.control.SetDesktopGround(Ground::Light);
    bench.Connect();
    bench.HostSays(GetParam().before);
    for (int i = 0; i < 16; ++i) {
        SCOPED_TRACE(i);
        bench.HostSays("\x1b[H" + GetParam().colors(i) + "x\x1b[m");
        const CellColors looks = LooksAt(bench, 0, 0);
        EXPECT_GE(ContrastOf(looks.background, looks.foreground), LegibleContrast);
    }
}

INSTANTIATE_TEST_SUITE_P(
    ByWhatIsSaid, Grounds,
    testing::Values(GroundCase{"Text", "", [](int i) { return "\x1b[38;5;" + std::to_string(i) + 'm'; }},
                    GroundCase{"Background", "", [](int i) { return "\x1b[48;5;" + std::to_string(i) + 'm'; }},
                    GroundCase{"Reversed", "", [](int i) { return "\x1b[7;38;5;" + std::to_string(i) + 'm'; }},
                    GroundCase{"DarkScreenOfTheHost", "\x1b]11;#000000\x1b\\",
                               [](int i) { return "\x1b[38;5;" + std::to_string(i) + 'm'; }}),
    [](const auto& one) { return std::string(one.param.name); });

TEST(Grounds, ColoursThatAProgramSetsInPairsAreTheSameOnBoth)
{
    EmulatorBench bench(EmulatorBench::LinuxConsole);
    bench.Connect();
    bench.HostSays("\x1b[37;44ma\x1b[93;40mb\x1b[38;5;200mc\x1b[38;2;250;240;10;48;5;7md");
    std::vector<CellColors> dark;
    dark.reserve(4);
    for (int col = 0; col < 4; ++col)
        dark.push_back(LooksAt(bench, col, 0));
    bench.control.SetDesktopGround(Ground::Light);
    for (int col = 0; col < 4; ++col)
        EXPECT_EQ(LooksAt(bench, col, 0), dark[size_t(col)]) << col;
}

TEST(Grounds, ASessionWithColoursOfItsOwnKeepsThemAll)
{
    EmulatorBench bench;
    const auto looks = [&bench] {
        ColorScheme scheme;
        scheme.Load(bench.control.Settings(), bench.control.DesktopGround());
        return scheme.Background();
    };
    const Rgb dark = looks();
    bench.control.SetDesktopGround(Ground::Light);
    EXPECT_NE(looks(), dark);
    const qint32 usual = EmulatorSettings::DefaultPalette(3);
    bench.control.Settings().SetPalette(3, usual + 1);
    EXPECT_EQ(looks(), dark);
    bench.control.Settings().SetPalette(3, usual);
    EXPECT_NE(looks(), dark);
    EXPECT_EQ(bench.control.Settings().Palette(PaletteRole::Background),
              EmulatorSettings::DefaultPalette(PaletteRole::Background))
        << "what is stored is not what is shown";
}

TEST(Grounds, CursorAndSelectionAreSeenAndReadOnBoth)
{
    EmulatorBench bench(EmulatorBench::LinuxConsole);
    bench.Connect();
    bench.HostSays("a\x1b[7mb\x1b[m\x1b[31mc\x1b[97;104md\x1b[30;43me\x1b[37;47mf");
    for (const Ground ground : {Ground::Dark, Ground::Light}) {
        bench.control.SetDesktopGround(ground);
        ColorScheme scheme;
        scheme.Load(bench.control.Settings(), ground);
        for (int col = 0; col < 6; ++col) {
            SCOPED_TRACE(col);
            const CellColors plain = LooksAt(bench, col, 0);
            for (const CellColors& marked : {scheme.Cursor(plain), scheme.Selected(plain)}) {
                EXPECT_GE(ContrastOf(plain.background, marked.background), VisibleContrast);
                EXPECT_GE(ContrastOf(marked.background, marked.foreground), LegibleContrast);
            }
        }
    }
}

TEST(LegibleFont, HoldsForDimTextToo)
{
    EmulatorBench bench(EmulatorBench::LinuxConsole);
    bench.Connect();
    bench.HostSays("\x1b[2;34mx");
    const CellColors faint = LooksAt(bench, 0, 0);
    EXPECT_LT(ContrastOf(faint.background, faint.foreground), LegibleContrast);
    bench.control.Settings().SetValue(Setting("LegibleFont"), true);
    const CellColors legible = LooksAt(bench, 0, 0);
    EXPECT_GE(ContrastOf(legible.background, legible.foreground), LegibleContrast);
}

// --- blocks

TEST(ScreenBlocks, ComeBackWithTextAndLooks)
{
    EmulatorBench bench(EmulatorBench::LinuxConsole, 20, 5);
    bench.Connect();
    bench.HostSays("ab\x1b[31;44mcd\xE4\xB8\xAD\xE6\x96\x87\x1b[m  e\x1b[2;3H\x1b[1mbold\x1b[m");
    const CellColors looks = LooksAt(bench, 3, 0);
    const Variant block = bench.control.GetBlock(1, 0, 9, 1);
    const QString second = bench.RowText(1);
    bench.HostSays("\x1b[2J\x1b[H\x1b[32m1111111111111\r\n2222222222222");
    bench.control.SetBlock(block);
    EXPECT_EQ(bench.RowText(0), u"1bcd中文  111"_s); // columns 1 to 9: wide characters take two
    EXPECT_EQ(bench.RowText(1), u"2"_s + second.mid(1).leftJustified(9) + u"222"_s);
    EXPECT_EQ(LooksAt(bench, 3, 0), looks);
    EXPECT_EQ(bench.control.Screen().Cursor().row, 1) << "the cursor stays";
}

TEST(ScreenBlocks, KeepLinksAndTheSizeOfWholeRows)
{
    EmulatorBench bench(EmulatorBench::Vt220, 20, 5);
    bench.Connect();
    bench.HostSays("\x1b]8;;https://example.org/\x1b\\link\x1b]8;;\x1b\\\x1b[2H\x1b#6wide\x1b[3H\x1b#6too");
    const Variant rows = bench.control.GetBlock(0, 0, -1, 1);
    const Variant part = bench.control.GetBlock(0, 2, 5, 2);
    bench.HostSays("\x1b[2J\x1b[2H\x1b#5\x1b[3H\x1b#5");
    bench.control.SetBlock(rows);
    bench.control.SetBlock(part);
    const emu::Terminal& screen = bench.control.Screen();
    EXPECT_EQ(screen.LinkOf(screen.StyleOf(screen.Row(0).cells[3].style).link), "https://example.org/");
    EXPECT_EQ(screen.StyleOf(screen.Row(1).cells[0].style).link, 0);
    EXPECT_EQ(screen.Row(1).size, emu::LineSize::DoubleWidth);
    EXPECT_EQ(bench.RowText(1).trimmed(), u"wide"_s);
    EXPECT_EQ(screen.Row(2).size, emu::LineSize::Normal) << "a part of a row says nothing of its size";
    EXPECT_EQ(bench.RowText(2).trimmed(), u"too"_s);
}

TEST(ScreenBlocks, AreReadAndPutOnPagesThatAreNotShown)
{
    constexpr int vt420 = 14;
    EmulatorBench bench(vt420, 20, 5);
    bench.control.Settings().SetValue(Setting("Pages"), 3);
    bench.Connect();
    bench.HostSays("first\x1b[2 Psecond\x1b[1 P");
    const Variant block = bench.control.GetBlock(0, 0, -1, -1, 1);
    bench.control.SetBlock(block, 2);
    EXPECT_EQ(bench.control.Page(), 0);
    EXPECT_EQ(bench.RowText(0).trimmed(), u"first"_s);
    bench.control.SetPage(2);
    EXPECT_EQ(bench.RowText(0).trimmed(), u"second"_s);
    bench.HostSays("\x1b[?1049h\x1b[Hover it");
    EXPECT_EQ(FailureNumber([&] { (void)bench.control.GetBlock(0, 0, 1, 1, 3); }), 5);
    bench.control.SetBlock(block, 0); // while the alternate screen is shown
    EXPECT_EQ(bench.RowText(0).trimmed(), u"over it"_s);
    bench.HostSays("\x1b[?1049l");
    bench.control.SetPage(0);
    EXPECT_EQ(bench.RowText(0).trimmed(), u"second"_s);
}

TEST(ScreenBlocks, WhatDoesNotFitIsLeftOut)
{
    EmulatorBench bench(EmulatorBench::Vt220, 20, 5);
    bench.Connect();
    bench.HostSays("0123456789abcdefghij\x1b[5;1Hlast");
    const Variant block = bench.control.GetBlock(-1, -1, -1, -1);
    bench.control.Resize(10, 3, 80, 48);
    bench.control.Clear();
    bench.control.SetBlock(block);
    EXPECT_EQ(bench.RowText(0), u"0123456789"_s);
    EXPECT_EQ(bench.control.Rows(), 3);
}

TEST(ScreenBlocks, NothingElseCanBePutOnTheScreen)
{
    EmulatorBench bench;
    EXPECT_EQ(FailureNumber([&] { bench.control.SetBlock(Variant(u"text"_s)); }), 13);
    EXPECT_EQ(FailureNumber([&] { bench.control.SetBlock(Variant()); }), 13);
    EXPECT_EQ(FailureNumber([&] { (void)bench.control.GetBlock(0, 0, 1, 1, 99); }), 5);
    const Variant block = bench.control.GetBlock(0, 0, 1, 1);
    EXPECT_EQ(FailureNumber([&] { block.ToObject()->Get(u"Text"_s); }), 438);
}

} // namespace

} // namespace kestrune
