#include "areas.h"

#include "hexpairs.h"

#include <algorithm>
#include <optional>

namespace kestrune::emu::areas {
namespace {

// Top, left, bottom, right from parameter `at` on, counted from 1 and relative to the margins in origin mode; what
// is missing means the edge. Nothing when it holds no cell. A stretch of text over several lines may end left of
// where it starts.
std::optional<Area> AreaFrom(const Machine& machine, const Params& params, int at,
                             ChangeExtent extent = ChangeExtent::Rectangle)
{
    const Area whole = machine.Display().Addressable();
    const auto first = [&](int index, int edge) { return edge + params.Count(index) - 1; };
    const auto last = [&](int index, int edge, int end) {
        return params.At(index) == 0 ? end : std::min(end, edge + params.At(index));
    };
    const Area area{first(at, whole.top), first(at + 1, whole.left), last(at + 2, whole.top, whole.bottom),
                    last(at + 3, whole.left, whole.right)};
    const bool isStretch = extent == ChangeExtent::Stream && area.bottom - area.top > 1 && area.left < whole.right;
    if (area.top >= area.bottom || (area.left >= area.right && !isStretch))
        return std::nullopt;
    return area;
}

bool IsGraphic(int code) { return (code >= 0x20 && code <= 0x7E) || (code >= 0xA0 && code <= 0xFF); }

struct Rendition // of DECCARA and DECRARA: these alone can be changed
{
    int code;
    uint16_t attributes;
    bool underlines;
    bool on;
};
constexpr uint16_t kAllAttributes = Attr::Bold | Attr::Blink | Attr::Reverse;
constexpr Rendition kRenditions[] = {
    {0, kAllAttributes, true, false},
    {1, Attr::Bold, false, true},
    {4, 0, true, true},
    {5, Attr::Blink, false, true},
    {7, Attr::Reverse, false, true},
    {22, Attr::Bold, false, false},
    {24, 0, true, false},
    {25, Attr::Blink, false, false},
    {27, Attr::Reverse, false, false},
};

void Apply(const Rendition& to, Style& style)
{
    style.attributes = uint16_t(to.on ? style.attributes | to.attributes : style.attributes & ~to.attributes);
    if (to.underlines)
        style.underline = to.on ? Underline::Single : Underline::None;
}

void Toggle(const Rendition& what, Style& style)
{
    style.attributes ^= what.attributes;
    if (what.underlines)
        style.underline = style.underline == Underline::None ? Underline::Single : Underline::None;
}

void Change(Machine& machine, const Params& params, int lastCode, void (*step)(const Rendition&, Style&))
{
    const std::optional<Area> area = AreaFrom(machine, params, 0, machine.AttributeExtent());
    if (!area)
        return;
    machine.Display().ChangeArea(*area, machine.AttributeExtent(), [&](Style& style) {
        for (int i = 4; i < std::max(params.Size(), 5); ++i) // none given means 0
            for (const Rendition& row : kRenditions)
                if (row.code == params.At(i) && row.code <= lastCode)
                    step(row, style);
    });
}

} // namespace

void SetLeftAndRight(Machine& machine, const ControlSequence& sequence)
{
    if (!machine.Switches().Has(Mode::SideMargins))
        return;
    const int cols = machine.Display().Extent().cols;
    const int right = sequence.params.At(1) == 0 ? cols : sequence.params.At(1);
    machine.Display().SetSideMargins(sequence.params.Count(0) - 1, right - 1);
}

void Copy(Machine& machine, const ControlSequence& sequence)
{
    const std::optional<Area> area = AreaFrom(machine, sequence.params, 0);
    const std::optional<Area> to = AreaFrom(machine, Params{}, 0);
    if (!area || !to)
        return;
    const Position place{to->left + sequence.params.Count(6) - 1, to->top + sequence.params.Count(5) - 1};
    if (place.row >= to->bottom || place.col >= to->right)
        return;
    Area clipped = *area;
    clipped.bottom = std::min(clipped.bottom, clipped.top + to->bottom - place.row);
    clipped.right = std::min(clipped.right, clipped.left + to->right - place.col);
    // A page that is not named is the one where the cursor stands.
    const auto page = [&](int index) {
        const int number = sequence.params.At(index);
        return number == 0 ? machine.Display().ActivePage() : number - 1;
    };
    machine.Display().CopyArea(clipped, page(4), place, page(7));
}

void Fill(Machine& machine, const ControlSequence& sequence)
{
    const int code = sequence.params.At(0);
    if (const auto area = AreaFrom(machine, sequence.params, 1); area && IsGraphic(code))
        machine.Display().FillArea(*area, machine.GraphicFor(uint8_t(code)));
}

void Erase(Machine& machine, const ControlSequence& sequence)
{
    if (const auto area = AreaFrom(machine, sequence.params, 0))
        machine.Display().EraseArea(*area, Selective::No);
}

void EraseUnprotected(Machine& machine, const ControlSequence& sequence)
{
    if (const auto area = AreaFrom(machine, sequence.params, 0))
        machine.Display().EraseArea(*area, Selective::Yes);
}

void ChangeAttributes(Machine& machine, const ControlSequence& sequence)
{
    Change(machine, sequence.params, 27, Apply);
}

void ReverseAttributes(Machine& machine, const ControlSequence& sequence)
{
    Change(machine, sequence.params, 7, Toggle);
}

void SelectExtent(Machine& machine, const ControlSequence& sequence)
{
    if (const int extent = sequence.params.At(0); extent <= 2)
        machine.SetAttributeExtent(extent == 2 ? ChangeExtent::Rectangle : ChangeExtent::Stream);
}

// The id comes back as the number that it was, and the sum names no more than what stands on the screen.
void Checksum(Machine& machine, const ControlSequence& sequence)
{
    const Params& params = sequence.params;
    uint16_t sum = 0;
    Screen& screen = machine.Display();
    const int page = params.At(1); // 0: all of them
    if (const auto area = AreaFrom(machine, params, 2))
        for (int i = page == 0 ? 0 : page - 1; i < (page == 0 ? screen.PageCount() : page); ++i)
            sum = uint16_t(sum + screen.ChecksumOf(*area, i));
    machine.ReplyDcs(std::to_string(params.At(0)) + "!~" + HexWord(uint16_t(-sum)));
}

} // namespace kestrune::emu::areas
