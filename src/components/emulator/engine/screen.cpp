#include "screen.h"

#include "widths.h"

#include <algorithm>
#include <utility>

namespace kestrune::emu {
namespace {

constexpr int kTabWidth = 8;

} // namespace

Screen::Screen(Size size, Modes& modes)
    : modes_(modes), main_(std::make_unique<Page>(size, clock_)), alternate_(std::make_unique<Page>(size, clock_)),
      page_(main_.get()), shownPage_(main_.get())
{
    HardReset();
}

Style& Screen::Pen()
{
    penChanged_ = true;
    return cursor_.pen;
}

StyleId Screen::PenId()
{
    if (penChanged_) {
        penChanged_ = false;
        penId_ = StyleIdFor(cursor_.pen);
    }
    return penId_;
}

StyleId Screen::BlankId()
{
    if (const Color background = cursor_.pen.background; background != blankBackground_) {
        Style blank;
        blank.background = background;
        blankId_ = StyleIdFor(blank);
        blankBackground_ = background;
    }
    return blankId_;
}

// --- text

void Screen::WriteBytes(std::span<const uint8_t> run)
{
    if (run.empty())
        return;
    lastPoint_ = run.back();
    const StyleId style = PenId();
    while (!run.empty()) {
        if (cursor_.pendingWrap)
            WrapNow();
        const auto room = size_t(Limit() - cursor_.col);
        const bool wraps = modes_.Has(Mode::AutoWrap) && wrapStyle_ != WrapStyle::Never;
        if (!wraps && room == 1) // all of the rest lands in the last column, one over the other
            run = run.last(1);
        const auto now = run.first(std::min(room, run.size()));
        if (modes_.Has(Mode::Insert))
            P().Insert(cursor_.row, cursor_.col, int(now.size()), Limit(), BlankId());
        P().PutBytes(cursor_.row, cursor_.col, now, style);
        run = run.subspan(now.size());
        Advance(int(now.size()));
    }
}

void Screen::WritePoints(std::span<const char32_t> run)
{
    while (!run.empty()) {
        if (!cursor_.pendingWrap && !modes_.Has(Mode::Insert)) {
            const StyleId style = PenId();
            const Page::Placed placed = P().PutPoints(cursor_.row, cursor_.col, Limit(), run, style);
            if (placed.points != 0) {
                lastPoint_ = run[placed.points - 1];
                run = run.subspan(placed.points);
                Advance(placed.columns);
                continue;
            }
        }
        WritePoint(run.front());
        run = run.subspan(1);
    }
}

void Screen::WritePoint(char32_t point)
{
    const uint8_t traits = TraitsOf(point);
    if (traits & Trait::Special) {
        if ((traits & Trait::Dropped) || JoinBefore(point, traits) || (traits & Trait::Joins))
            return;
    }
    const int width = traits & Trait::WidthMask;
    if (!StartCharacter(width))
        return;
    lastPoint_ = point;
    const StyleId style = PenId();
    if (modes_.Has(Mode::Insert))
        P().Insert(cursor_.row, cursor_.col, width, Limit(), BlankId());
    P().PutPoint(cursor_.row, cursor_.col, point, width, style);
    Advance(width);
}

// Brings the cursor to where a character of this width fits.
bool Screen::StartCharacter(int width)
{
    if (cursor_.pendingWrap)
        WrapNow();
    const int limit = Limit();
    if (cursor_.col + width <= limit)
        return true;
    if (width > limit)
        return false;
    if (modes_.Has(Mode::AutoWrap) && wrapStyle_ != WrapStyle::Never) {
        P().Fill(cursor_.row, cursor_.col, limit, 0);
        WrapNow();
    } else {
        cursor_.col = limit - width;
    }
    return cursor_.col + width <= Limit();
}

void Screen::Advance(int columns)
{
    KeepInSight();
    const int limit = Limit();
    cursor_.col += columns;
    if (cursor_.col < limit)
        return;
    cursor_.col = limit - 1;
    if (!modes_.Has(Mode::AutoWrap) || wrapStyle_ == WrapStyle::Never)
        return;
    cursor_.pendingWrap = true;
    if (wrapStyle_ == WrapStyle::AtOnce)
        WrapNow();
}

void Screen::WrapNow()
{
    cursor_.pendingWrap = false;
    if (!modes_.Has(Mode::AutoWrap))
        return;
    if (!IsNarrowed())
        P().SetWraps(cursor_.row, true);
    if (watcher_ != nullptr)
        watcher_->LineLeft(cursor_.row);
    cursor_.col = LineStart();
    Index();
}

bool Screen::JoinBefore(char32_t point, uint8_t traits)
{
    int col = cursor_.pendingWrap ? cursor_.col : cursor_.col - 1;
    const Row& row = P().At(cursor_.row);
    if (col > 0 && col < row.used && (row.cells[col].flags & Cell::WideTail))
        --col;
    if (col < 0 || col >= row.used)
        return false;
    const uint32_t text = row.cells[col].text;
    const char32_t single = text == 0 ? U' ' : char32_t(text);
    const std::u32string_view before = text & Cell::ClusterBit ? clusters_.At(text) : std::u32string_view(&single, 1);
    const uint8_t first = TraitsOf(before.front());

    bool joins = (traits & Trait::Joins) != 0;
    if (traits & Trait::SkinTone)
        joins = (first & Trait::Pictographic) != 0;
    else if (traits & Trait::Pictographic)
        joins = before.back() == ZeroWidthJoiner && (first & Trait::Pictographic);
    else if (traits & Trait::Regional)
        joins = before.size() == 1 && (first & Trait::Regional);
    if (!joins)
        return false;
    if (before.size() >= ClusterTable::MaxPoints)
        return true; // full: further marks are dropped
    std::u32string whole(before);
    whole += point;
    P().SetText(cursor_.row, col, ClusterFor(whole));
    return true;
}

void Screen::Repeat(int count)
{
    if (lastPoint_ == 0)
        return;
    std::array<char32_t, 256> run{};
    run.fill(lastPoint_);
    for (count = std::min(count, Extent().cols * Extent().rows); count > 0; count -= int(run.size()))
        WritePoints(std::span(run).first(std::min(size_t(count), run.size())));
}

// --- cursor

void Screen::MoveTo(int row, int col)
{
    CollapsePendingWrap();
    cursor_.row = std::clamp(row + Top(), Top(), Bottom() - 1);
    cursor_.col = std::clamp(col + Left(), Left(), std::min(Right(), Columns()) - 1);
    KeepInSight();
}

void Screen::MoveToRow(int row) { MoveTo(row, ColumnForHost()); }

void Screen::MoveToColumn(int col) { MoveTo(RowForHost(), col); }

int Screen::RowForHost() const { return cursor_.row - Top(); }

int Screen::ColumnForHost() const { return cursor_.col - Left(); }

void Screen::MoveUp(int count)
{
    const int stop = cursor_.row >= top_ ? top_ : 0;
    MoveTo(std::max(stop, cursor_.row - count) - Top(), ColumnForHost());
}

void Screen::MoveDown(int count)
{
    const int stop = cursor_.row < bottom_ ? bottom_ - 1 : Extent().rows - 1;
    MoveTo(std::min(stop, cursor_.row + count) - Top(), ColumnForHost());
}

void Screen::MoveLeft(int count)
{
    CollapsePendingWrap();
    cursor_.col = std::max(cursor_.col >= left_ ? left_ : 0, cursor_.col - count);
    KeepInSight();
}

void Screen::MoveRight(int count)
{
    CollapsePendingWrap();
    cursor_.col = std::min(Limit() - 1, cursor_.col + count);
    KeepInSight();
}

void Screen::CarriageReturn()
{
    CollapsePendingWrap();
    cursor_.col = LineStart();
    KeepInSight();
}

void Screen::Backspace() { MoveLeft(1); }

void Screen::Index()
{
    CollapsePendingWrap();
    if (cursor_.row == bottom_ - 1) {
        if (InSideMargins())
            ScrollUp(1);
    } else if (cursor_.row < Extent().rows - 1) {
        ++cursor_.row;
    }
    cursor_.col = std::min(cursor_.col, Columns() - 1);
    KeepInSight();
}

void Screen::ReverseIndex()
{
    CollapsePendingWrap();
    if (cursor_.row == top_) {
        if (InSideMargins())
            ScrollDown(1);
    } else if (cursor_.row > 0) {
        --cursor_.row;
    }
    cursor_.col = std::min(cursor_.col, Columns() - 1);
    KeepInSight();
}

void Screen::LineFeed()
{
    if (watcher_ != nullptr)
        watcher_->LineLeft(cursor_.row);
    Index();
}

void Screen::SaveCursor()
{
    cursor_.origin = modes_.Has(Mode::Origin);
    cursor_.autoWrap = modes_.Has(Mode::AutoWrap);
    cursor_.page = active_; // DEC STD 070
    Saved() = cursor_;
}

void Screen::RestoreCursor() { PutCursor(CursorState(Saved())); }

void Screen::PutCursor(const CursorState& state)
{
    cursor_ = state;
    GoToPage(state.page);
    penChanged_ = true;
    modes_.Set(Mode::Origin, cursor_.origin);
    modes_.Set(Mode::AutoWrap, cursor_.autoWrap);
    cursor_.row = std::clamp(cursor_.row, Top(), Bottom() - 1);
    cursor_.col = std::clamp(cursor_.col, Left(), std::min(Right(), Columns()) - 1);
    KeepInSight();
}

CursorState Screen::Fresh() const
{
    CursorState state;
    state.charsets.g = {&AsciiSet(), &AsciiSet(), &UpperHalfSet(), &UpperHalfSet()};
    state.autoWrap = modes_.Has(Mode::AutoWrap);
    state.page = active_;
    return state;
}

// --- tabs

void Screen::Tab(int count)
{
    const int last = Limit() - 1;
    int col = cursor_.col;
    while (count-- > 0 && col < last)
        do
            ++col;
        while (col < last && !tabs_[size_t(col)]);
    if (col != cursor_.col) // at the last column a wrap stays pending
        CollapsePendingWrap();
    cursor_.col = col;
}

void Screen::BackTab(int count)
{
    CollapsePendingWrap();
    while (count-- > 0 && cursor_.col > Left())
        do
            --cursor_.col;
        while (cursor_.col > Left() && !tabs_[size_t(cursor_.col)]);
}

void Screen::SetTab() { tabs_[size_t(cursor_.col)] = true; }

void Screen::ClearTab() { tabs_[size_t(cursor_.col)] = false; }

void Screen::ClearTabs() { tabs_.assign(tabs_.size(), false); }

void Screen::ResetTabs()
{
    tabs_.assign(size_t(Extent().cols), false);
    for (size_t col = 0; col < tabs_.size(); col += kTabWidth)
        tabs_[col] = true;
}

std::vector<int> Screen::TabStops() const
{
    std::vector<int> cols;
    for (int col = 0; col < Extent().cols; ++col)
        if (tabs_[size_t(col)])
            cols.push_back(col);
    return cols;
}

void Screen::SetTabStops(std::span<const int> cols)
{
    ClearTabs();
    for (const int col : cols)
        if (col >= 0 && col < Extent().cols)
            tabs_[size_t(col)] = true;
}

// --- margins and scrolling

void Screen::SetMargins(int top, int bottom)
{
    bottom = std::min(bottom, Extent().rows - 1);
    if (top < 0 || top >= bottom)
        return;
    top_ = top;
    bottom_ = bottom + 1;
    MoveTo(0, 0);
}

void Screen::ResetMargins()
{
    top_ = 0;
    bottom_ = Extent().rows;
    left_ = 0;
    right_ = Extent().cols;
}

void Screen::PushToHistory(int count)
{
    for (int row = 0; row < count; ++row)
        history_.Push(P().At(row));
    historyAdded_ += count;
}

void Screen::ScrollUp(int count)
{
    count = std::min(count, bottom_ - top_);
    if (top_ == 0 && page_ == main_.get() && !IsNarrowed())
        PushToHistory(count);
    MoveLinesUp(top_, bottom_, count);
}

void Screen::ScrollDown(int count) { MoveLinesDown(top_, bottom_, count); }

int Screen::TakeHistoryAdded() { return std::exchange(historyAdded_, 0); }

// --- editing and erasing

void Screen::InsertLines(int count)
{
    if (!InMargins())
        return;
    MoveLinesDown(cursor_.row, bottom_, count);
    CarriageReturn();
}

void Screen::DeleteLines(int count)
{
    if (!InMargins())
        return;
    MoveLinesUp(cursor_.row, bottom_, count);
    CarriageReturn();
}

void Screen::InsertCharacters(int count)
{
    CollapsePendingWrap();
    if (InSideMargins())
        P().Insert(cursor_.row, cursor_.col, count, Limit(), BlankId());
}

void Screen::DeleteCharacters(int count)
{
    CollapsePendingWrap();
    if (InSideMargins())
        P().Delete(cursor_.row, cursor_.col, count, Limit(), BlankId());
}

void Screen::EraseCharacters(int count)
{
    CollapsePendingWrap();
    EraseSpan(cursor_.row, cursor_.col, std::min(Columns(), cursor_.col + count), Selective::No);
}

void Screen::EraseSpan(int row, int from, int to, Selective selective)
{
    if (selective == Selective::No) {
        P().Fill(row, from, to, BlankId());
        return;
    }
    for (int col = from; col < to && col < P().At(row).used; ++col) {
        const StyleId style = P().At(row).cells[col].style;
        if (!(styles_.At(style).attributes & Attr::Protected))
            P().Fill(row, col, col + 1, style); // attributes stay
    }
}

void Screen::EraseLine(Erase what, Selective selective)
{
    CollapsePendingWrap();
    const int from = what == Erase::ToEnd ? cursor_.col : 0;
    const int to = what == Erase::ToStart ? cursor_.col + 1 : Columns();
    EraseSpan(cursor_.row, from, to, selective);
}

void Screen::EraseDisplay(Erase what, Selective selective)
{
    CollapsePendingWrap();
    const int rows = Extent().rows;
    int from = what == Erase::ToEnd ? cursor_.row + 1 : 0;
    const int to = what == Erase::ToStart ? cursor_.row : rows;
    if (what == Erase::ToEnd && cursor_.col == 0)
        from = cursor_.row;
    else if (what != Erase::All)
        EraseLine(what, selective);
    if (selective == Selective::No) {
        P().FillRows(from, to, BlankId());
        return;
    }
    for (int row = from; row < to; ++row)
        EraseSpan(row, 0, P().Columns(row), Selective::Yes);
}

void Screen::Align()
{
    P().FillWith(U'E');
    ResetMargins();
    MoveTo(0, 0);
}

void Screen::SetLineSize(LineSize size)
{
    if (modes_.Has(Mode::SideMargins))
        return; // AllowSideMargins has made them all normal
    P().SetLineSize(cursor_.row, size);
    CollapsePendingWrap();
    cursor_.col = std::min(cursor_.col, Columns() - 1);
}

// --- whole screen

void Screen::SwitchPage(bool alternate)
{
    isAlternate_ = alternate;
    page_ = alternate ? alternate_.get() : &MemoryPage(active_);
    shownPage_ = alternate ? page_ : &MemoryPage(shown_);
    CollapsePendingWrap();
    cursor_.col = std::min(cursor_.col, Columns() - 1);
}

void Screen::ClearPage()
{
    EraseDisplay(Erase::All, Selective::No);
    MoveTo(0, 0);
}

void Screen::HardReset()
{
    onStatus_ = false;
    isAlternate_ = false;
    active_ = shown_ = 0;
    page_ = shownPage_ = main_.get();
    others_.clear();
    cursor_ = Fresh();
    saved_ = {cursor_, cursor_, cursor_};
    ClearStatusLine();
    penChanged_ = true;
    lastPoint_ = 0;
    ResetMargins();
    ResetTabs();
    ClearAlternate();
    ClearPage();
}

void Screen::SoftReset()
{
    SelectStatusLine(false);
    const int row = cursor_.row;
    const int col = cursor_.col;
    cursor_ = Fresh();
    Saved() = cursor_;
    cursor_.row = row;
    cursor_.col = col;
    penChanged_ = true;
    ResetMargins();
}

bool Screen::Resize(Size size, WrappedLines lines, std::span<Position> followed)
{
    if (size == ScreenExtent())
        return false;
    bool reflows = lines == WrappedLines::WrappedAnew && size.cols != ScreenExtent().cols;
    if (onStatus_) {
        OnScreen([&] { reflows = Resize(size, lines, followed); });
        return reflows;
    }
    for (Position& place : followed)
        place.row += windowTop_;
    CursorState bottom; // of the first page while the host works on another: nothing but blank rows is cut off
    for (bottom.row = main_->Extent().rows - 1; bottom.row > 0 && main_->IsBlank(bottom.row);)
        --bottom.row;
    CursorState& onFirst = active_ != 0 ? bottom : IsAlternate() ? saved_[0] : cursor_;
    if (reflows)
        ReflowMain(size, onFirst, followed);
    else
        ResizeMain(size, onFirst);
    ResizeRows(*alternate_, size, IsAlternate() ? cursor_ : saved_[1]);
    ResizeOthers(size);
    ResetMargins();
    const size_t known = tabs_.size();
    tabs_.resize(size_t(size.cols), false);
    for (size_t col = known; col < tabs_.size(); ++col)
        tabs_[col] = col % kTabWidth == 0;
    for (CursorState* state : {&cursor_, &saved_[0], &saved_[1]}) {
        state->row = std::clamp(state->row, 0, size.rows - 1);
        state->col = std::clamp(state->col, 0, size.cols - 1);
        state->pendingWrap &= reflows && state == &onFirst;
    }
    cursor_.col = std::min(cursor_.col, Columns() - 1);
    ShowRows(windowRows_);
    for (Position& place : followed)
        place.row -= windowTop_;
    return reflows;
}

// Rows that no longer fit: blank ones below the cursor first, then the oldest go up into the history, from where
// they come back when the screen grows.
void Screen::ResizeMain(Size size, CursorState& cursor)
{
    const int before = main_->Extent().rows;
    int spare = before - size.rows;
    for (int row = before - 1; spare > 0 && row > cursor.row && main_->IsBlank(row); --row)
        --spare;
    if (spare > 0) {
        for (int row = 0; row < spare; ++row)
            history_.Push(main_->At(row));
        historyAdded_ += spare;
        main_->RotateUp(0, before, spare, 0);
        cursor.row -= spare;
    }
    main_->Resize(size);
    const int back = std::min(size.rows - before, history_.Count());
    if (back <= 0)
        return;
    main_->RotateDown(0, size.rows, back, 0);
    for (int row = back - 1; row >= 0; --row) {
        main_->Assign(row, history_.At(history_.Count() - 1));
        history_.DropNewest();
    }
    cursor.row += back;
}

// Nothing is kept of rows that go; the program that owns the page draws anew. Only the cursor's line must stay in
// sight.
void Screen::ResizeRows(Page& page, Size size, CursorState& cursor)
{
    const int up = cursor.row - size.rows + 1;
    if (up > 0 && cursor.row < page.Extent().rows) {
        page.RotateUp(0, page.Extent().rows, up, 0);
        cursor.row -= up;
    }
    page.Resize(size);
}

const Row& Screen::RowAt(int row)
{
    if (row >= WindowRows())
        return status_->At(row - WindowRows());
    const int line = row + windowTop_;
    return line < 0 ? history_.At(history_.Count() + line) : shownPage_->At(line);
}

} // namespace kestrune::emu
