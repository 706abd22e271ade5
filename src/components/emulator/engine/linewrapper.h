#pragma once

// Lays text out in another width: rows that one line was wrapped over become one line again, and that is wrapped at
// the new width. A row of double width is a line of its own. Holds no more than two rows.

#include "history.h"

#include <emulator/engine/terminal.h>

#include <optional>
#include <span>
#include <vector>

namespace kestrune::emu {

class LineWrapper
{
public:
    // Rows of `cols` columns go to `to`. `places` are rewritten as the rows they lie in pass: from the numbers that
    // Take gets to those of the rows given out, from 0. Rows before the first and after the last that Take gets are
    // counted on. The column of a place behind the last character of a line that just fills its row is `cols`. The
    // first place is the cursor; blanks in front of it are text.
    LineWrapper(int cols, History& to, std::span<Position* const> places);

    // Numbers go up one by one. width: of the screen that the row stands on; 0: what it holds is all there is.
    void Take(const Row& row, int number, int width);
    void End();
    int Given() const { return given_; }

    // For the sweep of numbers that no cell names any more.
    Row Underway() const;
    History& Target() { return to_; }

private:
    struct Place
    {
        Position* at;
        std::optional<size_t> offset; // from the line's cells that have not been given out
        bool isKnown = false;
    };

    std::span<const Cell> Cells() const { return std::span(cells_).subspan(start_); }
    void MeetPlaces(int number);
    void EndLine();
    void GiveFullRows(size_t length);
    void Give(size_t count, bool wraps);

    size_t cols_;
    History& to_;
    std::vector<Place> places_;
    int nextPlace_; // the first row that has a place to be met
    std::vector<Cell> cells_;
    size_t start_ = 0; // cells before it have been given out
    LineSize size_ = LineSize::Normal;
    bool isOpen_ = false; // a line has begun
    int lastTaken_ = 0;
    int given_ = 0;
};

} // namespace kestrune::emu
