// Left and right margins: the part of the screen that scrolls may be narrower than the screen. Cells move there
// instead of rows, so nothing of it goes into the history.

#include "screen.h"

#include <algorithm>

namespace kestrune::emu {

void Screen::SetSideMargins(int left, int right)
{
    right = std::min(right, Extent().cols - 1);
    if (left < 0 || left >= right)
        return;
    left_ = left;
    right_ = right + 1;
    MoveTo(0, 0);
}

void Screen::SetWindow(int top, int left, int bottom, int right)
{
    bottom = std::min(bottom, Extent().rows - 1);
    right = std::min(right, Extent().cols - 1);
    if (top < 0 || left < 0 || top >= bottom || left >= right)
        return;
    top_ = top;
    bottom_ = bottom + 1;
    left_ = left;
    right_ = right + 1;
}

// VT420 programmer reference, DECLRMM: lines of double width and left and right margins exclude each other.
void Screen::AllowSideMargins(bool on)
{
    left_ = 0;
    right_ = Extent().cols;
    CollapsePendingWrap();
    for (int row = 0; on && row < Extent().rows; ++row)
        if (P().At(row).size != LineSize::Normal)
            P().SetLineSize(row, LineSize::Normal);
}

bool Screen::InSideMargins() const { return cursor_.col >= left_ && cursor_.col < right_; }

bool Screen::InMargins() const { return cursor_.row >= top_ && cursor_.row < bottom_ && InSideMargins(); }

void Screen::MoveLinesUp(int top, int bottom, int count)
{
    count = std::min(count, bottom - top);
    if (!IsNarrowed()) {
        P().RotateUp(top, bottom, count, BlankId());
        return;
    }
    for (int row = top; row < bottom - count; ++row)
        P().CopyCells(P(), {left_, row + count}, {left_, row}, right_ - left_);
    for (int row = bottom - count; row < bottom; ++row)
        P().Fill(row, left_, right_, BlankId());
}

void Screen::MoveLinesDown(int top, int bottom, int count)
{
    count = std::min(count, bottom - top);
    if (!IsNarrowed()) {
        P().RotateDown(top, bottom, count, BlankId());
        return;
    }
    for (int row = bottom - 1; row >= top + count; --row)
        P().CopyCells(P(), {left_, row - count}, {left_, row}, right_ - left_);
    for (int row = top; row < top + count; ++row)
        P().Fill(row, left_, right_, BlankId());
}

void Screen::InsertColumns(int count)
{
    if (!InMargins())
        return;
    CollapsePendingWrap();
    ShiftColumns(cursor_.col, count);
}

void Screen::DeleteColumns(int count)
{
    if (!InMargins())
        return;
    CollapsePendingWrap();
    ShiftColumns(cursor_.col, -count);
}

// Within the margins and from `from` on, to the right or (negative) to the left. Double-width rows take part as far
// as they reach.
void Screen::ShiftColumns(int from, int count)
{
    for (int row = top_; row < bottom_; ++row) {
        const int limit = std::min(right_, P().Columns(row));
        if (from >= limit)
            continue;
        if (count > 0)
            P().Insert(row, from, count, limit, BlankId());
        else
            P().Delete(row, from, -count, limit, BlankId());
    }
}

void Screen::BackIndex()
{
    CollapsePendingWrap();
    if (cursor_.col != left_)
        cursor_.col = std::max(0, cursor_.col - 1);
    else if (InMargins())
        ShiftColumns(left_, 1);
}

void Screen::ForwardIndex()
{
    CollapsePendingWrap();
    const int last = std::min(right_, Columns()) - 1;
    if (cursor_.col != last)
        cursor_.col = std::min(Columns() - 1, cursor_.col + 1);
    else if (InMargins())
        ShiftColumns(left_, -1);
}

} // namespace kestrune::emu
