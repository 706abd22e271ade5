// What a program on this side does to the screen, whatever sequence the host's stream is in the middle of.

#include "machine.h"
#include "widths.h"

#include <algorithm>

namespace kestrune::emu {

// --- screen: nothing here looks at the modes that the host has set, and the host's cursor stays

void Screen::PlaceText(Position at, std::u32string_view points, const Style& style)
{
    const CursorState kept = cursor_;
    const StyleId id = StyleIdFor(style);
    cursor_.row = at.row;
    cursor_.col = at.col;
    cursor_.pendingWrap = false;
    for (const char32_t point : points) {
        const uint8_t traits = TraitsOf(point);
        if ((traits & (Trait::Special)) != 0 &&
            ((traits & Trait::Dropped) != 0 || JoinBefore(point, traits) || (traits & Trait::Joins) != 0))
            continue;
        const int width = traits & Trait::WidthMask;
        if (width == 0 || cursor_.col + width > Columns())
            break;
        P().PutPoint(cursor_.row, cursor_.col, point, width, id);
        cursor_.col += width;
    }
    cursor_ = kept;
}

void Screen::PlaceBlanks(Position from, Position to, const Style& style)
{
    const StyleId id = StyleIdFor(style);
    for (int row = from.row; row <= to.row; ++row)
        P().Fill(row, from.col, std::min(to.col + 1, P().Columns(row)), id);
}

void Screen::PlaceLineSize(int row, LineSize size)
{
    if (modes_.Has(Mode::SideMargins) || P().At(row).size == size)
        return; // with side margins all lines are of normal size
    P().SetLineSize(row, size);
    cursor_.col = std::min(cursor_.col, P().Columns(cursor_.row) - 1);
}

void Screen::PlaceCursor(Position to)
{
    cursor_.pendingWrap = false;
    cursor_.row = to.row;
    cursor_.col = std::min(to.col, P().Columns(to.row) - 1);
}

bool Screen::IsBlankRow(int row) const { return page_->IsBlank(row); }

// --- machine

namespace {

// A place of the page for one of what is shown.
Position Inside(Position at, const Screen& screen)
{
    return {std::clamp(at.col, 0, screen.ScreenExtent().cols - 1),
            screen.WindowTop() + std::clamp(at.row, 0, screen.WindowRows() - 1)};
}

// A program may hand in anything; controls are not for the screen.
std::u32string Printable(std::string_view utf8)
{
    std::u32string points = FromUtf8(utf8);
    std::erase_if(points, [](char32_t c) { return c < 0x20 || (c >= 0x7F && c < 0xA0); });
    return points;
}

} // namespace

void Machine::PutText(Position at, std::string_view utf8, const Style& style)
{
    screen_.OnScreen([&] { screen_.PlaceText(Inside(at, screen_), Printable(utf8), style); });
    Changed();
}

void Machine::EraseArea(Position from, Position to, const Style& style)
{
    screen_.OnScreen([&] { screen_.PlaceBlanks(Inside(from, screen_), Inside(to, screen_), style); });
    Changed();
}

void Machine::SetLineSize(int row, LineSize size)
{
    screen_.OnScreen([&] { screen_.PlaceLineSize(Inside({0, row}, screen_).row, size); });
    Changed();
}

void Machine::MoveCursor(Position to)
{
    screen_.OnScreen([&] { screen_.PlaceCursor(Inside(to, screen_)); });
    Changed();
}

void Machine::PrintNotice(std::string_view utf8)
{
    parser_.Reset();
    if (screen_.IsAlternate())
        SwitchAlternate(false, Mode::AlternateScreenSaved);
    const bool wasLocked = modes_.Has(Mode::KeyboardAction);
    SoftReset();
    SelectStatusKind(StatusKind::None);
    modes_.Set(Mode::PageCoupling, true);
    modes_.Set(Mode::VerticalCoupling, true);
    screen_.ShowActivePage();
    TakePageFormat(0, 0);
    // Soft reset leaves these as they are; the next host must find them as at power-up.
    modes_.Set(Mode::Ansi, true);
    modes_.Set(Mode::AutoWrap, options_.autoWrap);
    modes_.Set(Mode::ReverseScreen, false);
    modes_.Set(Mode::SendReceive, true);
    modes_.Set(Mode::NewLine, false);
    modes_.Set(Mode::KeyboardAction, false);
    modes_.Set(Mode::AutoRepeat, true);
    romFont_ = RomFont::Off;
    cursorShape_ = options_.cursor;
    charset_ = options_.charset;
    UpdateRules();

    if (!screen_.IsBlankRow(screen_.Cursor().row)) {
        screen_.CarriageReturn();
        screen_.Index();
    }
    screen_.CarriageReturn();
    screen_.Pen().attributes = Attr::Dim; // soft reset has left the pen plain
    screen_.WritePoints(Printable(utf8));
    screen_.Pen() = Style{};
    screen_.CarriageReturn();
    screen_.Index();
    Changed();
    if (wasLocked)
        listener_.KeyboardLockChanged(false);
    TellPrinterState();
}

} // namespace kestrune::emu
