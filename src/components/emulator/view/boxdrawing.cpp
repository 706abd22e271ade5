#include "boxdrawing.h"

#include "cellpatterns.h"

#include <QPainterPath>

#include <algorithm>
#include <array>
#include <string_view>

namespace kestrune {

namespace {

// U+2500 to U+257F: weight of the arms to the left, up, right and down (0 none, 1 light, 2 heavy, 3 double).
// 0000 stands for dashes, arcs and diagonals, which have rules of their own.
constexpr std::array<std::string_view, 128> kArms{
    "1010", "2020", "0101", "0202", "0000", "0000", "0000", "0000", // U+2500
    "0000", "0000", "0000", "0000", "0011", "0021", "0012", "0022", // U+2508
    "1001", "2001", "1002", "2002", "0110", "0120", "0210", "0220", // U+2510
    "1100", "2100", "1200", "2200", "0111", "0121", "0211", "0112", // U+2518
    "0212", "0221", "0122", "0222", "1101", "2101", "1201", "1102", // U+2520
    "1202", "2201", "2102", "2202", "1011", "2011", "1021", "2021", // U+2528
    "1012", "2012", "1022", "2022", "1110", "2110", "1120", "2120", // U+2530
    "1210", "2210", "1220", "2220", "1111", "2111", "1121", "2121", // U+2538
    "1211", "1112", "1212", "2211", "1221", "2112", "1122", "2221", // U+2540
    "2122", "2212", "1222", "2222", "0000", "0000", "0000", "0000", // U+2548
    "3030", "0303", "0031", "0013", "0033", "3001", "1003", "3003", // U+2550
    "0130", "0310", "0330", "3100", "1300", "3300", "0131", "0313", // U+2558
    "0333", "3101", "1303", "3303", "3031", "1013", "3033", "3130", // U+2560
    "1310", "3330", "3131", "1313", "3333", "0000", "0000", "0000", // U+2568
    "0000", "0000", "0000", "0000", "1000", "0100", "0010", "0001", // U+2570
    "2000", "0200", "0020", "0002", "1020", "0102", "2010", "0201", // U+2578
};

struct Geometry
{
    QRect cell;
    int light; // stroke widths in pixels
    int heavy;
    int midX; // left and upper edge of a light stroke through the middle
    int midY;

    explicit Geometry(const QRect& c)
        : cell(c), light(std::max(1, c.width() / 8)), heavy(light * 2 + (light % 2)),
          midX(c.left() + (c.width() - light) / 2), midY(c.top() + (c.height() - light) / 2)
    {}
    int Width(int weight) const { return weight == 2 ? heavy : light; }
};

// One direction seen along its axis: the arm before the middle, the arm after it, and the two arms across. With
// the axes swapped the same rules serve vertical strokes.
struct Axis
{
    int from, to;    // edges of the cell along the axis, to is exclusive
    int middle;      // edge of a light stroke across, along the axis
    int crossMiddle; // edge of a light stroke along the axis, across it
    int before, after;
    int crossBefore, crossAfter;
};

// How far a stroke of the arm after the middle reaches back. side -1 is the stroke nearer to crossBefore of a
// double arm, 1 the other, 0 a single one.
int ReachOfAfter(const Axis& axis, const Geometry& g, int side)
{
    const int gap = g.light; // between the strokes of a double line and its middle
    const bool doubleBefore = axis.crossBefore == 3;
    const bool doubleAfter = axis.crossAfter == 3;
    if (side == 0) {
        if (axis.before == axis.after || (!doubleBefore && !doubleAfter)) {
            const int widest = std::max(g.Width(axis.crossBefore), g.Width(axis.crossAfter));
            return axis.middle - (widest - g.light) / 2;
        }
        return doubleBefore && doubleAfter ? axis.middle + gap : axis.middle - gap;
    }
    const bool near = side < 0 ? doubleBefore : doubleAfter; // an inner corner on this side
    const bool far = side < 0 ? doubleAfter : doubleBefore;
    if (near)
        return axis.middle + gap;
    return far && axis.before != 3 ? axis.middle - gap : axis.middle;
}

using Fill = void (*)(QPainter&, int from, int to, int cross, int width, const QColor&);

void DrawAxis(QPainter& painter, const Axis& axis, const Geometry& g, const QColor& color, Fill fill)
{
    const auto strokes = [&](int weight, bool after) {
        const Axis seen = after ? axis
                                : Axis{.from = axis.from,
                                       .to = axis.to,
                                       .middle = axis.middle,
                                       .crossMiddle = axis.crossMiddle,
                                       .before = axis.after,
                                       .after = axis.before,
                                       .crossBefore = axis.crossBefore,
                                       .crossAfter = axis.crossAfter};
        for (const int side : {-1, 0, 1}) {
            if (weight == 0 || (weight == 3) == (side == 0))
                continue;
            const int width = g.Width(weight);
            const int cross = axis.crossMiddle - (width - g.light) / 2 + side * g.light;
            const int reach = ReachOfAfter(seen, g, side);
            // The arm before the middle is the mirror image round the middle stroke.
            const int mirrored = 2 * axis.middle + g.light - reach;
            fill(painter, after ? reach : axis.from, after ? axis.to : mirrored, cross, width, color);
        }
    };
    strokes(axis.before, false);
    strokes(axis.after, true);
}

void FillAcross(QPainter& painter, int from, int to, int cross, int width, const QColor& color)
{
    painter.fillRect(from, cross, to - from, width, color);
}

void FillDown(QPainter& painter, int from, int to, int cross, int width, const QColor& color)
{
    painter.fillRect(cross, from, width, to - from, color);
}

void DrawArms(QPainter& painter, std::string_view arms, const Geometry& g, const QColor& color)
{
    const int left = arms[0] - '0', up = arms[1] - '0', right = arms[2] - '0', down = arms[3] - '0';
    DrawAxis(painter, {g.cell.left(), g.cell.right() + 1, g.midX, g.midY, left, right, up, down}, g, color, FillAcross);
    DrawAxis(painter, {g.cell.top(), g.cell.bottom() + 1, g.midY, g.midX, up, down, left, right}, g, color, FillDown);
}

struct Dash
{
    char32_t first; // light horizontal, heavy horizontal, light vertical, heavy vertical
    int pieces;
};
constexpr std::array kDashes{Dash{0x2504, 3}, Dash{0x2508, 4}, Dash{0x254C, 2}};

bool DrawDashes(QPainter& painter, char32_t c, const Geometry& g, const QColor& color)
{
    for (const Dash& row : kDashes) {
        if (c < row.first || c > row.first + 3)
            continue;
        const bool heavy = ((c - row.first) & 1) != 0;
        const bool vertical = ((c - row.first) & 2) != 0;
        const int width = heavy ? g.heavy : g.light;
        const int from = vertical ? g.cell.top() : g.cell.left();
        const int length = vertical ? g.cell.height() : g.cell.width();
        const int cross = (vertical ? g.midX : g.midY) - (width - g.light) / 2;
        for (int i = 0; i < row.pieces; ++i) {
            const int start = from + length * i / row.pieces;
            const int end = std::max(start + 1, from + length * (i + 1) / row.pieces - std::max(1, length / 8));
            (vertical ? FillDown : FillAcross)(painter, start, end, cross, width, color);
        }
        return true;
    }
    return false;
}

void DrawCurve(QPainter& painter, char32_t c, const Geometry& g, const QColor& color)
{
    const QRectF cell(g.cell);
    const QPointF middle(g.midX + g.light / 2.0, g.midY + g.light / 2.0);
    QPainterPath path;
    if (c >= 0x2571) { // diagonals: up to the right, down to the right, both
        if (c != 0x2572) {
            path.moveTo(cell.bottomLeft());
            path.lineTo(cell.topRight());
        }
        if (c != 0x2571) {
            path.moveTo(cell.topLeft());
            path.lineTo(cell.bottomRight());
        }
    } else { // arcs: down right, down left, up left, up right
        const bool down = c <= 0x256E;
        const bool right = c == 0x256D || c == 0x2570;
        const double radius = std::min(cell.width(), cell.height()) / 2;
        const double dx = right ? radius : -radius;
        const double dy = down ? radius : -radius;
        path.moveTo(middle.x(), down ? cell.bottom() : cell.top());
        path.lineTo(middle.x(), middle.y() + dy);
        path.quadTo(middle, QPointF(middle.x() + dx, middle.y()));
        path.lineTo(right ? cell.right() : cell.left(), middle.y());
    }
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setClipRect(g.cell, Qt::IntersectClip);
    painter.strokePath(path, QPen(color, g.light));
    painter.restore();
}

// U+2580 to U+2595 and the quadrants, in eighths of the cell: left, top, right, bottom.
struct Block
{
    char32_t code;
    int left, top, right, bottom;
};
constexpr std::array kBlocks{
    Block{0x2580, 0, 0, 8, 4}, Block{0x2581, 0, 7, 8, 8}, Block{0x2582, 0, 6, 8, 8}, Block{0x2583, 0, 5, 8, 8},
    Block{0x2584, 0, 4, 8, 8}, Block{0x2585, 0, 3, 8, 8}, Block{0x2586, 0, 2, 8, 8}, Block{0x2587, 0, 1, 8, 8},
    Block{0x2588, 0, 0, 8, 8}, Block{0x2589, 0, 0, 7, 8}, Block{0x258A, 0, 0, 6, 8}, Block{0x258B, 0, 0, 5, 8},
    Block{0x258C, 0, 0, 4, 8}, Block{0x258D, 0, 0, 3, 8}, Block{0x258E, 0, 0, 2, 8}, Block{0x258F, 0, 0, 1, 8},
    Block{0x2590, 4, 0, 8, 8}, Block{0x2594, 0, 0, 8, 1}, Block{0x2595, 7, 0, 8, 8},
};

// U+2596 to U+259F: quadrants as bits 1 upper left, 2 upper right, 4 lower left, 8 lower right.
constexpr std::array kQuadrants{4, 8, 1, 13, 9, 7, 11, 2, 6, 14};

void FillEighths(QPainter& painter, const QRect& cell, const Block& b, const QColor& color)
{
    const auto x = [&](int eighth) { return cell.left() + (cell.width() * eighth + 4) / 8; };
    const auto y = [&](int eighth) { return cell.top() + (cell.height() * eighth + 4) / 8; };
    painter.fillRect(QRect(QPoint(x(b.left), y(b.top)), QPoint(x(b.right) - 1, y(b.bottom) - 1)), color);
}

void DrawBlock(QPainter& painter, char32_t c, const QRect& cell, const QColor& color)
{
    if (c >= 0x2591 && c <= 0x2593) { // shades: a quarter, a half, three quarters
        QColor shade = color;
        shade.setAlphaF(0.25F * float(c - 0x2590));
        painter.fillRect(cell, shade);
        return;
    }
    if (c >= 0x2596) {
        const int bits = kQuadrants[c - 0x2596];
        for (int i = 0; i < 4; ++i)
            if ((bits & (1 << i)) != 0)
                FillEighths(painter, cell, {c, i % 2 * 4, i / 2 * 4, i % 2 * 4 + 4, i / 2 * 4 + 4}, color);
        return;
    }
    for (const Block& block : kBlocks)
        if (block.code == c)
            FillEighths(painter, cell, block, color);
}

} // namespace

void DrawCharacter(QPainter& painter, char32_t c, const QRect& cell, const QColor& color)
{
    if (c >= 0x2800) {
        DrawPattern(painter, c, cell, color);
        return;
    }
    if (c >= 0x2580) {
        DrawBlock(painter, c, cell, color);
        return;
    }
    const Geometry geometry(cell);
    const std::string_view arms = kArms[c - 0x2500];
    if (arms != "0000")
        DrawArms(painter, arms, geometry, color);
    else if (!DrawDashes(painter, c, geometry, color))
        DrawCurve(painter, c, geometry, color);
}

} // namespace kestrune
