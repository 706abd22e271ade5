#pragma once

// Characters that the host has drawn itself, at any size of the cell.

#include <emulator/engine/softglyph.h>

#include <QColor>
#include <QPainter>
#include <QRect>

namespace kestrune {

void DrawSoftGlyph(QPainter& painter, const emu::SoftGlyph& glyph, const QRect& cell, const QColor& color);

} // namespace kestrune
