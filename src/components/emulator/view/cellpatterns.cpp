#include "cellpatterns.h"

#include <QPainterPath>
#include <QPolygonF>

#include <algorithm>
#include <array>

namespace kestrune {

namespace {

// A line of a cell cut into columns and rows: where part number i begins. Neighbouring cells agree on it.
int PartEdge(int from, int length, int i, int parts) { return from + (length * i + parts / 2) / parts; }

void FillPart(QPainter& painter, const QRect& cell, int column, int columns, int row, int rows, const QColor& color)
{
    const int left = PartEdge(cell.left(), cell.width(), column, columns);
    const int top = PartEdge(cell.top(), cell.height(), row, rows);
    painter.fillRect(QRect(QPoint(left, top), QPoint(PartEdge(cell.left(), cell.width(), column + 1, columns) - 1,
                                                     PartEdge(cell.top(), cell.height(), row + 1, rows) - 1)),
                     color);
}

QPointF PointIn(const QRect& cell, double x, double y)
{
    return {cell.left() + x * cell.width(), cell.top() + y * cell.height()};
}

void FillShape(QPainter& painter, const QRect& cell, const QPainterPath& path, const QColor& color)
{
    painter.save();
    painter.setClipRect(cell, Qt::IntersectClip);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.fillPath(path, color);
    painter.restore();
}

void StrokeShape(QPainter& painter, const QRect& cell, const QPainterPath& path, const QColor& color)
{
    painter.save();
    painter.setClipRect(cell, Qt::IntersectClip);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.strokePath(path, QPen(color, std::max(1.0, cell.width() / 8.0)));
    painter.restore();
}

// --- U+2800: dots 1 to 8 are bits; 1 2 3 7 stand in the left column, 4 5 6 8 in the right one.

void DrawBraille(QPainter& painter, unsigned bits, const QRect& cell, const QColor& color)
{
    static constexpr std::array<std::array<unsigned, 4>, 2> kDots{{{1, 2, 4, 64}, {8, 16, 32, 128}}};
    const int size = std::max(1, std::min(cell.width() / 4, cell.height() / 8));
    for (int column = 0; column < 2; ++column)
        for (int row = 0; row < 4; ++row)
            if ((bits & kDots[size_t(column)][size_t(row)]) != 0)
                painter.fillRect(cell.left() + cell.width() * (2 * column + 1) / 4 - size / 2,
                                 cell.top() + cell.height() * (2 * row + 1) / 8 - size / 2, size, size, color);
}

// --- U+E0B0: triangles and half circles, odd numbers their outlines.

void DrawSeparator(QPainter& painter, unsigned number, const QRect& cell, const QColor& color)
{
    QPainterPath path;
    const auto corners = [&](QPointF a, QPointF b, QPointF c) {
        path.moveTo(PointIn(cell, a.x(), a.y()));
        path.lineTo(PointIn(cell, b.x(), b.y()));
        path.lineTo(PointIn(cell, c.x(), c.y()));
    };
    switch (number / 2) {
    case 0:
        corners({0, 0}, {1, 0.5}, {0, 1});
        break;
    case 1:
        corners({1, 0}, {0, 0.5}, {1, 1});
        break;
    case 2:
    case 3: {
        const bool toRight = number / 2 == 2;
        const QRectF circle(cell.left() - (toRight ? cell.width() : 0), cell.top(), 2 * cell.width(), cell.height());
        path.arcMoveTo(circle, 90);
        path.arcTo(circle, 90, toRight ? -180 : 180);
        break;
    }
    default: {
        // The solid ones have the right angle in the corner that is lower left, lower right, upper left, upper
        // right; the line is the long side.
        const bool right = number / 2 % 2 != 0;
        const bool upper = number >= 12;
        const double x = right ? 1 : 0;
        const double y = upper ? 0 : 1;
        corners({x, 1 - y}, {1 - x, y}, number % 2 == 0 ? QPointF(x, y) : QPointF(1 - x, y));
        break;
    }
    }
    if (number % 2 == 0)
        FillShape(painter, cell, path, color);
    else
        StrokeShape(painter, cell, path, color);
}

// --- U+1FB00

// Two by three parts as bits from the upper left; the patterns that are blocks of their own are left out.
void DrawSextant(QPainter& painter, unsigned number, const QRect& cell, const QColor& color)
{
    constexpr unsigned kLeftHalf = 0x15, kRightHalf = 0x2A;
    unsigned bits = number + 1;
    bits += bits >= kLeftHalf ? 1 : 0;
    bits += bits >= kRightHalf ? 1 : 0;
    for (int part = 0; part < 6; ++part)
        if ((bits >> part & 1) != 0)
            FillPart(painter, cell, part % 2, 2, part / 2, 3, color);
}

// U+1FB3C to U+1FB51 fill what is below a line, in halves across and thirds down; the next 22 what is above it.
struct Wedge
{
    int x1, y1, x2, y2;
};
constexpr std::array kWedges{
    Wedge{0, 2, 1, 3}, Wedge{0, 2, 2, 3}, Wedge{0, 1, 1, 3}, Wedge{0, 1, 2, 3}, Wedge{0, 0, 1, 3}, Wedge{0, 1, 1, 0},
    Wedge{0, 1, 2, 0}, Wedge{0, 2, 1, 0}, Wedge{0, 2, 2, 0}, Wedge{0, 3, 1, 0}, Wedge{0, 2, 2, 1}, Wedge{1, 3, 2, 2},
    Wedge{0, 3, 2, 2}, Wedge{1, 3, 2, 1}, Wedge{0, 3, 2, 1}, Wedge{1, 3, 2, 0}, Wedge{1, 0, 2, 1}, Wedge{0, 0, 2, 1},
    Wedge{1, 0, 2, 2}, Wedge{0, 0, 2, 2}, Wedge{1, 0, 2, 3}, Wedge{0, 1, 2, 2},
};

void DrawWedge(QPainter& painter, unsigned number, const QRect& cell, const QColor& color)
{
    const Wedge& line = kWedges[number % kWedges.size()];
    const bool below = number < kWedges.size();
    const QPointF first = PointIn(cell, line.x1 / 2.0, line.y1 / 3.0);
    const QPointF last = PointIn(cell, line.x2 / 2.0, line.y2 / 3.0);
    const QPointF step = last - first;
    const double far = below ? 4.0 * cell.height() : -4.0 * cell.height();
    QPainterPath path(first - 4 * step);
    path.lineTo(last + 4 * step);
    path.lineTo(last + 4 * step + QPointF(0, 8 * far));
    path.lineTo(first - 4 * step + QPointF(0, 8 * far));
    FillShape(painter, cell, path, color);
}

// Triangles from an edge to the middle: left, upper, right, lower; the first four lack it, the others are it.
void DrawTriangle(QPainter& painter, unsigned number, const QRect& cell, const QColor& color)
{
    static constexpr std::array kCorners{QPointF(0, 0), QPointF(1, 0), QPointF(1, 1), QPointF(0, 1)};
    const auto edge = number % 4;
    const QPointF from = kCorners[(edge + 3) % 4];
    const QPointF to = kCorners[edge];
    QPainterPath path;
    path.addPolygon(
        QPolygonF{PointIn(cell, from.x(), from.y()), PointIn(cell, to.x(), to.y()), PointIn(cell, 0.5, 0.5)});
    path.closeSubpath();
    if (number < 4) {
        QPainterPath whole;
        whole.addRect(cell);
        path = whole.subtracted(path);
    }
    FillShape(painter, cell, path, color);
}

// Areas in eighths of the cell: left, top, right, bottom, and how opaque.
struct Area
{
    char32_t code;
    int left, top, right, bottom;
    int percent = 100;
};
constexpr std::array kAreas{
    Area{0x1FB70, 1, 0, 2, 8},     Area{0x1FB71, 2, 0, 3, 8},     Area{0x1FB72, 3, 0, 4, 8},
    Area{0x1FB73, 4, 0, 5, 8},     Area{0x1FB74, 5, 0, 6, 8},     Area{0x1FB75, 6, 0, 7, 8},
    Area{0x1FB76, 0, 1, 8, 2},     Area{0x1FB77, 0, 2, 8, 3},     Area{0x1FB78, 0, 3, 8, 4},
    Area{0x1FB79, 0, 4, 8, 5},     Area{0x1FB7A, 0, 5, 8, 6},     Area{0x1FB7B, 0, 6, 8, 7},
    Area{0x1FB7C, 0, 0, 1, 8},     Area{0x1FB7C, 1, 7, 8, 8},     Area{0x1FB7D, 0, 0, 1, 8},
    Area{0x1FB7D, 1, 0, 8, 1},     Area{0x1FB7E, 7, 0, 8, 8},     Area{0x1FB7E, 0, 0, 7, 1},
    Area{0x1FB7F, 7, 0, 8, 8},     Area{0x1FB7F, 0, 7, 7, 8},     Area{0x1FB80, 0, 0, 8, 1},
    Area{0x1FB80, 0, 7, 8, 8},     Area{0x1FB81, 0, 0, 8, 1},     Area{0x1FB81, 0, 2, 8, 3},
    Area{0x1FB81, 0, 4, 8, 5},     Area{0x1FB81, 0, 7, 8, 8},     Area{0x1FB82, 0, 0, 8, 2},
    Area{0x1FB83, 0, 0, 8, 3},     Area{0x1FB84, 0, 0, 8, 5},     Area{0x1FB85, 0, 0, 8, 6},
    Area{0x1FB86, 0, 0, 8, 7},     Area{0x1FB87, 6, 0, 8, 8},     Area{0x1FB88, 5, 0, 8, 8},
    Area{0x1FB89, 3, 0, 8, 8},     Area{0x1FB8A, 2, 0, 8, 8},     Area{0x1FB8B, 1, 0, 8, 8},
    Area{0x1FB8C, 0, 0, 4, 8, 50}, Area{0x1FB8D, 4, 0, 8, 8, 50}, Area{0x1FB8E, 0, 0, 8, 4, 50},
    Area{0x1FB8F, 0, 4, 8, 8, 50}, Area{0x1FB90, 0, 0, 8, 8, 50},
};

void DrawAreas(QPainter& painter, char32_t c, const QRect& cell, const QColor& color)
{
    for (const Area& area : kAreas) {
        if (area.code != c)
            continue;
        QColor shade = color;
        shade.setAlpha(255 * area.percent / 100);
        const auto x = [&](int eighth) { return PartEdge(cell.left(), cell.width(), eighth, 8); };
        const auto y = [&](int eighth) { return PartEdge(cell.top(), cell.height(), eighth, 8); };
        painter.fillRect(QRect(QPoint(x(area.left), y(area.top)), QPoint(x(area.right) - 1, y(area.bottom) - 1)),
                         shade);
    }
}

struct PatternRange
{
    char32_t first, last;
    void (*draw)(QPainter&, unsigned number, const QRect&, const QColor&);
};
constexpr std::array kRanges{
    PatternRange{0x2800, 0x28FF, DrawBraille},    PatternRange{0xE0B0, 0xE0BF, DrawSeparator},
    PatternRange{0x1FB00, 0x1FB3B, DrawSextant},  PatternRange{0x1FB3C, 0x1FB67, DrawWedge},
    PatternRange{0x1FB68, 0x1FB6F, DrawTriangle},
};

} // namespace

void DrawPattern(QPainter& painter, char32_t c, const QRect& cell, const QColor& color)
{
    for (const PatternRange& range : kRanges)
        if (c >= range.first && c <= range.last) {
            range.draw(painter, c - range.first, cell, color);
            return;
        }
    DrawAreas(painter, c, cell, color);
}

} // namespace kestrune
