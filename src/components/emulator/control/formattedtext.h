#pragma once

// Text of a screen with its colours and attributes, as word processors take it from the clipboard.

#include <emulator/control/colorscheme.h>
#include <emulator/control/selectionarea.h>
#include <emulator/engine/terminal.h>
#include <ports/clipboard.h>

namespace kestrune {

struct TextFont
{
    QString name; // with no escaping of any kind
    double points = 0;
};

// The plain text is that of TextOfArea; HTML and RTF say the same with its looks. Links of the host are left out: what
// they lead to is not what one sees. A text of more than MaxFormatted characters comes plain alone.
inline constexpr qsizetype MaxFormatted = 4'000'000;
ClipboardText FormatArea(const emu::Terminal& screen, const SelectionArea& area, const ColorScheme& colors,
                         const TextFont& font);

} // namespace kestrune
