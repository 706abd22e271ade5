#pragma once

// What a click on text of the screen types, by the mouse table of the control.
//
// A row of the table has a button (1 left, 2 right, 4 middle), a pattern, and what a click and a double click on
// text that matches it send; an empty text sends nothing and leaves the click to the view. The pattern is a regular
// expression (Perl's notation, upper and lower case apart) that is looked for in one row of the screen; "$0" to
// "$9" in what is sent stand for the match and its groups, "$$" for a dollar. The first row of the table that
// answers counts; a pattern that is no regular expression never does. A row for "button" 3 is about a menu: the text
// for a click is the band of the menu bar that the right button opens on text that matches.

#include <emulator/control/ctlemulator.h>

#include <optional>

namespace kestrune {

struct MouseClick
{
    int button = 1;
    bool twice = false;
    int col = 0;
    int row = 0; // as GetText counts them
};

// Nothing: no row of the table answers, or the setting MouseEnable is off.
std::optional<QString> MouseReply(const ctlEmulator& emulator, const MouseClick& click);

inline constexpr int MenuButton = 3; // of a MouseClick: the answer is the name of a band

} // namespace kestrune
