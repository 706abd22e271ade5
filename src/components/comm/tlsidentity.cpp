#include "tlsidentity.h"

#include <QBuffer>
#include <QFile>

namespace kestrune::comm {

namespace {

constexpr qint64 LargestFile = qint64{1} << 20; // a chain of certificates has some ten thousand bytes

} // namespace

TlsIdentity::Outcome TlsIdentity::Load(const QString& path, const Secret& passphrase)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return Outcome::Missing;
    QByteArray content = file.read(LargestFile);
    const std::string_view typed = passphrase.Utf8();
    const QByteArray phrase = QByteArray::fromRawData(typed.data(), static_cast<qsizetype>(typed.size()));

    if (!content.contains("-----BEGIN")) {
        QBuffer buffer(&content);
        buffer.open(QIODevice::ReadOnly);
        QSslCertificate own;
        QList<QSslCertificate> others;
        if (!QSslCertificate::importPkcs12(&buffer, &key, &own, &others, phrase))
            return content.startsWith('\x30') ? Outcome::WantsPassphrase : Outcome::Unusable; // 0x30: it begins as DER
        chain = QList<QSslCertificate>{own} + others;
        return Outcome::Loaded;
    }
    chain = QSslCertificate::fromData(content, QSsl::Pem);
    for (const QSsl::KeyAlgorithm algorithm : {QSsl::Rsa, QSsl::Ec, QSsl::Dsa})
        if (key.isNull())
            key = QSslKey(content, algorithm, QSsl::Pem, QSsl::PrivateKey, phrase);
    if (chain.isEmpty())
        return Outcome::Unusable;
    if (!key.isNull())
        return Outcome::Loaded;
    return content.contains("ENCRYPTED") ? Outcome::WantsPassphrase : Outcome::Unusable;
}

} // namespace kestrune::comm
