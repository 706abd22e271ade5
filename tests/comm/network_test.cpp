// What networks do to a connection: a cable pulled and put back, packets that vanish, a host that is gone without a
// word. Real servers behind a cable of the test's own, see twohosts.h.

#include "farhosts.h"

#include <gtest/gtest.h>

namespace kestrune {

namespace {

using namespace Qt::StringLiterals;

bool Echoes(LineRig& rig, const QByteArray& text)
{
    rig.Type(text + '\r');
    return rig.UntilReceived(text);
}

// The line's side of the story; how a server is reached makes no difference to it.
void SurvivesTheCable(const TwoHosts& hosts, const LineOptions& options)
{
    LineRig rig(options);
    ASSERT_TRUE(rig.Opened().UntilOpen());
    ASSERT_TRUE(Echoes(rig, "before"));
    for (const bool unplugged : {true, false}) {
        const int again = TwoHosts::SentAgain();
        unplugged ? hosts.Unplug() : hosts.DropAnswers(true);
        rig.Type(unplugged ? "into the air\r" : "into the hole\r");
        ASSERT_TRUE(rig.Until([&] { return TwoHosts::SentAgain() >= again + 3; })) << "it is tried again and again";
        EXPECT_TRUE(rig.line->IsOpen());
        unplugged ? hosts.Plug() : hosts.DropAnswers(false);
        EXPECT_TRUE(rig.UntilReceived(unplugged ? "into the air" : "into the hole"));
        EXPECT_TRUE(Echoes(rig, unplugged ? "plugged" : "heard"));
    }
    EXPECT_EQ(rig.errors, QStringList());
}

TEST(Network, TelnetSurvivesACableThatIsPulledAndPacketsThatVanish)
{
    const TwoHosts hosts;
    const FarTelnet server(hosts);
    SurvivesTheCable(hosts, server.Options());
}

TEST(Network, TlsSurvivesACableThatIsPulledAndPacketsThatVanish)
{
    const TwoHosts hosts;
    const FarTlsEcho server(hosts);
    SurvivesTheCable(hosts, FarTlsEcho::Options());
}

TEST(Network, SshSurvivesACableThatIsPulledAndPacketsThatVanish)
{
    const TwoHosts hosts;
    const OwnHome home;
    const FarSsh server(hosts, home);
    SurvivesTheCable(hosts, server.Options());
}

TEST(Network, AHostThatIsGoneWithoutAWordIsFoundOutAndReconnected)
{
    const TwoHosts hosts;
    const FarTelnet telnet(hosts);
    const FarTlsEcho tls(hosts);
    const OwnHome home;
    const FarSsh ssh(hosts, home);
    LineOptions sshRequests = ssh.Options();
    sshRequests.ssh.keepAlive = 1;
    struct Case
    {
        const char* name;
        LineOptions options;
        bool nop, typing;
        int probes = 1; // KeepaliveInterval
    };
    for (const Case& c :
         {Case{"keep-alive probes", telnet.Options(), false, false},
          Case{"keep-alive by NOP", telnet.Options(), true, false},
          Case{"what was typed is not answered", telnet.Options(), false, true},
          Case{"under TLS", FarTlsEcho::Options(), false, false}, Case{"under SSH", ssh.Options(), false, false},
          Case{"under SSH, what was typed is not answered", ssh.Options(), false, true},
          Case{"under SSH, its own requests", sshRequests, false, false, 0}}) {
        LineOptions options = c.options;
        options.keepaliveInterval = c.probes;
        options.telnet.keepaliveIsNop = c.nop;
        LineRig rig(options);
        ASSERT_TRUE(rig.Opened().UntilOpen());
        ASSERT_TRUE(Echoes(rig, "before"));
        hosts.Unplug();
        if (c.typing)
            rig.Type("anybody there?");
        ASSERT_TRUE(rig.UntilClosed()) << c.name;
        EXPECT_EQ(rig.errors.size(), 1) << c.name;
        EXPECT_TRUE(rig.errors.value(0).startsWith(u"The connection to 10.77.0.2 was lost"_s))
            << rig.errors.value(0).toStdString();
        hosts.Plug();
        LineRig again(options);
        ASSERT_TRUE(again.Opened().UntilOpen()) << c.name;
        EXPECT_TRUE(Echoes(again, "after"));
    }
}

TEST(Network, AHostThatCannotBeReachedIsSaidSo)
{
    const TwoHosts hosts;
    LineOptions options;
    options.device = Device::Telnet;
    options.hostName = TwoHosts::FarAddress();
    options.connectTimeout = 2;
    struct Case
    {
        const char* event;
        quint32 word;
    };
    for (const Case& c : {Case{"unplugged", 0x3274C}, Case{"no route", 0x32743}}) {
        if (c.word == 0x32743)
            hosts.Run("ip addr flush dev near");
        else
            hosts.Unplug();
        LineRig rig(options);
        ASSERT_TRUE(rig.Opened().UntilClosed());
        EXPECT_EQ(rig.errorWord, c.word) << c.event << ": " << rig.errors.value(0).toStdString();
    }
}

} // namespace

} // namespace kestrune
