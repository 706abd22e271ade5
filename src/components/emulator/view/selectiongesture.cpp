#include "selectiongesture.h"

#include <algorithm>

namespace kestrune {

SelectionArea SelectionGesture::UnitAt(const TextPlace& at) const
{
    return unit_ == Unit::Line ? emulator_.LineAt(at.row) : emulator_.WordAt(at.cell, at.row);
}

void SelectionGesture::Press(const TextPlace& at, int clicks, bool block)
{
    unit_ = Unit((clicks - 1) % 3);
    block_ = block || emulator_.CopySelMode() == 1;
    anchor_ = at;
    pushedThen_ = Pushed();
    active_ = true;
    if (unit_ == Unit::Character) {
        emulator_.ClearSelection();
        return;
    }
    origin_ = UnitAt(at);
    emulator_.SetSelection(origin_);
}

void SelectionGesture::Extend(const TextPlace& at)
{
    if (!active_) { // Shift and click: from the nearer end of what is selected
        const auto selected = emulator_.SelectedArea();
        if (!selected) {
            Press(at, 1, false);
            return;
        }
        const bool before = std::pair(at.row, at.boundary) <= std::pair(selected->top, selected->left);
        unit_ = Unit::Character;
        block_ = selected->block;
        anchor_ = before ? TextPlace{selected->bottom, selected->right, selected->right + 1}
                         : TextPlace{selected->top, selected->left, selected->left};
        pushedThen_ = Pushed();
        active_ = true;
    }
    const int up = int(Pushed() - pushedThen_);
    if (unit_ != Unit::Character) {
        const SelectionArea here = UnitAt(at);
        SelectionArea area = origin_;
        area.top -= up;
        area.bottom -= up;
        if (std::pair(here.top, here.left) < std::pair(area.top, area.left)) {
            area.top = here.top;
            area.left = here.left;
        }
        if (std::pair(here.bottom, here.right) > std::pair(area.bottom, area.right)) {
            area.bottom = here.bottom;
            area.right = here.right;
        }
        emulator_.SetSelection(area);
        return;
    }
    auto from = std::pair(anchor_.row - up, anchor_.boundary);
    auto to = std::pair(at.row, at.boundary);
    if (to < from)
        std::swap(from, to);
    SelectionArea area{from.second, from.first, to.second - 1, to.first, block_};
    if (block_) {
        area.left = std::min(from.second, to.second);
        area.right = std::max(from.second, to.second) - 1;
    }
    const bool nothing = block_ ? area.right < area.left : from == to;
    if (nothing)
        emulator_.ClearSelection();
    else
        emulator_.SetSelection(area);
}

void SelectionGesture::Release()
{
    if (std::exchange(active_, false))
        emulator_.AnnounceSelection();
}

} // namespace kestrune
