// How fast the emulator engine takes in what hosts send, in MB/s of processor time for each kind of stream, and how
// much memory a line of history costs. The streams are made beforehand from a fixed seed. Options: stream names, to run
// those only.

#include <emulator/engine/terminal.h>
#include <emulator/personalities/personalities.h>

#include <algorithm>
#include <cstdio>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include <ctime>
#include <unistd.h>

namespace {

using namespace kestrune::emu;

constexpr size_t kStreamBytes = 16u << 20;
constexpr size_t kPiece = 64u << 10; // what one read of a line brings
constexpr int kRounds = 5;

class Random
{
public:
    explicit Random(uint32_t seed) : engine_(seed) {}
    unsigned operator()() { return unsigned(engine_()); }

private:
    std::mt19937 engine_;
};

std::string Words(Random& random, size_t length)
{
    std::string out;
    while (out.size() < length)
        out += random() % 6 == 0 ? ' ' : char('a' + random() % 26);
    return out;
}

std::string At(unsigned row, unsigned col)
{
    return std::string("\x1b[").append(std::to_string(row)).append(";").append(std::to_string(col)).append("H");
}

void AsciiLines(std::string& out, Random& random) { out += Words(random, 78) + "\r\n"; }

void DenseCells(std::string& out, Random& random)
{
    out += At(1 + random() % 24, 1);
    for (int i = 0; i < 40; ++i)
        out += "\x1b[38;5;" + std::to_string(random() % 256) + ";48;5;" + std::to_string(random() % 256) + 'm' +
               char('!' + random() % 90);
}

void Utf8Mixed(std::string& out, Random& random)
{
    static constexpr const char* kPieces[] = {"na\xc3\xafve ",
                                              "\xe2\x94\x80\xe2\x94\x82\xe2\x94\x8c",
                                              "text ",
                                              "\xe4\xb8\xad\xe6\x96\x87",
                                              "\xd0\xbc\xd0\xb8\xd1\x80 ",
                                              "\xf0\x9f\x98\x80",
                                              "e\xcc\x81",
                                              "plain words "};
    for (int i = 0; i < 12; ++i)
        out += kPieces[random() % std::size(kPieces)];
    out += "\r\n";
}

void Scrolling(std::string& out, Random& random) { out += random() % 2 ? "y\r\n" : "\r\n"; }

void ScrollRegion(std::string& out, Random& random)
{
    out += "\x1b[5;20r" + At(20, 1);
    for (int i = 0; i < 30; ++i)
        out.append("\n").append(Words(random, 20)).append("\r");
    out += At(5, 1) + "\x1bM\x1bM\x1b[r";
}

void CursorMotion(std::string& out, Random& random)
{
    out += At(1 + random() % 24, 1 + random() % 80) + char('a' + random() % 26);
}

void AltScreen(std::string& out, Random& random)
{
    out.append("\x1b[?1049h\x1b[H\x1b[2J").append(Words(random, 200));
    out.append("\x1b[?1049l").append(Words(random, 40));
}

void LongWrap(std::string& out, Random& random) { out += Words(random, 4000); }

void EditOps(std::string& out, Random& random)
{
    static constexpr const char* kEdits[] = {"\x1b[3@", "\x1b[2P", "\x1b[L", "\x1b[M", "\x1b[K", "\x1b[4X", "\x1b[1K"};
    out += At(1 + random() % 24, 1 + random() % 60) + kEdits[random() % std::size(kEdits)] + Words(random, 8);
}

struct Stream
{
    std::string_view name;
    void (*add)(std::string&, Random&);
};
constexpr Stream kStreams[] = {
    {"ascii_lines", AsciiLines}, {"dense_cells", DenseCells},     {"utf8_mixed", Utf8Mixed},
    {"scrolling", Scrolling},    {"scroll_region", ScrollRegion}, {"cursor_motion", CursorMotion},
    {"alt_screen", AltScreen},   {"long_wrap", LongWrap},         {"edit_ops", EditOps},
};

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

double MegabytesPerSecond(const std::string& stream)
{
    std::vector<double> rates;
    for (int round = 0; round < kRounds; ++round) {
        Silent listener;
        Terminal terminal(Options(), *FindPersonality(8), listener);
        const double start = ProcessorSeconds();
        for (size_t at = 0; at < stream.size(); at += kPiece)
            terminal.Receive(std::string_view(stream).substr(at, kPiece));
        rates.push_back(double(stream.size()) / 1e6 / (ProcessorSeconds() - start));
    }
    return *std::max_element(rates.begin(), rates.end()); // what else runs can only take away
}

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
    Random random(3);
    std::string lines;
    for (int i = 0; i < kLines; ++i)
        AsciiLines(lines, random);
    TerminalOptions options = Options();
    options.historyRows = kLines;
    Silent listener;
    Terminal terminal(options, *FindPersonality(8), listener);
    const long before = ResidentBytes();
    terminal.Receive(lines);
    return double(ResidentBytes() - before) / terminal.HistoryCount();
}

} // namespace

int main(int argc, char** argv)
{
    const std::vector<std::string_view> wanted(argv + 1, argv + argc);
    if (wanted.empty()) // first, while no memory lies about that could be used again
        std::printf("engine history        %8.0f bytes a line of 78 characters\n", BytesPerHistoryLine());
    for (const Stream& stream : kStreams) {
        if (!wanted.empty() && std::find(wanted.begin(), wanted.end(), stream.name) == wanted.end())
            continue;
        Random random(7);
        std::string bytes;
        while (bytes.size() < kStreamBytes)
            stream.add(bytes, random);
        std::printf("engine %-14s %8.0f MB/s\n", std::string(stream.name).c_str(), MegabytesPerSecond(bytes));
        std::fflush(stdout);
    }
    return 0;
}
