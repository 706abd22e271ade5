#pragma once

// The drawn characters that are areas, dots and wedges: U+2800 to U+28FF, U+E0B0 to U+E0BF, U+1FB00 to U+1FB90.

#include <QColor>
#include <QPainter>
#include <QRect>

namespace kestrune {

void DrawPattern(QPainter& painter, char32_t c, const QRect& cell, const QColor& color);

} // namespace kestrune
