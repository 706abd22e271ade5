// How fast the emulator engine takes in what hosts send, in MB/s of processor time for each kind of stream, and how
// much memory a line of history costs; beside it a plain engine of the distribution's, where that was there to build
// with. Options: stream names, to run those only; --quick, to see that it works.

#include "streams.h"

#include <emulator/engine/terminal.h>
#include <emulator/personalities/personalities.h>

#include <algorithm>
#include <cstdio>
#include <string>
#include <string_view>
#include <vector>

#include <ctime>
#include <unistd.h>

#if defined(KESTRUNE_BENCH_VTERM)
#include <memory>
#include <vterm.h>
#endif

namespace {

using namespace kestrune::emu;

constexpr size_t kPiece = 64u << 10; // what one read of a line brings

struct Effort
{
    size_t streamBytes;
    size_t peerBytes; // it needs a second for a megabyte of some streams
    int rounds;
};
constexpr Effort kFull{16u << 20, 2u << 20, 5};
constexpr Effort kQuick{2u << 20, 64u << 10, 1};

struct Silent : TerminalListener
{
    void Reply(std::string_view) override {}
};

TerminalOptions Options()
{
    TerminalOptions options;
    options.historyRows = 10'000;
    options.charset = HostCharset::Utf8;
    return options;
}

// Processor time: what else runs on the machine must not count.
double ProcessorSeconds()
{
    timespec now{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
    return double(now.tv_sec) + double(now.tv_nsec) / 1e9;
}

template <typename Receive>
double Rate(const std::string& stream, Receive&& receive)
{
    const double start = ProcessorSeconds();
    for (size_t at = 0; at < stream.size(); at += kPiece)
        receive(std::string_view(stream).substr(at, kPiece));
    return double(stream.size()) / 1e6 / (ProcessorSeconds() - start);
}

// The best of some rounds: what else runs can only take away.
double OwnRate(const std::string& stream, const Effort& effort)
{
    double best = 0;
    for (int round = 0; round < effort.rounds; ++round) {
        Silent listener;
        Terminal terminal(Options(), *FindPersonality(8), listener);
        best = std::max(best, Rate(stream, [&](std::string_view piece) { terminal.Receive(piece); }));
    }
    return best;
}

#if defined(KESTRUNE_BENCH_VTERM)
// With a screen, but with no history: keeping lines is left to its user.
double PeerRate(const std::string& stream, const Effort& effort)
{
    const std::unique_ptr<VTerm, decltype(&vterm_free)> terminal(vterm_new(24, 80), &vterm_free);
    vterm_set_utf8(terminal.get(), 1);
    VTermScreen* const screen = vterm_obtain_screen(terminal.get());
    vterm_screen_enable_altscreen(screen, 1);
    vterm_screen_reset(screen, 1);
    return Rate(stream.substr(0, effort.peerBytes),
                [&](std::string_view piece) { vterm_input_write(terminal.get(), piece.data(), piece.size()); });
}
#else
double PeerRate(const std::string&, const Effort&) { return 0; }
#endif

long ResidentBytes()
{
    long total = 0;
    long resident = 0;
    if (FILE* file = std::fopen("/proc/self/statm", "r")) {
        if (std::fscanf(file, "%ld %ld", &total, &resident) != 2)
            resident = 0;
        std::fclose(file);
    }
    return resident * sysconf(_SC_PAGESIZE);
}

double BytesPerHistoryLine()
{
    constexpr int kLines = 100'000;
    const std::string lines = bench::Stream("ascii_lines", size_t{kLines} * 80);
    TerminalOptions options = Options();
    options.historyRows = kLines;
    Silent listener;
    Terminal terminal(options, *FindPersonality(8), listener);
    const long before = ResidentBytes();
    terminal.Receive(lines);
    return double(ResidentBytes() - before) / terminal.HistoryCount();
}

// What each step costs while the user draws the window's edge, with a history of coloured lines of which some are
// wrapped.
double MillisecondsToWrapAnew(int historyRows)
{
    TerminalOptions options = Options();
    options.historyRows = historyRows;
    options.reflow = true;
    Silent listener;
    Terminal terminal(options, *FindPersonality(8), listener);
    for (int line = 0; terminal.HistoryCount() < historyRows; ++line)
        terminal.Receive("\x1b[32m" + std::string(size_t(line % 100), 'x') + "\x1b[m and some plain text\r\n");
    constexpr int kSteps = 10;
    const double start = ProcessorSeconds();
    for (int step = 1; step <= kSteps; ++step)
        terminal.Resize({80 - step, 24});
    return (ProcessorSeconds() - start) * 1000 / kSteps;
}

void Measure(std::string_view name, const Effort& effort, bool withPeer)
{
    const std::string stream = bench::Stream(name, effort.streamBytes);
    const double own = OwnRate(stream, effort);
    std::printf("engine %-16s %6.0f MB/s", std::string(name).c_str(), own);
    if (const double peer = withPeer ? PeerRate(stream, effort) : 0; peer > 0)
        std::printf("   libvterm %5.0f MB/s (x%.1f)", peer, own / peer);
    std::printf("\n");
    std::fflush(stdout);
}

} // namespace

int main(int argc, char** argv)
{
    std::vector<std::string_view> wanted(argv + 1, argv + argc);
    const bool quick = std::erase(wanted, "--quick") != 0;
    if (wanted.empty()) { // first, while no memory lies about that could be used again
        std::printf("engine history        %8.0f bytes a line of 78 characters\n", BytesPerHistoryLine());
        for (const int rows : {10'000, 100'000})
            std::printf("engine new width      %8.1f ms with %d lines of history\n", MillisecondsToWrapAnew(rows),
                        rows);
    }
    for (const auto& names : {bench::StreamNames(), bench::HostileNames()}) {
        const bool hostile = names.data() == bench::HostileNames().data();
        if (wanted.empty() && hostile)
            std::printf("what a hostile host may send:\n");
        for (const std::string_view name : names)
            if (wanted.empty() || std::find(wanted.begin(), wanted.end(), name) != wanted.end())
                Measure(name, quick || hostile ? kQuick : kFull, !hostile);
    }
    return 0;
}
