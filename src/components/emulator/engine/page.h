#pragma once

// The cells of one screen (main or alternate). Rows are reached through pointers: a scroll, also inside a region,
// moves pointers and never cells. Of each row only the used part is stored; what lies beyond it is blank in the
// plain style, so clearing a row is one assignment.
//
// All positions must lie inside the page; who calls has clamped them.

#include "runs.h"

#include <emulator/engine/cell.h>
#include <emulator/engine/terminal.h>

#include <algorithm>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

namespace kestrune::emu {

struct Row
{
    Cell* cells = nullptr;
    uint64_t generation = 0;
    int used = 0;         // cells from here on are blank and hold no meaning
    bool wraps = false;   // goes on in the next row
    bool hasWide = false; // may hold wide characters
    bool plain = true;    // surely nothing but Latin-1 in the plain style; false: has to be looked at
    LineSize size = LineSize::Normal;

    std::span<const Cell> Used() const { return {cells, size_t(used)}; }
};

class Page
{
public:
    // `clock` gives generations; it outlives the page.
    Page(Size size, uint64_t& clock);

    Size Extent() const { return size_; }
    const Row& At(int row) const { return *rows_[row]; }
    // Columns that can be seen and written: half of them in a row of double width.
    int Columns(int row) const { return At(row).size == LineSize::Normal ? size_.cols : (size_.cols + 1) / 2; }
    bool IsBlank(int row) const;

    // Text into cells from `col` on; the caller has made sure that it fits. Half-overwritten wide characters
    // become blanks.
    void PutBytes(int row, int col, std::span<const uint8_t> bytes, StyleId style)
    {
        const bool plain = At(row).plain && style == 0;
        Row& line = Touch(row);
        line.plain = plain;
        const int end = col + int(bytes.size());
        Reach(line, col);
        Part(line, col, end);
        SpreadBytes(line.cells + col, bytes.data(), bytes.size(), style);
        line.wraps &= end < size_.cols; // a new last column has not wrapped yet
        line.used = std::max(line.used, end);
    }
    // As many points from the front as are plain characters and fit before `limit`; the rest needs a closer look.
    struct Placed
    {
        size_t points;
        int columns;
    };
    Placed PutPoints(int row, int col, int limit, std::span<const char32_t> points, StyleId style);
    void PutPoint(int row, int col, char32_t point, int width, StyleId style);
    void SetText(int row, int col, uint32_t text); // the same cell, another text

    void Fill(int row, int from, int to, StyleId blank); // [from, to) becomes blank
    void FillRows(int from, int to, StyleId blank);      // whole rows, back to normal size
    void FillWith(char32_t point);                       // every cell, plain
    // What follows moves within [col, limit).
    void Insert(int row, int col, int count, int limit, StyleId blank);
    void Delete(int row, int col, int count, int limit, StyleId blank);
    // Cells of one row, perhaps of another page, into a row of this one. Half a wide character becomes a blank.
    void CopyCells(const Page& source, Position from, Position to, int count);
    // Another look for the cells [from, to): style(cell's style) is called for each.
    template <typename StyleFor>
    void Restyle(int row, int from, int to, StyleFor&& style)
    {
        Row& line = Touch(row);
        Reach(line, to);
        for (Cell* cell = line.cells + from; cell != line.cells + to; ++cell)
            cell->style = style(cell->style);
    }
    void SetWraps(int row, bool wraps);
    void SetLineSize(int row, LineSize size);

    // Rows [top, bottom) move; the freed ones come back blank. count <= bottom - top.
    void RotateUp(int top, int bottom, int count, StyleId blank)
    {
        if (count == 1 && top == 0 && bottom == size_.rows)
            SlideOne(blank);
        else
            Rotate(top, bottom, count, blank);
    }
    void RotateDown(int top, int bottom, int count, StyleId blank);

    // Cuts or adds rows at the bottom. Columns cut off are kept out of sight until the row is next changed.
    void Resize(Size size);
    // A row given from outside, such as one that comes back from the history.
    void Assign(int row, const Row& from);

private:
    Row& Touch(int row)
    {
        Row& line = *rows_[row];
        line.generation = ++clock_;
        line.plain = false; // who knows better says so afterwards
        if (line.used > size_.cols)
            GiveUpHidden(line);
        return line;
    }
    // Makes the cells before `col` hold something.
    void Reach(Row& row, int col)
    {
        if (row.used < col) {
            std::fill(row.cells + row.used, row.cells + col, Cell{});
            row.used = col;
        }
    }
    // No wide character may straddle the edges of [from, to).
    void Part(Row& row, int from, int to)
    {
        if (row.hasWide)
            PartWide(row, from, to);
    }
    void GiveUpHidden(Row& row);
    void PartWide(Row& row, int from, int to);
    void Blank(Row& row, StyleId blank)
    {
        row.generation = ++clock_;
        row.wraps = false;
        row.hasWide = false;
        row.plain = blank == 0;
        row.size = LineSize::Normal;
        row.used = 0;
        if (blank != 0) {
            std::fill(row.cells, row.cells + size_.cols, Cell{0, blank, 0});
            row.used = size_.cols;
        }
    }
    void Rotate(int top, int bottom, int count, StyleId blank);
    void Slide(int count);
    void BackToStart();
    // What a line feed on the last row does.
    void SlideOne(StyleId blank)
    {
        if (rows_ + size_.rows == placesEnd_)
            BackToStart();
        Row* const freed = *rows_;
        rows_[size_.rows] = freed;
        ++rows_;
        Blank(*freed, blank);
    }

    Size size_;
    int capacity_ = 0; // cells that each row has room for: a whole number of kPackedAtOnce
    uint64_t& clock_;
    Row** rows_ = nullptr; // the page's rows, a window that slides over places_ as the page scrolls
    Row** placesEnd_ = nullptr;
    std::vector<Row*> places_;
    std::vector<Row> storage_;
    std::unique_ptr<Cell[]> cells_;
};

} // namespace kestrune::emu
