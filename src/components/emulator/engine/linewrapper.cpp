#include "linewrapper.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace kestrune::emu {
namespace {

constexpr int kNoRow = std::numeric_limits<int>::max();

bool IsErased(const Cell& cell) { return cell.text == 0 && cell.flags == 0; }

bool IsPlainBlank(const Cell& cell)
{
    return (cell.text == 0 || cell.text == U' ') && cell.flags == 0 && cell.style == 0;
}

} // namespace

LineWrapper::LineWrapper(int cols, History& to, std::span<Position* const> places)
    : cols_(size_t(cols)), to_(to), nextPlace_(kNoRow)
{
    for (Position* place : places) {
        places_.push_back({place, std::nullopt});
        nextPlace_ = std::min(nextPlace_, place->row);
    }
}

Row LineWrapper::Underway() const
{
    Row row;
    row.cells = const_cast<Cell*>(cells_.data()); // a row can be written to, but nobody does
    row.used = int(cells_.size());
    return row;
}

void LineWrapper::Take(const Row& row, int number, int width)
{
    lastTaken_ = number;
    const bool isLine = row.size != LineSize::Normal || !row.wraps;
    if (isOpen_ && row.size != LineSize::Normal)
        EndLine();
    if (!isOpen_ && isLine && number < nextPlace_ && row.Used().size() <= cols_) { // most rows by far
        to_.Push(row);
        ++given_;
        return;
    }
    cells_.erase(cells_.begin(), cells_.begin() + ptrdiff_t(start_));
    start_ = 0;
    isOpen_ = true;
    size_ = row.size;
    MeetPlaces(number);
    cells_.insert(cells_.end(), row.Used().begin(), row.Used().end());
    if (isLine) {
        EndLine();
        return;
    }
    // One column less: a wide character did not fit.
    if (row.used < width - 1)
        cells_.resize(cells_.size() + size_t(width - row.used));
    GiveFullRows(cells_.size());
}

void LineWrapper::End()
{
    if (isOpen_)
        EndLine();
    for (Place& place : places_)
        if (!std::exchange(place.isKnown, true))
            place.at->row += given_ - 1 - lastTaken_;
}

void LineWrapper::MeetPlaces(int number)
{
    if (number < nextPlace_)
        return;
    nextPlace_ = kNoRow;
    for (Place& place : places_) {
        if (place.isKnown || place.offset)
            continue;
        if (place.at->row > number) {
            nextPlace_ = std::min(nextPlace_, place.at->row);
        } else if (place.at->row == number) {
            place.offset = cells_.size() + size_t(place.at->col);
        } else {
            place.at->row -= number;
            place.isKnown = true;
        }
    }
}

void LineWrapper::EndLine()
{
    size_t keep = start_;
    if (const auto cursor = places_.front().offset) {
        if (start_ + *cursor == cells_.size() + 1)
            cells_.emplace_back(); // prompts end in a blank, which the history has not kept
        keep = std::min(cells_.size(), start_ + *cursor);
    }
    while (cells_.size() > keep && IsPlainBlank(cells_.back()))
        cells_.pop_back();
    if (size_ == LineSize::Normal) {
        size_t length = cells_.size();
        while (length > keep && IsErased(cells_[length - 1]))
            --length;
        GiveFullRows(length);
        cells_.resize(std::min(cells_.size(), start_ + cols_)); // what is erased in colour is not wrapped
    }
    Give(Cells().size(), false);
    size_ = LineSize::Normal;
    isOpen_ = false;
}

// All but the last of the line, which is `length` long in cells_.
void LineWrapper::GiveFullRows(size_t length)
{
    while (length > start_ + cols_) {
        const bool cutsWide = cols_ > 1 && (Cells()[cols_].flags & Cell::WideTail) != 0;
        Give(cutsWide ? cols_ - 1 : cols_, true);
    }
}

void LineWrapper::Give(size_t count, bool wraps)
{
    for (Place& place : places_) {
        if (!place.offset)
            continue;
        if (*place.offset >= count && wraps) {
            *place.offset -= count;
            continue;
        }
        const size_t col = *place.offset > count ? std::min(*place.offset, cols_ - 1) : *place.offset;
        *place.at = {int(std::min(col, cols_)), given_};
        place.offset.reset();
        place.isKnown = true;
    }
    Row row;
    row.cells = cells_.data() + start_;
    row.used = int(count);
    row.wraps = wraps;
    row.plain = false;
    row.size = size_;
    to_.Push(row);
    start_ += count;
    ++given_;
}

} // namespace kestrune::emu
