// The SSH device against dropbear, another hand's idea of the protocol: fewer algorithms, no questions of its own, no
// break. Its server needs root for a user of the test's; elsewhere there is the login as far as its password.

#include "sshd.h"

#include <comm/sshknownhosts.h>

#include <gtest/gtest.h>

namespace kestrune {

namespace {

using namespace Qt::StringLiterals;
using Choice = LineAnswer::Choice;
using Kind = LineQuestion::Kind;

class Dropbear : public PartnerServer
{
public:
    explicit Dropbear(const OwnHome& home)
        : PartnerServer(QStringLiteral(KESTRUNE_TESTS "/partners/dropbear.sh"), {home.Path(u"drop"_s), u"%1"_s}),
          home_(home)
    {}
    LineOptions Options() const
    {
        LineOptions options;
        options.device = Device::Ssh;
        options.hostName = u"tdrop@127.0.0.1"_s;
        options.hostPort = QString::number(Port());
        options.terminalName = u"vt220"_s;
        options.size = {.cols = 100, .rows = 30};
        options.ssh.keyFile = home_.Path(u"drop/keys/user_ed25519"_s);
        options.ssh.hostKeyValidation = HostKeyValidation::None;
        return options;
    }
    // Its processes of the sessions, which run as root like the listener, their parent, below unshare.
    void KillSessions()
    {
        const QByteArray listener = Output(u"pgrep"_s, {u"-P"_s, QString::number(ProcessId())}).trimmed();
        EXPECT_EQ(QProcess::execute(u"pkill"_s, {u"-KILL"_s, u"-P"_s, QString::fromLatin1(listener)}), 0)
            << listener.data();
    }

private:
    static QByteArray Output(const QString& program, const QStringList& arguments)
    {
        QProcess process;
        process.start(program, arguments);
        process.waitForFinished();
        return process.readAllStandardOutput();
    }

    const OwnHome& home_;
};

TEST(SshDropbear, AgreesAsFarAsItsPassword)
{
    const OwnHome home;
    ASSERT_EQ(QProcess::execute(u"dropbearkey"_s, {u"-t"_s, u"ed25519"_s, u"-f"_s, home.Path(u"hostkey"_s)}), 0);
    PartnerServer server(u"dropbear"_s, {u"-F"_s, u"-E"_s, u"-r"_s, home.Path(u"hostkey"_s), u"-p"_s, u"127.0.0.1:%1"_s,
                                         u"-P"_s, QString()});
    ASSERT_TRUE(server.Answers());
    LineOptions options;
    options.device = Device::Ssh;
    options.hostName = u"nobody-of-this-name@localhost:%1"_s.arg(server.Port());
    options.ssh.hostKeyValidation = HostKeyValidation::None;
    LineRig rig(options);
    rig.onQuestion = Answering({}, Choice::Cancel);
    ASSERT_TRUE(rig.Opened().UntilClosed());
    ASSERT_EQ(rig.questions.size(), 1U) << rig.errors.join(u'|').toStdString() << server.Log().data();
    EXPECT_EQ(rig.questions[0].title, u"SSH login to nobody-of-this-name@localhost:%1"_s.arg(server.Port()));
}

void WorksOnItsTerminal()
{
    const OwnHome home;
    Dropbear server(home);
    ASSERT_TRUE(server.Answers());
    LineRig rig(server.Options());
    ASSERT_TRUE(rig.Opened().UntilOpen()) << rig.errors.join(u'|').toStdString() << server.Log().data();
    rig.Type("stty -echo; echo TERM=$TERM $(stty size)\n");
    EXPECT_TRUE(rig.UntilReceived("TERM=vt220 30 100")) << rig.received.data();
    rig.received.clear();
    rig.Type("vim -u NONE -N; echo go''ne\n");
    ASSERT_TRUE(rig.UntilReceived("~\x1b") || rig.UntilReceived("~\r\n")) << rig.received.data();
    rig.line->Resize({.cols = 132, .rows = 50});
    rig.line->Break(500); // refused, and nothing else happens
    rig.Type("\x1b:q!\n");
    EXPECT_TRUE(rig.UntilReceived("gone\r\n")) << "vim takes along what is typed before it has gone";
    rig.Type("stty size\n");
    EXPECT_TRUE(rig.UntilReceived("50 132\r\n")) << rig.received.data();
    rig.Type("exit 9\n");
    ASSERT_TRUE(rig.UntilClosed());
    EXPECT_EQ(rig.exitCode, 9);
    EXPECT_EQ(rig.errors, QStringList());

    LineOptions byPassword = server.Options();
    byPassword.ssh.keyFile.clear();
    byPassword.ssh.breakCharacter = 3; // to a program that knows no break
    LineRig typed(byPassword);
    typed.onQuestion = Answering({u"secret 1"_s});
    ASSERT_TRUE(typed.Opened().UntilOpen()) << typed.errors.join(u'|').toStdString() << server.Log().data();
    EXPECT_EQ(typed.questions.size(), 1U);
    typed.Type("bash -c \"trap 'echo inter''rupted' INT; sleep 60 & echo re''ady; wait\"\n");
    ASSERT_TRUE(typed.UntilReceived("ready\r\n"));
    typed.line->Break(0);
    EXPECT_TRUE(typed.UntilReceived("interrupted")) << typed.received.data();
}

void IsLostComesBackAndHasAnotherKey()
{
    const OwnHome home;
    auto server = std::make_unique<Dropbear>(home);
    ASSERT_TRUE(server->Answers());
    LineOptions options = server->Options();
    options.ssh.hostKeyValidation = HostKeyValidation::AcceptNew;
    LineRig rig(options);
    ASSERT_TRUE(rig.Opened().UntilOpen()) << rig.errors.join(u'|').toStdString();
    server->KillSessions();
    ASSERT_TRUE(rig.UntilClosed());
    EXPECT_EQ(rig.programEnds, 0);
    LineRig again(options);
    ASSERT_TRUE(again.Opened().UntilOpen());
    EXPECT_EQ(again.questions.size(), 0U);
    server->Kill();
    ASSERT_TRUE(again.UntilClosed());
    EXPECT_EQ(again.errorWord, LineErrorWord(Device::Ssh, LineErrorNumber::ConnectionReset));

    const QByteArray name = "[127.0.0.1]:" + QByteArray::number(server->Port());
    const QByteArray known = home.Read(u".ssh/known_hosts"_s);
    EXPECT_TRUE(known.startsWith(name + " ssh-ed25519 ")) << known.data();
    ASSERT_TRUE(QFile::remove(home.Path(u"drop/keys/host_drop"_s)));
    server = std::make_unique<Dropbear>(home);
    ASSERT_TRUE(server->Answers());
    QByteArray moved = known;
    home.Write(u".ssh/known_hosts"_s, moved.replace(name, "[127.0.0.1]:" + QByteArray::number(server->Port())));
    options.hostPort = QString::number(server->Port());
    LineRig changed(options);
    changed.onQuestion = Answering({}, Choice::Cancel);
    ASSERT_TRUE(changed.Opened().UntilClosed());
    ASSERT_EQ(changed.questions.size(), 1U);
    EXPECT_EQ(changed.questions[0].kind, Kind::ChangedHost);
    EXPECT_TRUE(changed.questions[0].text.contains(
        QString::fromLatin1(comm::KeyFingerprint(known.split(' ').at(2).trimmed()))));
}

struct Story
{
    const char* name;
    void (*tell)();
};
class SshDropbearAsRoot : public testing::TestWithParam<Story>
{};
TEST_P(SshDropbearAsRoot, Serves) { GetParam().tell(); }
GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(SshDropbearAsRoot);
INSTANTIATE_TEST_SUITE_P(All, SshDropbearAsRoot,
                         testing::ValuesIn(::getuid() != 0
                                               ? std::vector<Story>{}
                                               : std::vector{Story{"Terminal", &WorksOnItsTerminal},
                                                             Story{"LossAndChange", &IsLostComesBackAndHasAnotherKey}}),
                         [](const auto& story) { return std::string(story.param.name); });

} // namespace

} // namespace kestrune
