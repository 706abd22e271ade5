#pragma once

// The DEC types and the typewriter: what each keyboard sends and what each model answers, after the programmer
// references of the models.

#include "sharedkeys.h"

namespace kestrune::emu::types {

inline constexpr KeyRow kVt100Keys[] = {
    {Delete, 0, Always, "\x7f"},
    {F11, 0, Always, "\x1b"},
    {F12, 0, Always, "\b"},
    {F13, 0, Always, "\n"},
};

// F11 to F20 stand also on Shift with F1 to F10, for keyboards that end at F12.
inline constexpr auto kShiftedDecKeys = OnShift<10>(std::span(kFunctionKeys).subspan<5, 10>());

inline constexpr KeyRow kVt220Keys[] = {
    {Delete, 0, Always, "\x1b[3~"},
    {Tab, Modifier::Shift, Always, "\x1b[Z"},
    {F5, 0, Always, "\x1b[15~"},
};

inline constexpr KeyRow kVt52Keys[] = {
    {Up, 0, Always,
     "\x1b"
     "A"},
    {Down, 0, Always,
     "\x1b"
     "B"},
    {Right, 0, Always,
     "\x1b"
     "C"},
    {Left, 0, Always,
     "\x1b"
     "D"},
    {Home, 0, Always, "\x1bH"},
    {Delete, 0, Always, "\x7f"},
    {F1, 0, Always, "\x1bP"},
    {F2, 0, Always, "\x1bQ"},
    {F3, 0, Always, "\x1bR"},
    {F4, 0, Always, "\x1bS"},
    {PadPf1, 0, Always, "\x1bP"},
    {PadPf2, 0, Always, "\x1bQ"},
    {PadPf3, 0, Always, "\x1bR"},
    {PadPf4, 0, Always, "\x1bS"},
};

inline constexpr KeyTable kTtyKeyboard[] = {kPlainKeys};
inline constexpr KeyTable kVt52Keyboard[] = {kVt52Keys, kVt52Pad.rows, kPlainKeys};
inline constexpr KeyTable kVt100Keyboard[] = {kDecCursorKeys,  kDecPad.rows, kPfKeys,
                                              kDecEditingKeys, kVt100Keys,   kPlainKeys};
inline constexpr KeyTable kVt220Keyboard[] = {
    kDecCursorKeys, kDecPad.rows, kPfKeys, kDecEditingKeys, kVt220Keys, kFunctionKeys, kShiftedDecKeys, kPlainKeys,
};
inline constexpr KeyRow kLanparKeys[] = {{Home, 0, Always, "\x1b[H"}};
inline constexpr KeyTable kLanparKeyboard[] = {
    kLanparKeys, kDecCursorKeys, kDecPad.rows,    kPfKeys,    kDecEditingKeys,
    kVt220Keys,  kFunctionKeys,  kShiftedDecKeys, kPlainKeys,
};

// --- the types

inline constexpr Dialects kSpeaksVt100 = Dialect::Common | Dialect::Vt100 | Dialect::Extension;
inline constexpr Dialects kSpeaksVt220 = kSpeaksVt100 | Dialect::Vt220;
inline constexpr Dialects kSpeaksVt320 = kSpeaksVt220 | Dialect::Vt320;
inline constexpr Dialects kSpeaksVt420 = kSpeaksVt320 | Dialect::Vt420;

inline constexpr Personality kTty{
    .number = 0,
    .name = "TTY",
    .hostName = "tty",
    .dialects = Dialect::Typewriter,
    .keys = kTtyKeyboard,
};

inline constexpr Personality kVt52{
    .number = 7,
    .name = "VT52",
    .hostName = "vt52",
    .dialects = Dialect::Vt52,
    .wrap = WrapStyle::Never,
    .vt52Identity = "\x1b/K", // no copier
    .keys = kVt52Keyboard,
};

inline constexpr Personality kVt100{
    .number = 12,
    .name = "VT100",
    .hostName = "vt100",
    .dialects = kSpeaksVt100,
    .level = 1,
    .primaryAttributes = "?1;2c", // advanced video
    .vt52Identity = "\x1b/Z",
    .keys = kVt100Keyboard,
    .vt52Keys = kVt52Keyboard,
};

// The extensions claimed are those that stand behind them: 1 132 columns, 2 printer port, 6 selective erase, 7 soft
// characters, 8 user-defined keys, 9 national sets, 15 technical set, 21 columns that scroll, 28 rectangles.
inline constexpr Personality kVt220 = [] {
    Personality type = kVt100;
    type.number = 8;
    type.name = "VT220";
    type.hostName = "vt220";
    type.dialects = kSpeaksVt220;
    type.level = 2;
    type.eightBitControls = true;
    type.backspaceSendsDel = true;
    type.primaryAttributes = "?62;1;2;6;7;8;9c";
    type.secondaryAttributes = ">1;10;0c";
    type.keys = kVt220Keyboard;
    type.level1Keys = kVt100Keyboard;
    return type;
}();

inline constexpr Personality kVt320 = [] {
    Personality type = kVt220;
    type.number = 13;
    type.name = "VT320";
    type.hostName = "vt320";
    type.dialects = kSpeaksVt320;
    type.level = 3;
    type.primaryAttributes = "?63;1;2;6;7;8;9;15c";
    type.secondaryAttributes = ">24;10;0c";
    return type;
}();

inline constexpr Personality kVt420 = [] {
    Personality type = kVt320;
    type.number = 14;
    type.name = "VT420";
    type.hostName = "vt420";
    type.dialects = kSpeaksVt420;
    type.level = 4;
    type.primaryAttributes = "?64;1;2;6;7;8;9;15;21;28c";
    type.secondaryAttributes = ">41;10;0c";
    type.tertiaryAttributes = "!|00000000";
    return type;
}();

// Lanpar's VT220 compatible. What is known to differ is the Home key.
inline constexpr Personality kLanpar = [] {
    Personality type = kVt220;
    type.number = 77;
    type.name = "VT220 Lanpar";
    type.keys = kLanparKeyboard;
    return type;
}();

} // namespace kestrune::emu::types
