// The telnet device against a real server: the daemon of inetutils, started for each caller by socat.

#include "linerig.h"

#include <QFile>
#include <QHostAddress>
#include <QProcess>
#include <QStandardPaths>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace kestrune {

namespace {

using namespace Qt::StringLiterals;

// What runs in place of a login: says what arrived, then obeys.
constexpr auto LoginScript = R"script(#!/bin/bash
trap 'echo "SIZE=$(stty size)"' WINCH
trap 'echo interrupted' INT
trap 'echo quit' QUIT
echo "TERM=$TERM USER=$USER SIZE=$(stty size)"
while :; do
    read -r -t 0.05 line || continue
    case $line in
    exit) echo bye; exit ;;
    raw) stty raw -echo; echo ready; head -c 256 | od -An -v -tu1 | tr -s ' \n' ' '; stty sane; echo cooked ;;
    *) echo "got $line" ;;
    esac
done
)script";

class TelnetServer
{
public:
    TelnetServer()
    {
        QFile script(folder_.filePath(u"login"_s));
        EXPECT_TRUE(script.open(QIODevice::WriteOnly));
        script.write(LoginScript);
        script.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        QTcpServer free;
        free.listen(QHostAddress::LocalHost);
        port_ = free.serverPort();
        free.close();
        process_.start(
            u"timeout"_s,
            {u"-k"_s, u"1"_s, u"90"_s, u"socat"_s, u"TCP-LISTEN:%1,bind=127.0.0.1,reuseaddr,fork"_s.arg(port_),
             u"EXEC:/usr/sbin/telnetd -h --accept-env=USER --exec-login=%1,nofork"_s.arg(script.fileName())});
    }
    ~TelnetServer() { Kill(); }
    void Kill()
    {
        process_.terminate(); // timeout passes it on to all of its group
        process_.waitForFinished();
    }
    bool Answers()
    {
        return WaitUntil([this] {
            QTcpSocket caller;
            caller.connectToHost(QHostAddress::LocalHost, port_);
            return caller.waitForConnected(200);
        });
    }
    LineOptions Options() const
    {
        LineOptions options;
        options.device = Device::Telnet;
        options.hostName = u"localhost"_s;
        options.hostPort = QString::number(port_);
        options.terminalName = u"vt220"_s;
        options.userName = "ann";
        options.size = {.cols = 255, .rows = 40};
        return options;
    }

private:
    QTemporaryDir folder_;
    QProcess process_;
    quint16 port_ = 0;
};

TEST(TelnetPartner, WorksWithARealServer)
{
    TelnetServer server;
    ASSERT_TRUE(server.Answers());
    LineRig rig(server.Options());
    ASSERT_TRUE(rig.Opened().UntilReceived("SIZE=40 255\r\n"));
    EXPECT_TRUE(rig.received.startsWith("TERM=vt220 USER=ann")) << rig.received.data();
    EXPECT_EQ(rig.remoteEcho, true);

    rig.line->Resize({.cols = 132, .rows = 50});
    EXPECT_TRUE(rig.UntilReceived("SIZE=50 132"));
    rig.Type("gr\xc3\xbc\xc3\x9f dich\r");
    EXPECT_TRUE(rig.UntilReceived("got gr\xc3\xbc\xc3\x9f dich")) << rig.received.data();
    rig.line->Break(0);
    EXPECT_TRUE(rig.UntilReceived("quit"));

    rig.Type("raw\r");
    ASSERT_TRUE(rig.UntilReceived("ready"));
    QByteArray all, printed;
    for (int i = 0; i < 256; ++i) {
        all += static_cast<char>(i);
        printed += ' ' + QByteArray::number(i);
    }
    rig.Type(all);
    EXPECT_TRUE(rig.UntilReceived(printed)) << rig.received.right(2000).data();

    ASSERT_TRUE(rig.UntilReceived("cooked"));
    rig.Type("exit\r");
    ASSERT_TRUE(rig.UntilClosed());
    EXPECT_TRUE(rig.received.contains("bye"));
    EXPECT_EQ(rig.stateText, u"The host localhost has closed the connection."_s);
    EXPECT_EQ(rig.errors, QStringList());
}

TEST(TelnetPartner, InterruptsByTheAlternateBreak)
{
    TelnetServer server;
    ASSERT_TRUE(server.Answers());
    LineOptions options = server.Options();
    options.telnet.alternateBreak = true;
    LineRig rig(options);
    ASSERT_TRUE(rig.Opened().UntilReceived("SIZE="));
    rig.line->Break(0);
    EXPECT_TRUE(rig.UntilReceived("interrupted"));
}

TEST(TelnetPartner, SaysThatTheServerIsGone)
{
    TelnetServer server;
    ASSERT_TRUE(server.Answers());
    LineRig rig(server.Options());
    ASSERT_TRUE(rig.Opened().UntilReceived("SIZE="));
    server.Kill();
    ASSERT_TRUE(rig.UntilClosed());
    EXPECT_EQ(rig.states.back(), LineState::Closed);
    EXPECT_FALSE(rig.stateText.isEmpty());
    EXPECT_FALSE(rig.line->IsOpen());
}

} // namespace

} // namespace kestrune
