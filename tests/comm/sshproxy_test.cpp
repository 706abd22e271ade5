// SSH through a proxy, to a real server.

#include "relay.h"
#include "sshd.h"

#include <fakes/fakeclock.h>

#include <gtest/gtest.h>

namespace kestrune {

namespace {

using namespace Qt::StringLiterals;

TEST(SshProxy, CarriesASessionThroughEitherKind)
{
    const OwnHome home;
    Sshd server(home);
    ASSERT_TRUE(server.Answers());
    for (const int kind : {1, 2}) {
        Relay relay;
        LineOptions options = server.Options();
        options.hostName = u"host.example"_s; // which only the proxy can look up
        options.proxy = relay.Proxy(kind);
        LineRig rig(options);
        ASSERT_TRUE(rig.Opened().UntilOpen()) << rig.errors.join(u'|').toStdString();
        EXPECT_EQ(relay.asked, "host.example");
        rig.Type("echo th$((1))rough; exit 5\n");
        ASSERT_TRUE(rig.UntilClosed());
        EXPECT_TRUE(rig.received.contains("th1rough"));
        EXPECT_EQ(rig.exitCode, 5);
    }
}

TEST(SshProxy, AsksForTheProxysPasswordBeforeAnythingOfTheHosts)
{
    const OwnHome home;
    Sshd server(home);
    ASSERT_TRUE(server.Answers());
    for (const int kind : {1, 2}) {
        Relay relay;
        relay.user = "ann";
        relay.password = "open sesame";
        LineOptions options = server.Options();
        options.proxy = relay.Proxy(kind);
        LineRig rig(options);
        rig.onQuestion = [&](const LineQuestion& question) {
            EXPECT_EQ(question.title, u"Login at the proxy 127.0.0.1"_s);
            LineAnswer answer{.question = question.id, .choice = LineAnswer::Choice::Continue};
            answer.values.push_back(Secret(rig.questions.size() == 1 ? "wrong" : "open sesame"));
            return answer;
        };
        ASSERT_TRUE(rig.Opened().UntilOpen()) << rig.errors.join(u'|').toStdString();
        EXPECT_EQ(rig.questions.size(), 2U);
        EXPECT_GE(relay.refused, 1);

        LineRig nobody(options);
        nobody.onQuestion = Answering({}, LineAnswer::Choice::Nobody);
        ASSERT_TRUE(nobody.Opened().UntilClosed());
        EXPECT_EQ(nobody.errorWord, LineErrorWord(Device::Ssh, LineErrorNumber::AccessDenied));
        EXPECT_TRUE(nobody.errors.join(u' ').contains(u"nobody to ask"_s));
        LineRig cancelled(options);
        cancelled.onQuestion = Answering({}, LineAnswer::Choice::Cancel);
        ASSERT_TRUE(cancelled.Opened().UntilClosed());
        EXPECT_EQ(cancelled.errors, QStringList()) << "the user knows";
    }
}

TEST(SshProxy, TakesWhatTheHostSaysByteByByte)
{
    const OwnHome home;
    Sshd server(home);
    ASSERT_TRUE(server.Answers());
    Relay relay;
    relay.drips = true;
    LineOptions options = server.Options();
    options.proxy = relay.Proxy(1);
    LineRig rig(options);
    ASSERT_TRUE(rig.Opened().UntilOpen()) << rig.errors.join(u'|').toStdString();
    rig.Type("stty -echo; seq 1 300; echo e$((1))nd\n");
    EXPECT_TRUE(rig.UntilReceived("\n299\r\n300\r\ne1nd\r\n"));
}

// No end, no reset, only silence: what a network does that has lost the way.
TEST(SshProxy, NoticesAConnectionThatHasBeenSwallowed)
{
    const OwnHome home;
    Sshd server(home);
    ASSERT_TRUE(server.Answers());
    Relay relay;
    LineOptions options = server.Options();
    options.proxy = relay.Proxy(1);
    options.ssh.keepAlive = 5;
    FakeClock clock;
    LineRig rig(options, clock);
    ASSERT_TRUE(rig.Opened().UntilOpen()) << rig.errors.join(u'|').toStdString();
    for (int i = 0; i < 10; ++i) { // a host that answers is not given up
        const QByteArray mark = "alive" + QByteArray::number(i);
        clock.Advance(std::chrono::seconds(5));
        rig.Type("echo '" + mark + "'\n");
        ASSERT_TRUE(rig.UntilReceived(mark + "\r\n"));
    }
    relay.swallows = true;
    ASSERT_TRUE(rig.Until([&] {
        clock.Advance(std::chrono::seconds(5));
        return rig.closed > 0;
    }));
    EXPECT_EQ(rig.errorWord, LineErrorWord(Device::Ssh, LineErrorNumber::TimedOut));
    EXPECT_EQ(rig.errors.join(u' '), u"The connection to localhost was lost: the host does not answer any more."_s);
}

} // namespace

} // namespace kestrune
