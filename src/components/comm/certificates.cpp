#include <comm/certificates.h>

#include <platform/nativefiles.h>

#include <QCoreApplication>
#include <QCryptographicHash>
#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <array>

namespace kestrune::comm {

namespace {

using namespace Qt::StringLiterals;

constexpr qsizetype LongestName = 200;

enum class FaultKind
{
    Issuer,
    Revoked,
    Other
};

struct FaultRow
{
    QSslError::SslError error;
    FaultKind kind;
    const char* words; // {host} that was asked for; {names} in the certificate, which is valid {from} {until}
};

constexpr std::array FaultRows{
    FaultRow{QSslError::SelfSignedCertificate, FaultKind::Issuer,
             QT_TRANSLATE_NOOP("Certificates", "it is signed by itself and by nobody else")},
    FaultRow{QSslError::SelfSignedCertificateInChain, FaultKind::Issuer,
             QT_TRANSLATE_NOOP("Certificates", "its issuer is not known here")},
    FaultRow{QSslError::UnableToGetLocalIssuerCertificate, FaultKind::Issuer,
             QT_TRANSLATE_NOOP("Certificates", "its issuer is not known here")},
    FaultRow{QSslError::UnableToGetIssuerCertificate, FaultKind::Issuer,
             QT_TRANSLATE_NOOP("Certificates", "its issuer is not known here")},
    FaultRow{QSslError::UnableToVerifyFirstCertificate, FaultKind::Issuer,
             QT_TRANSLATE_NOOP("Certificates", "its issuer is not known here")},
    FaultRow{QSslError::CertificateUntrusted, FaultKind::Issuer,
             QT_TRANSLATE_NOOP("Certificates", "its issuer is not known here")},
    FaultRow{QSslError::CertificateExpired, FaultKind::Other,
             QT_TRANSLATE_NOOP("Certificates", "it expired on {until}")},
    FaultRow{QSslError::CertificateNotYetValid, FaultKind::Other,
             QT_TRANSLATE_NOOP("Certificates", "it is not valid before {from}")},
    FaultRow{QSslError::HostNameMismatch, FaultKind::Other,
             QT_TRANSLATE_NOOP("Certificates", "it was issued for {names} and not for {host}")},
    FaultRow{QSslError::CertificateSignatureFailed, FaultKind::Other,
             QT_TRANSLATE_NOOP("Certificates", "its signature is false")},
    FaultRow{QSslError::InvalidPurpose, FaultKind::Other,
             QT_TRANSLATE_NOOP("Certificates", "it is not meant for a host")},
    FaultRow{QSslError::CertificateRevoked, FaultKind::Revoked,
             QT_TRANSLATE_NOOP("Certificates", "its issuer has withdrawn it")},
    FaultRow{QSslError::CertificateBlacklisted, FaultKind::Revoked,
             QT_TRANSLATE_NOOP("Certificates", "it is known to be forged")},
};

// Few hosts bring a statement of their issuer's along, and none has to.
bool IsNoFault(const QSslError& error)
{
    return error.error() == QSslError::NoError || error.error() == QSslError::OcspNoResponseFound;
}

QString Printable(QString text)
{
    std::ranges::replace_if(
        text, [](QChar c) { return !c.isPrint() && !c.isSurrogate(); }, u'?');
    return text.left(LongestName);
}

QString Day(const QDateTime& when) { return when.toUTC().toString(u"yyyy-MM-dd"_s); }

QString NamesIn(const QSslCertificate& certificate)
{
    QStringList names = certificate.subjectAlternativeNames().values();
    if (names.isEmpty())
        names = certificate.subjectInfo(QSslCertificate::CommonName);
    names.sort();
    return Printable(names.join(u", "_s));
}

// What the host has written comes last, so that nothing in it is filled in.
QString Filled(QString words, const QSslCertificate& about, const QString& host)
{
    return words.replace(u"{from}"_s, Day(about.effectiveDate()))
        .replace(u"{until}"_s, Day(about.expiryDate()))
        .replace(u"{host}"_s, host)
        .replace(u"{names}"_s, NamesIn(about));
}

} // namespace

CertificateFaults CertificateFaults::Of(const QList<QSslError>& errors, const QSslCertificate& certificate,
                                        const QString& host)
{
    CertificateFaults faults;
    for (const QSslError& error : errors) {
        if (IsNoFault(error))
            continue;
        const auto row = std::ranges::find(FaultRows, error.error(), &FaultRow::error);
        const bool isKnown = row != FaultRows.end();
        const FaultKind kind = isKnown ? row->kind : FaultKind::Other;
        // One of the chain, most often the host's own.
        const QSslCertificate& about = error.certificate().isNull() ? certificate : error.certificate();
        const QString words = isKnown ? Filled(QCoreApplication::translate("Certificates", row->words), about, host)
                                      : Printable(error.errorString());
        if (!faults.words.contains(words))
            faults.words += words;
        faults.isRevoked = faults.isRevoked || kind == FaultKind::Revoked;
        faults.onlyIssuer = faults.onlyIssuer && kind == FaultKind::Issuer;
    }
    return faults;
}

QString CertificateFingerprint(const QSslCertificate& certificate)
{
    return QString::fromLatin1(certificate.digest(QCryptographicHash::Sha256).toHex(':').toUpper());
}

QString DescribeCertificate(const QSslCertificate& certificate)
{
    const auto line = [](const char* format, const QString& value) {
        return QCoreApplication::translate("Certificates", format).arg(value);
    };
    return QStringList{
        line(QT_TRANSLATE_NOOP("Certificates", "Subject: %1"), Printable(certificate.subjectDisplayName())),
        line(QT_TRANSLATE_NOOP("Certificates", "Issued for: %1"), NamesIn(certificate)),
        line(QT_TRANSLATE_NOOP("Certificates", "Issuer: %1"), Printable(certificate.issuerDisplayName())),
        line(QT_TRANSLATE_NOOP("Certificates", "Valid from: %1"), Day(certificate.effectiveDate())),
        line(QT_TRANSLATE_NOOP("Certificates", "Valid until: %1"), Day(certificate.expiryDate())),
        line(QT_TRANSLATE_NOOP("Certificates", "SHA-256: %1"), CertificateFingerprint(certificate))}
        .join(u'\n');
}

// --- those that the user trusts

KnownCertificates::KnownCertificates(const QString& folder)
    : path_(folder.isEmpty() ? QString() : folder + u"/known_certificates"_s)
{}

QString KnownCertificates::Find(const QString& host, quint16 port) const
{
    QFile file(path_);
    if (path_.isEmpty() || !file.open(QIODevice::ReadOnly))
        return {}; // what cannot be read vouches for nobody
    const QByteArray wanted = host.toLower().toUtf8() + ' ' + QByteArray::number(port) + ' ';
    for (const QByteArray& line : file.readAll().split('\n'))
        if (line.startsWith(wanted))
            return QString::fromLatin1(line.mid(wanted.size()).trimmed());
    return {};
}

void KnownCertificates::Remember(const QString& host, quint16 port, const QString& fingerprint)
{
    if (path_.isEmpty())
        return;
    const QByteArray begin = host.toLower().toUtf8() + ' ' + QByteArray::number(port) + ' ';
    QDir().mkpath(QFileInfo(path_).path());
    NativeFileSystem files;
    files.Edit(path_, [&](const std::optional<QByteArray>& old) -> std::optional<QByteArray> {
        QList<QByteArray> lines = old.value_or(QByteArray()).split('\n');
        lines.removeIf([&](const QByteArray& line) { return line.isEmpty() || line.startsWith(begin); });
        lines += begin + fingerprint.toLatin1();
        return lines.join('\n') + '\n';
    });
}

} // namespace kestrune::comm
