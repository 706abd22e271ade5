#pragma once

// What is wrong with a host's certificate, told so that a person can decide, and the certificates that a user has
// decided to trust.

#include <QByteArray>
#include <QList>
#include <QSslCertificate>
#include <QSslError>
#include <QString>
#include <QStringList>

namespace kestrune::comm {

struct CertificateFaults
{
    QStringList words;      // "it expired on 2020-02-01", each fault once
    bool isRevoked = false; // no user may overrule its issuer
    bool onlyIssuer = true; // nothing but that nobody known here vouches for it
    bool IsNone() const { return words.isEmpty(); }

    static CertificateFaults Of(const QList<QSslError>& errors, const QSslCertificate& certificate,
                                const QString& host);
};

// "SHA-256" as certificates are compared by eye: pairs of hexadecimal digits between colons.
QString CertificateFingerprint(const QSslCertificate& certificate);

// Subject, names, issuer, dates and fingerprint, a line each. What others have written in it is cleared of controls.
QString DescribeCertificate(const QSslCertificate& certificate);

// The file known_certificates in a folder: lines of host, port and fingerprint, which may be edited by hand. Lines
// that are not understood stay. An empty folder: nothing is known and nothing is kept.
class KnownCertificates
{
public:
    explicit KnownCertificates(const QString& folder);

    QString Find(const QString& host, quint16 port) const;                        // the fingerprint; empty: none
    void Remember(const QString& host, quint16 port, const QString& fingerprint); // raises Failure

private:
    QString path_;
};

} // namespace kestrune::comm
