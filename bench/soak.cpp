// A day of a busy session, as fast as the engine takes it: mixed output at an assumed 100 kB/s for 24 hours, history
// at its limit all the time, a resize now and then. Prints resident memory as it goes; it has to stay flat.
//
//   soak [GIGABYTES]      8.64 when nothing is given

#include "processes.h"
#include "streams.h"

#include <emulator/engine/terminal.h>
#include <emulator/personalities/personalities.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include <unistd.h>

namespace {

using namespace kestrune::emu;

constexpr double kDay = 100e3 * 24 * 3600;
constexpr size_t kStreamBytes = 4u << 20;
constexpr size_t kHostileBytes = 128u << 10; // a few of them cost more a byte
constexpr size_t kPiece = 64u << 10;
constexpr int kLooks = 24;

struct Counting : TerminalListener
{
    void Reply(std::string_view bytes) override { replied += bytes.size(); }
    size_t replied = 0;
};

// Every kind of stream once, the hostile ones too, each with the last one's modes undone.
double OneTurn(Terminal& terminal, const std::vector<std::string>& streams)
{
    double fed = 0;
    int turn = 0;
    for (const std::string& stream : streams) {
        terminal.Resize({60 + 20 * (turn % 4), 20 + 7 * (turn % 5)});
        ++turn;
        for (size_t at = 0; at < stream.size(); at += kPiece)
            terminal.Receive(std::string_view(stream).substr(at, kPiece));
        terminal.Receive("\x18\x1b[!p\x1b[?1049l\x1b[r");
        fed += double(stream.size());
    }
    return fed;
}

} // namespace

int main(int count, char** arguments)
{
    const double total = count > 1 ? std::strtod(arguments[1], nullptr) * 1e9 : kDay;
    std::vector<std::string> streams;
    for (const std::string_view name : bench::StreamNames())
        streams.push_back(bench::Stream(name, kStreamBytes));
    for (const std::string_view name : bench::HostileNames())
        streams.push_back(bench::Stream(name, kHostileBytes));

    TerminalOptions options;
    options.historyRows = 10'000;
    options.charset = HostCharset::Utf8;
    Counting listener;
    Terminal terminal(options, *FindPersonality(16), listener);
    const long before = bench::ResidentKilobytes(getpid());
    std::printf("%8s %12s\n", "GB", "resident, kB");
    double fed = 0;
    double nextLook = 0;
    long most = 0;
    long early = 0;
    while (fed < total) {
        fed += OneTurn(terminal, streams);
        const long resident = bench::ResidentKilobytes(getpid()) - before;
        most = std::max(most, resident);
        if (fed <= total / 10)
            early = most; // the first tenth: by now everything has been full once
        if (fed >= nextLook) {
            std::printf("%8.2f %12ld\n", fed / 1e9, resident);
            std::fflush(stdout);
            nextLook += total / kLooks;
        }
    }
    std::printf("most in the first tenth %ld kB, most of all %ld kB; %zu bytes of answers\n", early, most,
                listener.replied);
    return 0;
}
