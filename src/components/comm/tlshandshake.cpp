#include "tlshandshake.h"

#include "socketreason.h"
#include "tlsidentity.h"

#include <comm/certificates.h>
#include <dispatch/failure.h>

#include <QDir>
#include <QFile>
#include <QSslConfiguration>

#include <algorithm>
#include <array>
#include <utility>

namespace kestrune::comm {

namespace {

using namespace Qt::StringLiterals;

constexpr int MostPassphrases = 3;

struct AlertRow
{
    QSsl::AlertType type;
    const char* words;
};

// What a host says when it refuses (RFC 8446, 6.2).
constexpr std::array AlertRows{
    AlertRow{QSsl::AlertType::CertificateRequired,
             QT_TRANSLATE_NOOP("kestrune::comm::TlsHandshake", "it wants a client certificate")},
    AlertRow{QSsl::AlertType::NoCertificate,
             QT_TRANSLATE_NOOP("kestrune::comm::TlsHandshake", "it wants a client certificate")},
    AlertRow{QSsl::AlertType::BadCertificate,
             QT_TRANSLATE_NOOP("kestrune::comm::TlsHandshake", "it does not accept the client certificate")},
    AlertRow{QSsl::AlertType::UnknownCa, QT_TRANSLATE_NOOP("kestrune::comm::TlsHandshake",
                                                           "it does not know the issuer of the client certificate")},
    AlertRow{QSsl::AlertType::CertificateExpired,
             QT_TRANSLATE_NOOP("kestrune::comm::TlsHandshake", "the client certificate has expired")},
    AlertRow{QSsl::AlertType::CertificateRevoked,
             QT_TRANSLATE_NOOP("kestrune::comm::TlsHandshake", "the client certificate has been withdrawn")},
    AlertRow{QSsl::AlertType::AccessDenied, QT_TRANSLATE_NOOP("kestrune::comm::TlsHandshake", "it denies access")},
    AlertRow{QSsl::AlertType::ProtocolVersion,
             QT_TRANSLATE_NOOP("kestrune::comm::TlsHandshake", "it has no version of TLS that is still safe")},
    AlertRow{QSsl::AlertType::HandshakeFailure,
             QT_TRANSLATE_NOOP("kestrune::comm::TlsHandshake",
                               "it finds no cipher in common, or wants a client certificate")},
};

} // namespace

TlsHandshake::TlsHandshake(QSslSocket& socket, Peer peer, LineOptions::Tls options, TlsEvents& events, Clock& clock)
    : socket_(socket), peer_(std::move(peer)), options_(std::move(options)), events_(events), clock_(clock)
{}

void TlsHandshake::Start()
{
    connect(&socket_, &QSslSocket::alertReceived, this,
            [this](QSsl::AlertLevel, QSsl::AlertType type, const QString& description) { Alerted(type, description); });
    connect(&socket_, &QAbstractSocket::errorOccurred, this, &TlsHandshake::Broken);
    if (options_.clientCertificate.isEmpty())
        Shake();
    else
        Identify(Secret());
}

void TlsHandshake::Stop()
{
    stopped_ = true;
    limit_.reset();
    socket_.disconnect(this);
}

void TlsHandshake::StartLimit()
{
    limit_ = clock_.After(peer_.limit, [this] { Broken(QAbstractSocket::SocketTimeoutError); });
}

void TlsHandshake::Fail(quint16 number, const QString& reason)
{
    if (stopped_)
        return;
    Stop();
    events_.TlsFailed(number, tr("Unable to connect to %1 port %2: %3").arg(peer_.host).arg(peer_.port).arg(reason));
}

// --- who we are

void TlsHandshake::Identify(const Secret& passphrase)
{
    const QString path = QDir(options_.trustFolder).absoluteFilePath(options_.clientCertificate);
    TlsIdentity identity;
    switch (identity.Load(path, passphrase)) {
    case TlsIdentity::Outcome::Loaded:
        break;
    case TlsIdentity::Outcome::WantsPassphrase:
        AskPassphrase(path);
        return;
    case TlsIdentity::Outcome::Missing:
        Fail(LineErrorNumber::NoSuchFile, tr("the client certificate %1 cannot be read").arg(path));
        return;
    case TlsIdentity::Outcome::Unusable:
        Fail(LineErrorNumber::InvalidArgument, tr("%1 holds no certificate with its key").arg(path));
        return;
    }
    QSslConfiguration configuration = socket_.sslConfiguration();
    configuration.setLocalCertificateChain(identity.chain);
    configuration.setPrivateKey(identity.key);
    socket_.setSslConfiguration(configuration);
    Shake();
}

void TlsHandshake::AskPassphrase(const QString& path)
{
    if (passphrases_++ == MostPassphrases) {
        Fail(LineErrorNumber::AccessDenied, tr("no passphrase opens the client certificate %1").arg(path));
        return;
    }
    LineQuestion question;
    question.kind = LineQuestion::Kind::Secrets;
    question.title = tr("Client certificate for %1").arg(peer_.host);
    question.text = passphrases_ == 1 ? tr("The key in %1 is locked.").arg(path)
                                      : tr("This passphrase does not open %1.").arg(path);
    question.fields = {{.label = tr("Passphrase:"), .mayBeRemembered = true}};
    events_.TlsAsks(question, [this, path](LineAnswer answer) {
        if (answer.choice == LineAnswer::Choice::Nobody)
            Fail(LineErrorNumber::AccessDenied,
                 tr("the client certificate %1 is locked, and there is nobody to ask for its passphrase").arg(path));
        else if (answer.choice == LineAnswer::Choice::Cancel || answer.values.empty())
            events_.TlsCancelled();
        else
            Identify(answer.values.front());
    });
}

// --- who the host is

void TlsHandshake::Shake()
{
    QSslConfiguration configuration = socket_.sslConfiguration();
    configuration.setProtocol(QSsl::TlsV1_2OrLater);
    configuration.setPeerVerifyMode(QSslSocket::VerifyPeer);
    // Besides the system's own, which are looked up when they are needed.
    if (!options_.trustFolder.isEmpty())
        configuration.addCaCertificates(options_.trustFolder + u"/authorities.pem"_s);
    configuration.setOcspStaplingEnabled(true);
    socket_.setSslConfiguration(configuration);
    socket_.setPauseMode(QAbstractSocket::PauseOnSslErrors);
    socket_.setPeerVerifyName(peer_.host);
    connect(&socket_, &QSslSocket::sslErrors, this, &TlsHandshake::Doubted);
    connect(&socket_, &QSslSocket::encrypted, this, [this] {
        limit_.reset();
        socket_.disconnect(this);
        connect(&socket_, &QSslSocket::alertReceived, this,
                [this](QSsl::AlertLevel, QSsl::AlertType type, const QString& said) { Alerted(type, said); });
        events_.TlsReady();
    });
    StartLimit();
    socket_.startClientEncryption();
}

void TlsHandshake::Doubted(const QList<QSslError>& errors)
{
    const QSslCertificate certificate = socket_.peerCertificate();
    const CertificateFaults faults = CertificateFaults::Of(errors, certificate, peer_.host);
    const KnownCertificates known(options_.trustFolder);
    const QString remembered = known.Find(peer_.host, peer_.port);
    const bool isRemembered = remembered == CertificateFingerprint(certificate);
    const bool anyIsGood = options_.validation == CertificateValidation::None;
    if (faults.IsNone() || anyIsGood || (isRemembered && !faults.isRevoked)) {
        socket_.ignoreSslErrors(errors);
        return;
    }
    const QString account = tr("the certificate of the host cannot be trusted: %1.\n\n%2")
                                .arg(faults.words.join(u"; "_s), DescribeCertificate(certificate));
    if (faults.isRevoked || options_.validation == CertificateValidation::Strict) {
        Fail(LineErrorNumber::AccessDenied, account);
        return;
    }
    const bool isNew = remembered.isEmpty() && faults.onlyIssuer;
    if (options_.validation == CertificateValidation::AcceptNew && isNew) {
        if (Remember())
            socket_.ignoreSslErrors(errors);
        return;
    }
    AskTrust(account, !remembered.isEmpty() && !isRemembered, errors);
}

void TlsHandshake::AskTrust(const QString& account, bool changed, const QList<QSslError>& errors)
{
    limit_.reset();
    LineQuestion question;
    question.kind = changed ? LineQuestion::Kind::ChangedHost : LineQuestion::Kind::UnknownHost;
    question.title = tr("Certificate of %1").arg(peer_.host);
    question.text = tr("%1 port %2: %3").arg(peer_.host).arg(peer_.port).arg(account);
    if (changed)
        question.text.prepend(
            tr("Another certificate is remembered for this host. Somebody may stand in between.\n\n"));
    events_.TlsAsks(question, [this, errors, account](const LineAnswer& answer) {
        switch (answer.choice) {
        case LineAnswer::Choice::Update:
            if (!Remember())
                return;
            [[fallthrough]];
        case LineAnswer::Choice::Continue:
            Trust(errors);
            return;
        case LineAnswer::Choice::Nobody:
            Fail(LineErrorNumber::AccessDenied, account);
            return;
        case LineAnswer::Choice::Cancel:
            events_.TlsCancelled();
        }
    });
}

void TlsHandshake::Trust(const QList<QSslError>& errors)
{
    StartLimit();
    socket_.ignoreSslErrors(errors);
    socket_.resume();
}

bool TlsHandshake::Remember()
{
    try {
        KnownCertificates(options_.trustFolder)
            .Remember(peer_.host, peer_.port, CertificateFingerprint(socket_.peerCertificate()));
        return true;
    } catch (const Failure& failure) {
        Fail(LineErrorNumber::AccessDenied,
             tr("the certificate of the host cannot be remembered: %1").arg(failure.Text()));
        return false;
    }
}

// --- what goes wrong

void TlsHandshake::Alerted(QSsl::AlertType type, const QString& description)
{
    if (type == QSsl::AlertType::CloseNotify)
        return;
    const auto row = std::ranges::find(AlertRows, type, &AlertRow::type);
    refusal_ = row == AlertRows.end() ? description : tr(row->words);
}

void TlsHandshake::Broken(QAbstractSocket::SocketError error)
{
    const SocketReason reason = SocketReason::Of(error, socket_.errorString());
    if (!refusal_.isEmpty())
        Fail(LineErrorNumber::AccessDenied, tr("the host refuses the secure connection: %1").arg(refusal_));
    else if (error == QAbstractSocket::SslHandshakeFailedError && reason.words.contains(u"wrong version number"_s))
        Fail(LineErrorNumber::ProtocolNotSupported, tr("the host does not speak TLS on this port"));
    else if (error == QAbstractSocket::RemoteHostClosedError)
        Fail(reason.number, tr("the host closed the connection before it was secure"));
    else if (error == QAbstractSocket::SslHandshakeFailedError)
        Fail(LineErrorNumber::ProtocolNotSupported, tr("no secure connection came about: %1").arg(reason.words));
    else
        Fail(reason.number, reason.words);
}

} // namespace kestrune::comm
