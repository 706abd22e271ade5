#include "stream.h"

#include <algorithm>
#include <charconv>
#include <utility>

namespace kestrune::comm {

namespace {

constexpr unsigned char kDle = 0x10;
constexpr unsigned char kFlip = 0x40; // DLE goes as DLE P, DEL as DLE ?
constexpr char kHigh = '+';
constexpr char kAcknowledge = 'a', kCheck = 'c', kEnd = 'e', kSeen = 's', kQuit = 'q';
constexpr std::size_t kMostDigits = 16;
constexpr std::uint64_t kCheckEvery = 0x10000;
constexpr std::uint64_t kTellEvery = 4096;

constexpr bool IsSpecial(unsigned char byte)
{
    switch (byte) {
    case '\0':
    case '\n':
    case '\r':
    case 0x11: // XON
    case 0x13: // XOFF
    case 0x1D: // telnet's own escape, should somebody be in between
    case 0x7F:
    case kDle:
        return true;
    default:
        return false;
    }
}

constexpr bool IsNoise(unsigned char byte) { return byte != kDle && IsSpecial(byte); }

} // namespace

ResumableStream::ResumableStream(std::size_t bufferSize) : bufferSize_(std::max(bufferSize, MinBuffer)) {}

// --- sending

void ResumableStream::Write(std::string_view bytes) { buffer_ += bytes.substr(0, Room()); }

void ResumableStream::End(int code) { end_ = code; }

void ResumableStream::Quit() { quit_ = true; }

bool ResumableStream::HasOutput() const
{
    return sent_ < Kept().size() || quit_ || (end_ && !endSent_) || (ended_ && !endedTold_) ||
           received_ - told_ >= kTellEvery;
}

void ResumableStream::Encode(std::string& wire, unsigned char byte) const
{
    if (sevenBit_ && byte >= 0x80) {
        wire += char(kDle);
        wire += kHigh;
        byte &= 0x7F;
    }
    if (IsSpecial(byte)) {
        wire += char(kDle);
        byte ^= kFlip;
    }
    wire += char(byte);
}

void ResumableStream::SayCount(std::string& wire, char message, std::uint64_t count) const
{
    char digits[kMostDigits];
    const auto end = std::to_chars(digits, digits + sizeof digits, count, 16).ptr;
    wire += char(kDle);
    wire += message;
    wire.append(digits, end);
    wire += ';';
}

std::string ResumableStream::TakeOutput(std::size_t most)
{
    std::string wire;
    if (received_ - told_ >= kTellEvery) {
        SayCount(wire, kAcknowledge, received_);
        told_ = received_;
    }
    const std::string_view kept = Kept();
    const std::size_t until = std::min(kept.size(), sent_ + most);
    wire.reserve(wire.size() + until - sent_ + 64);
    for (; sent_ < until; ++sent_)
        Encode(wire, static_cast<unsigned char>(kept[sent_]));
    const bool all = sent_ == kept.size();
    const std::uint64_t position = acknowledged_ + sent_;
    if (position - sentMark_ >= kCheckEvery || (all && end_ && !endSent_)) {
        SayCount(wire, kCheck, position);
        sentMark_ = position;
    }
    if (all && end_ && !std::exchange(endSent_, true))
        SayCount(wire, kEnd, static_cast<std::uint64_t>(*end_));
    if (ended_ && !std::exchange(endedTold_, true))
        SayCount(wire, kSeen, 0);
    if (std::exchange(quit_, false))
        SayCount(wire, kQuit, 0);
    return wire;
}

// --- receiving

bool ResumableStream::Receive(std::string_view wire, std::string& data)
{
    while (!wire.empty()) {
        // Runs of plain bytes, which is nearly everything.
        const auto special =
            std::ranges::find_if(wire, [](char c) { return IsSpecial(static_cast<unsigned char>(c)); });
        const auto run = std::size_t(special - wire.begin());
        if (state_ == State::Data && run > 0) {
            data.append(wire.substr(0, run));
            received_ += run;
            wire.remove_prefix(run);
            continue;
        }
        if (!Take(static_cast<unsigned char>(wire.front()), data))
            return false;
        wire.remove_prefix(1);
    }
    return true;
}

void ResumableStream::Put(unsigned char byte, std::string& data)
{
    data += char(byte);
    ++received_;
    state_ = State::Data;
}

bool ResumableStream::Take(unsigned char byte, std::string& data)
{
    if (IsNoise(byte))
        return true;
    switch (state_) {
    case State::Data:
        if (byte == kDle)
            state_ = State::Escape;
        else
            Put(byte, data);
        return true;
    case State::Escape:
        if (byte == kHigh) {
            state_ = State::High;
        } else if (byte >= 'a' && byte <= 'z') {
            state_ = State::Message;
            message_ = char(byte);
            number_.clear();
        } else if (IsSpecial(byte ^ kFlip)) {
            Put(byte ^ kFlip, data);
        } else {
            return false;
        }
        return true;
    case State::High:
        if (byte == kDle)
            state_ = State::HighEscape;
        else
            Put(byte | 0x80, data);
        return true;
    case State::HighEscape:
        if (!IsSpecial(byte ^ kFlip))
            return false;
        Put((byte ^ kFlip) | 0x80, data);
        return true;
    case State::Message:
        if (byte != ';') {
            number_ += char(byte);
            return number_.size() <= kMostDigits;
        }
        state_ = State::Data;
        return TakeMessage();
    }
    return false;
}

bool ResumableStream::TakeMessage()
{
    std::uint64_t count = 0;
    const char* end = number_.data() + number_.size();
    if (std::from_chars(number_.data(), end, count, 16).ptr != end || number_.empty())
        return false;
    switch (message_) {
    case kAcknowledge:
        return Acknowledge(count);
    case kCheck:
        return count == received_;
    case kEnd:
        ended_ = static_cast<int>(count & 0xFF);
        return true;
    case kSeen:
        endSeen_ = true;
        return true;
    case kQuit:
        quitAsked_ = true;
        return true;
    default:
        return true; // of a later version
    }
}

bool ResumableStream::Acknowledge(std::uint64_t count)
{
    if (count < acknowledged_ || count > acknowledged_ + sent_)
        return false;
    const auto known = std::size_t(count - acknowledged_);
    sent_ -= known;
    acknowledged_ = count;
    gone_ += known;
    if (gone_ > buffer_.size() / 2) { // now and then, not for each acknowledgement
        buffer_.erase(0, gone_);
        gone_ = 0;
    }
    return true;
}

// --- the next connection

bool ResumableStream::Resume(std::uint64_t theirReceived)
{
    if (theirReceived < acknowledged_ || theirReceived > acknowledged_ + Kept().size())
        return false;
    sent_ = Kept().size(); // they may have more than this side knows to have sent
    if (!Acknowledge(theirReceived))
        return false;
    sent_ = 0;
    sentMark_ = acknowledged_;
    endSent_ = false;
    state_ = State::Data;
    told_ = received_; // by the handshake
    return true;
}

} // namespace kestrune::comm
