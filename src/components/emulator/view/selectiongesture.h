#pragma once

// What presses and moves of the mouse select: characters, words on a double click, lines on a triple click, a
// block with Alt; Shift extends. The place where it began stays on its text while output scrolls the screen.

#include <emulator/control/ctlemulator.h>

namespace kestrune {

// A place between characters: boundary 0 is left of the first column. cell is the column that was hit.
struct TextPlace
{
    int row = 0;
    int cell = 0;
    int boundary = 0;
};

class SelectionGesture
{
public:
    explicit SelectionGesture(ctlEmulator& emulator) : emulator_(emulator) {}

    void Press(const TextPlace& at, int clicks, bool block); // clicks: 1, 2, 3 and round again
    void Extend(const TextPlace& at);                        // moved with the button down, or clicked with Shift
    void Release();
    bool IsActive() const { return active_; }

private:
    enum class Unit
    {
        Character,
        Word,
        Line
    };

    int64_t Pushed() const { return int64_t(emulator_.Screen().HistoryPushed()); }
    SelectionArea UnitAt(const TextPlace& at) const;

    ctlEmulator& emulator_;
    Unit unit_ = Unit::Character;
    bool block_ = false;
    bool active_ = false;
    TextPlace anchor_;     // its row as it was then
    SelectionArea origin_; // the word or line that was hit first
    int64_t pushedThen_ = 0;
};

} // namespace kestrune
