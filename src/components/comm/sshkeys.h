#pragma once

// Key pairs for logins over SSH: made, shown and recognised. A private key is written for its owner alone, in a form
// that every OpenSSH reads; its public half lies beside it as NAME.pub.

#include <ports/secret.h>

#include <QByteArray>
#include <QString>

namespace kestrune::comm {

struct SshKeyOrder
{
    QString type; // "ed25519", "ecdsa", "rsa"
    int bits = 0; // rsa: 2048 to 16384, ecdsa: 256, 384 or 521; 0: the usual
    QString comment;
    Secret passphrase; // empty: the key stands open
};

struct SshKeyResult
{
    QByteArray text{}; // what was asked for; empty: it failed
    QString error{};   // why, in the user's words
};

// The text is the public half, one line. Nothing that stands there already is written over.
SshKeyResult MakeSshKey(const SshKeyOrder& order, const QString& path);
// The public half of a private key, with the passphrase that opens it, or of a public key. In OpenSSH's own form a
// private key shows its public half without a passphrase.
SshKeyResult PublicSshKey(const QString& path, const Secret& passphrase);
// "SHA256:..." or, old, "MD5:aa:bb:..." of the public half of such a file, or of the .pub beside it.
enum class SshFingerprintKind
{
    Sha256,
    Md5
};
SshKeyResult SshKeyFingerprint(const QString& path, SshFingerprintKind kind);

// Bytes that nobody can guess; empty: the system has none.
QByteArray SshRandom(int count);

} // namespace kestrune::comm
