#include "heldselection.h"

#include "screentext.h"

#include <algorithm>
#include <functional>
#include <string>

namespace kestrune {

namespace {

size_t ContentOf(const emu::Terminal& screen, int row, ColumnSpan columns)
{
    return std::hash<std::string>{}(screen.TextOf(row, columns.first, columns.last - columns.first));
}

} // namespace

void HeldSelection::Set(const emu::Terminal& screen, const SelectionArea& area)
{
    held_ = true;
    area_ = area;
    base_ = screen.HistoryPushed();
    const auto [cols, rows] = screen.ScreenSize();
    firstMarked_ = std::max(area.top, 0);
    marks_.clear();
    for (int row = firstMarked_; row <= std::min(area.bottom, rows - 1); ++row)
        marks_.push_back({screen.Row(row).generation, ContentOf(screen, row, ColumnsOf(area, row, cols))});
}

std::optional<SelectionArea> HeldSelection::Area(const emu::Terminal& screen) const
{
    if (!held_)
        return std::nullopt;
    const auto up = int64_t(screen.HistoryPushed() - base_); // rows that it has moved up
    const int64_t oldest = -int64_t(screen.HistoryCount());
    SelectionArea area = area_;
    if (area_.bottom - up < oldest)
        return std::nullopt;
    area.bottom = int(area_.bottom - up);
    if (area_.top - up < oldest) {
        area.top = int(oldest);
        area.left = area.block ? area.left : 0;
    } else {
        area.top = int(area_.top - up);
    }
    return area;
}

bool HeldSelection::Check(const emu::Terminal& screen)
{
    if (!held_)
        return false;
    const auto up = int64_t(screen.HistoryPushed() - base_);
    const auto [cols, rows] = screen.ScreenSize();
    bool touched = !Area(screen);
    for (size_t i = 0; i < marks_.size() && !touched; ++i) {
        const int then = firstMarked_ + int(i);
        const int64_t now = then - up;
        if (now < 0)
            continue; // in the history nothing changes any more
        if (now >= rows) {
            touched = true; // cut off by a smaller screen
            break;
        }
        const uint64_t generation = screen.Row(int(now)).generation;
        if (generation == marks_[i].generation)
            continue;
        touched = ContentOf(screen, int(now), ColumnsOf(area_, then, cols)) != marks_[i].content;
        marks_[i].generation = generation;
    }
    if (touched)
        held_ = false;
    return touched;
}

} // namespace kestrune
