#include "sshpipe.h"

#include <array>
#include <poll.h>

namespace kestrune::comm {

namespace {

constexpr qsizetype PipePiece = qsizetype{32} * 1024;
constexpr int MostTurns = 16; // of one pipe, until the next one and the shell have theirs

} // namespace

void SshWatch::For(short events)
{
    if (events == events_)
        return;
    if (events_ != 0)
        ssh_event_remove_fd(event_, socket_);
    events_ = events;
    if (events_ != 0)
        ssh_event_add_fd(
            event_, socket_, events_, [](socket_t, int, void*) { return SSH_OK; }, nullptr);
}

SshPipe::SshPipe(ssh_event event, SshChannelHandle channel, OwnedSocket socket)
    : channel_(std::move(channel)), socket_(std::move(socket)), watch_(event, socket_.Number())
{}

bool SshPipe::ReadSocket()
{
    if (socketEnded_ || !toHost_.isEmpty())
        return false;
    switch (ReceiveFrom(socket_.Number(), toHost_, PipePiece)) {
    case SocketOutcome::Done:
        return true;
    case SocketOutcome::Later:
        return false;
    case SocketOutcome::Ended:
        socketEnded_ = true;
        ssh_channel_send_eof(channel_.get());
        return true;
    case SocketOutcome::Failed:
        broken_ = true;
        return false;
    }
    return false;
}

bool SshPipe::WriteChannel()
{
    if (toHost_.isEmpty())
        return false;
    const int written = ssh_channel_write(channel_.get(), toHost_.constData(), static_cast<uint32_t>(toHost_.size()));
    if (written == SSH_ERROR)
        broken_ = true;
    if (written <= 0)
        return false;
    toHost_.remove(0, written);
    return true;
}

bool SshPipe::ReadChannel()
{
    if (hostEnded_ || !toSocket_.isEmpty())
        return false;
    std::array<char, PipePiece> piece; // NOLINT(cppcoreguidelines-pro-type-member-init): filled by the read
    const int count = ssh_channel_read_nonblocking(channel_.get(), piece.data(), static_cast<uint32_t>(PipePiece), 0);
    if (count > 0) {
        toSocket_.append(piece.data(), count);
        return true;
    }
    if (!ssh_channel_is_eof(channel_.get()) && !ssh_channel_is_closed(channel_.get()))
        return false;
    hostEnded_ = true;
    EndSending(socket_.Number());
    return true;
}

bool SshPipe::WriteSocket()
{
    if (toSocket_.isEmpty())
        return false;
    const auto outcome = SendTo(socket_.Number(), toSocket_);
    broken_ |= outcome == SocketOutcome::Failed;
    return outcome == SocketOutcome::Done;
}

bool SshPipe::IsOver() const
{
    return broken_ || (hostEnded_ && toSocket_.isEmpty() && (socketEnded_ || ssh_channel_is_closed(channel_.get())));
}

SshPipe::Progress SshPipe::Move()
{
    for (int turn = 0; turn < MostTurns; ++turn) {
        bool moved = ReadSocket();
        moved |= WriteChannel();
        moved |= ReadChannel();
        moved |= WriteSocket();
        if (IsOver())
            return Progress::Over;
        if (!moved) {
            const int reading = !socketEnded_ && toHost_.isEmpty() ? POLLIN : 0;
            const int writing = toSocket_.isEmpty() ? 0 : POLLOUT;
            watch_.For(static_cast<short>(reading | writing));
            return Progress::Idle;
        }
    }
    return Progress::More;
}

} // namespace kestrune::comm
