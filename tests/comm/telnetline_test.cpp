#include "scriptedhost.h"

#include <fakes/fakeclock.h>

#include <gtest/gtest.h>

#include <sys/socket.h>

namespace kestrune {

namespace {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

LineOptions TelnetTo(const QString& host, const QString& port = {}, Device device = Device::Telnet)
{
    LineOptions options;
    options.device = device;
    options.hostName = host;
    options.hostPort = port;
    return options;
}

TEST(TelnetLine, ConnectsTalksAndTellsHowItWent)
{
    ScriptedHost host;
    LineRig rig(host.Options());
    ASSERT_TRUE(host.Takes(rig));
    EXPECT_EQ(rig.states, (std::vector{LineState::Resolving, LineState::Connecting, LineState::Connected}));
    EXPECT_EQ(rig.deviceStatus, u"Telnet 127.0.0.1:"_s + host.Options().hostPort);

    host.Says("login: \xff\xfb\x01"); // IAC WILL ECHO
    ASSERT_TRUE(rig.Until([&] { return rig.remoteEcho.has_value(); }));
    EXPECT_EQ(rig.received, "login: ");
    EXPECT_EQ(rig.remoteEcho, true);
    EXPECT_TRUE(host.Hears(rig, "\xff\xfd\x01"));

    rig.Type("ann\xff\r");
    EXPECT_TRUE(host.Hears(rig, "ann\xff\xff\r"));
    EXPECT_TRUE(rig.Until([&] { return rig.drained > 0; }));

    host.Says("bye");
    host.Caller().disconnectFromHost();
    ASSERT_TRUE(rig.UntilClosed());
    EXPECT_EQ(rig.received, "login: bye");
    EXPECT_EQ(rig.errors, QStringList());
    EXPECT_EQ(rig.states.back(), LineState::Closed);
    EXPECT_EQ(rig.stateText, u"The host 127.0.0.1 has closed the connection."_s);
    EXPECT_EQ(rig.closed, 1);
}

TEST(TelnetLine, BypassAndPicLanChangeNoByte)
{
    for (const Device device : {Device::Telnet, Device::PicLan}) {
        ScriptedHost host;
        LineOptions options = host.Options();
        options.device = device;
        options.telnet.bypass = device == Device::Telnet;
        options.keepaliveInterval = 60;
        options.telnet.keepaliveIsNop = true;
        LineRig rig(options);
        ASSERT_TRUE(host.Takes(rig));
        QByteArray all;
        for (int i = 0; i < 256; ++i)
            all += static_cast<char>(i);
        all += "\xff\xfd\x18\r\n";
        rig.line->Break(100);
        rig.Type(all);
        EXPECT_TRUE(host.Hears(rig, all));
        host.Says(all);
        EXPECT_TRUE(rig.UntilReceived(all));
    }
}

TEST(TelnetLine, SaysWhyItCouldNotConnect)
{
    const QString closed = QString::number(ClosedPort());
    struct Case
    {
        LineOptions options;
        quint32 word;
        QString text;
    };
    const std::vector<Case> cases{
        {TelnetTo(u"127.0.0.1"_s, closed), 0x3274D,
         u"Unable to connect to 127.0.0.1 port %1: connection refused"_s.arg(closed)},
        {TelnetTo(u"no-such-host.invalid"_s), 0x32AF9,
         u"Unable to connect to no-such-host.invalid port 23: no host of this name was found"_s},
        {TelnetTo(u" "_s), 0x32726, u"Unable to connect: the session names no host."_s},
        {TelnetTo(u"-oProxy"_s), 0x32726, u"Unable to connect: \"-oProxy\" is not a host name or address."_s},
        {TelnetTo(u"a b"_s), 0x32726, u"Unable to connect: \"a b\" is not a host name or address."_s},
        {TelnetTo(u"a\nb"_s), 0x32726, u"Unable to connect: \"a\nb\" is not a host name or address."_s},
        {TelnetTo(u"\"a\";b"_s), 0x32726, u"Unable to connect: \"\"a\";b\" is not a host name or address."_s},
        {TelnetTo(u"100%"_s), 0x32726, u"Unable to connect: \"100%\" is not a host name or address."_s},
        {TelnetTo(QString(300, u'a')), 0x32726,
         u"Unable to connect: \"%1\" is not a host name or address."_s.arg(QString(80, u'a'))},
        {TelnetTo(u"bücher.example"_s), 0x32726,
         u"Unable to connect to bücher.example: international host names are switched off for this session."_s},
        {TelnetTo(u"h"_s, u"0"_s, Device::PicLan), 0x22726, u"Unable to connect to h: the session names no port."_s},
        {TelnetTo(u"h"_s, u"65536"_s), 0x32726,
         u"Unable to connect to h: \"65536\" is not a port number or a service name."_s},
        {TelnetTo(u"h"_s, u"-1"_s), 0x32726,
         u"Unable to connect to h: \"-1\" is not a port number or a service name."_s},
        {TelnetTo(u"h"_s, u""_s, Device::PicLan), 0x22726, u"Unable to connect to h: the session names no port."_s},
        {TelnetTo(u"h"_s, u"no such"_s), 0x32726,
         u"Unable to connect to h: \"no such\" is not a port number or a service name."_s},
    };
    for (const Case& c : cases) {
        LineRig rig(c.options);
        rig.line->Open();
        EXPECT_EQ(rig.errors, QStringList()) << "nothing is told from inside Open";
        EXPECT_TRUE(rig.UntilClosed());
        EXPECT_EQ(rig.errors, QStringList(c.text));
        EXPECT_EQ(rig.errorWord, c.word);
        EXPECT_TRUE(rig.anyFatal);
        EXPECT_FALSE(rig.line->IsOpen());
    }
}

TEST(TelnetLine, GivesUpAfterItsTimeLimit)
{
    ScriptedHost host;
    struct Case
    {
        int timeout;
        std::chrono::seconds limit;
    };
    for (const Case& c : {Case{0, 30s}, Case{5, 5s}}) {
        LineOptions options = host.Options();
        options.connectTimeout = c.timeout;
        FakeClock clock;
        LineRig rig(options, clock);
        rig.line->Open();
        QCoreApplication::sendPostedEvents(rig.line ? dynamic_cast<QObject*>(rig.line.get()) : nullptr);
        ASSERT_FALSE(rig.states.empty());
        clock.Advance(c.limit - 1ms);
        EXPECT_NE(rig.states.back(), LineState::Closed);
        clock.Advance(1ms);
        ASSERT_TRUE(rig.UntilClosed());
        EXPECT_EQ(rig.errors, QStringList(u"Unable to connect to 127.0.0.1 port %1: the host does not answer"_s.arg(
                                  options.hostPort)));
        EXPECT_EQ(rig.errorWord, 0x3274Cu);
    }
}

TEST(TelnetLine, CanBeCancelledAtEachStep)
{
    ScriptedHost host;
    for (const LineState step :
         {LineState::Closed, LineState::Resolving, LineState::Connecting, LineState::Connected}) {
        LineRig rig(host.Options());
        rig.line->Open();
        if (step != LineState::Closed) {
            ASSERT_TRUE(rig.Until([&] { return std::ranges::find(rig.states, step) != rig.states.end(); }));
        }
        rig.line->Close();
        rig.line->Close();
        EXPECT_EQ(rig.closed, 0) << "nothing is told from inside Close";
        ASSERT_TRUE(rig.UntilClosed());
        EXPECT_EQ(rig.closed, 1);
        EXPECT_EQ(rig.errors, QStringList());
        EXPECT_FALSE(rig.line->IsOpen());
        rig.Type("lost");
        rig.line->Resize({});
        rig.line->Break(0);
    }
    LineRig never(host.Options());
    never.line->Close();
    EXPECT_EQ(never.line->Unsent(), 0);
}

TEST(TelnetLine, MayBeDroppedWhenItIsClosed)
{
    ScriptedHost host;
    LineRig rig(host.Options());
    rig.dropWhenClosed = true;
    ASSERT_TRUE(host.Takes(rig));
    host.Caller().abort();
    ASSERT_TRUE(rig.UntilClosed());
    EXPECT_EQ(rig.line, nullptr);
}

TEST(TelnetLine, TakesNothingWhileReceivingIsOffAndLosesNothing)
{
    ScriptedHost host;
    LineRig rig(host.Options());
    ASSERT_TRUE(host.Takes(rig));
    // Switched off again in the middle of each piece: CR NUL cuts the text into many notices.
    rig.onReceived = [&rig] {
        rig.receiving = false;
        rig.line->SetReceiving(false);
    };
    QByteArray sent, expected;
    for (int i = 0; i < 500; ++i) {
        const QByteArray line = "line " + QByteArray::number(i) + "\r";
        sent += line + '\0';
        expected += line;
    }
    host.Says(sent);
    host.Caller().disconnectFromHost();
    EXPECT_TRUE(rig.Until([&] {
        if (!rig.receiving && rig.line) {
            rig.receiving = true;
            rig.line->SetReceiving(true);
        }
        return rig.closed > 0;
    }));
    EXPECT_EQ(rig.received, expected);
}

TEST(TelnetLine, BoundsWhatAHostThatReadsNothingLeavesUnsent)
{
    ScriptedHost host;
    LineOptions options = host.Options();
    options.telnet.bypass = true;
    LineRig rig(options);
    ASSERT_TRUE(host.Takes(rig));
    host.Caller().setReadBufferSize(1);
    const QByteArray block(1'000'000, 'x');
    for (int i = 0; i < 40; ++i)
        rig.Type(block);
    EXPECT_LE(rig.line->Unsent(), Line::MaxUnsent);
    EXPECT_EQ(rig.errors.size(), 1) << "told once";
    EXPECT_EQ(rig.errorWord, 0x32747u);
    EXPECT_FALSE(rig.anyFatal);
    EXPECT_TRUE(rig.line->IsOpen());
}

TEST(TelnetLine, KeepsTheConnectionAliveByNop)
{
    ScriptedHost host;
    LineOptions options = host.Options();
    options.keepaliveInterval = 60;
    options.telnet.keepaliveIsNop = true;
    FakeClock clock;
    LineRig rig(options, clock);
    ASSERT_TRUE(host.Takes(rig));
    clock.Advance(120s);
    EXPECT_TRUE(host.Hears(rig, "\xff\xf1\xff\xf1"));
}

TEST(TelnetLine, BreaksAsTheSettingsSay)
{
    for (const bool alternate : {false, true}) {
        ScriptedHost host;
        LineOptions options = host.Options();
        options.telnet.alternateBreak = alternate;
        LineRig rig(options);
        ASSERT_TRUE(host.Takes(rig));
        rig.line->Break(250);
        EXPECT_TRUE(host.Hears(rig, alternate ? "\xff\xf4" : "\xff\xf3"));
    }
}

// The mark comes as the urgent byte that RFC 854 asks for, right after its IAC.
TEST(TelnetLine, ThrowsOldOutputAwayWhenTheHostIsUrgent)
{
    ScriptedHost host;
    LineRig rig(host.Options());
    ASSERT_TRUE(host.Takes(rig));
    rig.line->SetReceiving(false);
    host.Says("old text" + QByteArray(100'000, 'x') + "\xff");
    host.Caller().flush();
    const char mark = '\xf2';
    ASSERT_EQ(::send(static_cast<int>(host.Caller().socketDescriptor()), &mark, 1, MSG_OOB), 1);
    host.Says("new text");
    rig.line->SetReceiving(true);
    ASSERT_TRUE(rig.UntilReceived("new text"));
    EXPECT_EQ(rig.received, "new text");
}

TEST(TelnetLine, NeverTellsAUserNameThatBeginsWithADash)
{
    for (const QByteArray name : {"ann", "-fann"}) {
        ScriptedHost host;
        LineOptions options = host.Options();
        options.userName = name;
        LineRig rig(options);
        ASSERT_TRUE(host.Takes(rig));
        host.Says("\xff\xfd\x27"); // IAC DO NEW-ENVIRON
        EXPECT_TRUE(host.Hears(rig, name == "ann" ? "\xff\xfb\x27" : "\xff\xfc\x27"));
    }
}

} // namespace

} // namespace kestrune
