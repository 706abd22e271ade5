// The SSH device against things that are no SSH host: time is the test's, and nothing is held up or grows.

#include "linerig.h"

#include <fakes/fakeclock.h>

#include <QHostAddress>
#include <QTcpServer>
#include <QTcpSocket>

#include <gtest/gtest.h>

namespace kestrune {

namespace {

using namespace Qt::StringLiterals;

// Takes one caller and says to it what the test wants.
struct OddHost
{
    OddHost()
    {
        server.listen(QHostAddress::LocalHost);
        QObject::connect(&server, &QTcpServer::newConnection, [this] { caller = server.nextPendingConnection(); });
    }
    LineOptions Options() const
    {
        LineOptions options;
        options.device = Device::Ssh;
        options.hostName = u"ann@127.0.0.1:%1"_s.arg(server.serverPort());
        options.connectTimeout = 10;
        return options;
    }

    QTcpServer server;
    QTcpSocket* caller = nullptr;
};

TEST(SshFaults, AHostThatSaysNothingIsGivenUpInTime)
{
    OddHost host;
    FakeClock clock;
    LineRig rig(host.Options(), clock);
    ASSERT_TRUE(rig.Opened().Until(
        [&] { return host.caller && !rig.states.empty() && rig.states.back() == LineState::Authenticating; }));
    clock.Advance(std::chrono::seconds(9));
    EXPECT_EQ(rig.closed, 0);
    host.caller->write("S"); // one byte now and then is no answer
    clock.Advance(std::chrono::seconds(2));
    ASSERT_TRUE(rig.UntilClosed());
    EXPECT_EQ(rig.errorWord, LineErrorWord(Device::Ssh, LineErrorNumber::TimedOut));
    EXPECT_TRUE(rig.Until([&] { return host.caller->state() == QAbstractSocket::UnconnectedState; }));
}

// Lines before the version are allowed (RFC 4253 4.2); these never come to it.
TEST(SshFaults, AnEndlessGreetingIsNotTaken)
{
    struct Case
    {
        QByteArray piece;
        QString told;
    };
    QByteArray lines;
    while (lines.size() < 65536)
        lines += "Welcome, welcome!\r\n";
    for (const Case& c : {Case{QByteArray(65536, 'x'), u"Unable to connect to 127.0.0.1"_s},
                          Case{lines, u"Unable to connect to 127.0.0.1: the host talks without end"_s},
                          Case{QByteArray(65536, '\n'), u"Unable to connect to 127.0.0.1: the host talks without"_s}}) {
        OddHost host;
        LineRig rig(host.Options());
        ASSERT_TRUE(rig.Opened().Until([&] { return host.caller != nullptr; }));
        qint64 written = 0;
        QObject::connect(host.caller, &QIODevice::bytesWritten, [&] {
            if (written < 100'000'000 && host.caller->bytesToWrite() < c.piece.size())
                written += host.caller->write(c.piece);
        });
        host.caller->write(c.piece);
        ASSERT_TRUE(rig.UntilClosed());
        EXPECT_LT(written, 20'000'000);
        ASSERT_EQ(rig.errors.size(), 1);
        EXPECT_TRUE(rig.errors[0].startsWith(c.told)) << rig.errors[0].toStdString();
    }
}

TEST(SshFaults, AGreetingOfSomeLinesIsPassedOver)
{
    OddHost host;
    LineRig rig(host.Options());
    ASSERT_TRUE(rig.Opened().Until([&] { return host.caller != nullptr; }));
    for (int line = 0; line < 200; ++line)
        host.caller->write("Authorised use only, and so on for two hundred lines.\r\n");
    host.caller->write("SSH-2.0-odd\r\n");
    QByteArray heard;
    EXPECT_TRUE(rig.Until([&] { return (heard += host.caller->readAll()).contains("curve25519"); }))
        << "it goes on with the key exchange";
    EXPECT_EQ(rig.errors, QStringList());
}

TEST(SshFaults, AHostOfVersionOneIsToldAsSuch)
{
    OddHost host;
    LineRig rig(host.Options());
    ASSERT_TRUE(rig.Opened().Until([&] { return host.caller != nullptr; }));
    host.caller->write("SSH-1.5-old\r\n");
    ASSERT_TRUE(rig.UntilClosed());
    EXPECT_EQ(rig.errorWord, LineErrorWord(Device::Ssh, LineErrorNumber::ProtocolNotSupported));
    EXPECT_TRUE(rig.errors.join(u' ').contains(u"only version 1 of SSH"_s)) << rig.errors.join(u' ').toStdString();
}

TEST(SshFaults, HostsThatAreNotThereOrSomethingElseAreTold)
{
    OddHost closed;
    LineOptions nobody = closed.Options();
    closed.server.close();
    LineRig refused(nobody);
    ASSERT_TRUE(refused.Opened().UntilClosed());
    EXPECT_EQ(refused.errorWord, LineErrorWord(Device::Ssh, LineErrorNumber::ConnectionRefused));
    EXPECT_TRUE(refused.errors.join(u' ').contains(u"connection refused"_s));

    OddHost web;
    LineRig other(web.Options());
    ASSERT_TRUE(other.Opened().Until([&] { return web.caller != nullptr; }));
    web.caller->write("HTTP/1.1 400 Bad Request\r\n\r\n");
    web.caller->disconnectFromHost();
    ASSERT_TRUE(other.UntilClosed());
    EXPECT_TRUE(other.anyFatal);
    EXPECT_TRUE(other.errors.join(u' ').startsWith(u"Unable to connect to"_s));

    for (const QString& name : {u""_s, u"ann@"_s, u"-oProxyCommand=x"_s, u"-l@host"_s, u"host:99999"_s, u"a b"_s}) {
        LineOptions options;
        options.device = Device::Ssh;
        options.hostName = name;
        LineRig rig(options);
        ASSERT_TRUE(rig.Opened().UntilClosed());
        EXPECT_EQ(rig.errorWord, LineErrorWord(Device::Ssh, LineErrorNumber::InvalidArgument)) << name.toStdString();
    }
}

TEST(SshFaults, ClosingInTheMiddleIsQuiet)
{
    OddHost host;
    LineRig rig(host.Options());
    ASSERT_TRUE(rig.Opened().Until([&] { return host.caller != nullptr; }));
    rig.line->Close();
    ASSERT_TRUE(rig.UntilClosed());
    EXPECT_EQ(rig.errors, QStringList());
    EXPECT_TRUE(rig.Until([&] { return host.caller->state() == QAbstractSocket::UnconnectedState; }));
    OddHost another;
    {
        LineRig dropped(another.Options());
        dropped.Opened().Until([&] { return another.caller != nullptr; });
    } // its owner goes without a word
    EXPECT_TRUE(WaitUntil([&] { return another.caller->state() == QAbstractSocket::UnconnectedState; }));
}

} // namespace

} // namespace kestrune
