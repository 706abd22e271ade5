#include <platform/sockets.h>

#include <cstring>
#include <fcntl.h>
#include <memory>
#include <netdb.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/stat.h>
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

} // namespace kestrune
