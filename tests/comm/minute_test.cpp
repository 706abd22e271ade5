// A minute in which nothing that the host sends arrives, in real time: TCP's own patience is what is tested, and that
// the window does not feel it.

#include "farhosts.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>

namespace kestrune {

namespace {

using namespace std::chrono_literals;

constexpr auto CatScript = "#!/bin/sh\nstty raw -echo\necho there\nexec cat\n";
constexpr int LinesTyped = 20;

QByteArray AllTyped()
{
    QByteArray all;
    for (int i = 0; i < LinesTyped; ++i)
        all += "typed in minute " + QByteArray::number(i) + '.';
    return all;
}

TEST(NetworkForAMinute, NothingIsLostAndTheEventLoopTurns)
{
    const TwoHosts hosts;
    const OwnHome home;
    const FarTelnet telnet(hosts, CatScript);
    const FarTlsEcho tls(hosts);
    const FarSsh ssh(hosts, home);
    LineRig overTelnet(telnet.Options()), overTls(FarTlsEcho::Options()), overSsh(ssh.Options());
    const std::array rigs{&overTelnet, &overTls, &overSsh};
    for (LineRig* rig : rigs)
        ASSERT_TRUE(rig->Opened().UntilOpen()) << rig->errors.join(u'|').toStdString();
    overTls.Type("there");
    overSsh.Type("stty raw -echo; echo th''ere; exec cat\n");
    for (LineRig* rig : rigs) {
        ASSERT_TRUE(rig->UntilReceived("there"));
        rig->received.clear();
    }

    hosts.DropAnswers(true);
    QElapsedTimer dark, sinceTurn;
    dark.start();
    sinceTurn.start();
    qint64 longestTurn = 0;
    QTimer turns, typing;
    QObject::connect(&turns, &QTimer::timeout, [&] { longestTurn = std::max(longestTurn, sinceTurn.restart()); });
    int typed = 0;
    QObject::connect(&typing, &QTimer::timeout, [&] {
        for (LineRig* rig : rigs)
            if (typed < LinesTyped)
                rig->Type("typed in minute " + QByteArray::number(typed) + '.');
        ++typed;
    });
    turns.start(10ms);
    typing.start(2s);
    ASSERT_TRUE(WaitUntil([&] { return dark.hasExpired(60'000); }, 70s));
    hosts.DropAnswers(false);
    // By now TCP waits for as long again between its tries.
    for (LineRig* rig : rigs) {
        const auto complete = [rig] { return rig->received.endsWith(AllTyped()); };
        EXPECT_TRUE(WaitUntil(complete, 120s)) << rig->received.constData();
        EXPECT_TRUE(rig->line->IsOpen());
        EXPECT_EQ(rig->errors, QStringList());
    }
    EXPECT_LT(longestTurn, 1000) << "milliseconds in which a key would have waited";
}

} // namespace

} // namespace kestrune
