#pragma once

// What the socket interface offers and Qt has no call for.

#include <QByteArray>
#include <QString>

#include <array>
#include <optional>
#include <utility>
#include <vector>

namespace kestrune {

// TCP keep-alive: the first probe after that many seconds of silence, the next ones equally far apart.
// 0 switches it off. False: the system refused.
bool SetTcpKeepalive(qintptr socket, int seconds);

// How long what was sent, keep-alive probes among it, may stay without an answer before the connection is lost
// (RFC 5482). 0: the system's own, about a quarter of an hour. False: the system refused.
bool SetTcpPatience(qintptr socket, int seconds);

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

// Closes it when it goes.
class OwnedSocket
{
public:
    explicit OwnedSocket(int socket = -1) : socket_(socket) {}
    OwnedSocket(OwnedSocket&& other) noexcept : socket_(other.Release()) {}
    OwnedSocket& operator=(OwnedSocket&& other) noexcept
    {
        std::swap(socket_, other.socket_);
        return *this;
    }
    ~OwnedSocket() { CloseSocket(socket_); }

    explicit operator bool() const { return socket_ >= 0; }
    int Number() const { return socket_; }
    int Release() { return std::exchange(socket_, -1); }

private:
    int socket_;
};

// --- sockets of threads that have no event loop of Qt's. Each is non-blocking and not inherited by programs; what
// makes one hands it over, -1: it could not be had.

enum class SocketOutcome
{
    Done,
    Later, // nothing to be had, or no room: wait for it
    Ended, // the far end sends no more
    Failed
};

SocketOutcome ReceiveFrom(int socket, QByteArray& into, qsizetype most); // appended
SocketOutcome SendTo(int socket, QByteArray& bytes);                     // what has gone is taken out of it
void EndSending(int socket);                                             // the far end sees the end, and may go on

std::optional<std::array<int, 2>> SocketPair();

// Where to listen: a name or address; empty: this machine alone, by both families; "*": anybody may call.
struct ListenResult
{
    std::vector<int> sockets{}; // empty: it failed
    QString error{};            // the system's words
};
ListenResult ListenAt(const QByteArray& host, quint16 port); // port 0: any
quint16 PortOf(int socket);
int AcceptFrom(int listener);

// The addresses of a name, as the system keeps them; this may take the time that a name server takes.
std::vector<QByteArray> AddressesOf(const QByteArray& host, quint16 port);
int BeginConnect(const QByteArray& address);
SocketOutcome ConnectionOf(int socket);           // Done, Later or Failed
int ConnectToLocalSocket(const QByteArray& path); // at once or not at all

} // namespace kestrune
