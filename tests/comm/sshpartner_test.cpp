// The SSH device against real servers: OpenSSH and dropbear, with users, keys and configuration of their own.

#include "partnerserver.h"

#include <gtest/gtest.h>

#include <unistd.h>

namespace kestrune {

namespace {

using namespace Qt::StringLiterals;
using Choice = LineAnswer::Choice;
using Kind = LineQuestion::Kind;

constexpr auto SshdScript = KESTRUNE_TESTS "/partners/sshd.sh";

class Sshd : public PartnerServer
{
public:
    explicit Sshd(const OwnHome& home, const QStringList& configuration = {})
        : PartnerServer(QString::fromLatin1(SshdScript), QStringList{home.Path(u"sshd"_s), u"%1"_s} + configuration),
          home_(home)
    {}

    // Logs in by the key that needs no passphrase, to a host that may be trusted.
    LineOptions Options() const
    {
        LineOptions options;
        options.device = Device::Ssh;
        options.hostName = u"localhost"_s;
        options.hostPort = QString::number(Port());
        options.userName = ::getuid() == 0 ? "tkey" : qgetenv("USER");
        options.terminalName = u"vt220"_s;
        options.size = {.cols = 100, .rows = 30};
        options.ssh.keyFile = Key(u"user_ed25519"_s);
        options.ssh.hostKeyValidation = HostKeyValidation::None;
        return options;
    }
    QString Key(const QString& name) const { return home_.Path(u"sshd/keys/"_s + name); }

private:
    const OwnHome& home_;
};

// One question is answered, once each: with the values given, or with the choice alone.
std::function<LineAnswer(const LineQuestion&)> Answering(std::vector<QString> texts, Choice choice = Choice::Continue)
{
    return [=](const LineQuestion& question) {
        LineAnswer answer{.question = question.id, .choice = choice};
        for (const QString& text : texts)
            answer.values.push_back(Secret::From(text));
        return answer;
    };
}

TEST(SshPartner, RunsAShellOnItsTerminal)
{
    const OwnHome home;
    Sshd server(home);
    ASSERT_TRUE(server.Answers());
    LineRig rig(server.Options());
    ASSERT_TRUE(rig.Opened().UntilOpen()) << rig.errors.join(u'|').toStdString() << server.Log().data();
    EXPECT_EQ(rig.deviceStatus,
              u"SSH %1@localhost:%2"_s.arg(QString::fromLatin1(server.Options().userName)).arg(server.Port()));
    rig.Type("PS1=; stty -echo\n");
    rig.Type("trap 'echo WIDE $(stty size)' WINCH; echo TERM=$TERM $(stty size)\n");
    EXPECT_TRUE(rig.UntilReceived("TERM=vt220 30 100")) << rig.received.data();
    rig.line->Resize({.cols = 132, .rows = 50});
    rig.Type("\n");
    EXPECT_TRUE(rig.UntilReceived("WIDE 50 132")) << rig.received.data();
    rig.Type("echo gr\xc3\xbc\xc3\x9f dich; exit 7\n");
    ASSERT_TRUE(rig.UntilClosed());
    EXPECT_TRUE(rig.received.contains("gr\xc3\xbc\xc3\x9f dich"));
    EXPECT_EQ(rig.programEnds, 1);
    EXPECT_EQ(rig.exitCode, 7);
    EXPECT_EQ(rig.errors, QStringList());
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

} // namespace

} // namespace kestrune
