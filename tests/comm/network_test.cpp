// What networks do to a connection: a cable pulled and put back, packets that vanish, a host that is gone without a
// word. Real servers behind a cable of the test's own, see twohosts.h.

#include "telnetserver.h"
#include "twohosts.h"

#include <QCoreApplication>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <cstdio>
#include <sched.h>

namespace kestrune {

namespace {

using namespace Qt::StringLiterals;

constexpr auto EchoScript = R"script(#!/bin/bash
echo ready
while read line; do echo "got $line"; done
)script";

// A server that echoes behind TLS; its certificate is nobody's concern here.
class FarTlsEcho
{
public:
    explicit FarTlsEcho(const TwoHosts& hosts)
    {
        QProcess openssl;
        openssl.setWorkingDirectory(folder_.path());
        openssl.start(u"openssl"_s, u"req -x509 -newkey ec -pkeyopt ec_paramgen_curve:prime256v1 -nodes -subj /CN=far "
                                    "-days 30 -keyout far.key -out far.pem"_s.split(u' '));
        EXPECT_TRUE(openssl.waitForFinished(30000) && openssl.exitCode() == 0);
        QStringList command = hosts.Prefix();
        command << u"timeout -k 1 90 socat OPENSSL-LISTEN:9992,reuseaddr,fork,verify=0,cert=far.pem,key=far.key "
                   "EXEC:cat"_s.split(u' ');
        process_.setWorkingDirectory(folder_.path());
        process_.start(command.takeFirst(), command);
        EXPECT_TRUE(WaitUntil([] {
            QTcpSocket caller;
            caller.connectToHost(TwoHosts::FarAddress(), 9992);
            return caller.waitForConnected(200);
        }));
    }
    ~FarTlsEcho()
    {
        process_.terminate();
        process_.waitForFinished();
    }
    static LineOptions Options()
    {
        LineOptions options;
        options.device = Device::SslTelnet;
        options.hostName = TwoHosts::FarAddress();
        options.hostPort = u"9992"_s;
        options.telnet.bypass = true;
        options.tls.validation = CertificateValidation::None;
        return options;
    }

private:
    QTemporaryDir folder_;
    QProcess process_;
};

struct FarTelnet : TelnetServer
{
    explicit FarTelnet(const TwoHosts& hosts) : TelnetServer(EchoScript, hosts.Prefix(), TwoHosts::FarAddress())
    {
        EXPECT_TRUE(Answers());
    }
};

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

TEST(Network, AHostThatIsGoneWithoutAWordIsFoundOutAndReconnected)
{
    const TwoHosts hosts;
    const FarTelnet telnet(hosts);
    const FarTlsEcho tls(hosts);
    struct Case
    {
        const char* name;
        LineOptions options;
        bool nop, typing;
    };
    for (const Case& c : {Case{"keep-alive probes", telnet.Options(), false, false},
                          Case{"keep-alive by NOP", telnet.Options(), true, false},
                          Case{"what was typed is not answered", telnet.Options(), false, true},
                          Case{"under TLS", FarTlsEcho::Options(), false, false}}) {
        LineOptions options = c.options;
        options.keepaliveInterval = 1;
        options.telnet.keepaliveIsNop = c.nop;
        LineRig rig(options);
        ASSERT_TRUE(rig.Opened().UntilOpen());
        ASSERT_TRUE(Echoes(rig, "before"));
        hosts.Unplug();
        if (c.typing)
            rig.Type("anybody there?");
        ASSERT_TRUE(rig.UntilClosed()) << c.name;
        EXPECT_EQ(rig.errors.size(), 1) << c.name;
        EXPECT_TRUE(rig.errors.value(0).startsWith(u"The connection to 10.77.0.2 was lost: "_s))
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

int main(int argc, char** argv)
{
    // The test is only registered where this is permitted.
    if (::unshare(CLONE_NEWNET) != 0) {
        std::perror("network_test: no network namespace of its own");
        return 1;
    }
    QCoreApplication application(argc, argv);
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
