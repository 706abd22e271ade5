// What the DEC models answer, and what they keep to themselves.

#include "conformance.h"

namespace kestrune::emu::conformance {
namespace {

using enum Model;

const Case kReports[] = {
    {"DECCIR", Vt320, "\x1b[2;3H\x1b[1;4m", "\x1b[1$w", "", {2, 1}, "\x1bP1$u2;3;1;C;@;@;0;2;L;BBAA\x1b\\"},
    {"DECCIR tells of origin mode and a waiting wrap",
     Vt320,
     "0123456789\x1b[7m\x1b(0",
     "\x1b[1$w",
     "0123456789",
     {9, 0},
     "\x1bP1$u1;10;1;H;@;H;0;2;L;0BAA\x1b\\"},
    {"DECCIR tells of protection",
     Vt320,
     "\x1b[1\"q\x1b[?6h",
     "\x1b[1$w",
     "",
     {0, 0},
     "\x1bP1$u1;1;1;@;A;A;0;2;L;BBAA\x1b\\"},
    {"DECTABSR", Vt320, "\x1b[3g\x1b[1;3H\x1bH\x1b[1;7H\x1bH\x1b[H", "\x1b[2$w", "", {0, 0}, "\x1bP2$u3/7\x1b\\"},
    {"DECRQPSR of another kind", Vt320, "", "\x1b[3$w", "", {0, 0}, ""},
    {"DECRSPS of tabs", Vt320, "", "\x1bP2$t4/6\x1b\\", "", {0, 0}},
    {"DECRQUPSS", Vt320, "", "\x1b[&u", "", {0, 0}, "\x1bP0!u<\x1b\\"},
    {"DECRQSS of the side margins",
     Vt420,
     "\x1b[?69h\x1b[3;7s",
     "\x1bP$qs\x1b\\\x1bP$q*x\x1b\\",
     "",
     {0, 0},
     "\x1bP1$r3;7s\x1b\\\x1bP1$r1*x\x1b\\"},
    {"DECRQM of DECLRMM", Vt420, "\x1b[?69h", "\x1b[?69$p", "", {0, 0}, "\x1b[?69;1$y"},
    {"CPR", Vt100, "\x1b[3;4H", "\x1b[6n", "", {3, 2}, "\x1b[3;4R"},
    {"DSR", Vt100, "", "\x1b[5n", "", {0, 0}, "\x1b[0n"},
    {"printer", Vt220, "", "\x1b[?15n", "", {0, 0}, "\x1b[?13n"},
    {"no locator", Vt320, "", "\x1b[?55n", "", {0, 0}, "\x1b[?50n"},
    {"DECRQDE", Vt420, "", "\x1b[\"v", "", {0, 0}, "\x1b[5;10;1;1;1\"w"},
    {"DA3", Vt420, "", "\x1b[=c", "", {0, 0}, "\x1bP!|00000000\x1b\\"},
};

TEST(Conformance, Reports)
{
    for (const Case& test : kReports)
        for (const Model model : {Vt100, Vt220, Vt320, Vt420}) {
            if (model >= test.from)
                ExpectHas(test, model);
            else if (std::string_view(test.name).find("DECRQSS") == std::string_view::npos &&
                     std::string_view(test.name).find("DECRQM") == std::string_view::npos)
                ExpectLacks(test, model, {}); // those two answer that they do not know it
        }
}

// In level 1 a later model is a VT100, until it is told otherwise; a VT100 cannot be told.
TEST(Conformance, LevelsGoDownAndUp)
{
    Bench bench = Fresh(Vt420);
    EXPECT_EQ(bench.HostSays("\x1b[61\"p\x1b[c\x1b[=c").Replies(), "\x1b[?1;2c");
    EXPECT_EQ(bench.HostSays("\x1b[63;1\"p\x1bP$q\"p\x1b\\").Replies(), "\x1bP1$r63;1\"p\x1b\\");
    EXPECT_EQ(bench.HostSays("\x1b[65;1\"p\x1bP$q\"p\x1b\\").Replies(), "\x1bP1$r64;1\"p\x1b\\");
    EXPECT_EQ(Fresh(Vt100).HostSays("\x1b[64\"p\x1bP$q\"p\x1b\\").Replies(), "");
}

TEST(Conformance, ColumnsChangeWithoutClearing)
{
    Bench bench(4, 80, Type::Vt320);
    bench.HostSays("text\x1b[2;3H\x1b[132$|");
    EXPECT_EQ(bench.terminal.ScreenSize(), (Size{132, 4}));
    EXPECT_EQ(bench.Rows(), "text");
    EXPECT_EQ(bench.HostSays("\x1b[?3$p\x1b[6n\x1b[$|").Replies(), "\x1b[?3;1$y\x1b[2;3R");
    EXPECT_EQ(bench.terminal.ScreenSize(), (Size{80, 4}));
    EXPECT_EQ(bench.HostSays("\x1b[40$|").terminal.ScreenSize(), (Size{80, 4}));
    EXPECT_EQ(Bench(4, 80, Type::Vt220).HostSays("\x1b[132$|").terminal.ScreenSize(), (Size{80, 4}));
}

// What a state report says, given back, brings the same state.
TEST(Conformance, PresentationStateComesBack)
{
    const std::string states[] = {
        "\x1b[2;3H\x1b[1;4;5;7m",     "0123456789", "\x1b(0\x1b)<\x1b.A\x0e",
        "\x1b[2;4r\x1b[?6h\x1b[2;2H", "\x1b[1\"q",  "\x1bN",
    };
    for (const std::string& state : states) {
        Bench bench = Fresh(Vt420);
        const std::string report = bench.HostSays(state + "\x1b[1$w").Replies();
        ASSERT_GT(report.size(), 5u);
        bench.HostSays("\x1b[H\x1b[?6l\x1b[m\x1b[0\"q\x0f\x1b(B\x1b)B\x1b.Ax\x1bP1$t" + report.substr(5) + "\x1b[1$w");
        EXPECT_EQ(bench.Replies(), report) << state.substr(1);
    }
    Bench tabs = Fresh(Vt420);
    EXPECT_EQ(tabs.HostSays("\x1bP2$t4/6\x1b\\\x1b[2$w").Replies(), "\x1bP2$u4/6\x1b\\");
}

TEST(Conformance, MalformedPresentationStateChangesNothing)
{
    for (const std::string body :
         {"1$t", "1$t2;3", "1$t9;3;1;@;@;@;0;2;@;BBBB", "1$t2;3;1;@;@;@;4;2;@;BBBB", "1$t2;3;1;@;@;@;0;2;@;BBB",
          "1$t2;3;1;@;@;@;0;2;@;BBBBB", "1$t2;3;1;@;@;@;0;2;@;BBB%", "1$t2;3;1;@@;@;@;0;2;@;BBBB", "2$t3/x", "2$t0",
          "1!uZ"}) {
        Bench bench = Fresh(Vt420);
        bench.HostSays("\x1b[3;4H");
        const std::string before = bench.HostSays("\x1b[1$w\x1b[2$w\x1b[&u").Replies();
        EXPECT_EQ(bench.HostSays("\x1bP" + body + "\x1b\\\x1b[1$w\x1b[2$w\x1b[&u").Replies(), before) << body;
    }
}

// What a terminal state report says, given back, brings the same state, and the screen stays.
TEST(Conformance, TerminalStateComesBack)
{
    const std::string states[] = {
        "", "\x1b[4;20h\x1b[?7l", "\x1b[2;4r\x1b[?6h", "\x1b[?69h\x1b[3;9s", "\x1b[?25l\x1b[?4h\x1b[?67h", "\x1b[?3h",
    };
    for (const std::string& state : states) {
        Bench bench = Fresh(Vt420);
        const std::string report = bench.HostSays(state + "text\x1b[1$u").Replies();
        ASSERT_TRUE(report.starts_with("\x1bP1$s")) << report.substr(1);
        const std::string rows = bench.Rows();
        bench.HostSays("\x1b[?6;69l\x1b[r\x1b[4;20l\x1b[?4;67l\x1b[?7;25h\x1b[80$|\x1b[3;4H");
        bench.HostSays("\x1bP1$p" + report.substr(5) + "\x1b[1$u");
        EXPECT_EQ(bench.Replies(), report);
        EXPECT_EQ(bench.Rows(), rows);
    }
    Bench older = Fresh(Vt220);
    EXPECT_EQ(older.HostSays("\x1b[1$u").Replies(), "");
}

TEST(Conformance, MalformedTerminalStateChangesNothing)
{
    for (const std::string body : {"1$p", "1$p1;1;5", "1$p1;1;5;10;", "1$p0;1;5;10", "1$p1;1;5;10/?2",
                                   "1$p1;1;5;10/?1049", "1$p1;1;5;10/?7x", "1$p1;1;5;10/", "1$p1;1;5;99999999999/?7"}) {
        Bench bench = Fresh(Vt420);
        const std::string before = bench.HostSays("\x1b[2;4r\x1b[4h\x1b[1$u").Replies();
        EXPECT_EQ(bench.HostSays("\x1bP" + body + "\x1b\\\x1b[1$u").Replies(), before) << body;
    }
}

TEST(Conformance, PreferredSetStandsBehindItsDesignator)
{
    Bench bench = Fresh(Vt420);
    EXPECT_EQ(bench.HostSays("\x1b+<\x1bOW").Rows(), "Œ"); // DEC supplemental: D7 is OE
    EXPECT_EQ(bench.HostSays("\x1bP1!uA\x1b\\\x1b[2J\x1b[H\x1b+<\x1bOW\x1b[&u").Rows(), "×");
    EXPECT_EQ(bench.Replies(), "\x1bP1!uA\x1b\\");
    EXPECT_EQ(bench
                  .HostSays("\x1b"
                            "c\x1b+<\x1bOW")
                  .Rows(),
              "Œ");
}

} // namespace
} // namespace kestrune::emu::conformance
