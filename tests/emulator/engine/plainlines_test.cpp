// Many plain lines at once leave the same behind as one byte after the other.

#include "bench.h"

#include <gtest/gtest.h>

#include <random>

namespace kestrune::emu {
namespace {

std::string ManyLines(unsigned seed, int count, int longest)
{
    static constexpr std::string_view kBetween[] = {"\x1b[31mred\x1b[m",  "\ttab",  "caf\xc3\xa9", "\x1b[2;5r\x1b[r",
                                                    "\x1b[44m\r\n\x1b[m", "lone\n", "\x0e\x0f",    "\x1b#6"};
    std::mt19937 random(seed);
    std::string out;
    for (int i = 0; i < count; ++i) {
        for (auto left = int(random() % unsigned(longest)); left > 0; --left)
            out += random() % 5 == 0 ? ' ' : char('!' + random() % 90);
        if (random() % 400 == 0)
            out += kBetween[random() % std::size(kBetween)];
        out += "\r\n";
    }
    return out;
}

TEST(PlainLines, LeaveTheSameAtOnceAsByteByByte)
{
    const struct
    {
        const char* name;
        const char* before;
        const char* after;
        int type = Type::Vt220;
        int longest = 30;
    } cases[] = {
        {"plain", "", "\x1b[3b"},
        {"as wide as the screen, and wider", "", "", Type::Vt220, 45},
        {"a console that wraps at once", "", "", Type::Ansi, 41},
        {"with a look", "\x1b[1;32m", "\x1b[m"},
        {"with a background", "\x1b[44m", "\x1b[m"},
        {"in a region", "\x1b[2;4r\x1b[4;1H", "\x1b[r"},
        {"between side margins", "\x1b[?69h\x1b[3;30s", "", Type::Vt420},
        {"on the alternate screen", "\x1b[?1049h", "\x1b[?1049l"},
        {"on the second page", "\x1b[U", "\x1b[V", Type::Vt420},
        {"on the status line", "\x1b[2$~\x1b[1$}", "\x1b[0$}", Type::Vt320},
        {"inserted", "\x1b[4h", "\x1b[4l"},
        {"printed as well", "\x1b[?5i", "\x1b[?4i"},
        {"in graphics", "\x1b(0", "\x1b(B"},
        {"after a single shift", "\x1b(B\x1bN", ""},
        {"with a line feed's return", "\x1b[20h", "\x1b[20l"},
        {"with the cursor in the middle of a line", "\r\n\n\n\n\n\n\n\n\nabc", ""},
        {"below double height", "\x1b#3top\r\n\x1b#4top\r\n", ""},
    };
    for (const auto& test : cases)
        for (const int rows : {2, 5, 24}) {
            const std::string stream =
                test.before + ManyLines(unsigned(rows), 600, test.longest) + test.after + "still here";
            TerminalOptions options = Utf8Options(rows, 40, 300);
            options.pages = 2;
            Bench atOnce(options, test.type);
            Bench byByte(options, test.type);
            atOnce.HostSays(stream);
            for (const char& byte : stream)
                byByte.HostSays({&byte, 1});
            EXPECT_EQ(atOnce.Everything(), byByte.Everything()) << test.name << ' ' << rows;
            EXPECT_EQ(atOnce.heard.historyAdded, byByte.heard.historyAdded) << test.name << ' ' << rows;
            EXPECT_EQ(atOnce.terminal.HistoryPushed(), byByte.terminal.HistoryPushed()) << test.name << ' ' << rows;
        }
}

TEST(PlainLines, AreForgottenWhereNoHistoryIsKept)
{
    Bench bench(Utf8Options(3, 40, 0));
    bench.HostSays(ManyLines(1, 600, 30) + "a\r\nb");
    EXPECT_EQ(bench.terminal.HistoryCount(), 0);
    EXPECT_TRUE(bench.Rows().ends_with("|a|b"));
}

} // namespace
} // namespace kestrune::emu
