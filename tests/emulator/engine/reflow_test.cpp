// Lines laid out anew when the width changes.

#include "bench.h"

#include <gtest/gtest.h>

#include <random>

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
         "ab|x",
         {1, 1}},
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
    EXPECT_EQ(bench.Wide(3).HistoryRows(), "abc|d|1|2"); // the newest four
    EXPECT_EQ(bench.Rows(), "3|4");
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
