#pragma once

// Key tables that several keyboards share. Keys are those of a PC keyboard in the places of the original's.

#include <emulator/engine/personality.h>

#include <array>
#include <span>

namespace kestrune::emu::types {

using enum Key;
using enum KeyWhen;

inline constexpr KeyRow kPlainKeys[] = {
    {Enter, 0, Always, "\r"},  {PadEnter, 0, Always, "\r"}, {Tab, 0, Always, "\t"},    {Escape, 0, Always, "\x1b"},
    {Pad0, 0, Always, "0"},    {Pad1, 0, Always, "1"},      {Pad2, 0, Always, "2"},    {Pad3, 0, Always, "3"},
    {Pad4, 0, Always, "4"},    {Pad5, 0, Always, "5"},      {Pad6, 0, Always, "6"},    {Pad7, 0, Always, "7"},
    {Pad8, 0, Always, "8"},    {Pad9, 0, Always, "9"},      {PadPlus, 0, Always, "+"}, {PadMinus, 0, Always, "-"},
    {PadStar, 0, Always, "*"}, {PadSlash, 0, Always, "/"},  {PadDot, 0, Always, "."},  {PadComma, 0, Always, ","},
};

// Function keys from F6 on, as DEC numbers them.
inline constexpr KeyRow kFunctionKeys[] = {
    {F6, 0, Always, "\x1b[17~"},  {F7, 0, Always, "\x1b[18~"},  {F8, 0, Always, "\x1b[19~"},
    {F9, 0, Always, "\x1b[20~"},  {F10, 0, Always, "\x1b[21~"}, {F11, 0, Always, "\x1b[23~"},
    {F12, 0, Always, "\x1b[24~"}, {F13, 0, Always, "\x1b[25~"}, {F14, 0, Always, "\x1b[26~"},
    {F15, 0, Always, "\x1b[28~"}, {F16, 0, Always, "\x1b[29~"}, {F17, 0, Always, "\x1b[31~"},
    {F18, 0, Always, "\x1b[32~"}, {F19, 0, Always, "\x1b[33~"}, {F20, 0, Always, "\x1b[34~"},
};

// The same bytes on Shift with F1 and the keys after it.
template <size_t N>
consteval std::array<KeyRow, N> OnShift(std::span<const KeyRow, N> rows)
{
    std::array<KeyRow, N> shifted{};
    for (size_t i = 0; i < N; ++i)
        shifted[i] = {Key(size_t(F1) + i), Modifier::Shift, Always, rows[i].bytes};
    return shifted;
}

inline constexpr KeyRow kDecCursorKeys[] = {
    {Up, 0, ApplicationCursor, "\x1bOA"},
    {Down, 0, ApplicationCursor, "\x1bOB"},
    {Right, 0, ApplicationCursor, "\x1bOC"},
    {Left, 0, ApplicationCursor, "\x1bOD"},
    {Up, 0, Always, "\x1b[A"},
    {Down, 0, Always, "\x1b[B"},
    {Right, 0, Always, "\x1b[C"},
    {Left, 0, Always, "\x1b[D"},
};

// The application forms of the keypad: ESC O or ESC ?, then a letter. PC keyboards have no comma: it is Shift with
// plus.
struct ApplicationPad
{
    struct Letter
    {
        Key key;
        uint8_t modifiers;
        char final;
    };
    static constexpr Letter kLetters[] = {
        {Pad0, 0, 'p'},    {Pad1, 0, 'q'},     {Pad2, 0, 'r'},
        {Pad3, 0, 's'},    {Pad4, 0, 't'},     {Pad5, 0, 'u'},
        {Pad6, 0, 'v'},    {Pad7, 0, 'w'},     {Pad8, 0, 'x'},
        {Pad9, 0, 'y'},    {PadMinus, 0, 'm'}, {PadComma, 0, 'l'},
        {PadDot, 0, 'n'},  {PadEnter, 0, 'M'}, {PadPlus, 0, 'k'},
        {PadStar, 0, 'j'}, {PadSlash, 0, 'o'}, {PadPlus, Modifier::Shift, 'l'},
    };

    consteval explicit ApplicationPad(char second)
    {
        for (size_t i = 0; i < std::size(kLetters); ++i) {
            bytes[i] = {'\x1b', second, kLetters[i].final};
            rows[i] = {kLetters[i].key, kLetters[i].modifiers, ApplicationKeypad, {bytes[i].data(), bytes[i].size()}};
        }
    }
    ApplicationPad(const ApplicationPad&) = delete; // the rows look into its own bytes
    ApplicationPad& operator=(const ApplicationPad&) = delete;

    std::array<std::array<char, 3>, std::size(kLetters)> bytes{};
    std::array<KeyRow, std::size(kLetters)> rows{};
};
inline constexpr ApplicationPad kDecPad{'O'};
inline constexpr ApplicationPad kVt52Pad{'?'};

inline constexpr KeyRow kPfKeys[] = {
    {PadPf1, 0, Always, "\x1bOP"}, {PadPf2, 0, Always, "\x1bOQ"}, {PadPf3, 0, Always, "\x1bOR"},
    {PadPf4, 0, Always, "\x1bOS"}, {F1, 0, Always, "\x1bOP"},     {F2, 0, Always, "\x1bOQ"},
    {F3, 0, Always, "\x1bOR"},     {F4, 0, Always, "\x1bOS"},
};

// Home and End take the places of Find and Select.
inline constexpr KeyRow kDecEditingKeys[] = {
    {Home, 0, Always, "\x1b[1~"},   {Insert, 0, Always, "\x1b[2~"},   {End, 0, Always, "\x1b[4~"},
    {PageUp, 0, Always, "\x1b[5~"}, {PageDown, 0, Always, "\x1b[6~"},
};

} // namespace kestrune::emu::types
