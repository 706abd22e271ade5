// Lines above the screen, and what resizing does to screen and history.

#include "bench.h"

#include <gtest/gtest.h>

namespace kestrune::emu {
namespace {

std::string Lines(int from, int to)
{
    std::string out;
    for (int i = from; i <= to; ++i)
        out += (i > from ? "\r\n" : "") + std::string("line ") + std::to_string(i);
    return out;
}

TEST(EngineHistory, KeepsLinesAsTheyWere)
{
    const struct
    {
        const char* name;
        const char* line;
    } cases[] = {
        {"plain", "hello"},
        {"blank", ""},
        {"Latin-1", "na\xc3\xafve"},
        {"two bytes a character", "─│ мир"},
        {"wide", "中文 x 中"},
        {"beyond the first plane", "😀 and 𝐀"},
        {"clusters", "e\xcc\x81 👩‍👧 🇩🇪 e\xcc\x81"},
        {"styles", "\x1b[1mb\x1b[m \x1b[31;42m中\x1b[m end"},
        {"background to the end", "\x1b[44mx\x1b[K\x1b[m"},
    };
    for (const auto& test : cases) {
        Bench bench(2, 20);
        Bench seen(2, 20);
        bench.HostSays(std::string(test.line) + "\r\n\n");
        seen.HostSays(test.line);
        ASSERT_EQ(bench.terminal.HistoryCount(), 1) << test.name;
        EXPECT_EQ(bench.Line(-1), seen.Line(0)) << test.name;
        for (int col = 0; col < 20; ++col)
            EXPECT_EQ(bench.StyleAt(-1, col), seen.StyleAt(0, col)) << test.name << ' ' << col;
    }
}

TEST(EngineHistory, IsBoundedAndCountsOn)
{
    Bench bench(Utf8Options(2, 20, 5));
    bench.HostSays(Lines(1, 12));
    EXPECT_EQ(bench.HistoryRows(), "line 6|line 7|line 8|line 9|line 10");
    EXPECT_EQ(bench.terminal.HistoryPushed(), 10u);
    EXPECT_EQ(bench.heard.historyAdded, 10);
    bench.terminal.SetHistoryRows(2);
    EXPECT_EQ(bench.HistoryRows(), "line 9|line 10");
    bench.HostSays("\x1b[3J");
    EXPECT_EQ(bench.terminal.HistoryCount(), 0);
    bench.HostSays("\r\nmore");
    EXPECT_EQ(bench.HistoryRows(), "line 11");
}

TEST(EngineHistory, ManyLinesOverManyBlocks)
{
    Bench bench(Utf8Options(3, 40, 3000));
    bench.HostSays(Lines(1, 20'000));
    ASSERT_EQ(bench.terminal.HistoryCount(), 3000);
    for (const int row : {-3000, -2999, -1500, -1})
        EXPECT_EQ(bench.Line(row), std::string("line ").append(std::to_string(20'000 - 2 + row)));
}

// A search or a tall window looks at many rows at once; the views must not overwrite each other.
TEST(EngineHistory, FiveHundredViewsSideBySide)
{
    Bench bench(Utf8Options(2, 20, 1000));
    bench.HostSays(Lines(1, 700));
    std::vector<RowView> views;
    for (int row = -512; row < 0; ++row)
        views.push_back(bench.terminal.Row(row));
    for (int row = -512; row < 0; ++row) {
        const int number = 700 - 1 + row;
        EXPECT_EQ(char(views[size_t(row + 512)].cells.back().text), char('0' + number % 10)) << row;
        EXPECT_EQ(views[size_t(row + 512)].generation, bench.terminal.Row(row).generation);
    }
}

TEST(EngineHistory, OnlyWhatLeavesTheTopGoesUp)
{
    const struct
    {
        const char* name;
        std::string bytes;
        const char* history;
    } cases[] = {
        {"region from the top", "a\r\nb\r\nc\x1b[1;2r\x1b[2;1H\n", "a"},
        {"region further down", "a\r\nb\r\nc\x1b[2;3r\x1b[3;1H\n", ""},
        {"alternate screen", "a\x1b[?1049h\r\n\n\n\n\n\x1b[?1049l", ""},
        {"SU", "a\r\nb\x1b[S", "a"},
        {"delete line", "a\r\nb\x1b[H\x1b[M", ""},
        {"erase display", "a\r\nb\x1b[2J", ""},
    };
    for (const auto& test : cases) {
        Bench bench(3, 10);
        bench.HostSays(test.bytes);
        EXPECT_EQ(bench.HistoryRows(), test.history) << test.name;
    }
}

struct ResizeCase
{
    const char* name;
    std::string before;
    Size size;
    const char* rows;
    const char* history;
    Position cursor;
};

TEST(EngineResize, KeepsText) // from 4 rows, 10 columns
{
    const ResizeCase cases[] = {
        {"fewer rows, blank below", "a\r\nb", {10, 2}, "a|b", "", {1, 1}},
        {"fewer rows, full", "a\r\nb\r\nc\r\nd", {10, 2}, "c|d", "a|b", {1, 1}},
        {"one row", "a\r\nb\r\nc\r\nd", {10, 1}, "d", "a|b|c", {1, 0}},
        {"more rows, nothing above", "a\r\nb", {10, 6}, "a|b", "", {1, 1}},
        {"more rows take lines back", Lines(1, 6), {10, 5}, "line 2|line 3|line 4|line 5|line 6", "line 1", {6, 4}},
        {"wider", "0123456789", {20, 4}, "0123456789", "", {9, 0}},
        {"narrower", "0123456789\r\nab", {5, 4}, "01234|ab", "", {2, 1}},
        {"too small is clamped", "ab", {0, -3}, "a", "", {0, 0}},
        {"margins are gone", "\x1b[1;2r\x1b[2;1H", {10, 3}, "", "", {0, 1}},
    };
    for (const ResizeCase& test : cases) {
        Bench bench(4, 10);
        bench.HostSays(test.before);
        bench.terminal.Resize(test.size);
        EXPECT_EQ(bench.Rows(), test.rows) << test.name;
        EXPECT_EQ(bench.HistoryRows(), test.history) << test.name;
        EXPECT_EQ(bench.terminal.Cursor(), test.cursor) << test.name;
        EXPECT_EQ(bench.heard.sizes.size(), 1u) << test.name;
    }
}

TEST(EngineResize, ThereAndBackIsTheSame)
{
    Bench bench(6, 20);
    bench.HostSays(Lines(1, 12) + "\x1b[3;1H中文中文中文中文中文");
    for (const Size size : {Size{7, 6}, Size{20, 2}, Size{9, 3}, Size{200, 6}, Size{20, 1}}) {
        bench.terminal.Resize(size);
        bench.terminal.Resize({20, 6});
    }
    EXPECT_EQ(bench.HistoryRows(), "line 1|line 2|line 3|line 4|line 5|line 6");
    EXPECT_EQ(bench.Line(5), "line 12");
    EXPECT_EQ(bench.terminal.HistoryPushed(), 6u);
}

TEST(EngineResize, WhileTheAlternateScreenIsShown)
{
    Bench bench(4, 10);
    bench.HostSays("a\r\nb\r\nc\r\nd\x1b[?1049h\x1b[4;1Halt");
    bench.terminal.Resize({10, 2});
    EXPECT_EQ(bench.Rows(), "|alt");
    bench.terminal.Resize({10, 4});
    bench.HostSays("\x1b[?1049lx");
    EXPECT_EQ(bench.Rows(), "a|b|c|dx");
    EXPECT_EQ(bench.terminal.HistoryCount(), 0);
}

} // namespace
} // namespace kestrune::emu
