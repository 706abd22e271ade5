// The history and the first page laid out anew as one text when the width changes.

#include "linewrapper.h"
#include "screen.h"

#include <algorithm>

namespace kestrune::emu {
namespace {

// So many lines of the history take part at once; those above stay as they are. Each step of a window that is being
// drawn smaller lays all of them out: this is some 20 ms.
constexpr int kRowsAtOnce = 20'000;

} // namespace

// The oldest row that the screen may show again. A screen that is full shows as much as it can hold; on one that is
// not, what was scrolled or cleared away stays away, but for the rows that a narrower screen has put up there.
int Screen::OldestToShow(bool isFull) const
{
    if (history_.Pushed() == reflowed_.pushed)
        return -std::min(reflowed_.rows, history_.Count());
    return isFull ? -history_.Count() : 0;
}

void Screen::ReflowMain(Size size, CursorState& cursor, std::span<Position> followed)
{
    const Size before = main_->Extent();
    int last = before.rows - 1;
    while (last > cursor.row && main_->IsBlank(last))
        --last;
    int first = -std::min(history_.Count(), kRowsAtOnce);
    while (first > -history_.Count() && first < 0 && history_.At(history_.Count() + first - 1).wraps)
        ++first;
    const int untouched = history_.Count() + first;

    Position cursorAt{cursor.col + (cursor.pendingWrap ? 1 : 0), cursor.row};
    Position savedAt{saved_[0].col, saved_[0].row};
    Position top{0, std::max(first, OldestToShow(last == before.rows - 1))};
    std::vector<Position*> places{&cursorAt, &savedAt, &top};
    for (Position& place : followed)
        if (place.row < 0 || shownPage_ == main_.get())
            places.push_back(&place);

    History fresh(*this);
    fresh.SetLimit(history_.Limit() + size.rows);
    LineWrapper wrapper(size.cols, fresh, places);
    wrapper_ = &wrapper;
    for (int row = first; row < 0; ++row)
        wrapper.Take(history_.At(history_.Count() + row), row, 0);
    for (int row = 0; row <= last; ++row)
        wrapper.Take(main_->At(row), row, before.cols);
    wrapper.End();
    wrapper_ = nullptr;

    const int given = wrapper.Given();
    const int oldestShown = std::max(0, top.row - std::max(0, size.rows - before.rows));
    const int shownFrom = std::clamp(given - size.rows, oldestShown, given);
    history_.ReplaceFrom(untouched, fresh);
    main_->FillRows(0, before.rows, 0);
    main_->Resize(size);
    for (int row = given - shownFrom - 1; row >= 0; --row) {
        main_->Assign(row, history_.At(history_.Count() - 1));
        history_.DropNewest();
    }
    history_.SetLimit(history_.Limit()); // room was made for the rows of the screen
    reflowed_ = {history_.Pushed(), shownFrom - oldestShown};

    for (Position* place : places)
        *place = {std::min(place->col, size.cols), place->row - shownFrom};
    const bool isFullRow = cursorAt.col == size.cols;
    cursor.row = std::clamp(cursorAt.row, 0, size.rows - 1);
    cursor.col = cursorAt.col - (isFullRow ? 1 : 0);
    cursor.pendingWrap = isFullRow && cursor.autoWrap && wrapStyle_ == WrapStyle::Pending;
    if (&cursor != &saved_[0] && saved_[0].page == 0) {
        saved_[0].row = savedAt.row;
        saved_[0].col = savedAt.col;
    }
}

} // namespace kestrune::emu
