// The SSH device against real servers: OpenSSH and dropbear, with users, keys and configuration of their own.

#include "sshd.h"

#include <comm/sshknownhosts.h>

#include <QTimer>

#include <gtest/gtest.h>

#include <utility>

namespace kestrune {

namespace {

using namespace Qt::StringLiterals;
using Choice = LineAnswer::Choice;
using Kind = LineQuestion::Kind;

TEST(SshPartner, RunsAShellOnItsTerminal)
{
    const OwnHome home;
    Sshd server(home);
    ASSERT_TRUE(server.Answers());
    LineRig rig(server.Options());
    ASSERT_TRUE(rig.Opened().UntilOpen()) << rig.errors.join(u'|').toStdString() << server.Log().data();
    EXPECT_EQ(rig.deviceStatus,
              u"SSH %1@localhost:%2"_s.arg(QString::fromLatin1(server.Options().userName)).arg(server.Port()));
    rig.Type("stty -echo; echo TERM=$TERM $(stty size)\n");
    EXPECT_TRUE(rig.UntilReceived("TERM=vt220 30 100")) << rig.received.data();
    rig.line->Resize({.cols = 132, .rows = 50});
    rig.Type("stty size\n");
    EXPECT_TRUE(rig.UntilReceived("50 132\r\n")) << rig.received.data();
    rig.Type("echo gr\xc3\xbc\xc3\x9f dich; exit 7\n");
    ASSERT_TRUE(rig.UntilClosed());
    EXPECT_TRUE(rig.received.contains("gr\xc3\xbc\xc3\x9f dich")) << rig.received.data();
    EXPECT_EQ(rig.programEnds, 1);
    EXPECT_EQ(rig.exitCode, 7);
    EXPECT_EQ(rig.errors, QStringList());
}

// Each key is typed the moment the one before has come back: it once was overlooked then, until the next one.
TEST(SshPartner, TakesEveryKeyAtOnce)
{
    const OwnHome home;
    Sshd server(home);
    ASSERT_TRUE(server.Answers());
    LineRig rig(server.Options());
    ASSERT_TRUE(rig.Opened().UntilOpen());
    rig.Type("stty raw -echo; echo begin; exec cat\n");
    ASSERT_TRUE(rig.UntilReceived("begin\n"));
    int echoed = 0;
    for (bool comes = true; comes && echoed < 500; echoed += comes ? 1 : 0) {
        rig.received.clear();
        rig.Type(QByteArray(1, static_cast<char>('a' + echoed % 26)));
        comes = rig.Until([&] { return !rig.received.isEmpty(); });
    }
    EXPECT_EQ(echoed, 500);
}

struct WayIn
{
    const char* name;
    SshAuth auth;
    const char* user;           // the server's own test user; empty: the one that runs the test
    const char* key;            // empty: none
    std::vector<QString> typed; // for the one question that comes; none: it must not come
    const char* asked;          // what its first field is labelled
};

void PrintTo(const WayIn& way, std::ostream* out) { *out << way.name; }

class SshWaysIn : public testing::TestWithParam<WayIn>
{};

TEST_P(SshWaysIn, ReachTheShell)
{
    const WayIn& way = GetParam();
    const OwnHome home;
    Sshd server(home);
    ASSERT_TRUE(server.Answers());
    LineOptions options = server.Options();
    if (*way.user)
        options.userName = way.user;
    options.ssh.auth = way.auth;
    options.ssh.keyFile = *way.key ? server.Key(QString::fromLatin1(way.key)) : QString();
    LineRig rig(options);
    rig.onQuestion = Answering(way.typed);
    ASSERT_TRUE(rig.Opened().Until([&] { return rig.line->IsOpen() || rig.closed > 0; }));
    EXPECT_TRUE(rig.line->IsOpen()) << rig.errors.join(u'|').toStdString() << server.Log().data();
    ASSERT_EQ(rig.questions.size(), way.typed.empty() ? 0U : 1U);
    if (!way.typed.empty()) {
        EXPECT_EQ(rig.questions[0].kind, Kind::Secrets);
        EXPECT_EQ(rig.questions[0].fields.at(0).label, QString::fromLatin1(way.asked));
        EXPECT_FALSE(rig.questions[0].fields.at(0).echo);
    }
}

INSTANTIATE_TEST_SUITE_P(
    ByKey, SshWaysIn,
    testing::Values(WayIn{"plain", SshAuth::Automatic, "", "user_ed25519", {}, ""},
                    WayIn{"passphrase", SshAuth::PublicKey, "", "user_rsa_pp", {u"pass phrase"_s}, "Passphrase:"},
                    WayIn{"certificate", SshAuth::PublicKey, "", "user_cert", {}, ""}),
    [](const auto& way) { return std::string(way.param.name); });

// A user with a password of the test's own exists only where the server runs as root; elsewhere these are no cases.
GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(SshWaysIn);
INSTANTIATE_TEST_SUITE_P(
    AsRootByPassword, SshWaysIn,
    testing::ValuesIn(
        ::getuid() != 0
            ? std::vector<WayIn>{}
            : std::vector{WayIn{"password", SshAuth::Password, "tpass", "", {u"secret 1"_s}, "Password:"},
                          WayIn{"interactive", SshAuth::Automatic, "tpass", "", {u"secret 1"_s}, "Password:"}}),
    [](const auto& way) { return std::string(way.param.name); });

// --- trust

TEST(SshPartner, AsksAboutAnUnknownHostAndRemembersIt)
{
    const OwnHome home;
    Sshd server(home);
    ASSERT_TRUE(server.Answers());
    LineOptions options = server.Options();
    options.ssh.hostKeyValidation = HostKeyValidation::Ask;
    home.Write(u".ssh/known_hosts"_s, "other.example ssh-ed25519 AAAA mine\n");

    LineRig careful(options);
    careful.onQuestion = Answering({}, Choice::Cancel);
    ASSERT_TRUE(careful.Opened().UntilClosed());
    EXPECT_EQ(careful.errors, QStringList()) << "the user knows";
    LineRig once(options);
    once.onQuestion = Answering({}, Choice::Continue);
    EXPECT_TRUE(once.Opened().UntilOpen());
    EXPECT_EQ(home.Read(u".ssh/known_hosts"_s), "other.example ssh-ed25519 AAAA mine\n");
    LineRig remember(options);
    remember.onQuestion = Answering({}, Choice::Update);
    EXPECT_TRUE(remember.Opened().UntilOpen());
    const QByteArray known = home.Read(u".ssh/known_hosts"_s);
    const QByteArray line = "\n[localhost]:" + QByteArray::number(server.Port()) + " ssh-ed25519 AAAA";
    EXPECT_TRUE(known.startsWith("other.example ssh-ed25519 AAAA mine\n") && known.contains(line)) << known.data();
    LineRig again(options);
    EXPECT_TRUE(again.Opened().UntilOpen());
    EXPECT_EQ(again.questions.size(), 0U);
    LineRig nobody(options);
    home.Write(u".ssh/known_hosts"_s, "");
    nobody.onQuestion = Answering({}, Choice::Nobody);
    ASSERT_TRUE(nobody.Opened().UntilClosed());
    EXPECT_EQ(nobody.errorWord, LineErrorWord(Device::Ssh, LineErrorNumber::AccessDenied));
    EXPECT_TRUE(nobody.errors.join(u' ').contains(u"nobody to ask"_s));
}

TEST(SshPartner, TellsAChangedHostAndBoundOnesByTheirFingerprints)
{
    const OwnHome home;
    Sshd server(home);
    ASSERT_TRUE(server.Answers());
    const QByteArray name = "[localhost]:" + QByteArray::number(server.Port());
    const QByteArray other = home.Read(u"sshd/keys/authority.pub"_s).split(' ').at(1);
    const QByteArray own = home.Read(u"sshd/keys/host_ed25519.pub"_s).split(' ').at(1);
    const QString otherPrint = QString::fromLatin1(comm::KeyFingerprint(other));
    const QString ownPrint = QString::fromLatin1(comm::KeyFingerprint(own));
    home.Write(u".ssh/known_hosts"_s, name + " ssh-ed25519 " + other + "\n# mine\n");
    LineOptions options = server.Options();
    options.ssh.hostKeyValidation = HostKeyValidation::AcceptNew;

    LineRig changed(options);
    changed.onQuestion = Answering({}, Choice::Update);
    EXPECT_TRUE(changed.Opened().UntilOpen());
    ASSERT_EQ(changed.questions.size(), 1U);
    EXPECT_EQ(changed.questions[0].kind, Kind::ChangedHost);
    EXPECT_TRUE(changed.questions[0].text.contains(otherPrint) && changed.questions[0].text.contains(ownPrint));
    EXPECT_EQ(home.Read(u".ssh/known_hosts"_s), "# mine\n" + name + " ssh-ed25519 " + own + '\n');

    options.ssh.hostKeyFingerprint = otherPrint;
    LineRig wrong(options);
    ASSERT_TRUE(wrong.Opened().UntilClosed());
    EXPECT_TRUE(wrong.errors.join(u' ').contains(ownPrint));
    EXPECT_EQ(wrong.questions.size(), 0U);
    options.ssh.hostKeyFingerprint = ownPrint;
    home.Write(u".ssh/known_hosts"_s, "");
    LineRig right(options);
    EXPECT_TRUE(right.Opened().UntilOpen()) << "what the session says needs no list";
    options.ssh.hostKeyFingerprint.clear();
    options.ssh.hostKeyValidation = HostKeyValidation::Strict;
    LineRig strict(options);
    ASSERT_TRUE(strict.Opened().UntilClosed());
    EXPECT_TRUE(strict.errors.join(u' ').contains(u"has not been seen before"_s));
}

// --- what goes wrong

struct Refusal
{
    const char* name;
    QString configuration; // of the server
    void (*change)(LineOptions&);
    quint16 number;
    QString words;
};

void PrintTo(const Refusal& refusal, std::ostream* out) { *out << refusal.name; }

class SshRefusals : public testing::TestWithParam<Refusal>
{};

TEST_P(SshRefusals, AreToldInWords)
{
    const OwnHome home;
    if (GetParam().configuration.contains(u"host_rsa"_s))
        QProcess::execute(u"ssh-keygen"_s,
                          {u"-q"_s, u"-t"_s, u"rsa"_s, u"-N"_s, QString(), u"-f"_s, home.Path(u"host_rsa"_s)});
    Sshd server(home, {QString(GetParam().configuration).replace(u"%1/host_rsa"_s, home.Path(u"host_rsa"_s))});
    ASSERT_TRUE(server.Answers());
    LineOptions options = server.Options();
    GetParam().change(options);
    LineRig rig(options);
    rig.onQuestion = Answering({u"wrong"_s});
    ASSERT_TRUE(rig.Opened().UntilClosed());
    EXPECT_EQ(rig.errorWord, LineErrorWord(Device::Ssh, GetParam().number));
    EXPECT_TRUE(rig.errors.join(u'|').contains(GetParam().words)) << rig.errors.join(u'|').toStdString();
    EXPECT_TRUE(rig.anyFatal);
}

INSTANTIATE_TEST_SUITE_P(
    All, SshRefusals,
    testing::Values(
        Refusal{"NoCommonCipher", u"Ciphers aes256-ctr"_s,
                [](LineOptions& options) {
                    options.ssh.cipher = 3;
                    options.ssh.onlyPreferredCipher = true;
                },
                LineErrorNumber::ProtocolNotSupported, u"no cipher in common. The host offers aes256-ctr."_s},
        Refusal{"OldCipherOfTheHost", u"Ciphers 3des-cbc"_s, [](LineOptions&) {}, LineErrorNumber::ProtocolNotSupported,
                u"The host offers 3des-cbc."_s},
        Refusal{"OldKeyExchangeOfTheHost", u"KexAlgorithms diffie-hellman-group1-sha1"_s, [](LineOptions&) {},
                LineErrorNumber::ProtocolNotSupported,
                u"no key exchange in common. The host offers diffie-hellman-group1-sha1"_s},
        Refusal{"OldCheckOfMessages", u"Ciphers aes256-ctr\nMACs hmac-md5"_s, [](LineOptions&) {},
                LineErrorNumber::ProtocolNotSupported,
                u"no way of checking messages in common. The host offers hmac-md5."_s},
        Refusal{"OldKindOfHostKey", u"HostKeyAlgorithms ssh-rsa\nHostKey %1/host_rsa"_s, [](LineOptions&) {},
                LineErrorNumber::ProtocolNotSupported, u"no kind of host key in common. The host offers ssh-rsa."_s},
        Refusal{"KeyThatTheHostDoesNotTake", u"PasswordAuthentication no\nKbdInteractiveAuthentication no"_s,
                [](LineOptions& options) { options.ssh.keyFile.replace(u"user_ed25519"_s, u"authority"_s); },
                LineErrorNumber::AccessDenied, u"The host takes: publickey. The host does not take the key"_s},
        Refusal{"KeyThatIsNotThere", u"PasswordAuthentication no\nKbdInteractiveAuthentication no"_s,
                [](LineOptions& options) { options.ssh.keyFile = u"/nowhere/key"_s; }, LineErrorNumber::AccessDenied,
                u"There is no key file /nowhere/key."_s},
        Refusal{"WrongPassword", u"KbdInteractiveAuthentication no"_s,
                [](LineOptions& options) {
                    options.ssh.auth = SshAuth::Password;
                    options.ssh.keyFile.clear();
                },
                LineErrorNumber::AccessDenied, u"Unable to log in to"_s},
        Refusal{"NoSession", u"MaxSessions 0"_s, [](LineOptions&) {}, LineErrorNumber::AccessDenied,
                u"refuses a session"_s}),
    [](const auto& refusal) { return std::string(refusal.param.name); });

TEST(SshPartner, SaysThatTheConnectionIsGoneAndAnotherLineReconnects)
{
    const OwnHome home;
    Sshd server(home);
    ASSERT_TRUE(server.Answers());
    LineRig rig(server.Options());
    ASSERT_TRUE(rig.Opened().UntilOpen());
    rig.Type("kill -9 $PPID\n"); // the server's process of this session
    ASSERT_TRUE(rig.UntilClosed());
    EXPECT_EQ(rig.programEnds, 0);
    EXPECT_FALSE(rig.stateText.isEmpty());
    LineRig again(server.Options());
    EXPECT_TRUE(again.Opened().UntilOpen());
}

// What nobody takes stays with the host, so that memory is bounded; what is typed meanwhile gets there all the same.
TEST(SshPartner, AGreetingOf100MegabytesIsHeldBackWhileNobodyReceives)
{
    const OwnHome home;
    Sshd server(home);
    ASSERT_TRUE(server.Answers());
    LineRig rig(server.Options());
    rig.keep = false;
    ASSERT_TRUE(rig.Opened().UntilOpen());
    const auto file = u"sshd/home/tkey/sent"_s; // megabytes that the host has got rid of
    rig.Type("stty -echo -opost; one=$(head -c 1000000 /dev/zero | tr '\\0' x); "
             "for ((i = 1; i <= 100; ++i)); do printf %s $one; echo $i > " +
             home.Path(file).toUtf8() + "; done; read word; echo \"<$word>\"\n");
    ASSERT_TRUE(rig.Until([&] { return rig.receivedBytes > 1'000'000; }));
    rig.line->SetReceiving(rig.receiving = false);
    const qint64 before = rig.receivedBytes;
    int sent = -1, looks = 0;
    QTimer look; // the host would be through long before
    QObject::connect(&look, &QTimer::timeout, [&] {
        const int now = home.Read(file).trimmed().toInt();
        looks = std::exchange(sent, now) == now ? looks + 1 : 0;
    });
    look.start(200);
    ASSERT_TRUE(rig.Until([&] { return looks >= 3; }));
    EXPECT_EQ(rig.receivedBytes, before);
    EXPECT_LT(sent, 30) << "the system's own buffers, and little more";
    rig.line->SetReceiving(rig.receiving = true);
    const auto all = [&] { return rig.receivedBytes >= 100'000'000; };
    EXPECT_TRUE(WaitUntil(all, std::chrono::seconds(120))) << rig.receivedBytes; // a busy machine takes its time
    rig.keep = true;
    rig.Type("through\n");
    EXPECT_TRUE(rig.UntilReceived("<through>"));
}

// RFC 4252 5.4 lets a host say anything before the login; a page of it is shown.
TEST(SshPartner, ABannerOfManyPagesIsCut)
{
    const OwnHome home;
    home.Write(u"banner"_s, "Authorised use only.\n" + QByteArray(200'000, 'x'));
    Sshd server(home, {u"Banner "_s + home.Path(u"banner"_s)});
    ASSERT_TRUE(server.Answers());
    LineRig rig(server.Options());
    ASSERT_TRUE(rig.Opened().UntilReceived("Authorised use only.\r\nxxx"));
    ASSERT_TRUE(rig.UntilOpen());
    EXPECT_LT(rig.receivedBytes, 10'000);
}

// A server that a person runs for themselves: it can let nobody in but them, and knows no passwords.
TEST(SshPartner, AServerOfAnOrdinaryUserTakesTheirKeyAndNoPassword)
{
    const OwnHome home;
    Sshd server(home, {}, AsOrdinaryUser());
    ASSERT_TRUE(server.Answers());
    LineOptions options = server.Options();
    options.userName = OrdinaryUser();
    LineRig byKey(options);
    ASSERT_TRUE(byKey.Opened().UntilOpen()) << byKey.errors.join(u'|').toStdString() << server.Log().data();
    byKey.Type("printf '\\r'; id -un; exit 4\n");
    ASSERT_TRUE(byKey.UntilClosed());
    EXPECT_TRUE(byKey.received.contains("\r" + OrdinaryUser() + "\r\n")) << byKey.received.data();
    EXPECT_EQ(byKey.exitCode, 4);

    options.ssh.auth = SshAuth::Password;
    LineRig byPassword(options);
    byPassword.onQuestion = Answering({u"secret 1"_s});
    ASSERT_TRUE(byPassword.Opened().UntilClosed());
    EXPECT_EQ(byPassword.errorWord, LineErrorWord(Device::Ssh, LineErrorNumber::AccessDenied));
    EXPECT_TRUE(byPassword.errors.join(u'|').contains(u"The host takes: "_s))
        << byPassword.errors.join(u'|').toStdString();
}

} // namespace

} // namespace kestrune
