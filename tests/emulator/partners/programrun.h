#pragma once

// A program on a pseudo terminal of its own, whose output goes to an engine of the terminal type under test.

#include <emulator/engine/bench.h>
#include <emulator/partners/referencescreen.h>

#include <poll.h>
#include <pty.h>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <string>

namespace kestrune::emu::partners {

class ProgramRun
{
public:
    ProgramRun(const std::string& folder, const std::string& command, int type, const std::string& term,
               ScreenSize size)
        : bench_(OptionsFor(size, type), type)
    {
        winsize window = WindowOf(size);
        child_ = forkpty(&master_, nullptr, nullptr, &window);
        if (child_ == 0) {
            for (const auto& [name, value] : {std::pair<const char*, std::string>("TERM", term),
                                              {"HOME", folder},
                                              {"TMUX_TMPDIR", folder},
                                              {"LC_ALL", "C"}})
                setenv(name, value.c_str(), 1);
            unsetenv("TMUX");
            execl("/bin/sh", "sh", "-c", command.c_str(), static_cast<char*>(nullptr));
            _exit(127);
        }
    }
    ProgramRun(const ProgramRun&) = delete;
    ProgramRun& operator=(const ProgramRun&) = delete;
    ~ProgramRun()
    {
        close(master_);
        kill(-child_, SIGKILL); // a pty's child leads a session of its own
        waitpid(child_, nullptr, 0);
    }

    void Type(const std::string& keys)
    {
        if (write(master_, keys.data(), keys.size()) != ssize_t(keys.size()))
            throw std::runtime_error("the program takes no keys");
    }
    void Resize(ScreenSize size)
    {
        bench_.terminal.Resize({size.cols, size.rows});
        const winsize window = WindowOf(size);
        ioctl(master_, TIOCSWINSZ, &window);
    }
    // Until `shows` holds for the screen and the program says no more, or it is gone or takes too long; then what there
    // is. A program that is still drawing could miss what is done to it next, as less does a new size.
    template <typename Shows>
    std::string Until(Shows&& shows)
    {
        const auto end = std::chrono::steady_clock::now() + kLongest;
        for (;;) {
            const Heard heard = Feed();
            std::string screen = Screen();
            if (heard == Heard::End || (heard == Heard::Nothing && shows(screen)) ||
                std::chrono::steady_clock::now() >= end)
                return screen;
        }
    }

    // Until it waits for a key: it has been silent for a while, and `asks` holds or the silence is a long one.
    template <typename Asks>
    std::string UntilQuiet(Asks&& asks)
    {
        constexpr int kPause = 40, kLongPause = 1500;
        for (int silent = 0; silent < kLongPause;) {
            pollfd ready{master_, POLLIN, 0};
            if (poll(&ready, 1, kPause) == 0)
                silent += asks(Screen()) ? kLongPause / 2 : kPause;
            else if (Feed() == Heard::End)
                break;
            else
                silent = 0;
        }
        return Screen();
    }

private:
    static constexpr std::chrono::seconds kLongest{15};
    static constexpr int kWaitMilliseconds = 200;

    static TerminalOptions OptionsFor(ScreenSize size, int type)
    {
        TerminalOptions options;
        options.size = {size.cols, size.rows};
        options.pages = 6; // as a VT420 has
        if (type == Type::Ansi || type == Type::Sco || type == Type::Linux)
            options.charset = HostCharset::Cp437; // what programs in the C locale draw boxes with there
        return options;
    }
    static winsize WindowOf(ScreenSize size)
    {
        winsize window{};
        window.ws_col = static_cast<unsigned short>(size.cols);
        window.ws_row = static_cast<unsigned short>(size.rows);
        return window;
    }
    enum class Heard
    {
        Nothing,
        Output,
        End
    };
    Heard Feed()
    {
        pollfd ready{master_, POLLIN, 0};
        if (poll(&ready, 1, kWaitMilliseconds) == 0)
            return Heard::Nothing;
        char piece[4096];
        const ssize_t got = read(master_, piece, sizeof piece);
        if (got <= 0)
            return Heard::End;
        bench_.HostSays({piece, size_t(got)});
        if (const std::string replies = bench_.Replies(); !replies.empty())
            Type(replies);
        return Heard::Output;
    }
    std::string Screen() const
    {
        std::string text;
        for (int row = 0; row < bench_.terminal.ScreenSize().rows; ++row)
            text += bench_.Line(row) + '\n';
        return text;
    }

    Bench bench_;
    int master_ = -1;
    pid_t child_ = -1;
};

} // namespace kestrune::emu::partners
