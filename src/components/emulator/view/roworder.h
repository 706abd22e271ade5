#pragma once

// The order in which a row with Hebrew, Arabic and the like is shown. The host and all of the program count
// columns in the order of reading; only painting and the mouse see the order on the glass. Each row stands for
// itself and runs from the left, so that the columns of full-screen programs keep their places.

#include <emulator/engine/terminal.h>

#include <cstdint>
#include <span>
#include <vector>

namespace kestrune {

// Embedding levels of the Unicode bidirectional algorithm (UAX #9) for a line that begins at the left and has no
// explicit marks, which terminals do not keep: 0 and 2 run to the right, 1 to the left.
std::vector<uint8_t> BidiLevels(std::span<const char32_t> text);

class RowOrder
{
public:
    RowOrder(const emu::Terminal& screen, const emu::RowView& view);

    bool IsPlain() const { return shown_.empty(); } // all columns stand where they are counted
    int ColumnShown(int column) const;              // where a counted column stands
    int ColumnCounted(int shown) const;             // what stands there
    bool RunsLeft(int column) const;                // of a counted column

    // The cells as they stand; brackets in text that runs to the left are turned round.
    void Arrange(std::span<const emu::Cell> cells, std::vector<emu::Cell>& arranged) const;

private:
    std::vector<int> shown_;   // by counted column
    std::vector<int> counted_; // by shown column
    std::vector<uint8_t> levels_;
};

// Which neighbours, in the order of reading, a character of a cursive script (Arabic, Syriac ...) is joined to.
// 0: no neighbour.
struct Joints
{
    bool before = false;
    bool after = false;
};
Joints JointsOf(char32_t before, char32_t point, char32_t after);

// What a cell shows first; a blank for one that was never written.
char32_t FirstPoint(const emu::Terminal& screen, const emu::Cell& cell);

} // namespace kestrune
