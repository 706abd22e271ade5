#include "pcconsole.h"

#include <algorithm>

namespace kestrune::emu::pc {
namespace {

constexpr int kPcColors = 16;

// The PC counts blue 1 and red 4; terminals count them the other way round.
constexpr uint8_t FromPc(int color) { return uint8_t((color & 0b1010) | ((color & 1) << 2) | ((color >> 2) & 1)); }
static_assert(FromPc(1) == 4 && FromPc(4) == 1 && FromPc(14) == 11);

void SetColor(Color& color, int pcColor)
{
    if (pcColor < kPcColors)
        color = Color::Palette(FromPc(pcColor));
}

} // namespace

// --- ANSI

void ClearAll(Machine& machine)
{
    machine.Display().Pen() = Style{};
    machine.Display().ClearPage();
}

void ScrollOneUp(Machine& machine) { machine.Display().ScrollUp(1); }

void ScrollOneDown(Machine& machine) { machine.Display().ScrollDown(1); }

bool Draws(uint32_t drawn, uint8_t control) { return control < 32 && ((drawn >> control) & 1u) != 0; }

// --- SCO

bool ScoRendition(Style& pen, int code)
{
    if (code == 6) {
        pen.attributes &= uint16_t(~Attr::Blink); // steady
    } else if (code == 50 || code == 51) {        // both pairs of colours are the user's own here
        pen.foreground = Color::Default();
        pen.background = Color::Default();
    } else if (code >= 90 && code <= 97) {
        SetColor(pen.foreground, code - 90 + 8);
    } else if (code >= 100 && code <= 107) {
        SetColor(pen.background, code - 100 + 8);
    } else {
        return false;
    }
    return true;
}

bool ScoColors(Machine& machine, const Params& params)
{
    if (params.Size() != 3 || params.At(1) >= kPcColors || params.At(2) >= kPcColors)
        return false;
    if (params.At(0) == 7)
        return true; // colours of reverse video: reverse is drawn from the normal ones here
    if (params.At(0) != 2)
        return false;
    SetColor(machine.Display().Pen().foreground, params.At(1));
    SetColor(machine.Display().Pen().background, params.At(2));
    return true;
}

void ScoColor(Machine& machine, const ControlSequence& sequence)
{
    Style& pen = machine.Display().Pen();
    SetColor(sequence.final == 'F' ? pen.foreground : pen.background, sequence.params.At(0));
}

void ScoBackgroundIntensity(Machine& machine, const ControlSequence& sequence)
{
    Color& background = machine.Display().Pen().background;
    if (background.What() != Color::Kind::Palette || background.Index() >= kPcColors)
        return;
    const bool bright = (sequence.params.At(0) == 1) == (sequence.final == 'D'); // E is the inverse of D
    background = Color::Palette(uint8_t(bright ? background.Index() | 8 : background.Index() & 7));
}

void ScoCursor(Machine& machine, const ControlSequence& sequence)
{
    if (const int kind = sequence.params.At(0); kind <= 2) {
        machine.Switches().Set(Mode::CursorVisible, kind != 0);
        machine.SetCursorShape(kind == 2 ? CursorShape::BlinkBlock : CursorShape::BlinkUnderline);
    }
}

// Scan lines of a cell of 16: a start below the end hides the cursor, as the display adapter did.
void ScoCursorLines(Machine& machine, const ControlSequence& sequence)
{
    const int start = sequence.params.At(0);
    const int end = sequence.params.At(1);
    machine.Switches().Set(Mode::CursorVisible, start <= end);
    machine.SetCursorShape(end - start >= 8 ? CursorShape::BlinkBlock : CursorShape::BlinkUnderline);
}

void ScoGlyph(Machine& machine, const ControlSequence& sequence)
{
    if (sequence.params.At(0) > 255)
        return;
    Screen& screen = machine.Display();
    const Style before = screen.Cursor().pen;
    if (sequence.params.Size() == 3) {
        SetColor(screen.Pen().foreground, sequence.params.At(1));
        SetColor(screen.Pen().background, sequence.params.At(2));
    }
    const char32_t point = RomGlyph(uint8_t(sequence.params.At(0)));
    screen.WritePoints({&point, 1});
    screen.Pen() = before;
}

// The console takes the character as a number and the count after it; everybody else repeats the last one.
void ScoRepeat(Machine& machine, const ControlSequence& sequence)
{
    // Under the name "ansi", which this type tells its hosts, others know REP as ECMA-48 has it: a count alone.
    if (sequence.params.Size() < 2) {
        machine.Display().Repeat(sequence.params.Count(0));
        return;
    }
    const int character = sequence.params.At(0);
    if (sequence.params.Size() != 2 || character < 0x20 || character > 0xFF)
        return;
    const Size size = machine.Display().Extent();
    const char32_t point = RomGlyph(uint8_t(character));
    for (int left = std::min(sequence.params.Count(1), size.cols * size.rows); left > 0; --left)
        machine.Display().WritePoints({&point, 1});
}

void ScoClearScreen(Machine& machine, const ControlSequence&)
{
    Screen& screen = machine.Display();
    screen.EraseDisplay(Erase::All, Selective::No);
    screen.PlaceCursor({screen.LeftMargin(), screen.TopMargin()});
}

// CSI = side ; place m: one margin alone.
void ScoMargin(Machine& machine, const ControlSequence& sequence)
{
    Screen& screen = machine.Display();
    int sides[] = {screen.TopMargin(), screen.BottomMargin(), screen.LeftMargin(), screen.RightMargin()};
    const int side = sequence.params.At(0);
    if (side >= int(std::size(sides)))
        return;
    sides[side] = sequence.params.Count(1) - 1;
    screen.SetWindow(sides[0], sides[2], sides[1], sides[3]);
}

// Four values make a window, two a scroll region as on the DEC terminals.
void ScoWindow(Machine& machine, const ControlSequence& sequence)
{
    Screen& screen = machine.Display();
    const Params& params = sequence.params;
    const Size size = screen.Extent();
    const auto last = [&](int index, int whole) { return (params.At(index) == 0 ? whole : params.At(index)) - 1; };
    if (params.Size() < 3) {
        screen.SetMargins(params.Count(0) - 1, last(1, size.rows));
        return;
    }
    screen.SetWindow(params.Count(0) - 1, params.Count(1) - 1, last(2, size.rows), last(3, size.cols));
    screen.PlaceCursor({screen.LeftMargin(), screen.TopMargin()});
}

void ScoLockLines(Machine& machine, bool on)
{
    Screen& screen = machine.Display();
    const Position cursor{screen.Cursor().col, screen.Cursor().row};
    screen.SetMargins(on ? cursor.row : 0, screen.Extent().rows - 1);
    screen.PlaceCursor(cursor);
}

} // namespace kestrune::emu::pc
