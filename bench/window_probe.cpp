// Runs inside a terminal and measures it from there. What it finds goes as one line of JSON into a file.
//
//   window_probe block                          fills the screen with one colour and waits: what a start is judged by
//   window_probe flood MEGABYTES XSERVER FILE   so much text in pieces of 64 KiB; the clock stops when the terminal
//                                               answers the question for the cursor that stands behind it
//   window_probe history LINES FILE             resident memory of the terminal before and after so many lines
//
// The terminal is the parent process. XSERVER: process id of the X server, whose share of the work is counted too.

#include "processes.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <random>
#include <string>
#include <string_view>

#include <poll.h>
#include <termios.h>
#include <unistd.h>

namespace {

using Seconds = std::chrono::duration<double>;

void Fail(const char* what)
{
    std::perror(what);
    std::exit(1);
}

void MakeRaw()
{
    termios modes{};
    if (tcgetattr(0, &modes) != 0)
        Fail("window_probe: not on a terminal");
    cfmakeraw(&modes);
    tcsetattr(0, TCSANOW, &modes);
}

void Write(std::string_view bytes)
{
    while (!bytes.empty()) {
        const ssize_t put = write(1, bytes.data(), bytes.size());
        if (put < 0)
            Fail("window_probe: write");
        bytes.remove_prefix(static_cast<std::size_t>(put));
    }
}

// The answer to the question for the cursor stands behind all that was written before it.
void WaitForTerminal()
{
    Write("\x1b[6n");
    std::string answer;
    while (answer.find('R') == std::string::npos) {
        char piece[64];
        const ssize_t got = read(0, piece, sizeof piece);
        if (got <= 0)
            Fail("window_probe: no answer");
        answer.append(piece, static_cast<std::size_t>(got));
    }
}

// Words and blanks, 78 characters a line, from a fixed seed.
std::string TextLines(std::size_t bytes)
{
    std::mt19937 random(7);
    std::string text;
    while (text.size() < bytes) {
        for (int i = 0; i < 78; ++i)
            text += random() % 6 == 0 ? ' ' : static_cast<char>('a' + random() % 26);
        text += "\r\n";
    }
    text.resize(bytes);
    return text;
}

// Beside and then renamed: whoever sees the file sees all of it.
void Report(const std::string& path, const std::string& json)
{
    const std::string beside = path + ".part";
    std::ofstream(beside) << json << '\n';
    if (std::rename(beside.c_str(), path.c_str()) != 0)
        Fail("window_probe: result");
}

int Flood(std::size_t megabytes, pid_t xServer, const std::string& file)
{
    constexpr std::size_t piece = 65536;
    const pid_t terminal = getppid();
    const std::string text = TextLines(1'000'000);
    WaitForTerminal();
    const double terminalBefore = bench::ProcessorSeconds(terminal);
    const double xBefore = bench::ProcessorSeconds(xServer);
    const auto begin = std::chrono::steady_clock::now();
    for (std::size_t i = 0; i < megabytes; ++i)
        for (std::size_t at = 0; at < text.size(); at += piece)
            Write(std::string_view(text).substr(at, piece));
    WaitForTerminal();
    const double wall = Seconds(std::chrono::steady_clock::now() - begin).count();
    const double terminalSpent = bench::ProcessorSeconds(terminal) - terminalBefore;
    const double xSpent = bench::ProcessorSeconds(xServer) - xBefore;
    Report(file, "{\"wall\": " + std::to_string(wall) + ", \"terminal\": " + std::to_string(terminalSpent) +
                     ", \"server\": " + std::to_string(xSpent) + "}");
    return 0;
}

int History(std::size_t lines, const std::string& file)
{
    const pid_t terminal = getppid();
    WaitForTerminal();
    const long before = bench::ResidentKilobytes(terminal);
    Write(TextLines(lines * 80));
    WaitForTerminal();
    const long after = bench::ResidentKilobytes(terminal);
    Report(file, "{\"before\": " + std::to_string(before) + ", \"after\": " + std::to_string(after) + "}");
    return 0;
}

int Block()
{
    std::string screen;
    for (int row = 1; row <= 24; ++row)
        screen += "\x1b[" + std::to_string(row) + ";1H\x1b[45m" + std::string(80, ' ');
    Write(screen);
    pollfd nothing{0, 0, 0};
    while (poll(&nothing, 1, -1) >= 0 && (nothing.revents & (POLLHUP | POLLERR)) == 0)
        nothing.revents = 0;
    return 0;
}

} // namespace

int main(int count, char** arguments)
{
    const std::string_view mode = count > 1 ? arguments[1] : "";
    MakeRaw();
    if (mode == "block")
        return Block();
    if (mode == "flood" && count == 5)
        return Flood(std::stoul(arguments[2]), static_cast<pid_t>(std::stol(arguments[3])), arguments[4]);
    if (mode == "history" && count == 4)
        return History(std::stoul(arguments[2]), arguments[3]);
    std::fputs("usage: window_probe block | flood MEGABYTES XSERVER FILE | history LINES FILE\r\n", stderr);
    return 2;
}
