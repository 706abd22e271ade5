#include "streams.h"

#include <array>
#include <random>
#include <utility>

namespace bench {
namespace {

class Random
{
public:
    explicit Random(uint32_t seed) : engine_(seed) {}
    unsigned operator()() { return unsigned(engine_()); }

private:
    std::mt19937 engine_;
};

void AddPart(std::string& out, std::string_view part) { out.append(part); }
void AddPart(std::string& out, char part) { out += part; }
void AddPart(std::string& out, unsigned part) { out.append(std::to_string(part)); }

template <typename... Parts>
void Add(std::string& out, const Parts&... parts)
{
    (AddPart(out, parts), ...);
}

void AddWords(std::string& out, Random& random, std::size_t length)
{
    for (; length > 0; --length)
        out += random() % 6 == 0 ? ' ' : char('a' + random() % 26);
}

void AddPlace(std::string& out, unsigned row, unsigned col) { Add(out, "\x1b[", row, ';', col, 'H'); }

char Letter(Random& random) { return char('a' + random() % 26); }

void AsciiLines(std::string& out, Random& random)
{
    AddWords(out, random, 78);
    Add(out, "\r\n");
}

void DenseCells(std::string& out, Random& random)
{
    AddPlace(out, 1 + random() % 24, 1);
    for (int i = 0; i < 40; ++i) {
        const unsigned foreground = random() % 256;
        const unsigned background = random() % 256;
        Add(out, "\x1b[38;5;", foreground, ";48;5;", background, 'm', char('!' + random() % 90));
    }
}

void Utf8Mixed(std::string& out, Random& random)
{
    static constexpr std::string_view kPieces[] = {"na\xc3\xafve ",
                                                   "\xe2\x94\x80\xe2\x94\x82\xe2\x94\x8c",
                                                   "text ",
                                                   "\xe4\xb8\xad\xe6\x96\x87",
                                                   "\xd0\xbc\xd0\xb8\xd1\x80 ",
                                                   "\xf0\x9f\x98\x80",
                                                   "e\xcc\x81",
                                                   "plain words "};
    for (int i = 0; i < 12; ++i)
        Add(out, kPieces[random() % std::size(kPieces)]);
    Add(out, "\r\n");
}

void Scrolling(std::string& out, Random& random) { Add(out, random() % 2 ? "y\r\n" : "\r\n"); }

void ScrollRegion(std::string& out, Random& random)
{
    Add(out, "\x1b[5;20r");
    AddPlace(out, 20, 1);
    for (int i = 0; i < 30; ++i) {
        Add(out, '\n');
        AddWords(out, random, 20);
        Add(out, '\r');
    }
    AddPlace(out, 5, 1);
    Add(out, "\x1bM\x1bM\x1b[r");
}

void CursorMotion(std::string& out, Random& random)
{
    const unsigned row = 1 + random() % 24;
    AddPlace(out, row, 1 + random() % 80);
    Add(out, Letter(random));
}

void AltScreen(std::string& out, Random& random)
{
    Add(out, "\x1b[?1049h\x1b[H\x1b[2J");
    AddWords(out, random, 200);
    Add(out, "\x1b[?1049l");
    AddWords(out, random, 40);
}

void LongWrap(std::string& out, Random& random) { AddWords(out, random, 4000); }

void EditOps(std::string& out, Random& random)
{
    static constexpr std::string_view kEdits[] = {"\x1b[3@", "\x1b[2P", "\x1b[L", "\x1b[M",
                                                  "\x1b[K",  "\x1b[4X", "\x1b[1K"};
    const unsigned row = 1 + random() % 24;
    AddPlace(out, row, 1 + random() % 60);
    Add(out, kEdits[random() % std::size(kEdits)]);
    AddWords(out, random, 8);
}

// --- from a hostile host

// A resize of the page's columns, again and again.
void Columns(std::string& out, Random& random) { Add(out, random() % 2 ? "\x1b[?3h" : "\x1b[?3l"); }

void ManyParameters(std::string& out, Random& random)
{
    Add(out, "\x1b[", random() % 108);
    for (int i = 0; i < 40; ++i)
        Add(out, ';', random() % 99999);
    Add(out, 'm');
}

void CombiningMarks(std::string& out, Random& random)
{
    Add(out, Letter(random));
    for (int i = 0; i < 60; ++i) // U+0300 to U+033F
        Add(out, '\xcc', char(0x80 + random() % 64));
}

void NewLooks(std::string& out, Random& random)
{
    for (const unsigned what : {38U, 48U}) {
        const unsigned color = random();
        Add(out, "\x1b[", what, ";2;", color % 256, ';', color / 256 % 256, ';', color / 65536 % 256, 'm');
    }
    Add(out, 'x');
}

void NewLinks(std::string& out, Random& random)
{
    const unsigned id = random();
    Add(out, "\x1b]8;id=", id, ";http://a.example/", random(), "\x1b\\x");
}

void Questions(std::string& out, Random& random) { Add(out, random() % 2 ? "\x1b[c" : "\x1b[6n"); }

void TitlesAndBells(std::string& out, Random& random) { Add(out, "\x1b]2;t", random(), "\a\a"); }

void LongRepeats(std::string& out, Random& random) { Add(out, Letter(random), "\x1b[9999b"); }

void EndlessStrings(std::string& out, Random& random)
{
    Add(out, "\x1bP");
    AddWords(out, random, 60000);
}

struct Kind
{
    std::string_view name;
    void (*add)(std::string&, Random&);
};
constexpr std::array kStreams = {
    Kind{"ascii_lines", AsciiLines}, Kind{"dense_cells", DenseCells},     Kind{"utf8_mixed", Utf8Mixed},
    Kind{"scrolling", Scrolling},    Kind{"scroll_region", ScrollRegion}, Kind{"cursor_motion", CursorMotion},
    Kind{"alt_screen", AltScreen},   Kind{"long_wrap", LongWrap},         Kind{"edit_ops", EditOps},
};
constexpr std::array kHostile = {
    Kind{"columns", Columns},
    Kind{"many_parameters", ManyParameters},
    Kind{"combining_marks", CombiningMarks},
    Kind{"new_looks", NewLooks},
    Kind{"new_links", NewLinks},
    Kind{"questions", Questions},
    Kind{"titles_bells", TitlesAndBells},
    Kind{"long_repeats", LongRepeats},
    Kind{"endless_strings", EndlessStrings},
};

template <std::size_t N>
constexpr auto NamesOf(const std::array<Kind, N>& kinds)
{
    std::array<std::string_view, N> names;
    for (std::size_t i = 0; i < N; ++i)
        names[i] = kinds[i].name;
    return names;
}
constexpr auto kStreamNames = NamesOf(kStreams);
constexpr auto kHostileNames = NamesOf(kHostile);

const Kind* Find(std::string_view name)
{
    for (const std::span<const Kind> kinds : {std::span<const Kind>(kStreams), std::span<const Kind>(kHostile)})
        for (const Kind& kind : kinds)
            if (kind.name == name)
                return &kind;
    return nullptr;
}

} // namespace

std::span<const std::string_view> StreamNames() { return kStreamNames; }
std::span<const std::string_view> HostileNames() { return kHostileNames; }

std::string Stream(std::string_view name, std::size_t bytes)
{
    std::string out;
    const Kind* const kind = Find(name);
    Random random(7);
    while (kind != nullptr && out.size() < bytes)
        kind->add(out, random);
    return out;
}

} // namespace bench
