// What stands between a network device and its host when a real proxy (tests/partners/proxy.py) refuses.

#include "scriptedhost.h"

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

constexpr int Socks5 = 1, HttpConnect = 2;

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
