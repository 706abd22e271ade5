// Attribute colours and palette, and pieces of the screen that programs keep with them.

#include <dispatch/object.h>
#include <emulator/control/colorscheme.h>
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
    scheme.Load(bench.control.Settings());
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
