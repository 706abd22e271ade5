// Lines of text laid out anew for another width: rows that one line was wrapped over become one line again, and that
// is wrapped at the new width. The history and the first page are one text in this.

#include "screen.h"

#include <algorithm>
#include <optional>
#include <utility>

namespace kestrune::emu {
namespace {

// Takes the rows of a text in their order and gives them out in another width. Holds two rows at most.
class LineWrapper
{
public:
    LineWrapper(int fromCols, int toCols, History& to) : from_(size_t(fromCols)), to_(size_t(toCols)), history_(to) {}

    // cursorCol: the cursor stands in this row.
    void Take(const Row& row, std::optional<int> cursorCol)
    {
        if (row.size != LineSize::Normal)
            EndLine(); // a row of double width is a line of its own
        if (cursorCol)
            cursor_ = cells_.size() + size_t(*cursorCol);
        const std::span<const Cell> used = row.Used().first(std::min(row.Used().size(), from_));
        cells_.insert(cells_.end(), used.begin(), used.end());
        size_ = row.size;
        if (row.size != LineSize::Normal || !row.wraps) {
            EndLine();
            return;
        }
        cells_.resize(cells_.size() + from_ - used.size());
        while (cells_.size() > to_)
            Give(FirstPart(), true);
    }
    void EndLine()
    {
        if (!isOpen_ && cells_.empty() && size_ == std::nullopt)
            return;
        const auto isBlank = [](const Cell& cell) {
            return (cell.text == 0 || cell.text == U' ') && cell.style == 0 && cell.flags == 0;
        };
        while (!cells_.empty() && isBlank(cells_.back())) // what the terminal adds itself when it is wider
            cells_.pop_back();
        if (size_ == LineSize::Normal)
            while (cells_.size() > to_)
                Give(FirstPart(), true);
        if (cursor_)
            *cursor_ = std::min(*cursor_, to_ - 1);
        Give(cells_.size(), false);
        size_.reset();
    }
    int Given() const { return given_; }
    Position Cursor() const { return found_; } // row: counted as given

private:
    size_t FirstPart() const // a wide character goes to the next row whole
    {
        return to_ > 1 && (cells_[to_].flags & Cell::WideTail) ? to_ - 1 : to_;
    }
    void Give(size_t count, bool wraps)
    {
        if (cursor_ && (*cursor_ < count || !wraps)) {
            found_ = {int(*cursor_), given_};
            cursor_.reset();
        } else if (cursor_) {
            *cursor_ -= count;
        }
        Row row;
        row.cells = cells_.data();
        row.used = int(count);
        row.wraps = wraps;
        row.hasWide = true;
        row.plain = false;
        row.size = size_.value_or(LineSize::Normal);
        history_.Push(row);
        cells_.erase(cells_.begin(), cells_.begin() + ptrdiff_t(count));
        ++given_;
        isOpen_ = wraps;
    }

    size_t from_;
    size_t to_;
    History& history_;
    std::vector<Cell> cells_;
    std::optional<LineSize> size_;
    bool isOpen_ = false;
    std::optional<size_t> cursor_; // in cells_
    Position found_;
    int given_ = 0;
};

} // namespace

void Screen::ReflowMain(Size size, CursorState& cursor)
{
    const Size before = main_->Extent();
    int last = before.rows - 1;
    while (last > cursor.row && main_->IsBlank(last))
        --last;

    History fresh(*this);
    fresh.ContinueAfter(history_);
    fresh.SetLimit(history_.Limit() + size.rows);
    reflown_ = &fresh;
    LineWrapper lines(before.cols, size.cols, fresh);
    for (int row = 0; row < history_.Count(); ++row)
        lines.Take(history_.At(row), std::nullopt);
    for (int row = 0; row <= last; ++row)
        lines.Take(main_->At(row), row == cursor.row ? std::optional(cursor.col) : std::nullopt);
    lines.EndLine();
    reflown_ = nullptr;
    history_.TakeOver(fresh);

    main_->FillRows(0, before.rows, 0);
    main_->Resize(size);
    const int back = std::min(size.rows, lines.Given());
    for (int row = back - 1; row >= 0; --row) {
        const Row& line = history_.At(history_.Count() - 1);
        main_->Assign(row, line.Used(), line.wraps, line.size);
        history_.DropNewest();
    }
    history_.SetLimit(history_.Limit()); // the oldest that were held for the screen's rows
    cursor.row = std::max(0, lines.Cursor().row - (lines.Given() - back));
    cursor.col = lines.Cursor().col;
}

} // namespace kestrune::emu
