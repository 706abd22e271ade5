#pragma once

// A login on a pseudo-terminal that runs kestrune-rebind, and the terminal's side of it, which can lose its line.

#include <comm/rebind/terminalside.h>

#include <poll.h>
#include <pty.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <string>
#include <vector>

class Login : public kestrune::comm::RebindEvents
{
public:
    Login(std::vector<std::string> arguments, std::unique_ptr<kestrune::comm::RebindTicket> ticket,
          bool sevenBit = false)
        : terminal(0x10000, std::move(ticket), *this)
    {
        terminal.SetSevenBit(sevenBit);
        winsize window{};
        window.ws_row = 30;
        window.ws_col = 100;
        process_ = forkpty(&file_, nullptr, nullptr, &window);
        if (process_ == 0) {
            std::vector<char*> words;
            for (std::string& argument : arguments)
                words.push_back(argument.data());
            words.push_back(nullptr);
            execv(words[0], words.data());
            _exit(127);
        }
    }
    ~Login() override { Cut(); }
    Login(const Login&) = delete;
    Login& operator=(const Login&) = delete;

    // As a pulled cable: what is under way in either direction is gone.
    void Cut()
    {
        if (process_ <= 0)
            return;
        close(file_);
        kill(process_, SIGKILL);
        int status = 0;
        waitpid(process_, &status, 0);
        process_ = -1;
    }

    // One exchange with the line. False: nothing for so long, or the far end has gone.
    bool Turn(int milliseconds = 10'000)
    {
        pollfd line{file_, short(POLLIN | (out.empty() ? 0 : POLLOUT)), 0};
        if (poll(&line, 1, milliseconds) <= 0)
            return false;
        if ((line.revents & POLLIN) != 0) {
            char bytes[4096];
            const auto count = read(file_, bytes, sizeof bytes);
            if (count <= 0)
                return false;
            terminal.FromLine({bytes, std::size_t(count)});
        } else if ((line.revents & POLLOUT) != 0) {
            const auto count = write(file_, out.data(), std::min<std::size_t>(out.size(), 1024));
            out.erase(0, count > 0 ? std::size_t(count) : 0);
        } else {
            return false;
        }
        return true;
    }
    template <typename Condition>
    bool TurnUntil(Condition condition)
    {
        while (!condition())
            if (!Turn())
                return condition();
        return true;
    }
    int ExitCode()
    {
        int status = 0;
        waitpid(process_, &status, 0);
        process_ = -1;
        close(file_);
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }
    void Resize(unsigned short rows, unsigned short cols) const
    {
        winsize window{};
        window.ws_row = rows;
        window.ws_col = cols;
        ioctl(file_, TIOCSWINSZ, &window);
    }

    void RebindData(std::string_view bytes) override { screen += bytes; }
    void RebindOutput(std::string_view wire) override { out += wire; }
    void RebindAnswered() override {}
    void RebindAgreed(bool sameSession) override { agreed = sameSession ? "same" : "new"; }
    void RebindEnded(int exitCode) override { ended = exitCode; }
    void RebindBroken() override { broken = true; }

    kestrune::comm::RebindTerminal terminal;
    std::string out;
    std::string screen;
    std::string agreed;
    int ended = -1;
    bool broken = false;

private:
    int file_ = -1;
    pid_t process_ = -1;
};
