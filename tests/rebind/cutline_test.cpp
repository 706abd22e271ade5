// The real kestrune-rebind in logins that are cut: nothing is lost, nothing comes twice.

#include "login.h"
#include "noise.h"

#include <gtest/gtest.h>

#include <sys/ioctl.h>

#include <filesystem>

using kestrune::comm::RebindTicket;

namespace {

class Rebind : public testing::Test
{
protected:
    Rebind()
    {
        char name[] = "/tmp/kestrune-rebind-test-XXXXXX";
        folder_ = mkdtemp(name);
        setenv("KESTRUNE_REBIND_DIR", folder_.c_str(), 1);
    }
    ~Rebind() override { std::filesystem::remove_all(folder_); }

    static std::vector<std::string> Running(std::vector<std::string> command)
    {
        std::vector<std::string> words{REBIND_PROGRAM, "--login", "--keep", "5", "--buffer", "64", "--"};
        words.insert(words.end(), command.begin(), command.end());
        return words;
    }

    std::string folder_;
};

void Stream(long bytes, int cuts, bool sevenBit)
{
    const auto command = std::vector<std::string>{
        REBIND_PROGRAM, "--login", "--keep", "5", "--buffer", "64", "--", FAR_END, std::to_string(bytes)};
    Noise chance(42), theirs(1), mine(2);
    std::unique_ptr<RebindTicket> ticket;
    long toSend = bytes;
    long seen = -1; // the first byte only says that the far end is there
    int cut = 0;
    int ended = -1;
    const long between = 2 * bytes / (cuts + cuts / 10); // on the average; chance must leave room for all of them
    for (long nextCut = between; ended < 0;) {
        Login login(command, std::move(ticket), sevenBit);
        bool alive = true;
        while (alive && ended < 0) {
            if (seen >= 0 && toSend > 0 && login.terminal.IsBound() && login.terminal.Waiting() == 0 &&
                login.out.size() < 0x8000) {
                const auto piece = std::min(toSend, 0x2000L);
                login.terminal.FromUser(mine.Take(std::size_t(piece)));
                toSend -= piece;
            }
            ASSERT_TRUE(login.Turn()) << "after " << seen << " bytes and " << cut << " cuts";
            ASSERT_FALSE(login.broken);
            for (const char byte : login.screen)
                if (++seen > 0 && static_cast<unsigned char>(byte) != theirs.Next())
                    FAIL() << "byte " << seen << " after " << cut << " cuts";
            login.screen.clear();
            ended = login.ended;
            alive = cut == cuts || seen + (bytes - toSend) < nextCut;
        }
        if (ended >= 0)
            break;
        login.Cut();
        nextCut += between / 2 + between * chance.Next() / 256;
        ++cut;
        ticket = login.terminal.TakeTicket();
        ASSERT_TRUE(ticket);
    }
    EXPECT_EQ(ended, 7) << "the far end found every byte right";
    EXPECT_EQ(seen, bytes);
    EXPECT_EQ(toSend, 0);
    EXPECT_EQ(cut, cuts);
}

TEST_F(Rebind, AThousandCutLinesLoseNothingInFiftyMegabytesEachWay) { Stream(50'000'000, 1000, false); }
TEST_F(Rebind, NorOnALineOfSevenBits) { Stream(1'000'000, 50, true); }

TEST_F(Rebind, AShellGoesOnWhereItWas)
{
    const auto command = Running({"/bin/sh"});
    setenv("PS1", "$ ", 1);
    Login first(command, nullptr);
    ASSERT_TRUE(first.TurnUntil([&] { return first.screen.ends_with("$ "); }));
    EXPECT_EQ(first.agreed, "new");
    first.terminal.FromUser("kept=here; stty size; (sleep 0.2; echo meanwhile) &\r");
    ASSERT_TRUE(first.TurnUntil([&] { return first.screen.find("30 100") != std::string::npos; }));
    first.Cut();

    Login second(command, first.terminal.TakeTicket());
    ASSERT_TRUE(second.TurnUntil([&] { return second.screen.find("meanwhile") != std::string::npos; }));
    EXPECT_EQ(second.agreed, "same");
    second.Resize(40, 90);
    second.terminal.FromUser("sleep 0.1; stty size; echo $kept; exit 3\r");
    ASSERT_TRUE(second.TurnUntil([&] { return second.ended >= 0 && second.out.empty(); })) << second.screen;
    EXPECT_EQ(second.ended, 3);
    EXPECT_NE(second.screen.find("40 90"), std::string::npos) << second.screen;
    EXPECT_NE(second.screen.find("\nhere"), std::string::npos) << second.screen;
    EXPECT_EQ(second.ExitCode(), 0);
    EXPECT_TRUE(std::filesystem::is_empty(folder_)) << "nothing of the session is left";
}

TEST_F(Rebind, ASessionThatIsGoneIsFollowedByANewOne)
{
    auto ticket = std::make_unique<RebindTicket>(
        RebindTicket{std::string(32, 'a'), kestrune::comm::ResumableStream(0x10000), "typed for the old one"});
    Login login(Running({"/bin/echo", "fresh"}), std::move(ticket));
    ASSERT_TRUE(login.TurnUntil([&] { return login.ended >= 0; }));
    EXPECT_EQ(login.agreed, "new");
    EXPECT_NE(login.screen.find("fresh"), std::string::npos);
    EXPECT_EQ(login.screen.find("typed"), std::string::npos);
}

TEST_F(Rebind, WhoLeavesForGoodHangsUp)
{
    Login login(Running({"/bin/sh", "-c", "echo up; exec sleep 1000"}), nullptr);
    ASSERT_TRUE(login.TurnUntil([&] { return login.screen.find("up") != std::string::npos; }));
    login.terminal.Quit();
    login.TurnUntil([] { return false; });
    EXPECT_EQ(login.ExitCode(), 0);
    EXPECT_TRUE(std::filesystem::is_empty(folder_));
}

// A terminal that knows nothing of this answers the request for its attributes, and what was typed meanwhile is kept.
TEST_F(Rebind, AnyOtherTerminalGoesOnAsEver)
{
    struct Other : Login
    {
        using Login::Login;
        void RebindData(std::string_view bytes) override
        {
            screen += bytes;
            if (screen.ends_with("\x1b[c"))
                out += "typed\x1b[?62;1;6c";
        }
        void RebindAnswered() override { ADD_FAILURE(); }
    };
    Other login(
        {"/bin/sh", "-c", std::string(REBIND_PROGRAM) + " --login --keep 5; echo code $?; read word; echo \"<$word>\""},
        nullptr);
    login.terminal.GiveUp();
    ASSERT_TRUE(login.TurnUntil([&] { return login.screen.find("code 125") != std::string::npos; })) << login.screen;
    login.terminal.FromUser("more\r");
    ASSERT_TRUE(login.TurnUntil([&] { return login.screen.find("more>") != std::string::npos; })) << login.screen;
    // A system that lets nobody type into a terminal has it shown instead.
    EXPECT_NE(login.screen.find("typed"), std::string::npos);
}

} // namespace
