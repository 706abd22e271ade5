#include "channel.h"

#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

namespace kestrune::rebind {

namespace {

constexpr std::size_t kHeader = 3; // kind, length in two bytes, the high one first
constexpr std::size_t kMostPayload = 0xFFFF;
constexpr std::size_t kMostUnread = 0x40000;

} // namespace

Channel::Channel(int socket) : socket_(socket) {}

Channel::~Channel() { close(socket_); }

void Channel::Send(Packet kind, std::string_view payload)
{
    do {
        const auto piece = payload.substr(0, kMostPayload);
        out_ += char(kind);
        out_ += char(piece.size() >> 8);
        out_ += char(piece.size() & 0xFF);
        out_ += piece;
        payload.remove_prefix(piece.size());
    } while (!payload.empty());
    Write();
}

void Channel::Write()
{
    while (open_ && !out_.empty()) {
        const auto count = send(socket_, out_.data(), out_.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
        if (count > 0)
            out_.erase(0, std::size_t(count));
        else if (errno == EAGAIN)
            return;
        else if (errno != EINTR)
            open_ = false;
    }
}

void Channel::Read()
{
    char bytes[0x4000];
    while (open_ && in_.size() < kMostUnread) {
        const auto count = recv(socket_, bytes, sizeof bytes, MSG_DONTWAIT);
        if (count > 0)
            in_.append(bytes, std::size_t(count));
        else if (count < 0 && errno == EAGAIN)
            return;
        else if (count == 0 || errno != EINTR)
            open_ = false;
    }
}

std::optional<Channel::Message> Channel::Next()
{
    if (in_.size() < kHeader)
        return {};
    const auto byte = [&](std::size_t at) { return std::size_t(static_cast<unsigned char>(in_[at])); };
    const std::size_t length = byte(1) << 8 | byte(2);
    if (in_.size() < kHeader + length)
        return {};
    Message message{Packet(in_[0]), in_.substr(kHeader, length)};
    in_.erase(0, kHeader + length);
    return message;
}

} // namespace kestrune::rebind
