// What goes back to the host, and what never does.

#include "bench.h"

#include <gtest/gtest.h>

namespace kestrune::emu {
namespace {

struct ReportCase
{
    const char* name;
    int type;
    std::string bytes;
    std::string reply;
};

TEST(EngineReports, AnswersOfTheTypes)
{
    const ReportCase cases[] = {
        {"DA1", Type::Vt220, "\x1b[c", "\x1b[?62;1;2;6;7;8;9c"},
        {"DA1 with zero", Type::Vt220, "\x1b[0c", "\x1b[?62;1;2;6;7;8;9c"},
        {"DA1 with another number", Type::Vt220, "\x1b[7c", ""},
        {"DECID", Type::Vt220, "\x1bZ", "\x1b[?62;1;2;6;7;8;9c"},
        {"DA1 of a VT100", Type::Vt100, "\x1b[c", "\x1b[?1;2c"},
        {"DA1 of a VT320", Type::Vt320, "\x1b[c", "\x1b[?63;1;2;6;7;8;9;15c"},
        {"DA1 of the Linux console", Type::Linux, "\x1b[c", "\x1b[?6c"},
        {"DA1 of a typewriter", Type::Tty, "\x1b[c\x1b[6n", ""},
        {"DA2", Type::Vt220, "\x1b[>c", "\x1b[>1;10;0c"},
        {"DA2 is not a VT100's", Type::Vt100, "\x1b[>c", ""},
        {"DA2 is not the Linux console's", Type::Linux, "\x1b[>c", ""},
        {"DA3", Type::Vt420, "\x1b[=c", "\x1bP!|00000000\x1b\\"},
        {"DA3 is not a VT220's", Type::Vt220, "\x1b[=c", ""},
        {"back from VT52 mode as a VT100", Type::Vt420, "\x1b[?2l\x1b<\x1b[c\x1b[=c", "\x1b[?1;2c"},
        {"and to its own level by DECSCL", Type::Vt220, "\x1b[?2l\x1b<\x1b[62;1\"p\x1b[c", "\x1b[?62;1;2;6;7;8;9c"},
        {"VT52 identity", Type::Vt220, "\x1b[?2l\x1bZ", "\x1b/Z"},
        {"VT52's own identity", Type::Vt52, "\x1bZ", "\x1b/K"},
        {"status", Type::Vt220, "\x1b[5n", "\x1b[0n"},
        {"cursor position", Type::Linux, "\x1b[3;4H\x1b[6n", "\x1b[3;4R"},
        {"cursor position with a wrap pending", Type::Vt220, "0123456789\x1b[6n", "\x1b[1;10R"},
        {"cursor position in origin mode", Type::Vt220, "\x1b[2;3r\x1b[?6h\x1b[2;1H\x1b[6n", "\x1b[2;1R"},
        {"extended position", Type::Vt320, "\x1b[?6n", "\x1b[?1;1;1R"},
        {"printer", Type::Vt220, "\x1b[?15n", "\x1b[?13n"},
        {"keyboard of each level", Type::Vt220, "\x1b[?26n", "\x1b[?27;1n"},
        {"keyboard of each level", Type::Vt420, "\x1b[?26n", "\x1b[?27;1;0;0n"},
        {"terminal parameters", Type::Vt100, "\x1b[x\x1b[1x", "\x1b[2;1;1;112;112;1;0x\x1b[3;1;1;112;112;1;0x"},
        {"DECRQM", Type::Vt320, "\x1b[?7$p\x1b[?5$p\x1b[4$p\x1b[?999$p\x1b[?60$p\x1b[5$p",
         "\x1b[?7;1$y\x1b[?5;2$y\x1b[4;2$y\x1b[?999;0$y\x1b[?60;4$y\x1b[5;4$y"},
        {"DECRQM is not level 2's", Type::Vt220, "\x1b[?7$p\x1b[4$p", ""},
        {"modes of today's hosts are reported by all", Type::Linux, "\x1b[?2026$p", "\x1b[?2026;2$y"},
        {"DECRQSS", Type::Vt320, "\x1b[2;3r\x1bP$qr\x1b\\\x1bP$q\"p\x1b\\", "\x1bP1$r2;3r\x1b\\\x1bP1$r63;1\"p\x1b\\"},
        {"DECRQSS of SGR", Type::Vt320, "\x1b[1;4;31;48;5;99m\x1bP$qm\x1b\\", "\x1bP1$r0;1;4;31;48;5;99m\x1b\\"},
        {"DECRQSS of what is unknown", Type::Vt320, "\x1bP$qhello\x1b\\", "\x1bP0$r\x1b\\"},
        {"DECRQSS is not level 2's", Type::Vt220, "\x1bP$qm\x1b\\", ""},
        {"answerback", Type::Vt220, "\x05", "Tavle"},
    };
    for (const ReportCase& test : cases) {
        TerminalOptions options = Utf8Options(4, 10);
        options.answerBack = "Tavle";
        Bench bench(options, test.type);
        EXPECT_EQ(bench.HostSays(test.bytes).Replies(), test.reply) << test.name;
    }
}

TEST(EngineReports, EightBitForm)
{
    TerminalOptions options = Utf8Options(4, 10);
    options.charset = HostCharset::Latin1;
    Bench bench(options, Type::Vt320);
    EXPECT_EQ(bench.HostSays("\x1b G\x1b[5n").Replies(), "\x9b"
                                                         "0n");
    EXPECT_EQ(bench.HostSays("\x1bP$qr\x9c").Replies(), "\x90"
                                                        "1$r1;4r\x9c");
    EXPECT_EQ(bench.terminal.KeyBytes({Key::Up, 0, {}}), "\x9b"
                                                         "A");
    EXPECT_EQ(bench.HostSays("\x1b F\x1b[5n").Replies(), "\x1b[0n");
    bench.HostSays("\x1b G");
    bench.terminal.SetCharset(HostCharset::Utf8); // there 8-bit controls are no controls
    EXPECT_EQ(bench.HostSays("\x1b[5n").Replies(), "\x1b[0n");
}

// Whatever a host asks, none of its own text may come back: it would be typed into a shell.
TEST(EngineReports, HostTextNeverComesBack)
{
    const std::string poison = "id>x";
    for (const int type : {Type::Vt220, Type::Vt420, Type::Linux}) {
        Bench bench(4, 40, type);
        bench.HostSays("\x1b]0;" + poison + "\x07\x1b]2;" + poison + "\x1b\\\x1b]4;1;" + poison +
                       "\x07\x1b]52;c;aWQ+eA==\x07");
        bench.HostSays(
            "\x1b[21t\x1b[20t\x1b]52;c;?\x07\x1b]10;?\x07\x1b]11;?\x07\x1b]4;1;?\x07\x1b]50;?\x07\x1b]l\x07");
        bench.HostSays("\x1bP$q" + poison + "\x1b\\\x1bP+q6964\x1b\\\x1b[1$w\x1b[1;1;1;1;1;1*y\x1b[?" + poison + "$p");
        const std::string replies = bench.Replies();
        EXPECT_EQ(replies.find("id"), std::string::npos) << type;
        EXPECT_EQ(replies.find('\r'), std::string::npos) << type;
        EXPECT_EQ(replies.find('\n'), std::string::npos) << type;
    }
}

// Colours that the host has set are told, the user's own are not; both come back.
TEST(EngineReports, ColourTable)
{
    const auto table = [](const std::string& first, const char* space) {
        std::string out = "\x1bP2$s" + first;
        for (int index = 3; index < 16; ++index)
            out.append("/").append(std::to_string(index)).append(space).append(";;;");
        return out + "\x1b\\";
    };
    const std::string set = "\x1b]4;0;#000000\x07\x1b]4;1;#ff8000\x07\x1b]4;2;#3333cc\x07";
    Bench bench(4, 40, Type::Vt420);
    EXPECT_EQ(bench.HostSays("\x1b[2;2$u").Replies(), table("0;2;;;/1;2;;;/2;2;;;", ";2"));
    bench.HostSays(set);
    EXPECT_EQ(bench.HostSays("\x1b[2;2$u").Replies(), table("0;2;0;0;0/1;2;100;50;0/2;2;20;20;80", ";2"));
    EXPECT_EQ(bench.HostSays("\x1b[2$u").Replies(), table("0;1;0;0;0/1;1;150;50;100/2;1;0;50;60", ";1"));

    const struct
    {
        const char* entries; // after the colours above
        uint32_t first, second, third;
    } cases[] = {
        {"", 0x01000000, 0x01FF8000, 0x013333CC},
        {"1;2;;;/2;2;0;100;0", 0x01000000, 0, 0x0100FF00},
        {"0;1;0;50;100/1;1;120;50;100/2;1;240;50;100", 0x010000FF, 0x01FF0000, 0x0100FF00},
        {"0;1;60;50;100/1;1;150;50;100/2;1;0;100;0", 0x01FF00FF, 0x01FF8000, 0x01FFFFFF},
        {"1;2;101;0;0/2;2;0;0;0", 0x01000000, 0x01FF8000, 0x013333CC},
        {"1;2;0;0;0/2;3;0;0;0", 0x01000000, 0x01FF8000, 0x013333CC},
        {"1;2;0;0/2;2;0;0;0;0", 0x01000000, 0x01FF8000, 0x013333CC},
        {"256;2;0;0;0/1;2;0;0;0", 0x01000000, 0x01FF8000, 0x013333CC},
    };
    for (const auto& test : cases) {
        bench.HostSays("\x1b"
                       "c" +
                       set + "\x1bP2$p" + test.entries + "\x1b\\");
        EXPECT_EQ(bench.terminal.PaletteOverride(0), test.first) << test.entries;
        EXPECT_EQ(bench.terminal.PaletteOverride(1), test.second) << test.entries;
        EXPECT_EQ(bench.terminal.PaletteOverride(2), test.third) << test.entries;
    }
    Bench old(4, 40, Type::Vt220);
    EXPECT_EQ(old.HostSays(set + "\x1b[2;2$u\x1bP2$p1;2;0;0;0\x1b\\").Replies(), "");
    EXPECT_EQ(old.terminal.PaletteOverride(1), 0x01FF8000u);
}

TEST(EngineReports, TypesHaveTheNamesHostsKnow)
{
    const struct
    {
        int number;
        const char* hostName;
    } cases[] = {{0, "tty"},    {7, "vt52"},   {8, "vt220"}, {9, "ansi"},   {12, "vt100"},
                 {13, "vt320"}, {14, "vt420"}, {15, "ansi"}, {16, "linux"}, {77, "vt220"}};
    for (const auto& test : cases)
        EXPECT_EQ(FindPersonality(test.number)->hostName, test.hostName) << test.number;
    EXPECT_EQ(AllPersonalities().size(), std::size(cases));
    EXPECT_EQ(FindPersonality(75), nullptr);
}

} // namespace
} // namespace kestrune::emu
