// The line below the screen (EK-VT320-RM, status display): the terminal's own, or one for the host to write on.

#include "machine.h"

#include <algorithm>

namespace kestrune::emu {
namespace {

constexpr int kMostMessageRows = 4;

std::u32string Digits(int number)
{
    const std::string text = std::to_string(number);
    return {text.begin(), text.end()};
}

} // namespace

void Machine::FitStatusRows()
{
    const int wanted = options_.messageRows < 0 ? int(statusKind_ != StatusKind::None)
                                                : std::min(options_.messageRows, kMostMessageRows);
    screen_.SetStatusRows(wanted);
}

void Machine::SelectStatusKind(StatusKind kind)
{
    if (options_.messageRows == 0)
        kind = StatusKind::None;
    if (kind == statusKind_)
        return;
    statusKind_ = kind;
    indicator_.clear();
    FitStatusRows();
    screen_.ClearStatusLine(); // also ends the host's work there
}

void Machine::SelectStatusDisplay(bool on) { screen_.SelectStatusLine(on && statusKind_ == StatusKind::HostWritable); }

void Machine::UpdateIndicator()
{
    const CursorState& cursor = screen_.ScreenCursor();
    std::u32string text(1, U' ');
    text.append(Digits(screen_.ActivePage() + 1)).append(U" (").append(Digits(cursor.row + 1));
    text.append(U",").append(Digits(cursor.col + 1)).append(U")");
    if (text == indicator_)
        return;
    indicator_ = std::move(text);
    screen_.PutIndicator(indicator_);
}

} // namespace kestrune::emu
