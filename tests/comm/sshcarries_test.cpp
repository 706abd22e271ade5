// What an SSH session goes through and carries besides its shell, with real servers: jump hosts, commands of the user's
// configuration, forwarded ports, the agent.

#include "sshd.h"

#include <gtest/gtest.h>

#include <array>

namespace kestrune {

namespace {

using namespace Qt::StringLiterals;

// What the shell that was reached says about itself: the server's port is the third word.
bool ReachesServer(LineRig& rig, quint16 port)
{
    rig.Type("stty -echo; echo at $SSH_CONNECTION e''nd\n"); // not the echo of what is typed
    EXPECT_TRUE(rig.UntilReceived(" end\r\n")) << rig.received.data() << rig.errors.join(u'|').toStdString();
    return rig.received.contains(QByteArray(" 127.0.0.1 ") + QByteArray::number(port) + " end");
}

void ReadConfiguration(const OwnHome& home, const QStringList& lines)
{
    home.Write(u".ssh/config"_s, lines.join(u'\n').toUtf8() + '\n');
}

TEST(SshJump, GoesByTheHostsOfTheSessionOrOfTheConfiguration)
{
    const OwnHome home;
    Sshd near(home);
    Sshd far(home);
    ASSERT_TRUE(near.Answers() && far.Answers()) << near.Log().data() << far.Log().data();
    const QString user = QString::fromUtf8(Sshd::User());
    const QString nearPlace = u"%1@127.0.0.1:%2"_s.arg(user).arg(near.Port());
    const QString key = far.Key(u"user_ed25519"_s);
    const QString nearBlock =
        u"Host near\n HostName 127.0.0.1\n Port %1\n User %2\n IdentityFile %3"_s.arg(near.Port()).arg(user, key);
    const QString farBlock = u"Host far\n HostName 127.0.0.1\n Port %1\n User %2\n"_s.arg(far.Port()).arg(user);
    struct Row
    {
        const char* name;
        QString jump, host;
        QStringList configuration;
        bool jumps;
    };
    const Row rows[]{
        {"of the session", nearPlace, u"127.0.0.1"_s, {}, true},
        {"two of them, the same twice", nearPlace + u", "_s + nearPlace, u"127.0.0.1"_s, {}, true},
        {"of the configuration", u""_s, u"far"_s, {nearBlock, farBlock + u" ProxyJump near"_s}, true},
        {"as a command", u""_s, u"far"_s, {nearBlock, farBlock + u" ProxyCommand ssh -W %h:%p near"_s}, true},
        {"of a jump host",
         u"middle"_s,
         u"far"_s,
         {nearBlock, farBlock,
          u"Host middle\n HostName 127.0.0.1\n Port %1\n User %2\n ProxyJump near"_s.arg(near.Port()).arg(user)},
         true},
        {"switched off", u"none"_s, u"far"_s, {nearBlock, farBlock + u" ProxyJump near"_s}, false},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        ReadConfiguration(home, row.configuration);
        near.Log();
        LineOptions options = far.Options();
        options.hostName = row.host;
        options.ssh.jump = row.jump;
        LineRig rig(options);
        ASSERT_TRUE(rig.Opened().Until([&] { return rig.line->IsOpen() || rig.closed > 0; }));
        ASSERT_TRUE(rig.line->IsOpen()) << rig.errors.join(u'|').toStdString();
        EXPECT_TRUE(ReachesServer(rig, far.Port())) << rig.received.data();
        EXPECT_EQ(near.Log().contains("Accepted publickey"), row.jumps);
    }
}

TEST(SshJump, CarriesAFloodAndTellsWhenItIsLost)
{
    const OwnHome home;
    Sshd near(home);
    Sshd far(home);
    ASSERT_TRUE(near.Answers() && far.Answers()) << near.Log().data() << far.Log().data();
    LineOptions options = far.Options();
    options.ssh.jump = u"%1@127.0.0.1:%2"_s.arg(QString::fromUtf8(Sshd::User())).arg(near.Port());
    LineRig rig(options);
    ASSERT_TRUE(rig.Opened().UntilOpen()) << rig.errors.join(u'|').toStdString();
    rig.keep = false;
    rig.Type("stty -echo; head -c 20000000 /dev/zero; echo\n");
    ASSERT_TRUE(rig.Until([&] { return rig.receivedBytes >= 20000000; }));
    near.Kill();
    ASSERT_TRUE(rig.UntilClosed());
    EXPECT_EQ(rig.errorWord, LineErrorWord(Device::Ssh, LineErrorNumber::ConnectionReset));
}

TEST(SshJump, SaysWhereTheWayEnds)
{
    const OwnHome home;
    Sshd near(home);
    ASSERT_TRUE(near.Answers());
    const QString user = QString::fromUtf8(Sshd::User());
    ReadConfiguration(home, {u"Host a\n ProxyJump b\nHost b\n ProxyJump a"_s});
    struct Row
    {
        QString jump, words;
        quint16 number;
    };
    for (const Row& row :
         {Row{u"%1@127.0.0.1:%2"_s.arg(user).arg(near.Port()), u"the host 127.0.0.1 on the way does not lead there"_s,
              LineErrorNumber::HostUnreachable},
          Row{u"a"_s, u"lead in a circle"_s, LineErrorNumber::InvalidArgument},
          Row{u"%1@127.0.0.1:%2"_s.arg(user).arg(FreePort()), u"connection refused"_s,
              LineErrorNumber::ConnectionRefused}}) {
        LineOptions options = near.Options();
        options.hostName = u"127.0.0.1"_s;
        options.hostPort = QString::number(FreePort());
        options.ssh.jump = row.jump;
        LineRig rig(options);
        ASSERT_TRUE(rig.Opened().UntilClosed());
        EXPECT_EQ(rig.errorWord, LineErrorWord(Device::Ssh, row.number)) << rig.errors.join(u'|').toStdString();
        EXPECT_TRUE(rig.errors.join(u' ').contains(row.words)) << rig.errors.join(u'|').toStdString();
    }
}

quint32 RefusalOf(const LineOptions& options)
{
    LineRig rig(options);
    EXPECT_TRUE(rig.Opened().UntilClosed());
    return rig.errorWord;
}

TEST(SshJump, ACommandOfTheConfigurationConnects)
{
    const OwnHome home;
    Sshd server(home);
    ASSERT_TRUE(server.Answers());
    ReadConfiguration(home, {u"Host far\n HostName nowhere.example\n Port %1\n"
                             " ProxyCommand echo %h %p %r >%2; exec socat - TCP:127.0.0.1:%p"_s.arg(server.Port())
                                 .arg(home.Path(u"asked"_s))});
    LineOptions options = server.Options();
    options.hostName = u"far"_s;
    LineRig rig(options);
    ASSERT_TRUE(rig.Opened().UntilOpen()) << rig.errors.join(u'|').toStdString();
    EXPECT_TRUE(ReachesServer(rig, server.Port()));
    EXPECT_EQ(home.Read(u"asked"_s),
              "nowhere.example " + QByteArray::number(server.Port()) + ' ' + Sshd::User() + '\n');

    // What a session file says goes into a shell's hands here.
    const QString harm = home.Path(u"harm"_s);
    ReadConfiguration(home, {u"Host *\n ProxyCommand true %h %n %r"_s});
    LineOptions evil = options;
    for (const QString& name : {u"`touch$IFS%1`@far"_s.arg(harm), u"$(touch${IFS}%1)@far"_s.arg(harm)}) {
        evil.hostName = name;
        EXPECT_EQ(RefusalOf(evil), LineErrorWord(Device::Ssh, LineErrorNumber::InvalidArgument));
    }
    evil = options;
    evil.userName = "-oProxyCommand=x";
    EXPECT_EQ(RefusalOf(evil), LineErrorWord(Device::Ssh, LineErrorNumber::InvalidArgument));
    evil = options;
    for (const QString& jump : {u"`touch$IFS%1`"_s.arg(harm), u"a;touch %1"_s.arg(harm), u"-oProxyCommand=x"_s}) {
        evil.ssh.jump = jump;
        EXPECT_EQ(RefusalOf(evil), LineErrorWord(Device::Ssh, LineErrorNumber::InvalidArgument));
    }
    EXPECT_FALSE(QFile::exists(harm));

    ReadConfiguration(home, {u"Host far\n ProxyCommand no-such-program %h"_s});
    LineRig broken(options);
    ASSERT_TRUE(broken.Opened().UntilClosed());
    EXPECT_EQ(broken.errorWord, LineErrorWord(Device::Ssh, LineErrorNumber::ConnectionReset))
        << broken.errors.join(u'|').toStdString();
}

// --- forwarded ports

// A server that gives back what it gets, and ends when its caller does.
class EchoHost
{
public:
    EchoHost()
    {
        server_.listen(QHostAddress::LocalHost);
        QObject::connect(&server_, &QTcpServer::newConnection, &server_, [this] {
            QTcpSocket* caller = server_.nextPendingConnection();
            QObject::connect(caller, &QIODevice::readyRead, caller, [caller] { caller->write(caller->readAll()); });
        });
    }
    quint16 Port() const { return server_.serverPort(); }

private:
    QTcpServer server_;
};

QByteArray Pattern(qsizetype size)
{
    QByteArray bytes(size, Qt::Uninitialized);
    for (qsizetype i = 0; i < size; ++i)
        bytes[i] = static_cast<char>(i * 31 + i / 251);
    return bytes;
}

// All of it comes back by the connection, and then its end.
bool Echoes(LineRig& rig, QTcpSocket& caller, const QByteArray& bytes)
{
    QByteArray back;
    caller.write(bytes);
    const bool whole = rig.Until([&] {
        back += caller.readAll();
        return back.size() >= bytes.size() || caller.state() == QAbstractSocket::UnconnectedState;
    });
    EXPECT_EQ(back.size(), bytes.size());
    return whole && back == bytes;
}

TEST(SshForwards, CarryPortsInBothDirectionsAndTheShellGoesOn)
{
    const OwnHome home;
    Sshd server(home);
    ASSERT_TRUE(server.Answers());
    EchoHost echo;
    const quint16 local = FreePort(), remote = FreePort(), dynamic = FreePort();
    LineOptions options = server.Options();
    options.ssh.forwards =
        u"L%1:localhost:%4, R%2:localhost:%4, D%3"_s.arg(local).arg(remote).arg(dynamic).arg(echo.Port());
    LineRig rig(options);
    ASSERT_TRUE(rig.Opened().UntilOpen()) << rig.errors.join(u'|').toStdString();
    const QByteArray pattern = Pattern(3000000);

    std::array<QTcpSocket, 4> callers;
    const QByteArray target = "\3\x9localhost" + QByteArray(1, char(echo.Port() >> 8)) + char(echo.Port() & 255);
    for (std::size_t i = 0; i < callers.size(); ++i) {
        callers.at(i).connectToHost(QHostAddress::LocalHost, std::array{local, local, remote, dynamic}.at(i));
        ASSERT_TRUE(rig.Until([&] { return callers[i].state() == QAbstractSocket::ConnectedState; }));
    }
    callers[3].write(QByteArray("\5\1\0\5\1\0", 6) + target);
    ASSERT_TRUE(rig.Until([&] { return callers[3].bytesAvailable() >= 12; }));
    EXPECT_EQ(callers[3].read(12), QByteArray("\5\0\5\0\0\1\0\0\0\0\0\0", 12));
    for (QTcpSocket& caller : callers)
        EXPECT_TRUE(Echoes(rig, caller, pattern));
    EXPECT_TRUE(ReachesServer(rig, server.Port()));
    callers[0].disconnectFromHost();
    callers[1].abort();
    EXPECT_TRUE(Echoes(rig, callers[2], "still here"));
    rig.line->Close();
    EXPECT_TRUE(rig.UntilClosed());
    EXPECT_TRUE(rig.Until([&] {
        return callers[2].state() == QAbstractSocket::UnconnectedState &&
               callers[3].state() == QAbstractSocket::UnconnectedState;
    }));
}

TEST(SshForwards, SayWhatCannotBeHadAndCloseWhatLeadsNowhere)
{
    const OwnHome home;
    Sshd server(home, {u"AllowTcpForwarding local"_s});
    ASSERT_TRUE(server.Answers());
    EchoHost taken;
    const quint16 local = FreePort();
    LineOptions options = server.Options();
    options.ssh.forwards = u"L127.0.0.1:%1:h:1, R%2:localhost:1, L%3:localhost:%4"_s.arg(taken.Port())
                               .arg(FreePort())
                               .arg(local)
                               .arg(FreePort());
    LineRig rig(options);
    ASSERT_TRUE(rig.Opened().UntilOpen());
    EXPECT_TRUE(rig.UntilReceived("[Port " + QByteArray::number(taken.Port()) +
                                  " is not forwarded: Address already in use]\r\n"))
        << rig.received.data();
    EXPECT_TRUE(rig.received.contains("[The host does not forward its port ")) << rig.received.data();
    QTcpSocket caller;
    caller.connectToHost(QHostAddress::LocalHost, local);
    EXPECT_TRUE(rig.Until([&] { return caller.state() == QAbstractSocket::ConnectedState; }));
    EXPECT_TRUE(rig.Until([&] { return caller.state() == QAbstractSocket::UnconnectedState; }));
    EXPECT_TRUE(ReachesServer(rig, server.Port())) << "the session does not mind";

    options.ssh.forwards = u"L80"_s;
    LineRig wrong(options);
    ASSERT_TRUE(wrong.Opened().UntilClosed());
    EXPECT_EQ(wrong.errorWord, LineErrorWord(Device::Ssh, LineErrorNumber::InvalidArgument));
    EXPECT_TRUE(wrong.errors.join(u' ').contains(u"\"L80\""_s));
}

TEST(SshForwards, LendTheAgentOnlyWhenTheSessionSaysSo)
{
    const OwnHome home;
    Sshd server(home);
    ASSERT_TRUE(server.Answers());
    PartnerServer agent(u"ssh-agent"_s, {u"-D"_s, u"-a"_s, home.Path(u"agent"_s)});
    ASSERT_TRUE(WaitUntil([&] { return QFile::exists(home.Path(u"agent"_s)); }));
    qputenv("SSH_AUTH_SOCK", home.Path(u"agent"_s).toUtf8());
    ASSERT_EQ(QProcess::execute(u"ssh-add"_s, {u"-q"_s, server.Key(u"user_ed25519"_s)}), 0);
    for (const bool lent : {false, true}) {
        LineOptions options = server.Options();
        options.ssh.auth = SshAuth::Agent;
        options.ssh.forwardAgent = lent;
        LineRig rig(options);
        ASSERT_TRUE(rig.Opened().UntilOpen()) << rig.errors.join(u'|').toStdString();
        rig.Type("stty -echo; ssh-add -l; ssh-add -l; echo e$((1))nd\n");
        EXPECT_TRUE(rig.UntilReceived("e1nd")) << rig.received.data();
        EXPECT_EQ(rig.received.contains("(ED25519)"), lent) << rig.received.data();
    }
    qunsetenv("SSH_AUTH_SOCK");
}

} // namespace

} // namespace kestrune
