#pragma once

// A selection that stays on its text while the screen scrolls, and goes when what it covers is overwritten.

#include <emulator/control/selectionarea.h>
#include <emulator/engine/terminal.h>

#include <optional>
#include <vector>

namespace kestrune {

class HeldSelection
{
public:
    void Set(const emu::Terminal& screen, const SelectionArea& area);
    void Clear() { held_ = false; }
    // Where it stands now, clipped to what the history still has; nothing: none.
    std::optional<SelectionArea> Area(const emu::Terminal& screen) const;
    // After the screen has changed. True: the selection is gone because its text is.
    bool Check(const emu::Terminal& screen);

private:
    struct Mark // of a row that stood on the screen, where the host can write
    {
        uint64_t generation = 0;
        size_t content = 0;
    };

    bool held_ = false;
    SelectionArea area_;  // rows relative to base_
    uint64_t base_ = 0;   // lines in the history when it was set
    int firstMarked_ = 0; // row of marks_[0], relative to base_
    std::vector<Mark> marks_;
};

} // namespace kestrune
