// In which order a row is shown, and how its colours are kept apart.

#include "viewbench.h"

#include <emulator/control/contrast.h>
#include <emulator/view/roworder.h>

#include <gtest/gtest.h>

namespace kestrune {

namespace {

struct OrderCase
{
    const char* name;
    const char32_t* text;
    const char32_t* shown; // capitals of the Unicode examples stand for Hebrew letters in both
};

char32_t AsHebrew(char32_t c) { return c >= U'A' && c <= U'Z' ? char32_t(0x5D0 + (c - U'A')) : c; }

class BidiRow : public testing::TestWithParam<OrderCase>
{};

TEST_P(BidiRow, IsShownInOrder)
{
    std::string bytes;
    for (std::u32string_view text = GetParam().text; const char32_t c : text)
        bytes += QString::fromUcs4(std::array{AsHebrew(c)}.data(), 1).toStdString();
    EmulatorBench bench;
    bench.Connect().HostSays(bytes);
    const emu::Terminal& screen = bench.control.Screen();
    const RowOrder order(screen, screen.Row(0));
    std::vector<emu::Cell> arranged;
    order.Arrange(screen.Row(0).cells, arranged);
    const std::u32string_view expected = GetParam().shown;
    for (size_t column = 0; column < expected.size(); ++column)
        EXPECT_EQ(arranged[column].text, AsHebrew(expected[column])) << column;
    for (int column = 0; column < 80; ++column)
        EXPECT_EQ(order.ColumnCounted(order.ColumnShown(column)), column);
}

INSTANTIATE_TEST_SUITE_P(All, BidiRow,
                         testing::Values(OrderCase{"WordInside", U"car is THE CAR in", U"car is RAC EHT in"},
                                         OrderCase{"NumberInside", U"he said \"IT IS 123, OK\"",
                                                   U"he said \"KO ,123 SI TI\""},
                                         OrderCase{"BracketsTurn", U"AB (CD) ef", U"(DC) BA ef"},
                                         OrderCase{"BracketsOfTheLine", U"ab (CD) ef", U"ab (DC) ef"},
                                         OrderCase{"NumberWithSeparators", U"A 1,2 $3 B", U"B $3 1,2 A"},
                                         OrderCase{"PunctuationAtTheEndStays", U"ABC.", U"CBA."},
                                         OrderCase{"AddressStays", U"/home/x/AB/y", U"/home/x/BA/y"}),
                         [](const auto& test) { return test.param.name; });

TEST(RowOrder, WideCharactersAndArabic)
{
    EmulatorBench bench;
    bench.Connect().HostSays("א中ב\r\nab\r\n");
    const emu::Terminal& screen = bench.control.Screen();
    const RowOrder order(screen, screen.Row(0));
    EXPECT_FALSE(order.IsPlain());
    EXPECT_EQ(order.ColumnShown(0), 0);
    EXPECT_EQ(order.ColumnShown(1), 1) << "a character that runs right between single letters";
    EXPECT_EQ(order.ColumnShown(2), 2) << "its second column stays behind the first";
    EXPECT_TRUE(RowOrder(screen, screen.Row(1)).IsPlain());

    const Joints inside = JointsOf(U'\u0628', U'\u0628', U'\u0628'); // beh on both sides
    EXPECT_TRUE(inside.before && inside.after);
    const Joints afterAlef = JointsOf(U'\u0627', U'\u0628', U' '); // alef never joins what follows
    EXPECT_FALSE(afterAlef.before || afterAlef.after);
}

TEST(Contrast, IsKept)
{
    EXPECT_NEAR(ContrastOf(0xFF000000, 0xFFFFFFFF), 21, 0.01);
    EXPECT_EQ(LegibleOn(0xFF000000, 0xFFFFFFFF), 0xFFFFFFFF) << "what is legible is left alone";
    for (const QRgb paper : {0xFF000000U, 0xFF777777U, 0xFFFFFFFFU, 0xFF0000FFU, 0xFFFFFF00U})
        for (const QRgb ink : {0xFF000000U, 0xFF777777U, 0xFFFFFFFFU, 0xFF2020E0U})
            EXPECT_GE(ContrastOf(paper, LegibleOn(paper, ink)), LegibleContrast) << std::hex << paper << ' ' << ink;
}

} // namespace

} // namespace kestrune
