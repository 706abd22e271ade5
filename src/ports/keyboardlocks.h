#pragma once

// The keyboard's lamps, as the platform tells them.

#include <functional>

namespace kestrune {

struct KeyboardLocks
{
    bool caps = false;
    bool num = false;
    bool scroll = false;

    bool operator==(const KeyboardLocks&) const = default;
};

using ReadKeyboardLocks = std::function<KeyboardLocks()>; // as they are now; empty: nobody can tell

} // namespace kestrune
