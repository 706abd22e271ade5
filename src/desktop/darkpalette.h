#pragma once

// Dark colours for the windows of a desktop whose own style has none to give.

#include <QPalette>

namespace kestrune {

QPalette DarkPalette();

// Lets all windows follow the user's choice. A style that is dark by itself is left as it is.
class DarkWindows
{
public:
    void Follow(bool dark);

private:
    bool areOurs_ = false;
};

} // namespace kestrune
