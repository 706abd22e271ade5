#pragma once

// Characters that are drawn to the very edges of the cell, so that frames, bars, graphs and prompts join whatever
// font is in use: box drawing and block elements, Braille patterns, the blocks and wedges of "Symbols for Legacy
// Computing", and the separators that status lines take from a private area.

#include <QColor>
#include <QPainter>
#include <QRect>

namespace kestrune {

constexpr bool IsDrawnCharacter(char32_t c)
{
    return c >= 0x2500 && (c <= 0x259F || (c >= 0x2800 && c <= 0x28FF) || (c >= 0xE0B0 && c <= 0xE0BF) ||
                           (c >= 0x1FB00 && c <= 0x1FB90));
}

void DrawCharacter(QPainter& painter, char32_t c, const QRect& cell, const QColor& color); // IsDrawnCharacter

} // namespace kestrune
