#include <platform/wakeup.h>

#include <platform/systemfailure.h>

#include <QCoreApplication>

#include <cerrno>
#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

namespace kestrune {

WakeUp::WakeUp()
{
    if (::pipe2(ends_.data(), O_CLOEXEC | O_NONBLOCK) != 0)
        throw SystemFailure(errno, Subject::File,
                            QCoreApplication::translate("WakeUp", "The system has no room for another connection"));
}

WakeUp::~WakeUp()
{
    for (const int end : ends_)
        ::close(end);
}

void WakeUp::Wake() noexcept
{
    // A full pipe wakes too.
    [[maybe_unused]] const ssize_t written = ::write(ends_[1], "", 1);
}

void WakeUp::Clear() noexcept
{
    std::array<char, 64> bytes{};
    while (::read(ends_[0], bytes.data(), bytes.size()) > 0) {
    }
}

WakeUp::Waited WakeUp::Wait(qintptr socket, bool forReading, bool forWriting, int milliseconds) const noexcept
{
    const int wanted = (forReading ? POLLIN : 0) | (forWriting ? POLLOUT : 0) | POLLRDHUP;
    std::array<pollfd, 2> polled{pollfd{ends_[0], POLLIN, 0},
                                 pollfd{static_cast<int>(socket), static_cast<short>(wanted), 0}};
    int count = 0;
    do
        count = ::poll(polled.data(), polled.size(), milliseconds);
    while (count < 0 && errno == EINTR);
    if (polled[0].revents != 0)
        return Waited::Woken;
    if (polled[1].revents & (POLLIN | POLLOUT))
        return Waited::Ready;
    return polled[1].revents != 0 ? Waited::HungUp : Waited::Nothing;
}

} // namespace kestrune
