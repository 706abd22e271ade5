#pragma once

// Keys and mouse actions as a terminal knows them, with no toolkit.

#include <cstdint>
#include <string>

namespace kestrune::emu {

enum class Key : uint8_t
{
    Text, // see KeyPress::text
    Enter,
    Backspace,
    Tab,
    Escape,
    Up,
    Down,
    Right,
    Left,
    Home,
    End,
    PageUp,
    PageDown,
    Insert,
    Delete,
    F1,
    F2,
    F3,
    F4,
    F5,
    F6,
    F7,
    F8,
    F9,
    F10,
    F11,
    F12,
    F13,
    F14,
    F15,
    F16,
    F17,
    F18,
    F19,
    F20,
    Pad0,
    Pad1,
    Pad2,
    Pad3,
    Pad4,
    Pad5,
    Pad6,
    Pad7,
    Pad8,
    Pad9,
    PadEnter,
    PadPlus,
    PadMinus,
    PadStar,
    PadSlash,
    PadDot,
    PadComma,
    PadPf1,
    PadPf2,
    PadPf3,
    PadPf4,
    Break,
    Pause,
    Menu,
};

namespace Modifier {
inline constexpr uint8_t None = 0, Shift = 1, Alt = 2, Control = 4, Meta = 8;
}

struct KeyPress
{
    Key key = Key::Text;
    uint8_t modifiers = 0; // Modifier bits
    std::string text;      // UTF-8, for Key::Text: what the key types without Control and Alt
};

enum class MouseButton : uint8_t
{
    Left,
    Middle,
    Right,
    WheelUp,
    WheelDown,
    None
};
enum class MouseKind : uint8_t
{
    Press,
    Release,
    Move
};

struct MouseAction
{
    MouseKind kind = MouseKind::Press;
    MouseButton button = MouseButton::Left; // Move: the button held, None if none
    uint8_t modifiers = 0;
    int col = 0; // from 0
    int row = 0;
};

} // namespace kestrune::emu
