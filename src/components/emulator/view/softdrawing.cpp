#include "softdrawing.h"

#include <QPainterPath>

namespace kestrune {

namespace {

// The dots of a line that stand side by side.
void AddRuns(QPainterPath& path, const emu::SoftGlyph& glyph, int line, const QRectF& band)
{
    const double dot = band.width() / glyph.width;
    for (int x = 0; x < glyph.width; ++x) {
        const int first = x;
        while (x < glyph.width && glyph.HasDot(x, line))
            ++x;
        if (x > first)
            path.addRect(band.left() + first * dot, band.top(), (x - first) * dot, band.height());
    }
}

} // namespace

// As one shape, so that dots which share an edge join without a seam where it falls inside a pixel.
void DrawSoftGlyph(QPainter& painter, const emu::SoftGlyph& glyph, const QRect& cell, const QColor& color)
{
    QPainterPath path;
    path.setFillRule(Qt::WindingFill);
    const double height = double(cell.height()) / glyph.height;
    for (int line = 0; line < glyph.height; ++line)
        AddRuns(path, glyph, line, {double(cell.left()), cell.top() + line * height, double(cell.width()), height});
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.fillPath(path, color);
    painter.restore();
}

} // namespace kestrune
