#pragma once

// Text as people mean it, taken from a screen and its history: selections, words, lines.

#include <emulator/control/selectionarea.h>
#include <emulator/engine/terminal.h>

#include <QString>

namespace kestrune {

struct ColumnSpan // first to one past the last
{
    int first = 0;
    int last = 0;
    bool operator==(const ColumnSpan&) const = default;
};

// Columns of row that area covers; empty when it covers none.
ColumnSpan ColumnsOf(const SelectionArea& area, int row, int cols);

// Trailing blanks cut, soft wraps joined, the rows of a block kept apart. No line end behind the last row.
QString TextOfArea(const emu::Terminal& screen, const SelectionArea& area);

// The word or run of blanks under a cell. A word has letters and digits of any script and what paths, addresses
// and options are made of.
SelectionArea WordOn(const emu::Terminal& screen, int column, int row);

// A line with all the rows that it is soft-wrapped over.
SelectionArea LineOn(const emu::Terminal& screen, int row);

} // namespace kestrune
