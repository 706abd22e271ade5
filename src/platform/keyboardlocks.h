#pragma once

// The keyboard's lamps. From the display where there is an X server, else from the machine's own lamps.

#include <ports/keyboardlocks.h>

namespace kestrune {

// A reader that keeps its connection to the display open. One that finds neither says that all are off.
ReadKeyboardLocks KeyboardLockReader();

// Of lamps as the kernel shows them below `folder`, one folder each: "input3::capslock/brightness".
KeyboardLocks LampsBelow(const char* folder);

} // namespace kestrune
