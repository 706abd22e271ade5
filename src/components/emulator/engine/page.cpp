#include "page.h"

#include "widths.h"

#include <algorithm>
#include <cstring>

namespace kestrune::emu {
namespace {

constexpr size_t kPlacesPerRow = 16; // the window is put back to the start once in so many pages

} // namespace

Page::Page(Size size, uint64_t& clock) : size_{0, 0}, clock_(clock) { Resize(size); }

bool Page::IsBlank(int row) const
{
    const Row& line = At(row);
    return std::all_of(line.cells, line.cells + line.used,
                       [](const Cell& cell) { return (cell.text == 0 || cell.text == U' ') && cell.style == 0; });
}

// Cells out of sight since the page became narrower.
void Page::GiveUpHidden(Row& row)
{
    Part(row, size_.cols, size_.cols);
    row.used = size_.cols;
}

void Page::PartWide(Row& row, int from, int to)
{
    for (const int edge : {from, to}) {
        if (edge > 0 && edge < row.used && (row.cells[edge].flags & Cell::WideTail)) {
            row.cells[edge - 1] = Cell{0, row.cells[edge - 1].style, 0};
            row.cells[edge] = Cell{0, row.cells[edge].style, 0};
        }
    }
}

Page::Placed Page::PutPoints(int row, int col, int limit, std::span<const char32_t> points, StyleId style)
{
    const uint8_t* const table = TraitTable::Get();
    const auto traitsOf = [table](char32_t point) {
        return point < TraitTable::End ? table[point] : TraitTable::Compute(point);
    };
    const auto fits = [&](uint8_t traits) { return !(traits & Trait::Special) && col + traits <= limit; };
    if (points.empty() || !fits(traitsOf(points.front())))
        return {0, 0};
    Row& line = Touch(row);
    Reach(line, col);
    Part(line, col, col);
    const int start = col;
    size_t count = 0;
    for (; count < points.size(); ++count) {
        const uint8_t traits = traitsOf(points[count]);
        if (!fits(traits))
            break;
        if (traits == 1) {
            line.cells[col] = Cell{points[count], style, 0};
        } else {
            line.hasWide = true;
            line.cells[col] = Cell{points[count], style, Cell::Wide};
            line.cells[col + 1] = Cell{0, style, Cell::WideTail};
        }
        col += traits;
    }
    if (line.hasWide && col < line.used && (line.cells[col].flags & Cell::WideTail))
        line.cells[col] = Cell{0, line.cells[col].style, 0}; // its first half has just been overwritten
    line.wraps &= col < size_.cols;
    line.used = std::max(line.used, col);
    return {count, col - start};
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
        Blank(*rows_[row], blank);
}

void Page::FillWith(char32_t point)
{
    FillRows(0, size_.rows, 0);
    for (int row = 0; row < size_.rows; ++row) {
        std::fill(rows_[row]->cells, rows_[row]->cells + size_.cols, Cell{point, 0, 0});
        rows_[row]->used = size_.cols;
    }
}

void Page::Insert(int row, int col, int count, int limit, StyleId blank)
{
    Row& line = Touch(row);
    count = std::min(count, limit - col);
    Reach(line, blank != 0 ? limit : col);
    Part(line, col, limit - count);
    Part(line, limit, limit);
    const int moved = std::min(line.used, limit - count) - col;
    if (moved > 0)
        std::memmove(line.cells + col + count, line.cells + col, size_t(moved) * sizeof(Cell));
    std::fill(line.cells + col, line.cells + col + count, Cell{0, blank, 0});
    line.used = std::max(line.used, std::min(limit, std::max(line.used, col) + count));
}

void Page::Delete(int row, int col, int count, int limit, StyleId blank)
{
    Row& line = Touch(row);
    count = std::min(count, limit - col);
    if (line.used > col) {
        Part(line, col, col + count);
        Part(line, limit, limit);
        const int moved = std::min(line.used, limit) - col - count;
        if (moved > 0)
            std::memmove(line.cells + col, line.cells + col + count, size_t(moved) * sizeof(Cell));
        if (line.used > limit)
            std::fill(line.cells + limit - count, line.cells + limit, Cell{});
        else
            line.used = std::max(col, line.used - count);
    }
    line.wraps = false;
    if (blank != 0) {
        Reach(line, limit);
        std::fill(line.cells + limit - count, line.cells + limit, Cell{0, blank, 0});
    }
}

void Page::CopyCells(const Page& source, Position from, Position to, int count)
{
    Row& line = Touch(to.row);
    Reach(line, to.col + count);
    Part(line, to.col, to.col + count);
    const Row& origin = source.At(from.row);
    const int held = std::clamp(origin.used - from.col, 0, count);
    Cell* const first = line.cells + to.col;
    std::memmove(first, origin.cells + from.col, size_t(held) * sizeof(Cell));
    std::fill(first + held, first + count, Cell{});
    if (!origin.hasWide)
        return;
    line.hasWide = true;
    if (first->flags & Cell::WideTail)
        *first = Cell{0, first->style, 0};
    if (Cell& last = first[count - 1]; last.flags & Cell::Wide)
        last = Cell{0, last.style, 0};
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

// The whole page up: the window moves on, and the rows that it left are put at its end.
void Page::Slide(int count)
{
    if (placesEnd_ - rows_ < size_.rows + count)
        BackToStart();
    std::copy(rows_, rows_ + count, rows_ + size_.rows);
    rows_ += count;
}

void Page::BackToStart()
{
    std::copy(rows_, rows_ + size_.rows, places_.data());
    rows_ = places_.data();
}

void Page::Rotate(int top, int bottom, int count, StyleId blank)
{
    if (top == 0 && bottom == size_.rows)
        Slide(count);
    else
        std::rotate(rows_ + top, rows_ + top + count, rows_ + bottom);
    FillRows(bottom - count, bottom, blank);
}

void Page::RotateDown(int top, int bottom, int count, StyleId blank)
{
    std::rotate(rows_ + top, rows_ + bottom - count, rows_ + bottom);
    FillRows(top, top + count, blank);
}

void Page::Resize(Size size)
{
    if (size.rows == size_.rows && size.cols <= capacity_) { // also 80 to 132 columns and back, whatever the pace
        for (int i = 0; i < size.rows; ++i) {
            Part(*rows_[i], size.cols, size.cols);
            rows_[i]->generation = ++clock_;
        }
        size_ = size;
        return;
    }
    constexpr int step = int(kPackedAtOnce);
    const int capacity = std::max(capacity_, (size.cols + step - 1) / step * step);
    auto cells = std::make_unique<Cell[]>(size_t(capacity) * size_t(size.rows));
    std::vector<Row> storage(static_cast<size_t>(size.rows));
    for (int i = 0; i < size.rows; ++i) {
        Row& line = storage[size_t(i)];
        Cell* to = cells.get() + size_t(i) * size_t(capacity);
        if (i < size_.rows) {
            Row& old = *rows_[i];
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
    places_.assign(size_t(size.rows) * kPlacesPerRow, nullptr);
    rows_ = places_.data();
    placesEnd_ = rows_ + places_.size();
    for (int i = 0; i < size.rows; ++i)
        rows_[i] = &storage_[size_t(i)];
}

void Page::Assign(int row, const Row& from)
{
    Row& line = *rows_[row];
    Blank(line, 0);
    line.used = int(std::min(from.Used().size(), size_t(capacity_)));
    std::copy(from.cells, from.cells + line.used, line.cells);
    line.wraps = from.wraps;
    line.plain = from.plain;
    line.size = from.size;
    line.hasWide = true;
    Part(line, size_.cols, size_.cols);
}

} // namespace kestrune::emu
