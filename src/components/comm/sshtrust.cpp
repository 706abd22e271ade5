#include "sshtrust.h"

#include "sshcontact.h"
#include <comm/sshknownhosts.h>

#include <dispatch/failure.h>
#include <platform/nativefiles.h>

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>

namespace kestrune::comm {

namespace {

using namespace Qt::StringLiterals;

struct TrustText
{
    Q_DECLARE_TR_FUNCTIONS(SshLine)
};

struct HostKey
{
    QByteArray type; // "ssh-ed25519"
    QByteArray key;  // base64
    QString Fingerprint() const { return QString::fromLatin1(KeyFingerprint(key)); }
};

HostKey KeyOf(const SshContact& contact)
{
    ssh_key raw = nullptr;
    if (ssh_get_server_publickey(contact.Session(), &raw) != SSH_OK)
        contact.Fail(LineErrorNumber::ProtocolNotSupported,
                     TrustText::tr("Unable to connect to %1: the host has shown no host key.").arg(contact.Host()));
    const SshKeyHandle key(raw);
    char* base64 = nullptr;
    ssh_pki_export_pubkey_base64(key.get(), &base64);
    const SshText text(base64);
    return {KeyTypeName(key.get()), text.get()};
}

QString KnownHostsPath(const SshContact& contact)
{
    char* path = nullptr;
    if (ssh_options_get(contact.Session(), SSH_OPTIONS_KNOWNHOSTS, &path) != SSH_OK)
        return {};
    return QFile::decodeName(SshText(path).get());
}

// The lines of other programs stay; a reader sees the old or the new file, never half of one.
void Remember(SshContact& contact, const HostKey& key)
{
    const QString path = KnownHostsPath(contact);
    const QByteArray name = KnownHostName(contact.Host().toUtf8(), contact.Port());
    try {
        NativeFileSystem files;
        const QString folder = QFileInfo(path).path();
        if (files.Kind(folder) == PathKind::Missing) {
            files.MakeFolder(folder);
            QFile::setPermissions(folder, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        }
        files.Edit(path, [&](const std::optional<QByteArray>& old) {
            return WithKnownHostKey(old.value_or(QByteArray()), name, key.type, key.key);
        });
    } catch (const Failure& failure) {
        // The user trusts the host; that the list cannot be kept is told and stops nobody.
        contact.Mail().Received(
            TrustText::tr("[The host key could not be remembered: %1]\r\n").arg(failure.Text()).toUtf8().toStdString());
    }
}

[[noreturn]] void Refuse(const SshContact& contact, const QString& why)
{
    contact.Fail(LineErrorNumber::AccessDenied, TrustText::tr("Unable to connect to %1: %2").arg(contact.Host(), why));
}

void CheckPin(const SshContact& contact, const HostKey& key)
{
    QString pin = contact.Options().ssh.hostKeyFingerprint.trimmed();
    while (pin.endsWith(u'='))
        pin.chop(1);
    if (!pin.startsWith(u"SHA256:"_s))
        pin.prepend(u"SHA256:"_s);
    if (pin != key.Fingerprint())
        Refuse(contact, TrustText::tr("the host key is not the one that this session is bound to.\nThe session says "
                                      "%1,\nthe host shows %2 (%3).")
                            .arg(pin, key.Fingerprint(), QString::fromLatin1(key.type)));
}

QString UnknownText(const SshContact& contact, const HostKey& key)
{
    return TrustText::tr("The host %1 has not been seen before. Is it the one that you mean?\n\nIts host key (%2) "
                         "is\n%3")
        .arg(contact.Address(), QString::fromLatin1(key.type), key.Fingerprint());
}

QString ChangedText(const SshContact& contact, const HostKey& key)
{
    QFile file(KnownHostsPath(contact));
    const QByteArray known =
        file.open(QIODevice::ReadOnly)
            ? KnownHostKey(file.readAll(), KnownHostName(contact.Host().toUtf8(), contact.Port()), key.type)
            : QByteArray();
    const QString was = known.isEmpty() ? TrustText::tr("another one") : QString::fromLatin1(KeyFingerprint(known));
    return TrustText::tr("The host key of %1 has changed. Either the host has been set up anew, or somebody else "
                         "answers in its place and will see all that you type.\n\nRemembered (%2):\n%3\nShown now:\n%4")
        .arg(contact.Address(), QString::fromLatin1(key.type), was, key.Fingerprint());
}

void AskAbout(SshContact& contact, const HostKey& key, LineQuestion::Kind kind, const QString& text)
{
    const LineAnswer answer = contact.Ask({.kind = kind, .title = {}, .text = text});
    if (answer.choice == LineAnswer::Choice::Update)
        Remember(contact, key);
}

} // namespace

void CheckHostKey(SshContact& contact)
{
    const HostKey key = KeyOf(contact);
    const HostKeyValidation mode = contact.Options().ssh.hostKeyValidation;
    if (!contact.Options().ssh.hostKeyFingerprint.trimmed().isEmpty()) {
        CheckPin(contact, key);
        return;
    }
    if (mode == HostKeyValidation::None)
        return;
    const ssh_known_hosts_e known = ssh_session_is_known_server(contact.Session());
    if (known == SSH_KNOWN_HOSTS_OK)
        return;
    if (known == SSH_KNOWN_HOSTS_ERROR)
        Refuse(contact, contact.Reason());
    // A key of another type than the remembered one is what somebody in between would show as well.
    const bool changed = known == SSH_KNOWN_HOSTS_CHANGED || known == SSH_KNOWN_HOSTS_OTHER;
    const QString text = changed ? ChangedText(contact, key) : UnknownText(contact, key);
    if (mode == HostKeyValidation::Strict)
        Refuse(contact, text);
    if (mode == HostKeyValidation::AcceptNew && !changed)
        Remember(contact, key);
    else
        AskAbout(contact, key, changed ? LineQuestion::Kind::ChangedHost : LineQuestion::Kind::UnknownHost, text);
}

} // namespace kestrune::comm
