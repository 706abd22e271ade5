// Network devices through a proxy that really passes bytes on, to a real telnet server (tests/partners/proxy.py).

#include "scriptedhost.h"
#include "telnetserver.h"

#include <gtest/gtest.h>

namespace kestrune {

namespace {

using namespace Qt::StringLiterals;

class RealProxy
{
public:
    explicit RealProxy(const QStringList& login = {}) : port_(ClosedPort())
    {
        process_.start(
            u"timeout"_s,
            QStringList{u"60"_s, QStringLiteral(KESTRUNE_TESTS "/partners/proxy.py"), QString::number(port_)} + login);
        EXPECT_TRUE(WaitUntil([this] {
            QTcpSocket caller;
            caller.connectToHost(QHostAddress::LocalHost, port_);
            return caller.waitForConnected(200);
        }));
    }
    ~RealProxy()
    {
        process_.terminate();
        process_.waitForFinished();
    }
    LineOptions::Proxy Options(int kind, const QString& user = {}) const
    {
        return {.kind = kind, .host = u"127.0.0.1"_s, .port = QString::number(port_), .user = user};
    }

private:
    QProcess process_;
    quint16 port_;
};

// The daemon drops what a script prints with its last breath: it waits to be let go.
constexpr auto ReadyScript = "#!/bin/bash\necho ready\nread line\necho \"got $line\"\nread line\n";
constexpr int Socks5 = 1, HttpConnect = 2;

TEST(ProxyPartner, ReachesAHostThatOnlyTheProxyKnows)
{
    TelnetServer server(ReadyScript);
    ASSERT_TRUE(server.Answers());
    const RealProxy open, locked({u"ann"_s, u"open sesame"_s});
    for (const int kind : {Socks5, HttpConnect})
        for (const RealProxy* proxy : {&open, &locked}) {
            LineOptions options = server.Options();
            options.hostName = u"far.example"_s;
            options.proxy = proxy->Options(kind, proxy == &locked ? u"ann"_s : QString());
            LineRig rig(options);
            rig.onQuestion = [](const LineQuestion& question) {
                LineAnswer answer{.question = question.id, .choice = LineAnswer::Choice::Continue};
                answer.values.emplace_back("open sesame");
                return answer;
            };
            ASSERT_TRUE(rig.Opened().UntilReceived("ready")) << kind << rig.errors.join(u' ').toStdString();
            EXPECT_EQ(rig.questions.size(), proxy == &locked ? 1U : 0U);
            rig.Type("hello\r");
            EXPECT_TRUE(rig.UntilReceived("got hello"));
            rig.Type("bye\r");
            ASSERT_TRUE(rig.UntilClosed());
            EXPECT_EQ(rig.errors, QStringList());
        }
}

TEST(ProxyPartner, SaysWhatIsInTheWay)
{
    const RealProxy proxy({u"ann"_s, u"open sesame"_s});
    struct Case
    {
        const char* secret; // null: the user gives none
        QString port;
        quint16 number;
    };
    const quint16 refused[] = {0, LineErrorNumber::ConnectionRefused,
                               LineErrorNumber::HostUnreachable}; // HTTP has no word for it
    for (const int kind : {Socks5, HttpConnect})
        for (const Case& c : {Case{"open sesame", QString::number(ClosedPort()), refused[kind]},
                              Case{"open sesame", u"1"_s, LineErrorNumber::AccessDenied},
                              Case{"wrong", u"23"_s, LineErrorNumber::AccessDenied},
                              Case{nullptr, u"23"_s, LineErrorNumber::AccessDenied}}) {
            LineOptions options;
            options.device = Device::Telnet;
            options.hostName = u"far.example"_s;
            options.hostPort = c.port;
            options.proxy = proxy.Options(kind, u"ann"_s);
            LineRig rig(options);
            rig.onQuestion = [&c](const LineQuestion& question) {
                LineAnswer answer{.question = question.id,
                                  .choice = c.secret ? LineAnswer::Choice::Continue : LineAnswer::Choice::Nobody};
                if (c.secret)
                    answer.values.emplace_back(c.secret);
                return answer;
            };
            ASSERT_TRUE(rig.Opened().UntilClosed());
            EXPECT_EQ(rig.errorWord, LineErrorWord(Device::Telnet, c.number))
                << kind << ' ' << rig.errors.join(u' ').toStdString();
            EXPECT_EQ(rig.errors.size(), 1);
        }
}

} // namespace

} // namespace kestrune
