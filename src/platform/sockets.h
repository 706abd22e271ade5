#pragma once

// What the socket interface offers and Qt has no call for.

#include <QByteArray>

#include <optional>

namespace kestrune {

// TCP keep-alive: the first probe after that many seconds of silence, the next ones equally far apart.
// 0 switches it off. False: the system refused.
bool SetTcpKeepalive(qintptr socket, int seconds);

// Urgent bytes (RFC 9293, 3.8.5) stay where they were sent in the stream, instead of vanishing from it: a telnet
// host sends the second half of a command so.
void KeepUrgentInline(qintptr socket);

// An urgent byte has been announced that has not been read yet.
bool HasUrgentAhead(qintptr socket);

// A second descriptor of the same socket, not inherited by programs; -1: the system has none left.
int DuplicateSocket(qintptr socket);

// Ends both directions of a socket without closing its descriptor, so that whoever waits for it returns.
void ShutDownSocket(int socket);

void CloseSocket(int socket); // -1 is harmless

// Closes a duplicate that a library was given, unless the library has done it already: by its number alone nobody
// can tell, since another thread may have got that by now. original: the socket that it was made from, still open.
void CloseDuplicate(int duplicate, int original);

// The port of a TCP service name ("telnet") as the system's own list has it.
std::optional<quint16> ServicePort(const QByteArray& name);

} // namespace kestrune
