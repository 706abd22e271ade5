#include "place.h"

#include <sys/random.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdlib>
#include <cstring>

namespace kestrune::rebind {

namespace {

// The session outlives the login, so XDG_RUNTIME_DIR, which goes with the last login, would not do.
std::string FolderName()
{
    const char* named = std::getenv("KESTRUNE_REBIND_DIR"); // NOLINT(concurrency-mt-unsafe): one thread
    return named && *named ? named : std::string("/tmp/kestrune-rebind-").append(std::to_string(getuid()));
}

int WithSocket(const std::string& path, int (*use)(int, const sockaddr*, socklen_t))
{
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (path.size() >= sizeof address.sun_path) {
        errno = ENAMETOOLONG;
        return -1;
    }
    std::memcpy(address.sun_path, path.c_str(), path.size() + 1);
    const int made = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (made >= 0 && use(made, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0)
        return made;
    const int error = errno;
    if (made >= 0)
        close(made);
    errno = error;
    return -1;
}

} // namespace

std::optional<std::string> SessionFolder()
{
    const std::string folder = FolderName();
    mkdir(folder.c_str(), S_IRWXU);
    struct stat is
    {};
    const bool ours = lstat(folder.c_str(), &is) == 0 && S_ISDIR(is.st_mode) && is.st_uid == getuid() &&
                      (is.st_mode & (S_IRWXG | S_IRWXO)) == 0;
    return ours ? std::optional(folder) : std::nullopt;
}

std::string NewToken()
{
    std::array<unsigned char, 16> bytes{};
    if (getrandom(bytes.data(), bytes.size(), 0) != ssize_t(bytes.size()))
        std::abort(); // nothing that could be guessed instead
    std::string token;
    for (const unsigned char byte : bytes) {
        token += "0123456789abcdef"[byte >> 4];
        token += "0123456789abcdef"[byte & 15];
    }
    return token;
}

int ListenAt(const std::string& path)
{
    return WithSocket(path, [](int made, const sockaddr* address, socklen_t size) {
        return bind(made, address, size) == 0 ? listen(made, 4) : -1;
    });
}

int ConnectTo(const std::string& path) { return WithSocket(path, &connect); }

} // namespace kestrune::rebind
