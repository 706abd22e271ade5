// What no host may do: show different screens for one stream cut differently, grow without bound, break anything.

#include "bench.h"
#include "corpus.h"

#include <gtest/gtest.h>

#include <random>

namespace kestrune::emu {
namespace {

struct Setting
{
    int type;
    HostCharset charset;
};
constexpr Setting kSettings[] = {
    {Type::Vt220, HostCharset::Utf8},  {Type::Vt220, HostCharset::Latin1}, {Type::Vt420, HostCharset::Latin1},
    {Type::Linux, HostCharset::Utf8},  {Type::Linux, HostCharset::Cp437},  {Type::Vt100, HostCharset::Utf8},
    {Type::Vt52, HostCharset::Latin1}, {Type::Tty, HostCharset::Utf8},     {Type::Vt420, HostCharset::Utf8},
    {Type::Ansi, HostCharset::Cp437},  {Type::Sco, HostCharset::Cp437},
};

std::unique_ptr<Bench> Made(const Setting& setting)
{
    TerminalOptions options = Utf8Options(6, 24, 20);
    options.charset = setting.charset;
    options.answerBack = "answer";
    return std::make_unique<Bench>(options, setting.type);
}

TEST(EngineSafety, AnySplitGivesTheSameScreen)
{
    for (const Setting& setting : kSettings) {
        std::string all;
        for (const std::string& stream : Corpus())
            all += stream;
        std::vector<std::string> streams = Corpus();
        streams.push_back(all);
        for (const std::string& stream : streams) {
            const auto whole = Made(setting);
            whole->HostSays(stream);
            const std::string expected = whole->Everything();
            const auto single = Made(setting);
            for (const char byte : stream)
                single->HostSays({&byte, 1});
            ASSERT_EQ(single->Everything(), expected) << setting.type << ' ' << stream;
            for (size_t cut = 1; cut < std::min(stream.size(), size_t(400)); ++cut) {
                const auto split = Made(setting);
                split->HostSays(stream.substr(0, cut)).HostSays(stream.substr(cut));
                ASSERT_EQ(split->Everything(), expected) << setting.type << " cut at " << cut << ' ' << stream;
            }
        }
    }
}

// The comparison above must be able to see: one byte more is another screen.
TEST(EngineSafety, TheComparisonSeesDifferences)
{
    for (const char* const more : {"x", "\x1b[1m ", "\r", "\x1b[6n", "\x1b]0;t\x07", "\x1b#6", "\n\n\n\n\n\n"}) {
        const auto plain = Made(kSettings[0]);
        const auto other = Made(kSettings[0]);
        plain->HostSays("text");
        other->HostSays("text").HostSays(more);
        EXPECT_NE(plain->Everything(), other->Everything()) << more;
    }
}

// Rows must stay whole: a wide character always has its second half, and nothing stands beyond the last column.
void CheckRows(const Bench& bench)
{
    const Size size = bench.terminal.ScreenSize();
    for (int row = -bench.terminal.HistoryCount(); row < size.rows; ++row) {
        const std::span<const Cell> cells = bench.terminal.Row(row).cells;
        ASSERT_LE(cells.size(), size_t(size.cols));
        for (size_t col = 0; row >= 0 && col < cells.size(); ++col) {
            const bool isWide = cells[col].flags & Cell::Wide;
            const bool hasTail = col + 1 < cells.size() && (cells[col + 1].flags & Cell::WideTail);
            ASSERT_EQ(isWide, hasTail) << "row " << row << " col " << col;
        }
    }
    const Position cursor = bench.terminal.Cursor();
    ASSERT_TRUE(cursor.col >= 0 && cursor.col < size.cols && cursor.row >= 0 && cursor.row < size.rows);
}

TEST(EngineSafety, RandomPiecesAndSizes)
{
    std::mt19937 random(11);
    const auto pick = [&](size_t count) { return size_t(random()) % count; };
    const std::vector<std::string> corpus = Corpus();
    for (const Setting& setting : kSettings) {
        const auto bench = Made(setting);
        for (int step = 0; step < 3000; ++step) {
            const std::string& stream = corpus[pick(corpus.size())];
            const size_t from = pick(stream.size());
            std::string piece = stream.substr(from, pick(40));
            if (pick(4) == 0 && !piece.empty())
                piece[pick(piece.size())] = char(pick(256));
            bench->HostSays(piece);
            if (pick(20) == 0)
                bench->terminal.Resize({int(pick(60)) + 1, int(pick(12)) + 1});
            if (pick(200) == 0)
                bench->terminal.SetHistoryRows(int(pick(40)));
            if (pick(10) == 0)
                CheckRows(*bench);
            if (HasFatalFailure())
                return;
        }
    }
}

TEST(EngineSafety, NothingGrowsWithoutBound)
{
    Bench bench(4, 20);
    std::string marks = "e";
    for (int i = 0; i < 5000; ++i)
        marks += "\xcc\x81";
    bench.HostSays(marks + "x");
    EXPECT_EQ(bench.terminal.Cursor().col, 2);
    EXPECT_LE(bench.terminal.ClusterOf(bench.terminal.Row(0).cells[0].text).size(), 64u);

    // as many clusters as anybody could think of; the last ones are whole
    std::string last;
    for (int i = 0; i < 200'000; ++i) {
        last.clear();
        for (const int digit : {i % 60, i / 60 % 60, i / 3600 % 60})
            last += std::string("\xcc") + char(0x80 + digit);
        bench.HostSays("\r\n"
                       "a" +
                       last);
    }
    EXPECT_EQ(bench.Line(3), std::string("a").append(last));

    for (const char* const start : {"\x1b]0;", "\x1bP", "\x1b_", "\x1b[", "\x1b["}) {
        bench.HostSays(start);
        for (int i = 0; i < 40; ++i)
            bench.HostSays(std::string(65536, '1'));
        bench.HostSays("\x18\x1b[2J\x1b[Hok");
        EXPECT_EQ(bench.Line(0), "ok") << start;
    }
}

} // namespace
} // namespace kestrune::emu
