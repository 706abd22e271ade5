#include "sshmailbox.h"

#include <platform/sockets.h>

#include <algorithm>
#include <utility>

namespace kestrune::comm {

SshMailbox::~SshMailbox() { CloseSocket(socket_.value_or(-1)); }

// --- the line's side

void SshMailbox::Cancel()
{
    cancelled_ = true;
    const std::lock_guard held(lock_);
    line_ = nullptr;
    notices_.clear();
    answer_.reset();
    CloseSocket(std::exchange(socket_, std::nullopt).value_or(-1)); // nobody comes for it any more
    wake_.Wake();
}

void SshMailbox::GiveSocket(int socket)
{
    const std::lock_guard held(lock_);
    socket_ = socket;
    wake_.Wake();
}

void SshMailbox::GiveAnswer(LineAnswer answer)
{
    const std::lock_guard held(lock_);
    answer_ = std::move(answer);
    wake_.Wake();
}

void SshMailbox::Queue(std::string_view bytes)
{
    const std::lock_guard held(lock_);
    queued_.append(bytes.data(), static_cast<qsizetype>(bytes.size()));
    unsent_ += static_cast<qsizetype>(bytes.size());
    wake_.Wake();
}

void SshMailbox::Resize(const TerminalSize& size)
{
    const std::lock_guard held(lock_);
    orders_.size = size;
    wake_.Wake();
}

void SshMailbox::Break(int milliseconds)
{
    const std::lock_guard held(lock_);
    orders_.breaks.push_back(milliseconds);
    wake_.Wake();
}

void SshMailbox::KeepAlive()
{
    const std::lock_guard held(lock_);
    orders_.keepAlive = true;
    wake_.Wake();
}

std::deque<SshMailbox::Notice> SshMailbox::TakeNotices()
{
    const std::lock_guard held(lock_);
    knocked_ = false;
    return std::exchange(notices_, {});
}

QByteArray SshMailbox::TakeReceived(qsizetype most)
{
    const std::lock_guard held(lock_);
    const bool wasFull = received_.size() >= MostReceived;
    QByteArray taken = received_.size() <= most ? std::exchange(received_, {}) : received_.left(most);
    if (!received_.isEmpty())
        received_.remove(0, most);
    if (wasFull)
        wake_.Wake(); // there is room again
    return taken;
}

std::optional<SshEnding> SshMailbox::TakeEnding()
{
    const std::lock_guard held(lock_);
    return received_.isEmpty() ? std::exchange(ending_, std::nullopt) : std::nullopt;
}

// --- the conversation's side

void SshMailbox::Knock()
{
    if (line_ && !std::exchange(knocked_, true))
        QMetaObject::invokeMethod(line_, knock_, Qt::QueuedConnection);
}

void SshMailbox::Tell(Notice notice)
{
    const std::lock_guard held(lock_);
    if (line_)
        notices_.push_back(std::move(notice));
    Knock();
}

void SshMailbox::Received(std::string_view bytes)
{
    const std::lock_guard held(lock_);
    received_.append(bytes.data(), static_cast<qsizetype>(bytes.size()));
    Knock();
}

qsizetype SshMailbox::Room() const
{
    const std::lock_guard held(lock_);
    return std::max<qsizetype>(0, MostReceived - received_.size());
}

SshMailbox::Orders SshMailbox::TakeOrders()
{
    const std::lock_guard held(lock_);
    return std::exchange(orders_, {});
}

QByteArray SshMailbox::TakeQueued()
{
    const std::lock_guard held(lock_);
    return std::exchange(queued_, {});
}

void SshMailbox::Sent(qsizetype bytes)
{
    const std::lock_guard held(lock_);
    unsent_ -= bytes;
    if (bytes > 0 && unsent_ == 0) {
        drained_ = true;
        Knock();
    }
}

void SshMailbox::End(const SshEnding& ending)
{
    const std::lock_guard held(lock_);
    ending_ = ending;
    Knock();
}

int SshMailbox::AwaitSocket()
{
    while (!cancelled_) {
        {
            const std::lock_guard held(lock_);
            if (const auto socket = std::exchange(socket_, std::nullopt))
                return *socket;
        }
        wake_.Wait(-1, false, false);
        wake_.Clear();
    }
    return -1;
}

std::optional<LineAnswer> SshMailbox::AwaitAnswer(qintptr watched)
{
    while (!cancelled_) {
        {
            const std::lock_guard held(lock_);
            if (auto answer = std::exchange(answer_, std::nullopt))
                return answer;
        }
        if (wake_.Wait(watched, false, false) == WakeUp::Waited::HungUp)
            return std::nullopt;
        wake_.Clear();
    }
    return std::nullopt;
}

bool SshMailbox::AwaitHost(qintptr socket, bool forWriting)
{
    if (wake_.Wait(socket, true, forWriting) == WakeUp::Waited::Woken)
        wake_.Clear();
    return !cancelled_;
}

} // namespace kestrune::comm
