#pragma once

// Box drawing and block elements, drawn to the very edges of the cell so that frames of full-screen programs
// join, whatever font is in use.

#include <QColor>
#include <QPainter>
#include <QRect>

namespace kestrune {

constexpr bool IsBoxCharacter(char32_t c) { return c >= 0x2500 && c <= 0x259F; }

void DrawBoxCharacter(QPainter& painter, char32_t c, const QRect& cell, const QColor& color);

} // namespace kestrune
