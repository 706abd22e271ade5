#include <comm/rebind/terminalside.h>

#include <gtest/gtest.h>

namespace kestrune::comm {
namespace {

const std::string Token(32, 'b');

struct Rig : RebindEvents
{
    explicit Rig(std::unique_ptr<RebindTicket> ticket = nullptr) : terminal(0x10000, std::move(ticket), *this) {}
    void RebindData(std::string_view bytes) override { screen += bytes; }
    void RebindOutput(std::string_view wire) override { line += wire; }
    void RebindAnswered() override { log += "answered "; }
    void RebindAgreed(bool sameSession) override { log += sameSession ? "same " : "new "; }
    void RebindEnded(int exitCode) override { log += "ended " + std::to_string(exitCode) + ' '; }
    void RebindBroken() override { log += "broken "; }

    RebindTerminal terminal;
    std::string screen, line, log;
};

std::string Agreement(std::uint64_t received = 0)
{
    return std::string(rebind::Announcement) + Format(rebind::Ready{Token, received});
}

TEST(RebindTerminal, FindsTheHostHoweverTheBytesCome)
{
    const std::string wire = "login\x1b[1m \x1bP+kes\x1b\\" + Agreement() + "bound\x10M";
    for (std::size_t split = 0; split <= wire.size(); ++split) {
        Rig rig;
        rig.terminal.FromUser("ann\r");
        rig.terminal.FromLine(std::string_view(wire).substr(0, split));
        rig.terminal.FromLine(std::string_view(wire).substr(split));
        EXPECT_EQ(rig.screen, "login\x1b[1m \x1bP+kes\x1b\\bound\r") << split;
        EXPECT_EQ(rig.line, "ann\r\x1bP+kestrune-rebind;1;8;;0\x1b\\") << split;
        EXPECT_EQ(rig.log, "answered new ") << split;
        rig.terminal.FromUser("a\rb");
        EXPECT_TRUE(rig.line.ends_with("a\x10Mb"));
    }
}

TEST(RebindTerminal, WhatIsTypedWhileTheyAgreeWaits)
{
    Rig rig;
    rig.terminal.FromLine(rebind::Announcement);
    rig.line.clear();
    rig.terminal.FromUser("early");
    EXPECT_EQ(rig.line, "");
    rig.terminal.FromLine(Format(rebind::Ready{Token, 0}));
    EXPECT_EQ(rig.line, "early");

    Rig other;
    other.terminal.FromLine(std::string(rebind::Announcement) + "\x1bP+kestr");
    other.line.clear();
    other.terminal.FromUser("early");
    other.terminal.GiveUp(); // nobody was there: a file was shown that looks like one
    EXPECT_EQ(other.line, "early");
    EXPECT_EQ(other.screen, "\x1bP+kestr");
    other.terminal.FromLine(rebind::Announcement);
    EXPECT_EQ(other.screen, "\x1bP+kestr" + std::string(rebind::Announcement)) << "once only";
}

TEST(RebindTerminal, ResumesWithWhatWasUnderWay)
{
    Rig first;
    first.terminal.FromLine(Agreement() + "abc");
    first.terminal.FromUser("sent, not acknowledged;");
    auto ticket = first.terminal.TakeTicket();
    ASSERT_TRUE(ticket);
    EXPECT_EQ(ticket->token, Token);

    Rig second(std::move(ticket));
    second.terminal.FromUser("password\r");
    second.terminal.FromLine(rebind::Announcement);
    EXPECT_EQ(second.line, "password\r" + Format(rebind::Answer{false, Token, 3}));
    second.line.clear();
    second.terminal.FromUser("new");
    second.terminal.FromLine(Format(rebind::Ready{Token, 6}));
    EXPECT_EQ(second.log, "answered same ");
    EXPECT_EQ(second.line, "not acknowledged;new");
}

TEST(RebindTerminal, HostileAnswersEndIt)
{
    const struct
    {
        const char* name;
        std::string wire;
        const char* log;
    } cases[] = {
        {"no message at all", "\x1bP+kestrune-rebind;\x1b\\", "answered broken "},
        {"a token that is none", "\x1bP+kestrune-rebind;ready;../../etc;0\x1b\\", "answered broken "},
        {"a count that is none", "\x1bP+kestrune-rebind;ready;" + Token + ";-1\x1b\\", "answered broken "},
        {"a count that cannot be", Format(rebind::Ready{Token, 99}), "answered broken "},
        {"no end", "\x1bP+kestrune-rebind;" + std::string(1000, 'x'), "answered "},
    };
    for (const auto& test : cases) {
        auto ticket = std::make_unique<RebindTicket>(RebindTicket{Token, ResumableStream(0x1000)});
        Rig rig(std::move(ticket));
        rig.terminal.FromLine(std::string(rebind::Announcement) + test.wire + "after");
        EXPECT_EQ(rig.log, test.log) << test.name;
        EXPECT_TRUE(rig.screen.ends_with("after")) << test.name;
        rig.terminal.FromUser("typed");
        EXPECT_TRUE(rig.line.ends_with("typed")) << test.name;
    }
}

TEST(RebindTerminal, ABoundSessionEndsOrBreaks)
{
    Rig ended;
    ended.terminal.FromLine(Agreement() + "bye\x10"
                                          "c3;\x10"
                                          "e4;");
    EXPECT_EQ(ended.log, "answered new ended 4 ");
    EXPECT_TRUE(ended.line.ends_with("\x10s0;"));
    EXPECT_FALSE(ended.terminal.TakeTicket()) << "there is nothing to resume";

    Rig broken;
    broken.terminal.FromLine(Agreement() + "bye\x10"
                                           "c4;");
    EXPECT_EQ(broken.log, "answered new broken ");
    EXPECT_TRUE(broken.terminal.TakeTicket()) << "over a better line it can be";
}

} // namespace
} // namespace kestrune::comm
