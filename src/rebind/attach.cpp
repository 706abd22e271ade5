#include "attach.h"

#include "channel.h"
#include "place.h"

#include <comm/rebind/handshake.h>

#include <poll.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <memory>
#include <string>

namespace kestrune::rebind {

namespace {

namespace protocol = comm::rebind;

volatile std::sig_atomic_t windowChanged = 0;

bool WriteAll(std::string_view bytes)
{
    while (!bytes.empty()) {
        const auto count = write(STDOUT_FILENO, bytes.data(), bytes.size());
        if (count < 0 && errno != EINTR)
            return false;
        bytes.remove_prefix(count > 0 ? std::size_t(count) : 0);
    }
    return true;
}

// The terminal passes every byte as it is while this stands.
class RawTerminal
{
public:
    RawTerminal()
    {
        tcgetattr(STDIN_FILENO, &before_);
        termios raw = before_;
        cfmakeraw(&raw);
        raw.c_iflag |= IGNBRK;
        tcsetattr(STDIN_FILENO, TCSADRAIN, &raw);
    }
    ~RawTerminal() { tcsetattr(STDIN_FILENO, TCSADRAIN, &before_); }
    RawTerminal(const RawTerminal&) = delete;
    RawTerminal& operator=(const RawTerminal&) = delete;

private:
    termios before_{};
};

WindowSize SizeOfTerminal()
{
    winsize window{};
    if (ioctl(STDIN_FILENO, TIOCGWINSZ, &window) != 0 || window.ws_row == 0 || window.ws_col == 0)
        return {};
    return {window.ws_row, window.ws_col};
}

struct Asked
{
    std::optional<protocol::Answer> answer;
    std::string typedAhead; // what else has come
};

// ECMA-48 5.4: CSI, parameters, intermediates, a final byte. Device attributes are reported as CSI ? ... c.
bool TakeDeviceAttributes(std::string& text)
{
    const auto start = text.find("\x1b[?");
    const auto end = start == text.npos ? start : text.find_first_not_of("0123456789;", start + 3);
    if (end == text.npos || text[end] != 'c')
        return false;
    text.erase(start, end + 1 - start);
    return true;
}

std::optional<protocol::Answer> TakeAnswer(std::string& text)
{
    const auto start = text.find(protocol::Opening);
    const auto body = start + protocol::Opening.size();
    const auto end = start == text.npos ? start : text.find(protocol::Closing, body);
    if (end == text.npos)
        return {};
    auto answer = protocol::ParseAnswer(std::string_view(text).substr(body, end - body));
    text.erase(start, end + protocol::Closing.size() - start);
    return answer;
}

Asked AskTerminal(std::chrono::milliseconds wait)
{
    Asked asked;
    if (!WriteAll(protocol::Announcement))
        return asked;
    const auto until = std::chrono::steady_clock::now() + wait;
    for (;;) {
        const auto left =
            std::chrono::duration_cast<std::chrono::milliseconds>(until - std::chrono::steady_clock::now());
        pollfd input{STDIN_FILENO, POLLIN, 0};
        if (left.count() <= 0 || (poll(&input, 1, int(left.count())) <= 0 && errno != EINTR))
            return asked;
        char bytes[4096];
        const auto count = read(STDIN_FILENO, bytes, sizeof bytes);
        if (count <= 0 || asked.typedAhead.size() > 0x10000)
            return asked;
        asked.typedAhead.append(bytes, std::size_t(count));
        asked.answer = TakeAnswer(asked.typedAhead);
        if (asked.answer || TakeDeviceAttributes(asked.typedAhead))
            return asked;
    }
}

// What was typed while we asked belongs to the shell that goes on. Where the system no longer lets a process type into
// its own terminal it is shown at least.
void GiveBack(const std::string& typed)
{
    for (const char byte : typed)
        if (ioctl(STDIN_FILENO, TIOCSTI, &byte) != 0) {
            WriteAll(typed);
            return;
        }
}

class Login
{
public:
    Login(Channel& channel, std::string token, bool sevenBit)
        : channel_(channel), token_(std::move(token)), sevenBit_(sevenBit)
    {}

    // Ready: the streams flow. False: the holder does not have that session from there.
    bool Bind(std::uint64_t received)
    {
        channel_.Send(Packet::Hello, std::string(sevenBit_ ? "7 " : "8 ").append(std::to_string(received)));
        SendSize();
        while (channel_.IsOpen()) {
            Wait(false);
            channel_.Read();
            if (const auto message = channel_.Next())
                return message->kind == Packet::Ready &&
                       WriteAll(Format(protocol::Ready{token_, std::strtoull(message->payload.c_str(), nullptr, 10)}));
        }
        return false;
    }

    std::optional<int> Run(const std::string& typedAhead)
    {
        if (!typedAhead.empty())
            channel_.Send(Packet::Data, typedAhead);
        for (;;) {
            // Before any wait: the first output may have come together with the agreement.
            while (const auto message = channel_.Next()) {
                if (message->kind == Packet::Exit)
                    return std::atoi(message->payload.c_str()); // NOLINT(cert-err34-c): ours
                if (message->kind == Packet::Data && !WriteAll(message->payload))
                    return {};
            }
            if (!channel_.IsOpen())
                return {};
            Wait(channel_.Unsent() < kMostUnsent);
            if (windowChanged != 0) {
                windowChanged = 0;
                SendSize();
            }
            if (terminalReady_ && !FromTerminal())
                return {};
            channel_.Read();
            channel_.Write();
        }
    }

private:
    static constexpr std::size_t kMostUnsent = 0x10000;

    void Wait(bool forTerminal)
    {
        pollfd watched[] = {
            {forTerminal ? STDIN_FILENO : -1, POLLIN, 0},
            {channel_.Socket(), short(POLLIN | (channel_.Unsent() > 0 ? POLLOUT : 0)), 0},
        };
        const bool any = poll(watched, std::size(watched), -1) > 0;
        terminalReady_ = any && watched[0].revents != 0;
    }

    bool FromTerminal()
    {
        char bytes[0x4000];
        const auto count = read(STDIN_FILENO, bytes, sizeof bytes);
        if (count > 0)
            channel_.Send(Packet::Data, {bytes, std::size_t(count)});
        return count > 0 || (count < 0 && errno == EINTR);
    }

    void SendSize()
    {
        const WindowSize size = SizeOfTerminal();
        channel_.Send(Packet::Window, std::to_string(size.rows) + ' ' + std::to_string(size.cols));
    }

    Channel& channel_;
    std::string token_;
    bool sevenBit_;
    bool terminalReady_ = false;
};

std::optional<int> Serve(const Asked& asked, int socket, const std::string& token, std::uint64_t received)
{
    Channel channel(socket);
    Login login(channel, token, asked.answer->sevenBit);
    if (!login.Bind(received))
        return {};
    return login.Run(asked.typedAhead).value_or(255);
}

} // namespace

std::optional<int> AttachSession(const AttachOptions& options)
{
    if (!isatty(STDIN_FILENO) || !isatty(STDOUT_FILENO))
        return {};
    const auto folder = SessionFolder();
    if (!folder) {
        std::fprintf(stderr, "kestrune-rebind: its folder is not this user's alone\n");
        return {};
    }
    RawTerminal raw;
    const Asked asked = AskTerminal(options.wait);
    if (!asked.answer) {
        GiveBack(asked.typedAhead);
        return {};
    }
    struct sigaction onResize
    {};
    onResize.sa_handler = [](int) { windowChanged = 1; };
    sigaction(SIGWINCH, &onResize, nullptr);

    const std::string& wanted = asked.answer->token;
    const int old = wanted.empty() ? -1 : ConnectTo(*folder + '/' + wanted);
    if (old >= 0)
        if (const auto code = Serve(asked, old, wanted, asked.answer->received))
            return code;

    const std::string token = NewToken();
    const std::string path = *folder + '/' + token;
    if (!StartHolder(options.holder, path, SizeOfTerminal()))
        return {};
    const int made = ConnectTo(path);
    return made < 0 ? std::nullopt : Serve(asked, made, token, 0);
}

} // namespace kestrune::rebind
