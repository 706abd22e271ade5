#include "holder.h"

#include "channel.h"
#include "place.h"

#include <comm/rebind/stream.h>

#include <fcntl.h>
#include <poll.h>
#include <pty.h>
#include <pwd.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <optional>

namespace kestrune::rebind {

namespace {

using Time = std::chrono::steady_clock;
constexpr std::size_t kPiece = 0x4000;
constexpr std::size_t kMostUnsent = 0x20000;         // to a login that takes nothing
constexpr std::size_t kMostInput = 0x20000;          // for a shell that takes nothing
constexpr auto kLastWords = std::chrono::seconds(5); // for a terminal to say that it has seen the end
constexpr auto kKeepEnded = std::chrono::minutes(10);

std::string LoginShell()
{
    const char* named = std::getenv("SHELL"); // NOLINT(concurrency-mt-unsafe): one thread
    if (named && *named)
        return named;
    const passwd* entry = getpwuid(getuid()); // NOLINT(concurrency-mt-unsafe): one thread
    return entry && *entry->pw_shell ? entry->pw_shell : "/bin/sh";
}

[[noreturn]] void RunCommand(std::vector<std::string> command)
{
    setenv("KESTRUNE_REBIND", "1", 1); // NOLINT(concurrency-mt-unsafe): one thread; the profile asks for it
    std::string program;
    if (command.empty()) {
        program = LoginShell();
        command = {program.substr(program.rfind('/') + 1)
                       .insert(0, 1, '-')}; // how login(1) tells a shell that it is the first
    } else {
        program = command.front();
    }
    std::vector<char*> arguments;
    arguments.reserve(command.size() + 1);
    for (std::string& argument : command)
        arguments.push_back(argument.data());
    arguments.push_back(nullptr);
    execvp(program.c_str(), arguments.data());
    std::perror(program.c_str());
    _exit(127);
}

class Holder
{
public:
    Holder(const HolderOptions& options, int listener, int terminal, pid_t child)
        : options_(options), listener_(listener), terminal_(terminal), child_(child), stream_(options.bufferSize),
          alone_(Time::now())
    {}

    void Run()
    {
        while (!Finished())
            Turn();
        if (child_ > 0)
            kill(-child_, SIGHUP);
    }

    // The last thing: with it the login ends.
    void SayExit()
    {
        if (login_ && exitCode_)
            login_->Send(Packet::Exit, std::to_string(*exitCode_));
    }

private:
    bool Finished() const
    {
        if (quit_)
            return true;
        if (login_)
            return stream_.EndSeen() || (exitCode_ && Time::now() - ended_ >= kLastWords);
        const auto keep = exitCode_ ? std::min<Time::duration>(options_.keep, kKeepEnded) : options_.keep;
        return Time::now() - alone_ >= keep;
    }

    void Turn()
    {
        const bool takesOutput = !exitCode_ && stream_.Room() > 0;
        const short terminalEvents = short((takesOutput ? POLLIN : 0) | (input_.empty() ? 0 : POLLOUT));
        const bool readsLogin = login_ && input_.size() < kMostInput;
        pollfd watched[] = {
            {listener_, POLLIN, 0},
            {terminalEvents != 0 ? terminal_ : -1, terminalEvents, 0},
            {login_ ? login_->Socket() : -1,
             short((readsLogin ? POLLIN : 0) | (login_ && login_->Unsent() > 0 ? POLLOUT : 0)), 0},
        };
        // The child's end is told only in here, so none is missed between a look and the wait.
        const timespec limit{1, 0}; // where the time counts
        sigset_t none;
        sigemptyset(&none);
        if (ppoll(watched, std::size(watched), login_ && !exitCode_ ? nullptr : &limit, &none) < 0) {
            quit_ = quit_ || errno != EINTR;
            for (pollfd& one : watched)
                one.revents = 0;
        }
        Reap();
        if ((watched[2].revents & (POLLIN | POLLHUP | POLLERR)) != 0)
            ServeLogin();
        if ((watched[1].revents & POLLOUT) != 0)
            FeedTerminal();
        if (takesOutput && (watched[1].revents != 0 || status_))
            ReadTerminal();
        if ((watched[0].revents & POLLIN) != 0)
            Accept();
        Push();
        if (login_ && !login_->IsOpen())
            DropLogin();
    }

    void Accept()
    {
        const int made = accept4(listener_, nullptr, nullptr, SOCK_CLOEXEC);
        if (made < 0)
            return;
        login_ = std::make_unique<Channel>(made); // the one before is a login that has not yet noticed its end
        bound_ = false;
    }

    void DropLogin()
    {
        login_.reset();
        bound_ = false;
        alone_ = Time::now();
    }

    void ServeLogin()
    {
        login_->Read();
        while (auto message = login_->Next()) {
            switch (message->kind) {
            case Packet::Hello:
                Bind(message->payload);
                break;
            case Packet::Window:
                Resize(message->payload);
                break;
            case Packet::Data:
                Receive(message->payload);
                break;
            default:
                break;
            }
            if (!login_)
                return;
        }
    }

    void Bind(const std::string& hello)
    {
        unsigned bits = 8;
        unsigned long long received = 0;
        if (std::sscanf(hello.c_str(), "%u %llu", &bits, &received) != 2 ||
            !stream_.Resume(received)) { // NOLINT(cert-err34-c): a wrong number is refused by Resume
            login_->Send(Packet::Gone, {});
            DropLogin();
            return;
        }
        stream_.SetSevenBit(bits == 7);
        login_->Send(Packet::Ready, std::to_string(stream_.Received()));
        bound_ = true;
    }

    void Resize(const std::string& size) const
    {
        winsize window{};
        if (std::sscanf(size.c_str(), "%hu %hu", &window.ws_row, &window.ws_col) == 2) // NOLINT(cert-err34-c): ours
            ioctl(terminal_, TIOCSWINSZ, &window);
    }

    void Receive(const std::string& wire)
    {
        if (!bound_)
            return;
        if (!stream_.Receive(wire, input_)) {
            DropLogin(); // the terminal comes back on a better line
            return;
        }
        quit_ = quit_ || stream_.QuitAsked();
        FeedTerminal();
    }

    void FeedTerminal()
    {
        while (!input_.empty() && !exitCode_) {
            const auto count = write(terminal_, input_.data(), std::min(input_.size(), kPiece));
            if (count > 0)
                input_.erase(0, std::size_t(count));
            else if (errno == EAGAIN)
                return;
            else if (errno != EINTR)
                break;
        }
        input_.clear(); // sent, or nobody reads it any more
    }

    void ReadTerminal()
    {
        char bytes[kPiece];
        const auto count = read(terminal_, bytes, std::min(sizeof bytes, stream_.Room()));
        if (count > 0)
            stream_.Write({bytes, std::size_t(count)});
        else if (status_ && (count == 0 || errno != EINTR))
            End(); // all that it printed has been read; what it left running does not keep the session
    }

    void Reap()
    {
        int status = 0;
        if (child_ <= 0 || waitpid(child_, &status, WNOHANG) != child_)
            return;
        status_ = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
        child_ = -1;
    }

    void End()
    {
        exitCode_ = status_;
        ended_ = Time::now();
        stream_.End(*exitCode_);
    }

    void Push()
    {
        while (bound_ && login_ && login_->IsOpen() && stream_.HasOutput() && login_->Unsent() < kMostUnsent)
            login_->Send(Packet::Data, stream_.TakeOutput(kPiece));
        if (login_)
            login_->Write();
    }

    HolderOptions options_;
    int listener_;
    int terminal_;
    pid_t child_;
    comm::ResumableStream stream_;
    std::unique_ptr<Channel> login_;
    bool bound_ = false;          // the login has said where its terminal stands
    std::string input_;           // for the shell
    std::optional<int> status_;   // of the program, which may have left output behind
    std::optional<int> exitCode_; // once that is read too
    bool quit_ = false;
    Time::time_point alone_;
    Time::time_point ended_;
};

// Away from the login: its terminal's end must not reach us.
void Detach()
{
    setsid();
    const int nothing = open("/dev/null", O_RDWR);
    for (int file = 0; file < 3; ++file)
        dup2(nothing, file);
    if (nothing > 2)
        close(nothing);
    std::signal(SIGHUP, SIG_IGN);
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGCHLD, [](int) {}); // to be woken by it; see Turn
    sigset_t children;
    sigemptyset(&children);
    sigaddset(&children, SIGCHLD);
    sigprocmask(SIG_BLOCK, &children, nullptr);
}

[[noreturn]] void Hold(const HolderOptions& options, int listener, const std::string& path, WindowSize size)
{
    winsize window{};
    window.ws_row = size.rows;
    window.ws_col = size.cols;
    int terminal = -1;
    const pid_t child = forkpty(&terminal, nullptr, nullptr, &window);
    if (child == 0) {
        std::signal(SIGHUP, SIG_DFL);
        std::signal(SIGPIPE, SIG_DFL);
        sigset_t none;
        sigemptyset(&none);
        sigprocmask(SIG_SETMASK, &none, nullptr);
        RunCommand(options.command);
    }
    if (child > 0) {
        fcntl(terminal, F_SETFL, fcntl(terminal, F_GETFL) | O_NONBLOCK);
        Holder holder(options, listener, terminal, child);
        holder.Run();
        unlink(path.c_str());
        holder.SayExit();
    }
    unlink(path.c_str());
    _exit(0);
}

} // namespace

bool StartHolder(const HolderOptions& options, const std::string& path, WindowSize size)
{
    const int listener = ListenAt(path);
    const pid_t first = listener < 0 ? -1 : fork();
    if (first < 0) {
        std::perror("kestrune-rebind");
        return false;
    }
    if (first == 0) {
        Detach();
        // Twice, so that it is nobody's child.
        if (fork() == 0)
            Hold(options, listener, path, size);
        _exit(0);
    }
    close(listener);
    while (waitpid(first, nullptr, 0) < 0 && errno == EINTR) {
    }
    return true;
}

} // namespace kestrune::rebind
