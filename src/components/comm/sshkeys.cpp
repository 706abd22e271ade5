#include <comm/sshkeys.h>

#include "sshcontact.h"

#include <QCoreApplication>
#include <QFile>

#include <algorithm>
#include <array>
#include <cstring>
#include <optional>

namespace kestrune::comm {

namespace {

using namespace Qt::StringLiterals;

struct KeyText
{
    Q_DECLARE_TR_FUNCTIONS(SshKeys)
};

struct KeyTypeRow
{
    QStringView name;
    ssh_keytypes_e type;
    int usual;
    int least;
    int most;
    bool anyBetween;
};

constexpr std::array KeyTypeRows{
    KeyTypeRow{u"ed25519", SSH_KEYTYPE_ED25519, 0, 0, 0, false},
    KeyTypeRow{u"ecdsa", SSH_KEYTYPE_ECDSA, 256, 256, 521, false},
    KeyTypeRow{u"rsa", SSH_KEYTYPE_RSA, 3072, 2048, 16384, true},
};

SshKeyResult Fail(const QString& error) { return {.text = {}, .error = error}; }

// Nothing: there is no such key.
std::optional<int> BitsFor(const KeyTypeRow& row, int wanted)
{
    if (wanted == 0 || wanted == row.usual)
        return row.usual;
    const bool isStep = row.anyBetween || wanted == 384 || wanted == row.most;
    return wanted >= row.least && wanted <= row.most && isStep ? std::optional(wanted) : std::nullopt;
}

QByteArray PublicLine(ssh_key key, const QString& comment)
{
    char* base64 = nullptr;
    if (ssh_pki_export_pubkey_base64(key, &base64) != SSH_OK)
        return {};
    const SshText text(base64);
    const QByteArray line = QByteArray(KeyTypeName(key)) + ' ' + text.get();
    return comment.isEmpty() ? line : line + ' ' + comment.toUtf8();
}

// The owner alone may read it, from its first byte on. False: it stands already, or cannot be written.
bool WriteNew(const QString& path, const char* text, QFile::Permissions permissions)
{
    QFile file(path);
    const auto size = static_cast<qint64>(std::strlen(text));
    return file.open(QIODevice::WriteOnly | QIODevice::NewOnly, permissions) && file.write(text, size) == size &&
           file.flush();
}

SshKeyHandle LoadPublic(const QString& path)
{
    ssh_key key = nullptr;
    ssh_pki_import_pubkey_file(QFile::encodeName(path).constData(), &key);
    return SshKeyHandle(key);
}

} // namespace

SshKeyResult MakeSshKey(const SshKeyOrder& order, const QString& path)
{
    const auto row = std::ranges::find(KeyTypeRows, QStringView(order.type), &KeyTypeRow::name);
    const auto bits = row == KeyTypeRows.end() ? std::nullopt : BitsFor(*row, order.bits);
    if (!bits)
        return Fail(KeyText::tr("There are no keys of the type \"%1\" with %2 bits.").arg(order.type).arg(order.bits));
    const bool isLine = std::ranges::none_of(order.comment, [](QChar c) { return c < u' '; });
    if (!isLine)
        return Fail(KeyText::tr("The comment of a key is one line."));
    const QString publicPath = path + u".pub"_s;
    for (const QString& taken : {path, publicPath})
        if (QFile::exists(taken))
            return Fail(KeyText::tr("The file %1 stands already.").arg(taken));

    ssh_key raw = nullptr;
    const int made = ssh_pki_generate(row->type, *bits, &raw);
    const SshKeyHandle key(raw);
    char* base64 = nullptr;
    const char* passphrase = order.passphrase.IsEmpty() ? nullptr : order.passphrase.CString();
    if (made != SSH_OK || ssh_pki_export_privkey_base64(key.get(), passphrase, nullptr, nullptr, &base64) != SSH_OK)
        return Fail(KeyText::tr("The key could not be made."));
    const SshText text(base64);
    const QByteArray line = PublicLine(key.get(), order.comment);
    const auto ownerOnly = QFile::ReadOwner | QFile::WriteOwner;
    const bool privateWritten = WriteNew(path, base64, ownerOnly);
    Secret::Wipe(base64, std::strlen(base64));
    if (!privateWritten)
        return Fail(KeyText::tr("The key could not be written to %1.").arg(path));
    if (!WriteNew(publicPath, (line + '\n').constData(), ownerOnly | QFile::ReadGroup | QFile::ReadOther))
        return Fail(KeyText::tr("The public half of the key could not be written to %1.").arg(publicPath));
    return {.text = line};
}

SshKeyResult PublicSshKey(const QString& path, const Secret& passphrase)
{
    if (!QFile::exists(path))
        return Fail(KeyText::tr("There is no key file %1.").arg(path));
    SshKeyHandle key = LoadPublic(path);
    if (!key) {
        ssh_key raw = nullptr;
        // An empty passphrase, not none: the library would ask at the terminal for one.
        ssh_pki_import_privkey_file(QFile::encodeName(path).constData(), passphrase.CString(), nullptr, nullptr, &raw);
        key.reset(raw);
    }
    const QByteArray line = key ? PublicLine(key.get(), {}) : QByteArray();
    return line.isEmpty() ? Fail(KeyText::tr("%1 is no key, or the passphrase is another one.").arg(path))
                          : SshKeyResult{.text = line};
}

SshKeyResult SshKeyFingerprint(const QString& path, SshFingerprintKind kind)
{
    SshKeyHandle key = LoadPublic(path);
    if (!key)
        key = LoadPublic(path + u".pub"_s);
    if (!key)
        return Fail(KeyText::tr("There is no public key in %1 or beside it.").arg(path));
    const auto type = kind == SshFingerprintKind::Md5 ? SSH_PUBLICKEY_HASH_MD5 : SSH_PUBLICKEY_HASH_SHA256;
    unsigned char* hash = nullptr;
    std::size_t size = 0;
    if (ssh_get_publickey_hash(key.get(), type, &hash, &size) != 0)
        return Fail(KeyText::tr("The key in %1 has no fingerprint of this kind.").arg(path));
    const SshText text(ssh_get_fingerprint_hash(type, hash, size));
    ssh_clean_pubkey_hash(&hash);
    return {.text = QByteArray(text.get())};
}

QByteArray SshRandom(int count)
{
    QByteArray bytes(std::max(count, 0), '\0');
    return bytes.isEmpty() || ssh_get_random(bytes.data(), count, 1) == 1 ? bytes : QByteArray();
}

} // namespace kestrune::comm
