// Lines laid out anew when the width changes.

#include "bench.h"

#include <gtest/gtest.h>

#include <array>
#include <random>
#include <vector>

namespace kestrune::emu {
namespace {

struct ReflowBench : Bench
{
    ReflowBench(int rows, int cols, int history = 100, bool reflow = true) : Bench(Options(rows, cols, history, reflow))
    {}
    static TerminalOptions Options(int rows, int cols, int history, bool reflow)
    {
        TerminalOptions options = Utf8Options(rows, cols, history);
        options.reflow = reflow;
        return options;
    }
    ReflowBench& Wide(int cols)
    {
        terminal.Resize({cols, terminal.ScreenSize().rows});
        return *this;
    }
};

TEST(EngineReflow, LinesAreWrappedAtTheNewWidth)
{
    const struct
    {
        const char* name;
        std::string bytes;
        int cols; // from 10
        const char* history;
        const char* rows;
        Position cursor;
    } cases[] = {
        {"narrower", "abcdefgh\r\nxy", 4, "", "abcd|efgh|xy", {2, 2}},
        {"wider", "0123456789abc\r\nxy", 20, "", "0123456789abc|xy", {2, 1}},
        {"into the history", "abcdefgh\r\n1\r\n2\r\n3", 4, "abcd", "efgh|1|2|3", {1, 3}},
        {"cursor in the middle", "abcdefgh\x1b[1;7H", 4, "", "abcd|efgh", {2, 1}},
        {"cursor behind the text", "ab\x1b[1;9H", 4, "", "ab", {3, 0}},
        {"wide characters stay whole", "abc中d", 4, "", "abc|中d", {3, 1}},
        {"blanks at the end are no text", "ab      \r\nx", 4, "", "ab|x", {1, 1}},
        {"blanks in the middle are", "a      b\r\nx", 4, "", "a|   b|x", {1, 2}},
        {"rows of double width stay",
         "\x1b#6"
         "abcde\r\nx",
         4,
         "",
         "abcd|x",
         {1, 1}},
        {"erased in colour is no text", "ab\x1b[44m\x1b[K\x1b[m\r\nx", 4, "", "ab|x", {1, 1}},
        {"coloured blanks are", "\x1b[44mab    \x1b[m\r\nx", 4, "", "ab||x", {1, 2}},
        {"blanks before the cursor are", "abc   ", 4, "", "abc", {2, 1}},
        {"a line that fills its row wraps with the next character", "abcd", 4, "", "abcd", {3, 0}},
        {"a place for the next character behind one that did", "0123456789", 12, "", "0123456789", {10, 0}},
        {"the alternate screen stays", "\x1b[?1049habcdefgh", 4, "", "abcd", {3, 0}},
    };
    for (const auto& test : cases) {
        ReflowBench bench(4, 10);
        bench.HostSays(test.bytes).terminal.Resize({test.cols, 4});
        EXPECT_EQ(bench.HistoryRows(), test.history) << test.name;
        EXPECT_EQ(bench.Rows(), test.rows) << test.name;
        EXPECT_EQ(bench.terminal.Cursor(), test.cursor) << test.name;
    }
}

TEST(EngineReflow, OffNothingMoves)
{
    ReflowBench bench(4, 10, 100, false);
    bench.HostSays("abcdefgh\r\nxy");
    EXPECT_EQ(bench.Wide(4).Rows(), "abcd|xy");
    EXPECT_EQ(bench.Wide(10).Rows(), "abcdefgh|xy");
}

TEST(EngineReflow, HistoryComesAlongAndStaysBounded)
{
    ReflowBench bench(2, 10, 4);
    bench.HostSays("0123456789abcd\r\n1\r\n2\r\n3\r\n4");
    EXPECT_EQ(bench.HistoryRows(), "0123456789|abcd|1|2");
    EXPECT_EQ(bench.Wide(20).HistoryRows(), "0123456789abcd|1|2");
    EXPECT_EQ(bench.Wide(3).HistoryRows(), "9ab|cd|1|2"); // the newest four
    EXPECT_EQ(bench.Rows(), "3|4");
}

TEST(EngineReflow, WhatWasClearedAwayStaysAway)
{
    ReflowBench bench(4, 10);
    bench.HostSays("1\r\n2\r\n3\r\n4\r\n5\r\n6\x1b[H\x1b[J0123456789\r\n$ ");
    EXPECT_EQ(bench.Wide(20).Rows(), "0123456789|$");
    EXPECT_EQ(bench.Wide(2).Rows(), "45|67|89|$");
    EXPECT_EQ(bench.Wide(10).Rows(), "0123456789|$") << "only what the narrow screen had no room for comes back";
    EXPECT_EQ(bench.HistoryRows(), "1|2");
    EXPECT_EQ(bench.terminal.Cursor(), (Position{2, 1}));
}

TEST(EngineReflow, PlacesMoveWithTheirText)
{
    ReflowBench bench(3, 10);
    bench.HostSays("0123456789abc\r\nxyz\r\n$ \x1b"
                   "7");
    const uint64_t before = bench.terminal.HistoryPushed();
    std::array places{Position{1, -1}, Position{2, 0}, Position{9, 1}, Position{0, 2}}; // 1, c, behind xyz, $
    EXPECT_TRUE(bench.terminal.Resize({4, 3}, places));
    EXPECT_EQ(bench.HistoryRows() + "//" + bench.Rows(), "0123|4567|89ab//c|xyz|$");
    EXPECT_EQ(places, (std::array{Position{1, -3}, Position{0, 0}, Position{3, 1}, Position{0, 2}}));
    EXPECT_GT(bench.terminal.HistoryPushed(), before + 1000) << "the numbers of old lines name nothing";
    bench.HostSays("\x1b[H\x1b"
                   "8");
    EXPECT_EQ(bench.terminal.Cursor(), (Position{2, 2})) << "the saved cursor too";

    EXPECT_FALSE(bench.terminal.Resize({4, 9}, places)) << "a new height moves lines as ever";
}

// Rows that came back from the history were taken for plain ones when they went there again.
TEST(EngineReflow, ColoursGoToTheHistoryAndBack)
{
    for (const bool reflow : {false, true}) {
        ReflowBench bench(2, 10, 100, reflow);
        bench.HostSays("\x1b[31mred\x1b[m 中\r\n1\r\n2");
        for (const int rows : {6, 1, 6}) {
            bench.terminal.Resize({10, rows});
            bench.Wide(8).Wide(10);
        }
        EXPECT_EQ(bench.Rows(), "red 中|1|2");
        EXPECT_EQ(bench.StyleAt(0, 0).foreground, Color::Palette(1));
        EXPECT_EQ(bench.StyleAt(0, 3), Style{});
    }
}

// The host may ask for 80 and 132 columns in turn without end, so its wishes cost no more than the screen.
TEST(EngineReflow, OnlyTheUserHasLinesWrappedAnew)
{
    ReflowBench bench(3, 10);
    bench.HostSays("0123456789abc\r\n1\r\n2\r\n3\x1b[?3h");
    EXPECT_EQ(bench.terminal.ScreenSize().cols, 132);
    EXPECT_EQ(bench.HistoryRows(), "0123456789|abc");
    bench.terminal.ShowExtended(false);
    bench.terminal.ShowExtended(true);
    EXPECT_EQ(bench.HistoryRows(), "0123456789abc");
}

TEST(EngineReflow, OfAVeryLongHistoryTheNewestPartTakesPart)
{
    ReflowBench bench(2, 10, 100'000);
    std::string text;
    for (int i = 0; i < 15'000; ++i)
        text += "0123456789abc\r\n";
    bench.HostSays(text);
    const int before = bench.terminal.HistoryCount();
    bench.Wide(20);
    EXPECT_EQ(bench.terminal.HistoryCount(), before - 10'000);
    EXPECT_EQ(bench.Line(-9'999), "0123456789abc");
    EXPECT_EQ(bench.Line(-bench.terminal.HistoryCount()), "0123456789");
    EXPECT_EQ(bench.Wide(10).terminal.HistoryCount(), before);
}

// More looks and clusters than there are numbers for, most of them in the history: numbers are given up and taken again
// in the middle of the work.
TEST(EngineReflow, NumbersAreSweptOnTheWay)
{
    ReflowBench bench(4, 10, 4000);
    std::string text;
    for (int i = 0; i < 20'000; ++i) {
        const std::string number = std::to_string(i);
        text.append("\x1b[38;2;0;").append(std::to_string(i / 256)).append(";").append(std::to_string(i % 256));
        text.append("m").append(number.substr(number.size() - 1)).append(i % 13 == 12 ? "\r\n" : "");
    }
    bench.HostSays(text + "\x1b[m\r\n");
    const auto colours = [&] {
        std::vector<uint32_t> all;
        for (int row = -bench.terminal.HistoryCount(); row < 4; ++row)
            for (const Cell& cell : bench.terminal.Row(row).cells)
                all.push_back(bench.terminal.StyleOf(cell.style).foreground.value);
        return all;
    };
    const std::vector<uint32_t> before = colours();
    EXPECT_EQ(before.size(), 20'000U);
    for (const int cols : {1, 90, 10}) {
        bench.terminal.SetHistoryRows(40'000);
        EXPECT_EQ((bench.Wide(cols), colours()), before) << cols;
    }
}

// Any text, made narrower and wider again, is what it was; and no row is lost on the way.
TEST(EngineReflow, ThereAndBackIsTheSame)
{
    std::mt19937 random(7);
    for (int round = 0; round < 60; ++round) {
        ReflowBench bench(6, 30, 1000);
        std::string text;
        for (int i = 0; i < 40; ++i) {
            text += "\x1b[" + std::to_string(30 + random() % 8) + "m";
            text.append(random() % 50, char('a' + i % 26));
            text += random() % 4 == 0 ? "中文e\xcc\x81" : "";
            text += "\x1b[m\r\n";
        }
        bench.HostSays(text + "$ ");
        const std::string before = bench.HistoryRows() + '|' + bench.Rows();
        const Position cursor = bench.terminal.Cursor();
        for (int i = 0; i < 3; ++i)
            bench.Wide(int(random() % 60) + 4);
        bench.Wide(30);
        EXPECT_EQ(bench.HistoryRows() + '|' + bench.Rows(), before) << round;
        EXPECT_EQ(bench.terminal.Cursor(), cursor) << round;
    }
}

} // namespace
} // namespace kestrune::emu
