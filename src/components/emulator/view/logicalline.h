#pragma once

// A line as the host wrote it, whatever rows it is soft-wrapped over: its text, and where each character stands.

#include <emulator/engine/terminal.h>

#include <QString>

#include <vector>

namespace kestrune {

struct CellPlace
{
    int row = 0;
    int column = 0;
    auto operator<=>(const CellPlace&) const = default;
};

// Rows longer than this stand as several lines, so that one line without an end costs no more than many.
inline constexpr int MostRowsOfALine = 200;

struct LogicalLine
{
    int top = 0;
    int bottom = 0;
    QString text;                  // without the blanks at its end
    std::vector<CellPlace> places; // of each UTF-16 unit of the text
};

// Into line, whose storage is used again. row: any of the line's rows, of history or screen.
void ReadLogicalLine(const emu::Terminal& screen, int row, LogicalLine& line);

} // namespace kestrune
