#include "page.h"

#include "runs.h"

#include <algorithm>
#include <cstring>

namespace kestrune::emu {

Page::Page(Size size, uint64_t& clock) : size_{0, 0}, clock_(clock) { Resize(size); }

bool Page::IsBlank(int row) const
{
    const Row& line = At(row);
    return std::all_of(line.cells, line.cells + line.used,
                       [](const Cell& cell) { return (cell.text == 0 || cell.text == U' ') && cell.style == 0; });
}

Row& Page::Touch(int row)
{
    Row& line = *rows_[size_t(row)];
    line.generation = ++clock_;
    if (line.used > size_.cols) { // out of sight since the page became narrower; a change gives it up
        Part(line, size_.cols, size_.cols);
        line.used = size_.cols;
    }
    return line;
}

// Makes the cells before `col` hold something.
void Page::Reach(Row& row, int col)
{
    if (row.used < col) {
        std::fill(row.cells + row.used, row.cells + col, Cell{});
        row.used = col;
    }
}

// No wide character may straddle the edges of [from, to).
void Page::Part(Row& row, int from, int to)
{
    if (!row.hasWide)
        return;
    for (const int edge : {from, to}) {
        if (edge > 0 && edge < row.used && (row.cells[edge].flags & Cell::WideTail)) {
            row.cells[edge - 1] = Cell{0, row.cells[edge - 1].style, 0};
            row.cells[edge] = Cell{0, row.cells[edge].style, 0};
        }
    }
}

void Page::Blank(Row& row, StyleId blank)
{
    row.generation = ++clock_;
    row.wraps = false;
    row.hasWide = false;
    row.size = LineSize::Normal;
    row.used = 0;
    if (blank != 0) {
        std::fill(row.cells, row.cells + size_.cols, Cell{0, blank, 0});
        row.used = size_.cols;
    }
}

void Page::PutBytes(int row, int col, std::span<const uint8_t> bytes, StyleId style)
{
    Row& line = Touch(row);
    const int end = col + int(bytes.size());
    Reach(line, col);
    Part(line, col, end);
    SpreadBytes(line.cells + col, bytes.data(), bytes.size(), style);
    line.wraps &= end < size_.cols; // a new last column has not wrapped yet
    line.used = std::max(line.used, end);
}

void Page::PutPoint(int row, int col, char32_t point, int width, StyleId style)
{
    Row& line = Touch(row);
    Reach(line, col);
    Part(line, col, col + width);
    if (width == 2) {
        line.cells[col] = Cell{point, style, Cell::Wide};
        line.cells[col + 1] = Cell{0, style, Cell::WideTail};
        line.hasWide = true;
    } else {
        line.cells[col] = Cell{point, style, 0};
    }
    line.wraps &= col + width < size_.cols;
    line.used = std::max(line.used, col + width);
}

void Page::SetText(int row, int col, uint32_t text)
{
    Row& line = Touch(row);
    if (col < line.used)
        line.cells[col].text = text;
}

void Page::SetStyle(int row, int col, StyleId style)
{
    Row& line = Touch(row);
    Reach(line, col + 1);
    line.cells[col].style = style;
}

void Page::Fill(int row, int from, int to, StyleId blank)
{
    Row& line = Touch(row);
    Part(line, from, to);
    if (to >= size_.cols)
        line.wraps = false;
    if (blank == 0 && to >= line.used) {
        line.used = std::min(line.used, from);
        return;
    }
    Reach(line, from);
    std::fill(line.cells + from, line.cells + to, Cell{0, blank, 0});
    line.used = std::max(line.used, to);
}

void Page::FillRows(int from, int to, StyleId blank)
{
    for (int row = from; row < to; ++row)
        Blank(*rows_[size_t(row)], blank);
}

void Page::FillWith(char32_t point)
{
    FillRows(0, size_.rows, 0);
    for (Row* row : rows_) {
        std::fill(row->cells, row->cells + size_.cols, Cell{point, 0, 0});
        row->used = size_.cols;
    }
}

void Page::Insert(int row, int col, int count, StyleId blank)
{
    Row& line = Touch(row);
    const int limit = Columns(row);
    count = std::min(count, limit - col);
    Reach(line, blank != 0 ? limit : col);
    Part(line, col, limit - count);
    const int moved = std::min(line.used, limit - count) - col;
    if (moved > 0)
        std::memmove(line.cells + col + count, line.cells + col, size_t(moved) * sizeof(Cell));
    std::fill(line.cells + col, line.cells + col + count, Cell{0, blank, 0});
    line.used = std::max(line.used, std::min(limit, std::max(line.used, col) + count));
}

void Page::Delete(int row, int col, int count, StyleId blank)
{
    Row& line = Touch(row);
    const int limit = Columns(row);
    count = std::min(count, limit - col);
    if (line.used > col) {
        Part(line, col, col + count);
        const int moved = std::min(line.used, limit) - col - count;
        if (moved > 0)
            std::memmove(line.cells + col, line.cells + col + count, size_t(moved) * sizeof(Cell));
        line.used = std::max(col, std::min(line.used, limit) - count);
    }
    line.wraps = false;
    if (blank != 0) {
        Reach(line, limit);
        std::fill(line.cells + limit - count, line.cells + limit, Cell{0, blank, 0});
    }
}

void Page::SetWraps(int row, bool wraps)
{
    if (At(row).wraps != wraps)
        Touch(row).wraps = wraps;
}

void Page::SetLineSize(int row, LineSize size)
{
    Row& line = Touch(row);
    line.size = size;
    const int limit = Columns(row);
    if (line.used > limit) { // what was in the right half is lost, as on the real thing
        Part(line, limit, limit);
        line.used = limit;
    }
}

void Page::RotateUp(int top, int bottom, int count, StyleId blank)
{
    std::rotate(rows_.begin() + top, rows_.begin() + top + count, rows_.begin() + bottom);
    FillRows(bottom - count, bottom, blank);
}

void Page::RotateDown(int top, int bottom, int count, StyleId blank)
{
    std::rotate(rows_.begin() + top, rows_.begin() + bottom - count, rows_.begin() + bottom);
    FillRows(top, top + count, blank);
}

void Page::Resize(Size size)
{
    const int capacity = std::max(capacity_, size.cols);
    auto cells = std::make_unique<Cell[]>(size_t(capacity) * size_t(size.rows));
    std::vector<Row> storage(static_cast<size_t>(size.rows));
    for (int i = 0; i < size.rows; ++i) {
        Row& line = storage[size_t(i)];
        Cell* to = cells.get() + size_t(i) * size_t(capacity);
        if (i < size_.rows) {
            Row& old = *rows_[size_t(i)];
            Part(old, size.cols, size.cols);
            line = old;
            std::copy(line.cells, line.cells + line.used, to);
        }
        line.cells = to;
        line.generation = ++clock_;
    }
    storage_ = std::move(storage);
    cells_ = std::move(cells);
    capacity_ = capacity;
    size_ = size;
    rows_.clear();
    for (Row& line : storage_)
        rows_.push_back(&line);
}

void Page::TouchAll()
{
    for (Row* row : rows_)
        row->generation = ++clock_;
}

void Page::Assign(int row, std::span<const Cell> cells, bool wraps, LineSize size)
{
    Row& line = *rows_[size_t(row)];
    Blank(line, 0);
    line.used = int(std::min(cells.size(), size_t(capacity_)));
    std::copy(cells.begin(), cells.begin() + line.used, line.cells);
    line.wraps = wraps;
    line.size = size;
    line.hasWide = true;
    Part(line, size_.cols, size_.cols);
}

} // namespace kestrune::emu
