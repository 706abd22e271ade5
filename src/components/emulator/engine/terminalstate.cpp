#include "terminalstate.h"

#include "colortable.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <optional>

namespace kestrune::emu::terminalstate {
namespace {

constexpr std::string_view kTaken = "1$p";
constexpr std::string_view kColorsTaken = "2$p";
constexpr size_t kMargins = 4;

struct State
{
    std::array<int, kMargins> margins{}; // top, left, bottom, right, from 1
    std::vector<const ModeRow*> on;
};

// The models' own, but for the one whose other state is a VT52, which reports nothing.
bool IsReported(const Machine& machine, const ModeRow& row)
{
    return (row.dialects & machine.Speaks() & ~Dialect::Extension) != 0 && row.mode != Mode::Ansi;
}

// The first number of the text, which it loses, and what stands between it and the next.
std::optional<int> TakeNumber(std::string_view& text)
{
    int value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc())
        return std::nullopt;
    text.remove_prefix(size_t(end - text.data()));
    return value;
}

// "1;1;24;80" and a slash and the number for each mode that is on, "/?25" for one of DEC's own.
std::optional<State> Read(const Machine& machine, std::string_view text)
{
    State state;
    for (size_t i = 0; i < kMargins; ++i) {
        const auto margin = TakeNumber(text);
        if (!margin || *margin < 1 || (i + 1 < kMargins && !text.starts_with(';')))
            return std::nullopt;
        text.remove_prefix(i + 1 < kMargins ? 1 : 0);
        state.margins[i] = *margin;
    }
    while (text.starts_with('/')) {
        text.remove_prefix(1);
        const bool isPrivate = text.starts_with('?');
        text.remove_prefix(isPrivate ? 1 : 0);
        const auto number = TakeNumber(text);
        const ModeRow* row = number ? FindMode(*number, isPrivate, machine.Speaks()) : nullptr;
        if (row == nullptr || !IsReported(machine, *row))
            return std::nullopt;
        state.on.push_back(row);
    }
    return text.empty() ? std::optional(state) : std::nullopt;
}

void Restore(Machine& machine, const State& state)
{
    const CursorState cursor = machine.Display().Cursor();
    for (const ModeRow& row : ModeRows()) {
        const bool on = std::find(state.on.begin(), state.on.end(), &row) != state.on.end();
        if (!IsReported(machine, row) || on == machine.Switches().Has(row.mode))
            continue;
        if (row.mode == Mode::Columns132)
            machine.FitSize(on); // nothing is erased by a state that comes back
        else
            machine.SetMode(row, on);
    }
    Screen& screen = machine.Display();
    screen.ResetMargins();
    const auto& [top, left, bottom, right] = state.margins;
    screen.SetWindow(top - 1, left - 1, bottom - 1, right - 1);
    CursorState now = cursor; // changes of modes have moved it
    now.origin = machine.Switches().Has(Mode::Origin);
    now.autoWrap = machine.Switches().Has(Mode::AutoWrap);
    screen.PutCursor(now);
}

} // namespace

void Report(Machine& machine, const ControlSequence& sequence)
{
    if (sequence.params.At(0) == 2)
        colortable::Report(machine, sequence.params.At(1));
    if (sequence.params.At(0) != 1)
        return;
    const Screen& screen = machine.Display();
    std::string out = "1$s";
    for (const int margin : {screen.TopMargin(), screen.LeftMargin(), screen.BottomMargin()})
        out.append(std::to_string(margin + 1)).append(";");
    out.append(std::to_string(screen.RightMargin() + 1));
    for (const ModeRow& row : ModeRows())
        if (IsReported(machine, row) && machine.Switches().Has(row.mode))
            out.append(row.isPrivate ? "/?" : "/").append(std::to_string(row.number));
    machine.ReplyDcs(out);
}

bool Take(Machine& machine, std::string_view body)
{
    if (!machine.Speaks(Dialect::Vt320))
        return false;
    if (body.starts_with(kColorsTaken)) {
        colortable::Restore(machine, body.substr(kColorsTaken.size()));
        return true;
    }
    if (!body.starts_with(kTaken))
        return false;
    if (const auto state = Read(machine, body.substr(kTaken.size())))
        Restore(machine, *state);
    return true;
}

} // namespace kestrune::emu::terminalstate
