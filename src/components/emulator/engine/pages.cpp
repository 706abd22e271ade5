// What the host works on besides the one screen: further pages of memory, and the status line below.

#include "screen.h"

#include <algorithm>
#include <utility>

namespace kestrune::emu {

// --- pages of memory

Page& Screen::MemoryPage(int number)
{
    if (number == 0)
        return *main_;
    if (others_.size() < size_t(number))
        others_.resize(size_t(number));
    std::unique_ptr<Page>& page = others_[size_t(number) - 1];
    if (page == nullptr)
        page = std::make_unique<Page>(ScreenExtent(), clock_);
    return *page;
}

const Page* Screen::UsedPage(int page) const
{
    if (page == 0)
        return main_.get();
    return size_t(page) <= others_.size() ? others_[size_t(page) - 1].get() : nullptr;
}

void Screen::SetPageCount(int count)
{
    count = std::clamp(count, 1, MostPages);
    if (count == pageCount_)
        return;
    pageCount_ = count;
    const int last = pageCount_ - 1;
    OnScreen([&] {
        active_ = std::min(active_, last);
        shown_ = std::min(shown_, last);
        SwitchPage(isAlternate_);
    });
    others_.resize(std::min(others_.size(), size_t(last)));
}

void Screen::GoToPage(int page)
{
    page = std::clamp(page, 0, pageCount_ - 1);
    if (isAlternate_ || onStatus_ || page == active_)
        return;
    CollapsePendingWrap();
    active_ = page;
    page_ = &MemoryPage(page);
    cursor_.col = std::min(cursor_.col, Columns() - 1);
    if (modes_.Has(Mode::PageCoupling))
        ShowActivePage();
    KeepInSight();
}

void Screen::OnPage(int page, const std::function<void()>& act)
{
    const bool wasOnStatus = onStatus_;
    SelectStatusLine(false);
    Page* const worked = std::exchange(page_, &MemoryPage(std::clamp(page, 0, pageCount_ - 1)));
    Page* const seen = std::exchange(shownPage_, page_);
    act();
    page_ = worked;
    shownPage_ = seen;
    SelectStatusLine(wasOnStatus);
}

void Screen::ShowActivePage()
{
    shown_ = active_;
    if (!isAlternate_)
        shownPage_ = &MemoryPage(shown_);
}

void Screen::ResizeOthers(Size size)
{
    for (size_t i = 0; i < others_.size(); ++i) {
        if (others_[i] == nullptr)
            continue;
        CursorState nowhere;
        const bool isActive = int(i) + 1 == active_ && !isAlternate_;
        ResizeRows(*others_[i], size, isActive ? cursor_ : nowhere);
    }
    if (status_ != nullptr)
        status_->Resize({size.cols, status_->Extent().rows});
    aside_.cursor.col = std::min(aside_.cursor.col, size.cols - 1);
    aside_.cursor.pendingWrap = false;
    aside_.margins.left = 0;
    aside_.margins.right = size.cols;
}

// --- the part of a page that is shown

void Screen::ShowRows(int rows)
{
    windowRows_ = rows < ScreenExtent().rows ? rows : 0;
    Pan(0);
    KeepInSight();
}

void Screen::Pan(int lines)
{
    const int before = windowTop_;
    windowTop_ = std::clamp(windowTop_ + lines, 0, ScreenExtent().rows - WindowRows());
    historyAdded_ += windowTop_ - before; // what is above the window is where the history begins for those who look
}

void Screen::FollowCursor()
{
    if (onStatus_ || page_ != shownPage_ || !modes_.Has(Mode::VerticalCoupling))
        return;
    if (cursor_.row < windowTop_)
        Pan(cursor_.row - windowTop_);
    else if (cursor_.row >= windowTop_ + WindowRows())
        Pan(cursor_.row - WindowRows() + 1 - windowTop_);
}

void Screen::AppendRows(int rows)
{
    if (rows <= ScreenExtent().rows)
        return;
    OnScreen([&] {
        const Size size{ScreenExtent().cols, rows};
        for (Page* page : {main_.get(), alternate_.get()})
            page->Resize(size);
        for (const auto& page : others_)
            if (page != nullptr)
                page->Resize(size);
        ResetMargins();
    });
}

// --- the status line

void Screen::SetStatusRows(int rows)
{
    if (rows == StatusRows())
        return;
    SelectStatusLine(false);
    status_ = rows > 0 ? std::make_unique<Page>(Size{ScreenExtent().cols, rows}, clock_) : nullptr;
    ClearStatusLine();
}

void Screen::ClearStatusLine()
{
    SelectStatusLine(false);
    aside_ = {Fresh(), {0, 0, StatusRows(), ScreenExtent().cols}};
    saved_[2] = aside_.cursor;
    if (status_ != nullptr)
        status_->FillRows(0, StatusRows(), 0);
}

void Screen::SelectStatusLine(bool on)
{
    if (on == onStatus_ || (on && status_ == nullptr))
        return;
    onStatus_ = on;
    const Place left{cursor_, {top_, left_, bottom_, right_}};
    const Place taken = std::exchange(aside_, left);
    cursor_ = taken.cursor;
    top_ = taken.margins.top;
    left_ = taken.margins.left;
    bottom_ = taken.margins.bottom;
    right_ = taken.margins.right;
    penChanged_ = true;
    page_ = on ? status_.get() : isAlternate_ ? alternate_.get() : &MemoryPage(active_);
}

void Screen::PutIndicator(std::u32string_view text)
{
    if (status_ == nullptr)
        return;
    Style style;
    style.attributes = Attr::Reverse;
    const StyleId id = StyleIdFor(style);
    status_->Fill(0, 0, status_->Extent().cols, id);
    int col = 0;
    for (const char32_t point : text.substr(0, size_t(status_->Extent().cols)))
        status_->PutPoint(0, col++, point, 1, id);
}

} // namespace kestrune::emu
