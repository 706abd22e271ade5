#include "presentation.h"

#include "fields.h"

#include <algorithm>
#include <optional>

namespace kestrune::emu::presentation {
namespace {

// Flags travel as one character: 0x40 and the bits.
constexpr int kFlagBase = 0x40;

struct Flag
{
    int bit;
    uint16_t attribute;
};
constexpr Flag kRenditionFlags[] = {{1, Attr::Bold}, {4, Attr::Blink}, {8, Attr::Reverse}};
constexpr int kUnderlineFlag = 2;
constexpr int kOriginFlag = 1;
constexpr int kShift2Flag = 2;
constexpr int kShift3Flag = 4;
constexpr int kWrapFlag = 8;

char AsFlags(int bits) { return char(kFlagBase + bits); }

std::optional<int> Flags(std::string_view field)
{
    if (field.size() != 1 || field[0] < kFlagBase || field[0] > 0x7E)
        return std::nullopt;
    return field[0] - kFlagBase;
}

bool IsWide(const CharacterSet& set) { return set.kind == CharacterSet::Kind::Set96; }

// The upper half of the host's own encoding has no name of its own; it stands where Latin-1 would.
constexpr std::string_view kUpperHalfName = "A";

std::string CursorInformation(const Machine& machine)
{
    const CursorState& cursor = machine.Display().Cursor();
    int rendition = cursor.pen.underline != Underline::None ? kUnderlineFlag : 0;
    for (const Flag& flag : kRenditionFlags)
        rendition |= cursor.pen.attributes & flag.attribute ? flag.bit : 0;
    int flags = machine.Switches().Has(Mode::Origin) ? kOriginFlag : 0;
    flags |= machine.PendingShift() == 2 ? kShift2Flag : machine.PendingShift() == 3 ? kShift3Flag : 0;
    flags |= cursor.pendingWrap ? kWrapFlag : 0;
    int sizes = 0;
    std::string names;
    for (size_t i = 0; i < cursor.charsets.g.size(); ++i) {
        const CharacterSet& set = *cursor.charsets.g[i];
        sizes |= IsWide(set) ? 1 << i : 0;
        names += set.designator.empty() ? kUpperHalfName : set.designator;
    }
    std::string out = std::to_string(cursor.row + 1) + ';' + std::to_string(cursor.col + 1) + ';' +
                      std::to_string(machine.Display().ActivePage() + 1) + ';';
    for (const int bits : {rendition, cursor.pen.attributes & Attr::Protected ? 1 : 0, flags})
        (out += AsFlags(bits)) += ';';
    out += std::to_string(cursor.charsets.gl) + ';' + std::to_string(cursor.charsets.gr) + ';';
    return (out += AsFlags(sizes)) + ';' + names;
}

std::string TabStops(const Machine& machine)
{
    std::string out;
    for (const int col : machine.Display().TabStops())
        out.append(out.empty() ? "" : "/").append(std::to_string(col + 1));
    return out;
}

const CharacterSet* SetNamed(const Machine& machine, std::string_view name, bool wide)
{
    if (wide && name == kUpperHalfName)
        return &UpperHalfSet();
    const CharacterSet* builtIn = FindCharacterSet(name, wide, machine.Speaks());
    return builtIn != nullptr ? builtIn : machine.Soft().FindReported(name, wide);
}

// Names written one after the other: "BB%5%5".
std::optional<CharsetState> Charsets(const Machine& machine, int gl, int gr, int sizes, std::string_view names)
{
    CharsetState state;
    state.gl = gl;
    state.gr = gr;
    for (size_t i = 0; i < state.g.size(); ++i) {
        const size_t length = names.starts_with('%') || names.starts_with(' ') ? 2 : 1;
        state.g[i] = SetNamed(machine, names.substr(0, length), ((sizes >> i) & 1) != 0);
        if (state.g[i] == nullptr)
            return std::nullopt;
        names.remove_prefix(std::min(length, names.size()));
    }
    return names.empty() ? std::optional(state) : std::nullopt;
}

void RestoreCursor(Machine& machine, std::string_view body)
{
    Screen& screen = machine.Display();
    std::string_view fields[9];
    for (std::string_view& field : fields)
        field = TakeField(body);
    const auto row = NumberIn(fields[0], 1, screen.Extent().rows);
    const auto col = NumberIn(fields[1], 1, screen.Extent().cols);
    const auto page = NumberIn(fields[2], 1, screen.PageCount());
    const auto rendition = Flags(fields[3]);
    const auto attribute = Flags(fields[4]);
    const auto flags = Flags(fields[5]);
    const auto gl = NumberIn(fields[6], 0, 3);
    const auto gr = NumberIn(fields[7], 0, 3);
    const auto sizes = Flags(fields[8]);
    if (!row || !col || !page || !rendition || !attribute || !flags || !gl || !gr || !sizes)
        return;
    const auto charsets = Charsets(machine, *gl, *gr, *sizes, body);
    if (!charsets)
        return;

    CursorState state = screen.Cursor();
    state.row = *row - 1;
    state.col = *col - 1;
    state.page = *page - 1;
    state.pendingWrap = (*flags & kWrapFlag) != 0 && *col == screen.Extent().cols;
    state.pen = Style{};
    state.pen.underline = *rendition & kUnderlineFlag ? Underline::Single : Underline::None;
    for (const Flag& flag : kRenditionFlags)
        state.pen.attributes |= *rendition & flag.bit ? flag.attribute : uint16_t(0);
    state.pen.attributes |= *attribute & 1 ? Attr::Protected : uint16_t(0);
    state.charsets = *charsets;
    state.origin = (*flags & kOriginFlag) != 0;
    state.autoWrap = machine.Switches().Has(Mode::AutoWrap);
    screen.PutCursor(state);
    machine.SingleShift(*flags & kShift2Flag ? 2 : *flags & kShift3Flag ? 3 : -1);
}

void RestoreTabs(Machine& machine, std::string_view body)
{
    std::vector<int> cols;
    while (!body.empty()) {
        const auto col = NumberIn(TakeField(body, '/'), 1, Params::Limit);
        if (!col)
            return;
        cols.push_back(*col - 1);
    }
    machine.Display().SetTabStops(cols);
}

} // namespace

void Report(Machine& machine, const ControlSequence& sequence)
{
    if (sequence.params.At(0) == 1)
        machine.ReplyDcs("1$u" + CursorInformation(machine));
    else if (sequence.params.At(0) == 2)
        machine.ReplyDcs("2$u" + TabStops(machine));
}

bool Take(Machine& machine, std::string_view body)
{
    if (!machine.Speaks(Dialect::Vt320) || body.size() < 3)
        return false;
    const std::string_view kind = body.substr(0, 3);
    const std::string_view rest = body.substr(3);
    if (kind == "1$t")
        RestoreCursor(machine, rest);
    else if (kind == "2$t")
        RestoreTabs(machine, rest);
    else if (kind == "0!u" || kind == "1!u")
        machine.PreferSet(rest, kind[0] == '1');
    else
        return false;
    return true;
}

void ReportPreferredSet(Machine& machine, const ControlSequence&)
{
    const CharacterSet& set = machine.PreferredSet();
    machine.ReplyDcs(std::string(IsWide(set) ? "1!u" : "0!u").append(set.designator));
}

} // namespace kestrune::emu::presentation
