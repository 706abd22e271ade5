#include <platform/sockets.h>

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <memory>
#include <netdb.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

namespace kestrune {

bool SetTcpKeepalive(qintptr socket, int seconds)
{
    const int descriptor = static_cast<int>(socket);
    const int on = seconds > 0;
    const auto set = [descriptor](int level, int option, int value) {
        return ::setsockopt(descriptor, level, option, &value, sizeof value) == 0;
    };
    if (!set(SOL_SOCKET, SO_KEEPALIVE, on))
        return false;
    return !on || (set(IPPROTO_TCP, TCP_KEEPIDLE, seconds) && set(IPPROTO_TCP, TCP_KEEPINTVL, seconds));
}

bool SetTcpPatience(qintptr socket, int seconds)
{
    const unsigned milliseconds = static_cast<unsigned>(seconds) * 1000U;
    return ::setsockopt(static_cast<int>(socket), IPPROTO_TCP, TCP_USER_TIMEOUT, &milliseconds, sizeof milliseconds) ==
           0;
}

void KeepUrgentInline(qintptr socket)
{
    const int on = 1;
    ::setsockopt(static_cast<int>(socket), SOL_SOCKET, SO_OOBINLINE, &on, sizeof on);
}

bool HasUrgentAhead(qintptr socket)
{
    pollfd ask{.fd = static_cast<int>(socket), .events = POLLPRI, .revents = 0};
    return ::poll(&ask, 1, 0) == 1 && (ask.revents & POLLPRI) != 0;
}

int DuplicateSocket(qintptr socket) { return ::fcntl(static_cast<int>(socket), F_DUPFD_CLOEXEC, 0); }

void ShutDownSocket(int socket)
{
    if (socket >= 0)
        ::shutdown(socket, SHUT_RDWR);
}

void CloseSocket(int socket)
{
    if (socket >= 0)
        ::close(socket);
}

void CloseDuplicate(int duplicate, int original)
{
    struct stat one
    {};
    struct stat other
    {};
    const bool same = ::fstat(duplicate, &one) == 0 && ::fstat(original, &other) == 0 && one.st_dev == other.st_dev &&
                      one.st_ino == other.st_ino;
    if (same)
        ::close(duplicate);
}

std::optional<quint16> ServicePort(const QByteArray& name)
{
    addrinfo hints{};
    hints.ai_family = AF_INET;
    hints.ai_socktype = SOCK_STREAM;
    addrinfo* found = nullptr;
    if (::getaddrinfo(nullptr, name.constData(), &hints, &found) != 0)
        return std::nullopt;
    const std::unique_ptr<addrinfo, decltype(&::freeaddrinfo)> owner(found, ::freeaddrinfo);
    sockaddr_in address{};
    std::memcpy(&address, found->ai_addr, sizeof address);
    return ntohs(address.sin_port);
}

// --- sockets of threads that have no event loop of Qt's

namespace {

constexpr int StreamSocket = SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK;
constexpr int MostCallers = 64; // that wait for their turn

using AddressList = std::unique_ptr<addrinfo, decltype(&::freeaddrinfo)>;

AddressList LookUp(const char* host, quint16 port, int flags)
{
    addrinfo hints{};
    hints.ai_family = AF_UNSPEC;
    hints.ai_socktype = SOCK_STREAM;
    hints.ai_flags = flags | AI_NUMERICSERV;
    addrinfo* found = nullptr;
    const QByteArray number = QByteArray::number(port);
    if (::getaddrinfo(host, number.constData(), &hints, &found) != 0)
        found = nullptr;
    return {found, ::freeaddrinfo};
}

bool MustWait() { return errno == EAGAIN || errno == EWOULDBLOCK || errno == EINTR; }

} // namespace

SocketOutcome ReceiveFrom(int socket, QByteArray& into, qsizetype most)
{
    const qsizetype before = into.size();
    into.resize(before + most);
    const ssize_t count = ::recv(socket, into.data() + before, static_cast<std::size_t>(most), 0);
    into.resize(before + (count > 0 ? count : 0));
    if (count > 0)
        return SocketOutcome::Done;
    if (count == 0)
        return SocketOutcome::Ended;
    return MustWait() ? SocketOutcome::Later : SocketOutcome::Failed;
}

SocketOutcome SendTo(int socket, QByteArray& bytes)
{
    const ssize_t count = ::send(socket, bytes.constData(), static_cast<std::size_t>(bytes.size()), MSG_NOSIGNAL);
    if (count < 0)
        return MustWait() ? SocketOutcome::Later : SocketOutcome::Failed;
    bytes.remove(0, count);
    return SocketOutcome::Done;
}

void EndSending(int socket) { ::shutdown(socket, SHUT_WR); }

std::optional<std::array<int, 2>> SocketPair()
{
    std::array<int, 2> ends{};
    if (::socketpair(AF_UNIX, StreamSocket, 0, ends.data()) != 0)
        return std::nullopt;
    return ends;
}

ListenResult ListenAt(const QByteArray& host, quint16 port)
{
    ListenResult result;
    const bool anybody = host == "*";
    const AddressList found =
        LookUp(host.isEmpty() || anybody ? nullptr : host.constData(), port, anybody ? AI_PASSIVE : 0);
    int failure = EADDRNOTAVAIL;
    for (const addrinfo* at = found.get(); at; at = at->ai_next) {
        const int socket = ::socket(at->ai_family, StreamSocket, 0);
        const int on = 1;
        ::setsockopt(socket, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
        if (at->ai_family == AF_INET6) // its own family only, so that the other one can have the same port
            ::setsockopt(socket, IPPROTO_IPV6, IPV6_V6ONLY, &on, sizeof on);
        if (::bind(socket, at->ai_addr, at->ai_addrlen) == 0 && ::listen(socket, MostCallers) == 0) {
            result.sockets.push_back(socket);
            if (port == 0)
                break; // the other family would get another one
        } else {
            failure = errno;
            CloseSocket(socket);
        }
    }
    if (result.sockets.empty())
        result.error = QString::fromLocal8Bit(std::strerror(failure));
    return result;
}

quint16 PortOf(int socket)
{
    sockaddr_storage address{};
    socklen_t size = sizeof address;
    if (::getsockname(socket, reinterpret_cast<sockaddr*>(&address), &size) != 0)
        return 0;
    // The port stands at the same place in the addresses of both families.
    return ntohs(reinterpret_cast<const sockaddr_in*>(&address)->sin_port);
}

int AcceptFrom(int listener) { return ::accept4(listener, nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK); }

std::vector<QByteArray> AddressesOf(const QByteArray& host, quint16 port)
{
    std::vector<QByteArray> addresses;
    const AddressList found = LookUp(host.constData(), port, 0);
    for (const addrinfo* at = found.get(); at; at = at->ai_next)
        addresses.emplace_back(reinterpret_cast<const char*>(at->ai_addr), static_cast<qsizetype>(at->ai_addrlen));
    return addresses;
}

int BeginConnect(const QByteArray& address)
{
    sockaddr_storage to{};
    std::memcpy(&to, address.constData(), static_cast<std::size_t>(address.size()));
    const int socket = ::socket(to.ss_family, StreamSocket, 0);
    if (::connect(socket, reinterpret_cast<const sockaddr*>(&to), static_cast<socklen_t>(address.size())) == 0 ||
        errno == EINPROGRESS)
        return socket;
    CloseSocket(socket);
    return -1;
}

SocketOutcome ConnectionOf(int socket)
{
    pollfd ask{.fd = socket, .events = POLLOUT, .revents = 0};
    if (::poll(&ask, 1, 0) == 0)
        return SocketOutcome::Later;
    int error = 0;
    socklen_t size = sizeof error;
    ::getsockopt(socket, SOL_SOCKET, SO_ERROR, &error, &size);
    return error == 0 ? SocketOutcome::Done : SocketOutcome::Failed;
}

int ConnectToLocalSocket(const QByteArray& path)
{
    sockaddr_un to{};
    to.sun_family = AF_UNIX;
    if (path.size() >= static_cast<qsizetype>(sizeof to.sun_path))
        return -1;
    std::memcpy(to.sun_path, path.constData(), static_cast<std::size_t>(path.size()));
    const int socket = ::socket(AF_UNIX, StreamSocket, 0);
    if (::connect(socket, reinterpret_cast<const sockaddr*>(&to), sizeof to) == 0)
        return socket;
    CloseSocket(socket);
    return -1;
}

} // namespace kestrune
