#pragma once

// Who we are to a host that asks: a certificate and its key from a file, PEM (both in one file) or PKCS#12.

#include <ports/secret.h>

#include <QList>
#include <QSslCertificate>
#include <QSslKey>
#include <QString>

namespace kestrune::comm {

struct TlsIdentity
{
    enum class Outcome
    {
        Loaded,
        WantsPassphrase, // none was given, or this one does not open it
        Missing,         // the file cannot be read
        Unusable         // it holds no certificate with its key
    };

    QList<QSslCertificate> chain; // our own first
    QSslKey key;

    Outcome Load(const QString& path, const Secret& passphrase);
};

} // namespace kestrune::comm
