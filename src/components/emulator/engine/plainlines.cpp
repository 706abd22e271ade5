// Plain lines that come faster than anybody can read: all but the last screen of them go straight into the history,
// where they would have come to stand one line feed after the other.

#include "runs.h"
#include "screen.h"

#include <algorithm>

namespace kestrune::emu {

// The host writes whole lines at the bottom of the first page, and nothing gives them another look or another way.
bool Screen::PassesLinesOn()
{
    const int rows = page_->Extent().rows;
    const Row& row = page_->At(cursor_.row);
    return page_ == main_.get() && watcher_ == nullptr && rows > 1 && top_ == 0 && bottom_ == rows && !IsNarrowed() &&
           !modes_.Has(Mode::Insert) && cursor_.row == rows - 1 && cursor_.col == 0 && !cursor_.pendingWrap &&
           row.used == 0 && row.size == LineSize::Normal && PenId() == 0 && BlankId() == 0;
}

LinesTaken Screen::TakeLines(std::span<const uint8_t> bytes)
{
    if (!PassesLinesOn())
        return {0, 0};
    const auto columns = page_->Extent().cols;
    const auto kept = size_t(page_->Extent().rows) - 1; // the lines that will stand on the screen
    newestLines_.resize(kept);
    const uint8_t* const end = bytes.data() + bytes.size();
    const uint8_t* taken = bytes.data();
    const uint8_t* at = taken;
    for (size_t count = 0;; ++count) {
        const uint8_t* const line = at;
        at = GraphicRunEnd(line, end);
        if (at - line >= columns || end - at < 2 || at[0] != '\r' || at[1] != '\n') // a full line may wrap at once
            break;
        auto& slot = newestLines_[count % kept];
        if (count == kept) { // now the screen as it was has to go
            ScrollUp(int(kept));
            cursor_.row = 0;
        }
        if (count >= kept) {
            history_.PushText(slot);
            ++historyAdded_;
            if (!slot.empty())
                lastPoint_ = slot.back();
            taken = slot.data() + slot.size() + 2;
        }
        slot = {line, at};
        at += 2;
    }
    return {size_t(taken - bytes.data()), size_t(at - bytes.data())};
}

} // namespace kestrune::emu
