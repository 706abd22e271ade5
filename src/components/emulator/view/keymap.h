#pragma once

// From the toolkit's keys to a terminal's, and to the key codes under which users give keys a text.

#include <emulator/engine/keys.h>

#include <QKeyEvent>

#include <optional>

namespace kestrune {

struct MappedKey
{
    emu::KeyPress press;
    int code = 0; // virtual key plus 1000 for Shift, 2000 for Control, 4000 for Alt; 0: it has none
};

// Nothing: the key is a modifier alone, or types nothing.
std::optional<MappedKey> MapKey(const QKeyEvent& event);

uint8_t MapModifiers(Qt::KeyboardModifiers modifiers);

} // namespace kestrune
