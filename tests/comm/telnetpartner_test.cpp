// The telnet device against a real server: the daemon of inetutils, started for each caller by socat.

#include "linerig.h"
#include "telnetserver.h"

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
constexpr auto LoginScript = R"script(#!/usr/bin/python3
import os, signal, sys, termios, tty

def say(text):
    os.write(1, (text + '\n').encode())

def size(*_):
    say('SIZE=%d %d' % os.get_terminal_size()[::-1])

signal.signal(signal.SIGWINCH, size)
signal.signal(signal.SIGINT, lambda *_: say('interrupted'))
signal.signal(signal.SIGQUIT, lambda *_: say('quit'))
say('TERM=%s USER=%s' % (os.environ.get('TERM'), os.environ.get('USER')))
size()
while True:
    line = os.read(0, 1000).strip()
    if line == b'exit':
        sys.exit()
    elif line == b'raw':
        tty.setraw(0)
        say('ready')
        taken = b''
        while len(taken) < 256:
            taken += os.read(0, 256)
        say(' '.join(map(str, taken)))
    else:
        os.write(1, b'got ' + line + b'\n')
)script";

TEST(TelnetPartner, WorksWithARealServer)
{
    TelnetServer server(LoginScript);
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
        printed += QByteArray::number(i) + (i < 255 ? " " : "\n");
    }
    rig.Type(all);
    EXPECT_TRUE(rig.UntilReceived(printed)) << rig.received.right(2000).data();

    rig.Type("exit\n");
    ASSERT_TRUE(rig.UntilClosed());
    EXPECT_EQ(rig.stateText, u"The host localhost has closed the connection."_s);
    EXPECT_EQ(rig.errors, QStringList());
}

TEST(TelnetPartner, InterruptsByTheAlternateBreak)
{
    TelnetServer server(LoginScript);
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
    TelnetServer server(LoginScript);
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
