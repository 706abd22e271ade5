// The SSL/telnet device against OpenSSL: socat as its server, with certificates that openssl makes.

#include "linerig.h"
#include "scriptedhost.h"

#include <QFile>
#include <QHostAddress>
#include <QProcess>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <csignal>

namespace kestrune {

namespace {

using namespace Qt::StringLiterals;

// One authority; hosts whose certificates are good, expired, for another name, and signed by nobody else; a client
// whose key is locked with "open sesame", as PEM and as PKCS#12.
constexpr auto MakeCertificates = R"script(
set -e
key="ec -pkeyopt ec_paramgen_curve:prime256v1 -nodes"
openssl req -x509 -newkey $key -subj "/CN=Test CA" -days 3650 -keyout ca.key -out ca.pem \
    -addext basicConstraints=critical,CA:TRUE -addext keyUsage=critical,keyCertSign,cRLSign
printf '[ca]\ndefault_ca=d\n[d]\ndatabase=index\nserial=serial\nnew_certs_dir=.\ndefault_md=sha256\npolicy=p\n' > ca.conf
printf '[p]\ncommonName=supplied\n' >> ca.conf
touch index
echo 01 > serial
sign() { # name, subject, alternative names, from, to
    openssl req -newkey $key -subj "/CN=$2" -keyout $1.key -out $1.csr
    printf "subjectAltName=$3\n" > $1.ext
    openssl ca -batch -config ca.conf -cert ca.pem -keyfile ca.key -in $1.csr -out $1.pem -notext -extfile $1.ext \
        -startdate $4 -enddate $5
}
sign good localhost DNS:localhost,IP:127.0.0.1 20200101000000Z 20490101000000Z
sign expired localhost-expired DNS:localhost,IP:127.0.0.1 20200101000000Z 20200201000000Z
sign other other.example DNS:other.example 20200101000000Z 20490101000000Z
sign client ann DNS:ann 20200101000000Z 20490101000000Z
openssl req -x509 -newkey $key -subj "/CN=localhost" -days 3650 -keyout self.key -out self.pem \
    -addext subjectAltName=DNS:localhost
openssl req -x509 -newkey $key -subj "/CN=localhost" -days 3650 -keyout self2.key -out self2.pem \
    -addext subjectAltName=DNS:localhost
openssl ec -in client.key -aes128 -passout 'pass:open sesame' -out locked.key
cat locked.key client.pem > locked.pem
openssl pkcs12 -export -inkey client.key -in client.pem -certfile ca.pem -passout 'pass:open sesame' -out client.p12
)script";

const QTemporaryDir& Certificates()
{
    static const QTemporaryDir folder;
    static const bool made = [] {
        QProcess shell;
        shell.setWorkingDirectory(folder.path());
        shell.setProcessChannelMode(QProcess::MergedChannels);
        shell.start(u"bash"_s, {u"-c"_s, QString::fromLatin1(MakeCertificates)});
        const bool done = shell.waitForFinished(60000) && shell.exitCode() == 0;
        EXPECT_TRUE(done) << shell.readAll().toStdString();
        return done;
    }();
    EXPECT_TRUE(made);
    return folder;
}

// Echoes what it gets, behind TLS.
class TlsEcho
{
public:
    TlsEcho(const QString& certificate, const QString& more = u"verify=0"_s, quint16 port = ClosedPort()) : port_(port)
    {
        process_.setWorkingDirectory(Certificates().path());
        process_.start(
            u"timeout"_s,
            {u"-k"_s, u"1"_s, u"90"_s, u"socat"_s,
             u"OPENSSL-LISTEN:%1,bind=127.0.0.1,reuseaddr,fork,cert=%2.pem,key=%2.key,cafile=ca.pem,%3"_s.arg(port_)
                 .arg(certificate, more),
             u"EXEC:cat"_s});
        EXPECT_TRUE(WaitUntil([this] {
            QTcpSocket caller;
            caller.connectToHost(QHostAddress::LocalHost, port_);
            return caller.waitForConnected(200);
        }));
    }
    ~TlsEcho()
    {
        if (process_.processId() == 0)
            return; // it has ended by itself
        // All of timeout's group: one that is in the middle of a handshake does not listen to anything less.
        ::kill(-static_cast<pid_t>(process_.processId()), SIGKILL);
        process_.waitForFinished();
    }
    quint16 Port() const { return port_; }
    LineOptions Options(CertificateValidation validation = CertificateValidation::Ask) const
    {
        LineOptions options;
        options.device = Device::SslTelnet;
        options.hostName = u"localhost"_s;
        options.hostPort = QString::number(port_);
        options.telnet.bypass = true;
        options.tls.validation = validation;
        return options;
    }

private:
    QProcess process_;
    quint16 port_;
};

// A user's folder: with the test's authority among those trusted, or empty.
class Trust
{
public:
    explicit Trust(bool authority)
    {
        if (authority) {
            EXPECT_TRUE(QFile::copy(Certificates().filePath(u"ca.pem"_s), folder_.filePath(u"authorities.pem"_s)));
        }
    }
    QString Path() const { return folder_.path(); }
    QByteArray Known() const
    {
        QFile file(folder_.filePath(u"known_certificates"_s));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

private:
    QTemporaryDir folder_;
};

bool Echoes(LineRig& rig)
{
    rig.Type("hello");
    return rig.UntilReceived("hello");
}

std::function<LineAnswer(const LineQuestion&)> Always(LineAnswer::Choice choice, const char* secret = nullptr)
{
    return [choice, secret](const LineQuestion& question) {
        LineAnswer answer{.question = question.id, .choice = choice};
        if (secret)
            answer.values.emplace_back(secret);
        return answer;
    };
}

TEST(TlsPartner, ConnectsToAHostWhoseCertificateIsGood)
{
    const TlsEcho host(u"good"_s);
    const Trust trust(true);
    for (const QString& name : {u"localhost"_s, u"127.0.0.1"_s}) {
        LineOptions options = host.Options(CertificateValidation::Strict);
        options.hostName = name;
        LineRig rig(options, trust.Path());
        ASSERT_TRUE(rig.Opened().Until([&] { return rig.line->IsOpen() || rig.closed; }));
        EXPECT_EQ(rig.errors, QStringList());
        EXPECT_TRUE(Echoes(rig));
        EXPECT_EQ(rig.states, (std::vector{LineState::Resolving, LineState::Connecting, LineState::Authenticating,
                                           LineState::Connected}));
        EXPECT_TRUE(rig.deviceStatus.startsWith(u"SSL/Telnet "_s + name));
        EXPECT_TRUE(rig.questions.empty());
        rig.line->Close();
        EXPECT_TRUE(rig.UntilClosed());
    }
}

TEST(TlsPartner, SaysWhatIsWrongWithACertificate)
{
    struct Case
    {
        QString certificate;
        bool authority;
        QString words;
    };
    for (const Case& c : {Case{u"expired"_s, true, u"it expired on 2020-02-01."_s},
                          Case{u"other"_s, true, u"it was issued for other.example and not for localhost."_s},
                          Case{u"self"_s, true, u"it is signed by itself and by nobody else."_s},
                          Case{u"good"_s, false, u"its issuer is not known here."_s},
                          Case{u"expired"_s, false, u"its issuer is not known here; it expired on 2020-02-01."_s}}) {
        const TlsEcho host(c.certificate);
        const Trust trust(c.authority);
        LineRig strict(host.Options(CertificateValidation::Strict), trust.Path());
        ASSERT_TRUE(strict.Opened().UntilClosed());
        ASSERT_EQ(strict.errors.size(), 1);
        const QString begin =
            u"Unable to connect to localhost port %1: the certificate of the host cannot be trusted: "_s;
        EXPECT_TRUE(strict.errors[0].startsWith(begin.arg(host.Port()) + c.words + u"\n\nSubject: "_s))
            << strict.errors[0].toStdString();
        EXPECT_EQ(strict.errorWord, 0x7271Du);
        EXPECT_TRUE(strict.questions.empty());

        LineRig asks(host.Options(), trust.Path());
        asks.onQuestion = Always(LineAnswer::Choice::Cancel);
        ASSERT_TRUE(asks.Opened().UntilClosed());
        EXPECT_EQ(asks.errors, QStringList()) << "the user has decided";
        ASSERT_EQ(asks.questions.size(), 1u);
        EXPECT_TRUE(asks.questions[0].text.contains(c.words)) << asks.questions[0].text.toStdString();
        EXPECT_EQ(asks.questions[0].kind, LineQuestion::Kind::UnknownHost);

        LineRig nobody(host.Options(), trust.Path());
        nobody.onQuestion = Always(LineAnswer::Choice::Nobody);
        ASSERT_TRUE(nobody.Opened().UntilClosed());
        EXPECT_EQ(nobody.errors, strict.errors);

        LineRig careless(host.Options(CertificateValidation::None), trust.Path());
        EXPECT_TRUE(careless.Opened().UntilOpen() && Echoes(careless));
        EXPECT_EQ(trust.Known(), QByteArray());
    }
}

TEST(TlsPartner, TrustsOnceOrForGoodAndNoticesAnotherCertificate)
{
    const Trust trust(false);
    const quint16 port = ClosedPort();
    {
        const TlsEcho host(u"self"_s, u"verify=0"_s, port);
        LineRig once(host.Options(), trust.Path());
        ASSERT_TRUE(once.Opened().Until([&] { return !once.questions.empty(); }));
        EXPECT_FALSE(once.line->IsOpen()) << "nothing goes on while the question stands";
        once.line->Answer({.question = once.questions[0].id, .choice = LineAnswer::Choice::Continue});
        EXPECT_TRUE(once.UntilOpen() && Echoes(once));
        EXPECT_EQ(trust.Known(), QByteArray());

        LineRig forGood(host.Options(), trust.Path());
        forGood.onQuestion = Always(LineAnswer::Choice::Update);
        EXPECT_TRUE(forGood.Opened().UntilOpen() && Echoes(forGood));
        EXPECT_TRUE(trust.Known().startsWith("localhost " + QByteArray::number(port) + ' '));

        LineRig known(host.Options(CertificateValidation::Strict), trust.Path());
        EXPECT_TRUE(known.Opened().UntilOpen() && Echoes(known));
        EXPECT_TRUE(known.questions.empty());
    }
    const TlsEcho host(u"self2"_s, u"verify=0"_s, port);
    LineRig changed(host.Options(CertificateValidation::AcceptNew), trust.Path());
    changed.onQuestion = Always(LineAnswer::Choice::Update);
    EXPECT_TRUE(changed.Opened().UntilOpen());
    ASSERT_EQ(changed.questions.size(), 1u);
    EXPECT_EQ(changed.questions[0].kind, LineQuestion::Kind::ChangedHost);
    EXPECT_EQ(trust.Known().count('\n'), 1) << "the new one stands in place of the old";

    const Trust fresh(false);
    LineRig acceptsNew(host.Options(CertificateValidation::AcceptNew), fresh.Path());
    EXPECT_TRUE(acceptsNew.Opened().UntilOpen());
    EXPECT_TRUE(acceptsNew.questions.empty());
    EXPECT_EQ(fresh.Known().count('\n'), 1);
}

TEST(TlsPartner, ShowsItsOwnCertificateToAHostThatWantsOne)
{
    const TlsEcho host(u"good"_s, u"verify=1"_s);
    const Trust trust(true);
    for (const QString& file : {u"locked.pem"_s, u"client.p12"_s}) {
        LineOptions options = host.Options();
        options.tls.clientCertificate = Certificates().filePath(file);
        LineRig rig(options, trust.Path());
        ASSERT_TRUE(rig.Opened().Until([&] { return !rig.questions.empty(); }));
        EXPECT_EQ(rig.questions[0].text, u"The key in %1 is locked."_s.arg(options.tls.clientCertificate));
        rig.line->Answer(Always(LineAnswer::Choice::Continue, "wrong")(rig.questions[0]));
        ASSERT_TRUE(rig.Until([&] { return rig.questions.size() == 2; }));
        rig.line->Answer(Always(LineAnswer::Choice::Continue, "open sesame")(rig.questions[1]));
        EXPECT_TRUE(rig.UntilOpen() && Echoes(rig)) << rig.errors.join(u' ').toStdString();
    }

    LineRig without(host.Options(), trust.Path());
    ASSERT_TRUE(without.Opened().UntilClosed());
    EXPECT_EQ(without.errors,
              QStringList(u"The host localhost has ended the secure connection: it wants a client certificate"_s));

    LineOptions options = host.Options();
    options.tls.clientCertificate = u"locked.pem"_s; // in the folder of the user's trust, where it is not
    LineRig missing(options, trust.Path());
    ASSERT_TRUE(missing.Opened().UntilClosed());
    EXPECT_TRUE(
        missing.errors.value(0).endsWith(u"the client certificate %1/locked.pem cannot be read"_s.arg(trust.Path())));
    EXPECT_EQ(missing.errorWord, 0x70002u);

    options.tls.clientCertificate = Certificates().filePath(u"locked.pem"_s);
    LineRig guesses(options, trust.Path());
    guesses.onQuestion = Always(LineAnswer::Choice::Continue, "guess");
    ASSERT_TRUE(guesses.Opened().UntilClosed());
    EXPECT_EQ(guesses.questions.size(), 3u);
    EXPECT_TRUE(guesses.errors.value(0).contains(u"no passphrase opens the client certificate"_s));
}

TEST(TlsPartner, NeverGoesBelowTls12)
{
    const Trust trust(true);
    const TlsEcho old(u"good"_s, u"verify=0,openssl-max-proto-version=TLS1.1,cipher=ALL:@SECLEVEL=0"_s);
    LineRig refuses(old.Options(), trust.Path());
    ASSERT_TRUE(refuses.Opened().UntilClosed());
    EXPECT_EQ(refuses.errors.size(), 1);
    EXPECT_EQ(refuses.errorWord >> 16, 7u) << refuses.errors.join(u' ').toStdString();
    for (const QString& version : {u"TLS1.2"_s, u"TLS1.3"_s}) {
        const TlsEcho host(u"good"_s, u"verify=0,openssl-max-proto-version="_s + version);
        LineRig rig(host.Options(), trust.Path());
        EXPECT_TRUE(rig.Opened().UntilOpen() && Echoes(rig));
    }
}

TEST(TlsPartner, SaysThatAHostDoesNotSpeakTls)
{
    ScriptedHost host;
    LineOptions options = host.Options();
    options.device = Device::SslTelnet;
    LineRig plain(options);
    plain.line->Open();
    ASSERT_TRUE(host.IsCalled(plain));
    host.Says("login: ");
    ASSERT_TRUE(plain.UntilClosed());
    EXPECT_TRUE(plain.errors.value(0).endsWith(u"the host does not speak TLS on this port"_s))
        << plain.errors.value(0).toStdString();

    ScriptedHost mute;
    options = mute.Options();
    options.device = Device::SslTelnet;
    LineRig closes(options);
    closes.line->Open();
    ASSERT_TRUE(mute.IsCalled(closes));
    mute.Caller().disconnectFromHost();
    ASSERT_TRUE(closes.UntilClosed());
    EXPECT_TRUE(closes.errors.value(0).endsWith(u"the host closed the connection before it was secure"_s))
        << closes.errors.value(0).toStdString();
}

} // namespace

} // namespace kestrune
