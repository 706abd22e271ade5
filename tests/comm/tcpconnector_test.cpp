#include "scriptedhost.h"

#include <comm/tcpconnector.h>
#include <fakes/fakeclock.h>

#include <QHostAddress>
#include <QHostInfo>

#include <gtest/gtest.h>

namespace kestrune {

namespace {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

LineOptions ByProxy(const ScriptedHost& proxy, int kind, const QString& user = {})
{
    LineOptions options;
    options.device = Device::PicLan;
    options.hostName = u"host.example"_s; // which only the proxy can look up
    options.hostPort = u"23"_s;
    options.proxy = {.kind = kind, .host = u"127.0.0.1"_s, .port = QString::number(proxy.Port()), .user = user};
    return options;
}

const QByteArray kSocksDone("\5\0\0\1\0\0\0\0\0\0", 10);

TEST(TcpConnector, TalksThroughASocksProxyAndLosesNoByteOfTheHosts)
{
    ScriptedHost proxy;
    LineRig rig(ByProxy(proxy, 1));
    rig.line->Open();
    ASSERT_TRUE(proxy.IsCalled(rig));
    ASSERT_TRUE(proxy.Hears(rig, QByteArray("\5\1\0", 3)));
    proxy.Says(QByteArray("\5\0", 2));
    ASSERT_TRUE(proxy.Hears(rig, "host.example"));
    proxy.Says(kSocksDone + "login: "); // the host is quick
    ASSERT_TRUE(rig.UntilReceived("login: "));
    rig.Type("ann\r");
    EXPECT_TRUE(proxy.Hears(rig, "ann\r"));
    proxy.Caller().disconnectFromHost();
    ASSERT_TRUE(rig.UntilClosed());
    EXPECT_EQ(rig.errors, QStringList());
    EXPECT_EQ(rig.states,
              (std::vector{LineState::Resolving, LineState::Connecting, LineState::Connected, LineState::Closed}));
}

TEST(TcpConnector, AsksForTheProxysPasswordAndTriesAgain)
{
    ScriptedHost proxy;
    LineRig rig(ByProxy(proxy, 2));
    rig.line->Open();
    ASSERT_TRUE(proxy.IsCalled(rig));
    ASSERT_TRUE(proxy.Hears(rig, "\r\n\r\n"));
    const QByteArray wantsLogin = "HTTP/1.1 407 Authentication Required\r\n\r\n";
    for (int attempt = 0; attempt < 2; ++attempt) {
        proxy.Says(wantsLogin);
        ASSERT_TRUE(rig.Until([&] { return std::ssize(rig.questions) == attempt + 1; }));
        const LineQuestion& question = rig.questions.back();
        ASSERT_EQ(question.fields.size(), 2u);
        EXPECT_EQ(question.text, attempt == 0 ? u"The proxy 127.0.0.1 wants to know who asks for host.example."_s
                                              : u"The proxy refused the name or the password."_s);
        LineAnswer answer{.question = question.id, .choice = LineAnswer::Choice::Continue};
        answer.values.emplace_back("Aladdin");
        answer.values.emplace_back(attempt == 0 ? "wrong" : "open sesame");
        rig.line->Answer(std::move(answer));
        // The old connection is gone, whatever the proxy does with it.
        ASSERT_TRUE(rig.Until([&] { return proxy.Caller().state() != QAbstractSocket::ConnectedState; }));
        ASSERT_TRUE(proxy.IsCalled(rig));
        ASSERT_TRUE(proxy.Hears(rig, "\r\n\r\n"));
    }
    EXPECT_TRUE(proxy.Hears(rig, "Basic QWxhZGRpbjpvcGVuIHNlc2FtZQ=="));
    proxy.Says("HTTP/1.1 200 OK\r\n\r\nwelcome");
    EXPECT_TRUE(rig.UntilReceived("welcome"));
}

TEST(TcpConnector, SaysWhatTheProxySays)
{
    struct Case
    {
        int kind;
        QByteArray answer;
        quint32 word;
        QString text;
    };
    const QString begin = u"Unable to connect to host.example port 23: proxy 127.0.0.1 port %1: "_s;
    const std::vector<Case> cases{
        {1, QByteArray("\5\0\5\5", 4), 0x2274D, u"the host refused the connection"_s},
        {1, QByteArray("\5\0\5\2", 4), 0x2271D, u"it does not allow this connection"_s},
        {1, "SSH-2.0-x", 0x22726, u"it does not answer as a proxy of this kind"_s},
        {2, "HTTP/1.1 403 Not by me\r\n\r\n", 0x2271D, u"it does not allow this connection (HTTP/1.1 403 Not by me)"_s},
        {1, {}, 0x22746, u"it has closed the connection"_s},
    };
    for (const Case& c : cases) {
        ScriptedHost proxy;
        LineRig rig(ByProxy(proxy, c.kind));
        rig.line->Open();
        ASSERT_TRUE(proxy.IsCalled(rig));
        proxy.Says(c.answer);
        if (c.answer.isEmpty())
            proxy.Caller().disconnectFromHost();
        ASSERT_TRUE(rig.UntilClosed());
        EXPECT_EQ(rig.errors, QStringList(begin.arg(proxy.Port()) + c.text));
        EXPECT_EQ(rig.errorWord, c.word) << c.text.toStdString();
    }

    LineOptions nobody;
    nobody.device = Device::PicLan;
    nobody.hostName = u"h"_s;
    nobody.hostPort = u"1"_s;
    nobody.proxy.kind = 1;
    LineRig rig(nobody);
    ASSERT_TRUE(rig.Opened().UntilClosed());
    EXPECT_EQ(rig.errors, QStringList(u"Unable to connect to h port 1: the settings of the proxy name no usable host "
                                      "and port"_s));
}

TEST(TcpConnector, GivesUpOnAProxyThatSaysNothingButNotWhileItAsks)
{
    for (const bool asks : {false, true}) {
        ScriptedHost proxy;
        FakeClock clock;
        LineRig rig(ByProxy(proxy, 2, u"ann"_s), clock);
        rig.line->Open();
        ASSERT_TRUE(proxy.IsCalled(rig));
        ASSERT_TRUE(proxy.Hears(rig, "\r\n\r\n"));
        if (asks) {
            proxy.Says("HTTP/1.1 407 Who\r\n\r\n");
            ASSERT_TRUE(rig.Until([&] { return !rig.questions.empty(); }));
            EXPECT_EQ(rig.questions.back().fields.size(), 1u) << "the name is known";
        }
        clock.Advance(1h);
        QCoreApplication::processEvents();
        EXPECT_EQ(rig.closed > 0, !asks);
        rig.line->Close();
        EXPECT_TRUE(rig.UntilClosed());
    }
}

TEST(TcpConnector, TriesTheFamiliesInTurn)
{
    const auto order = [](const char* found) {
        QList<QHostAddress> addresses;
        for (const QByteArray& name : QByteArray(found).split(' '))
            addresses += QHostAddress(QString::fromLatin1(name));
        QStringList names;
        for (const QHostAddress& address : comm::TcpConnector::Order(addresses))
            names += address.toString();
        return names.join(u' ');
    };
    EXPECT_EQ(order("::1 ::2 10.0.0.1 10.0.0.2 10.0.0.3"), u"::1 10.0.0.1 ::2 10.0.0.2 10.0.0.3"_s);
    EXPECT_EQ(order("10.0.0.1 ::1 ::2"), u"10.0.0.1 ::1 ::2"_s);
    EXPECT_EQ(order("10.0.0.1"), u"10.0.0.1"_s);
    const QList<QHostAddress> many(100, QHostAddress(QHostAddress::LocalHost));
    EXPECT_EQ(comm::TcpConnector::Order(many).size(), 16u);
    EXPECT_TRUE(comm::TcpConnector::Order({}).empty());
}

// A socket that never gets an answer from the address that is set aside for examples (RFC 5737).
class PatientSocket : public QTcpSocket
{
    Q_OBJECT

public:
    using QTcpSocket::connectToHost;
    void connectToHost(const QString& name, quint16 port, OpenMode mode, NetworkLayerProtocol protocol) override
    {
        if (name != u"192.0.2.1"_s)
            QTcpSocket::connectToHost(name, port, mode, protocol);
    }
};

class Connecting : public comm::TcpConnectorEvents
{
public:
    Connecting(const QStringList& addresses, quint16 port)
        : connector_({.host = u"many.example"_s, .port = port}, *this, clock, Calls(addresses))
    {
        connector_.Start();
    }
    void TcpStep(LineState, const QString&) override {}
    void TcpConnected(std::unique_ptr<QTcpSocket> made) override { socket = std::move(made); }
    void TcpFailed(quint16 number, const QString&) override { failure = number; }
    void TcpWantsProxyLogin(const QString&, bool) override {}
    bool Ends()
    {
        return WaitUntil([this] { return socket || failure != 0; });
    }

    FakeClock clock;
    std::unique_ptr<QTcpSocket> socket;
    quint16 failure = 0;

private:
    static comm::TcpCalls Calls(const QStringList& names)
    {
        comm::TcpCalls calls;
        calls.makeSocket = [] { return std::make_unique<PatientSocket>(); };
        calls.lookUp = [names](const QString&, QObject*, const std::function<void(const QHostInfo&)>& found) {
            QList<QHostAddress> addresses;
            for (const QString& name : names)
                addresses += QHostAddress(name);
            QHostInfo info(1);
            info.setAddresses(addresses);
            found(info);
            return -1;
        };
        return calls;
    }

    comm::TcpConnector connector_;
};

TEST(TcpConnector, FallsBackToTheNextAddress)
{
    QTcpServer server;
    ASSERT_TRUE(server.listen(QHostAddress(u"127.0.0.1"_s)));
    Connecting refused({u"127.0.0.2"_s, u"127.0.0.1"_s}, server.serverPort());
    ASSERT_TRUE(refused.Ends());
    EXPECT_TRUE(refused.socket) << "at once, without the clock";

    Connecting silent({u"192.0.2.1"_s, u"127.0.0.1"_s}, server.serverPort());
    silent.clock.Advance(249ms);
    QCoreApplication::processEvents();
    EXPECT_FALSE(silent.socket);
    silent.clock.Advance(1ms);
    ASSERT_TRUE(silent.Ends());
    EXPECT_TRUE(silent.socket);

    Connecting both({u"192.0.2.1"_s, u"127.0.0.2"_s}, server.serverPort());
    both.clock.Advance(30s);
    ASSERT_TRUE(both.Ends());
    EXPECT_EQ(both.failure, LineErrorNumber::TimedOut);

    Connecting none({u"127.0.0.2"_s, u"127.0.0.3"_s}, server.serverPort());
    ASSERT_TRUE(none.Ends());
    EXPECT_EQ(none.failure, LineErrorNumber::ConnectionRefused);
}

} // namespace

} // namespace kestrune

#include "tcpconnector_test.moc"
