#pragma once

// The known_hosts file of the user's SSH programs (sshd(8), "SSH_KNOWN_HOSTS FILE FORMAT"), as far as a host's key
// has to be shown or replaced. Whether a key is known at all is libssh's answer, which looks into all such files.

#include <QByteArray>
#include <QByteArrayList>

namespace kestrune::comm {

// "host", or "[host]:port" for a port other than 22.
QByteArray KnownHostName(const QByteArray& host, int port);

// The key that stands in the file for this host, in base64 and of this type ("ssh-ed25519"); empty: none.
QByteArray KnownHostKey(const QByteArray& file, const QByteArray& name, const QByteArray& type);

// The file with this key for the host in place of every other one of its type. All other lines, comments and
// names stay as they are.
QByteArray WithKnownHostKey(const QByteArray& file, const QByteArray& name, const QByteArray& type,
                            const QByteArray& key);

// "SHA256:..." of a key in base64.
QByteArray KeyFingerprint(const QByteArray& key);

} // namespace kestrune::comm
