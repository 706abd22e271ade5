#include "logicalline.h"

#include <QChar>

#include <algorithm>

namespace kestrune {

namespace {

void AppendPoint(char32_t point, CellPlace at, LogicalLine& line)
{
    for (const char16_t unit : QChar::fromUcs4(point)) {
        line.text += QChar(unit);
        line.places.push_back(at);
    }
}

void AppendRow(const emu::Terminal& screen, int row, bool toTheEdge, LogicalLine& line)
{
    const auto cells = screen.Row(row).cells;
    const int end = toTheEdge ? screen.ScreenSize().cols : int(cells.size());
    for (int column = 0; column < end; ++column) {
        const emu::Cell cell = column < int(cells.size()) ? cells[size_t(column)] : emu::Cell{};
        const CellPlace at{row, column};
        if ((cell.flags & emu::Cell::WideTail) != 0)
            continue;
        if ((cell.text & emu::Cell::ClusterBit) != 0) {
            for (const char32_t point : screen.ClusterOf(cell.text))
                AppendPoint(point, at, line);
        } else {
            AppendPoint(cell.text != 0 ? char32_t(cell.text) : U' ', at, line);
        }
    }
}

} // namespace

void ReadLogicalLine(const emu::Terminal& screen, int row, LogicalLine& line)
{
    const int oldest = -screen.HistoryCount();
    const int newest = screen.ScreenSize().rows - 1;
    line.top = line.bottom = row;
    while (line.top > oldest && row - line.top < MostRowsOfALine && screen.Row(line.top - 1).wraps)
        --line.top;
    while (line.bottom < newest && line.bottom - row < MostRowsOfALine && screen.Row(line.bottom).wraps)
        ++line.bottom;
    line.text.truncate(0);
    line.places.clear();
    for (int r = line.top; r <= line.bottom; ++r)
        AppendRow(screen, r, r < line.bottom, line);
    while (line.text.endsWith(u' '))
        line.text.chop(1);
    line.places.resize(size_t(line.text.size()));
}

} // namespace kestrune
