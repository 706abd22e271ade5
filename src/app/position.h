#pragma once

// Where the main window was: read at start and corrected to a screen that exists, stored when it closes. Pixels.

#include <automation/frame.h>
#include <settings/globals.h>

#include <optional>

namespace kestrune {

// As stored; nothing where a value is missing.
struct StoredPosition
{
    std::optional<int> left, top, width, height;
    int state = 0;
};

// screen: the primary one; desktop: all screens together. shownAs: the state that the start asked for, which
// overrides the stored one.
WindowPlace FramePosition(const StoredPosition& stored, const ScreenArea& screen, const ScreenArea& desktop,
                          std::optional<int> shownAs = {});

WindowPlace PosFormGet(const GlobalValues& values, const FrameWindow& frame, std::optional<int> shownAs = {});
void PosFormSave(GlobalValues& values, const FrameWindow& frame, bool saveState = true);

} // namespace kestrune
