#include <comm/sshknownhosts.h>

#include <QCryptographicHash>
#include <QMessageAuthenticationCode>

#include <optional>

namespace kestrune::comm {

namespace {

// Names, type, key; the comment behind them is nobody's affair.
struct KnownHostLine
{
    QByteArray names, type, key;
};

std::optional<KnownHostLine> ParseLine(const QByteArray& line)
{
    const QByteArrayList fields = line.simplified().split(' ');
    // Marks (@revoked, @cert-authority) and comments are not keys of a host.
    if (fields.size() < 3 || fields[0].startsWith('#') || fields[0].startsWith('@'))
        return std::nullopt;
    return KnownHostLine{fields[0], fields[1], fields[2]};
}

// "|1|salt|hash", both in base64: HMAC-SHA1 of the name with the salt as its key.
bool IsHashOf(const QByteArray& field, const QByteArray& name)
{
    const QByteArrayList parts = field.split('|');
    return parts.size() == 4 && parts[1] == "1" &&
           QMessageAuthenticationCode::hash(name, QByteArray::fromBase64(parts[2]), QCryptographicHash::Sha1) ==
               QByteArray::fromBase64(parts[3]);
}

bool Names(const QByteArray& field, const QByteArray& name)
{
    if (field.startsWith('|'))
        return IsHashOf(field, name);
    for (const QByteArray& one : field.split(','))
        if (one.compare(name, Qt::CaseInsensitive) == 0)
            return true;
    return false;
}

// The line for the other hosts that it names; empty: there are none.
QByteArray WithoutName(const QByteArray& line, const KnownHostLine& parsed, const QByteArray& name)
{
    if (parsed.names.startsWith('|'))
        return {};
    QByteArrayList names = parsed.names.split(',');
    names.removeIf([&](const QByteArray& one) { return one.compare(name, Qt::CaseInsensitive) == 0; });
    if (names.isEmpty())
        return {};
    return names.join(',') + line.mid(line.indexOf(parsed.names) + parsed.names.size());
}

} // namespace

QByteArray KnownHostName(const QByteArray& host, int port)
{
    return port == 22 ? host : '[' + host + "]:" + QByteArray::number(port);
}

QByteArray KnownHostKey(const QByteArray& file, const QByteArray& name, const QByteArray& type)
{
    for (const QByteArray& line : file.split('\n'))
        if (const auto parsed = ParseLine(line); parsed && parsed->type == type && Names(parsed->names, name))
            return parsed->key;
    return {};
}

QByteArray WithKnownHostKey(const QByteArray& file, const QByteArray& name, const QByteArray& type,
                            const QByteArray& key)
{
    QByteArray result;
    QByteArrayList lines = file.split('\n');
    if (lines.last().isEmpty())
        lines.removeLast();
    for (const QByteArray& line : lines) {
        const auto parsed = ParseLine(line);
        const bool replaced = parsed && parsed->type == type && Names(parsed->names, name);
        const QByteArray kept = replaced ? WithoutName(line, *parsed, name) : line;
        if (!replaced || !kept.isEmpty())
            result += kept + '\n';
    }
    return result + name + ' ' + type + ' ' + key + '\n';
}

QByteArray KeyFingerprint(const QByteArray& key)
{
    const QByteArray hash = QCryptographicHash::hash(QByteArray::fromBase64(key), QCryptographicHash::Sha256);
    return "SHA256:" + hash.toBase64(QByteArray::OmitTrailingEquals);
}

} // namespace kestrune::comm
