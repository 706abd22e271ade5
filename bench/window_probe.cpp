// Runs inside a terminal and measures it from there. What it finds goes as JSON into a file.
//
//   window_probe block                            fills the screen with one colour and waits: what a start is judged by
//   window_probe flood MEGABYTES SECONDS SERVER FILE
//                                                 each stream in pieces of 64 KiB, until so much of it is written or so
//                                                 much time has gone; the clock stops when the terminal answers the
//                                                 question for the cursor that stands behind it
//   window_probe history FILE                     resident memory of the terminal at 0, 10, 30 and 100 thousand lines
//   window_probe keys                             a block whose colour every key press changes
//   window_probe busy FILE                        the block until a first key; then output without end, and for each
//                                                 further key the time of its arrival, in nanoseconds
//
// The terminal is the parent process. SERVER: process id of the display server, whose share of the work is counted too.

#include "processes.h"
#include "streams.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string>
#include <string_view>
#include <thread>

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

// Beside and then renamed: whoever sees the file sees all of it.
void Report(const std::string& path, const std::string& json)
{
    const std::string beside = path + ".part";
    std::ofstream(beside) << json << '\n';
    if (std::rename(beside.c_str(), path.c_str()) != 0)
        Fail("window_probe: result");
}

struct Cost
{
    double wall, terminal, server;
};
Cost Now(pid_t server)
{
    return {Seconds(std::chrono::steady_clock::now().time_since_epoch()).count(), bench::ProcessorSeconds(getppid()),
            bench::ProcessorSeconds(server)};
}

// {"bytes": .., "wall": .., ..} for one stream.
std::string FloodWith(std::string_view name, std::size_t megabytes, double seconds, pid_t server)
{
    constexpr std::size_t piece = 65536;
    const std::string text = bench::Stream(name, 1'000'000);
    Write("\x1b[?1049l\x1b[r\x1b[m\x1b[2J\x1b[H");
    WaitForTerminal();
    const Cost before = Now(server);
    std::size_t written = 0;
    for (std::size_t at = 0; written < megabytes * 1'000'000 && Now(server).wall - before.wall < seconds;) {
        const std::string_view now = std::string_view(text).substr(at, piece);
        Write(now);
        written += now.size();
        at = at + now.size() < text.size() ? at + now.size() : 0;
    }
    WaitForTerminal();
    const Cost after = Now(server);
    std::ostringstream json;
    json << '"' << name << "\": {\"bytes\": " << written << ", \"wall\": " << after.wall - before.wall
         << ", \"terminal\": " << after.terminal - before.terminal << ", \"server\": " << after.server - before.server
         << '}';
    return json.str();
}

int Flood(std::size_t megabytes, double seconds, pid_t server, const std::string& file)
{
    std::string json;
    for (const std::string_view name : bench::StreamNames())
        json.append(json.empty() ? "{" : ", ").append(FloodWith(name, megabytes, seconds, server));
    Report(file, json + '}');
    return 0;
}

int History(const std::string& file)
{
    const pid_t terminal = getppid();
    std::ostringstream json;
    std::size_t written = 0;
    const std::string text = bench::Stream("ascii_lines", 80'000'000 / 100);
    constexpr std::size_t linesAtOnce = 10'000;
    WaitForTerminal();
    for (const std::size_t lines : {0U, 10'000U, 30'000U, 100'000U}) {
        for (; written < lines; written += linesAtOnce)
            Write(text);
        WaitForTerminal();
        json << (lines == 0 ? "{\"" : ", \"") << lines << "\": " << bench::ResidentKilobytes(terminal);
    }
    Report(file, json.str() + '}');
    return 0;
}

std::string BlockOf(int color, int top, int bottom, int left, int columns)
{
    std::ostringstream block;
    for (int row = top; row <= bottom; ++row)
        block << "\x1b[" << row << ';' << left << "H\x1b[" << color << 'm' << std::string(size_t(columns), ' ');
    return block.str();
}
std::string WholeBlock(int color) { return BlockOf(color, 1, 24, 1, 80); }
constexpr int kMagenta = 45;
constexpr int kGreen = 42;

bool ReadKey()
{
    char key = 0;
    return read(0, &key, 1) == 1;
}

// Only a part changes, as for an echo: eight short rows in the middle.
int Keys()
{
    Write(WholeBlock(kMagenta));
    for (bool green = true; ReadKey(); green = !green)
        Write(BlockOf(green ? kGreen : kMagenta, 9, 16, 31, 20));
    return 0;
}

int Busy(const std::string& file)
{
    Write(WholeBlock(kMagenta));
    if (!ReadKey())
        return 1;
    std::thread([file] {
        std::ofstream out(file);
        while (ReadKey())
            out << std::chrono::steady_clock::now().time_since_epoch().count() << std::endl;
        _exit(0);
    }).detach();
    Write("\x1b[m");
    for (const std::string text = bench::Stream("ascii_lines", 1'000'000);;)
        Write(text);
}

int Block()
{
    Write(WholeBlock(kMagenta));
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
    if (mode == "flood" && count == 6)
        return Flood(std::stoul(arguments[2]), std::stod(arguments[3]), static_cast<pid_t>(std::stol(arguments[4])),
                     arguments[5]);
    if (mode == "history" && count == 3)
        return History(arguments[2]);
    if (mode == "keys")
        return Keys();
    if (mode == "busy" && count == 3)
        return Busy(arguments[2]);
    std::fputs("usage: window_probe block | flood MEGABYTES SECONDS SERVER FILE | history FILE | keys | busy FILE\r\n",
               stderr);
    return 2;
}
