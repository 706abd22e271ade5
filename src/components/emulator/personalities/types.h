#pragma once

// The terminal types themselves: what each keyboard sends and what each model answers. The DEC tables follow the
// programmer references of the models; keys are those of a PC keyboard in the places of the LK201's. The Linux
// table follows console_codes(4).

#include <emulator/engine/personality.h>

namespace kestrune::emu::types {

using enum Key;
using enum KeyWhen;

// --- what all keyboards share

inline constexpr KeyRow kPlainKeys[] = {
    {Enter, 0, Always, "\r"},  {PadEnter, 0, Always, "\r"}, {Tab, 0, Always, "\t"},    {Escape, 0, Always, "\x1b"},
    {Pad0, 0, Always, "0"},    {Pad1, 0, Always, "1"},      {Pad2, 0, Always, "2"},    {Pad3, 0, Always, "3"},
    {Pad4, 0, Always, "4"},    {Pad5, 0, Always, "5"},      {Pad6, 0, Always, "6"},    {Pad7, 0, Always, "7"},
    {Pad8, 0, Always, "8"},    {Pad9, 0, Always, "9"},      {PadPlus, 0, Always, "+"}, {PadMinus, 0, Always, "-"},
    {PadStar, 0, Always, "*"}, {PadSlash, 0, Always, "/"},  {PadDot, 0, Always, "."},  {PadComma, 0, Always, ","},
};

// --- DEC

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

inline constexpr KeyRow kDecKeypad[] = {
    {Pad0, 0, ApplicationKeypad, "\x1bOp"},
    {Pad1, 0, ApplicationKeypad, "\x1bOq"},
    {Pad2, 0, ApplicationKeypad, "\x1bOr"},
    {Pad3, 0, ApplicationKeypad, "\x1bOs"},
    {Pad4, 0, ApplicationKeypad, "\x1bOt"},
    {Pad5, 0, ApplicationKeypad, "\x1bOu"},
    {Pad6, 0, ApplicationKeypad, "\x1bOv"},
    {Pad7, 0, ApplicationKeypad, "\x1bOw"},
    {Pad8, 0, ApplicationKeypad, "\x1bOx"},
    {Pad9, 0, ApplicationKeypad, "\x1bOy"},
    {PadMinus, 0, ApplicationKeypad, "\x1bOm"},
    {PadComma, 0, ApplicationKeypad, "\x1bOl"},
    {PadDot, 0, ApplicationKeypad, "\x1bOn"},
    {PadEnter, 0, ApplicationKeypad, "\x1bOM"},
    {PadPlus, 0, ApplicationKeypad, "\x1bOk"},
    {PadStar, 0, ApplicationKeypad, "\x1bOj"},
    {PadSlash, 0, ApplicationKeypad, "\x1bOo"},
    {PadPlus, Modifier::Shift, ApplicationKeypad, "\x1bOl"}, // comma key
    {PadPf1, 0, Always, "\x1bOP"},
    {PadPf2, 0, Always, "\x1bOQ"},
    {PadPf3, 0, Always, "\x1bOR"},
    {PadPf4, 0, Always, "\x1bOS"},
    {F1, 0, Always, "\x1bOP"},
    {F2, 0, Always, "\x1bOQ"},
    {F3, 0, Always, "\x1bOR"},
    {F4, 0, Always, "\x1bOS"},
};

// Home and End take the places of Find and Select.
inline constexpr KeyRow kDecEditingKeys[] = {
    {Home, 0, Always, "\x1b[1~"},   {Insert, 0, Always, "\x1b[2~"},   {End, 0, Always, "\x1b[4~"},
    {PageUp, 0, Always, "\x1b[5~"}, {PageDown, 0, Always, "\x1b[6~"},
};

inline constexpr KeyRow kVt100Keys[] = {
    {Delete, 0, Always, "\x7f"},
    {F11, 0, Always, "\x1b"},
    {F12, 0, Always, "\b"},
};

// F11 to F20 stand also on Shift with F1 to F10, for keyboards that end at F12.
inline constexpr KeyRow kVt220Keys[] = {
    {Delete, 0, Always, "\x1b[3~"},
    {Tab, Modifier::Shift, Always, "\x1b[Z"},
    {F5, 0, Always, "\x1b[15~"},
    {F6, 0, Always, "\x1b[17~"},
    {F7, 0, Always, "\x1b[18~"},
    {F8, 0, Always, "\x1b[19~"},
    {F9, 0, Always, "\x1b[20~"},
    {F10, 0, Always, "\x1b[21~"},
    {F11, 0, Always, "\x1b[23~"},
    {F12, 0, Always, "\x1b[24~"},
    {F13, 0, Always, "\x1b[25~"},
    {F14, 0, Always, "\x1b[26~"},
    {F15, 0, Always, "\x1b[28~"},
    {F16, 0, Always, "\x1b[29~"},
    {F17, 0, Always, "\x1b[31~"},
    {F18, 0, Always, "\x1b[32~"},
    {F19, 0, Always, "\x1b[33~"},
    {F20, 0, Always, "\x1b[34~"},
    {F1, Modifier::Shift, Always, "\x1b[23~"},
    {F2, Modifier::Shift, Always, "\x1b[24~"},
    {F3, Modifier::Shift, Always, "\x1b[25~"},
    {F4, Modifier::Shift, Always, "\x1b[26~"},
    {F5, Modifier::Shift, Always, "\x1b[28~"},
    {F6, Modifier::Shift, Always, "\x1b[29~"},
    {F7, Modifier::Shift, Always, "\x1b[31~"},
    {F8, Modifier::Shift, Always, "\x1b[32~"},
    {F9, Modifier::Shift, Always, "\x1b[33~"},
    {F10, Modifier::Shift, Always, "\x1b[34~"},
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
    {Pad0, 0, ApplicationKeypad, "\x1b?p"},
    {Pad1, 0, ApplicationKeypad, "\x1b?q"},
    {Pad2, 0, ApplicationKeypad, "\x1b?r"},
    {Pad3, 0, ApplicationKeypad, "\x1b?s"},
    {Pad4, 0, ApplicationKeypad, "\x1b?t"},
    {Pad5, 0, ApplicationKeypad, "\x1b?u"},
    {Pad6, 0, ApplicationKeypad, "\x1b?v"},
    {Pad7, 0, ApplicationKeypad, "\x1b?w"},
    {Pad8, 0, ApplicationKeypad, "\x1b?x"},
    {Pad9, 0, ApplicationKeypad, "\x1b?y"},
    {PadMinus, 0, ApplicationKeypad, "\x1b?m"},
    {PadComma, 0, ApplicationKeypad, "\x1b?l"},
    {PadDot, 0, ApplicationKeypad, "\x1b?n"},
    {PadEnter, 0, ApplicationKeypad, "\x1b?M"},
    {PadPlus, 0, ApplicationKeypad, "\x1b?k"},
    {PadStar, 0, ApplicationKeypad, "\x1b?j"},
    {PadSlash, 0, ApplicationKeypad, "\x1b?o"},
};

inline constexpr KeyTable kTtyKeyboard[] = {kPlainKeys};
inline constexpr KeyTable kVt52Keyboard[] = {kVt52Keys, kPlainKeys};
inline constexpr KeyTable kVt100Keyboard[] = {kDecCursorKeys, kDecKeypad, kDecEditingKeys, kVt100Keys, kPlainKeys};
inline constexpr KeyTable kVt220Keyboard[] = {kDecCursorKeys, kDecKeypad, kDecEditingKeys, kVt220Keys, kPlainKeys};

// --- Linux console

inline constexpr KeyRow kLinuxKeys[] = {
    {F1, 0, Always, "\x1b[[A"},
    {F2, 0, Always, "\x1b[[B"},
    {F3, 0, Always, "\x1b[[C"},
    {F4, 0, Always, "\x1b[[D"},
    {F5, 0, Always, "\x1b[[E"},
    {F6, 0, Always, "\x1b[17~"},
    {F7, 0, Always, "\x1b[18~"},
    {F8, 0, Always, "\x1b[19~"},
    {F9, 0, Always, "\x1b[20~"},
    {F10, 0, Always, "\x1b[21~"},
    {F11, 0, Always, "\x1b[23~"},
    {F12, 0, Always, "\x1b[24~"},
    {F13, 0, Always, "\x1b[25~"},
    {F14, 0, Always, "\x1b[26~"},
    {F15, 0, Always, "\x1b[28~"},
    {F16, 0, Always, "\x1b[29~"},
    {F17, 0, Always, "\x1b[31~"},
    {F18, 0, Always, "\x1b[32~"},
    {F19, 0, Always, "\x1b[33~"},
    {F20, 0, Always, "\x1b[34~"},
    {F1, Modifier::Shift, Always, "\x1b[25~"},
    {F2, Modifier::Shift, Always, "\x1b[26~"},
    {F3, Modifier::Shift, Always, "\x1b[28~"},
    {F4, Modifier::Shift, Always, "\x1b[29~"},
    {F5, Modifier::Shift, Always, "\x1b[31~"},
    {F6, Modifier::Shift, Always, "\x1b[32~"},
    {F7, Modifier::Shift, Always, "\x1b[33~"},
    {F8, Modifier::Shift, Always, "\x1b[34~"},
    {Delete, 0, Always, "\x1b[3~"},
    {Tab, Modifier::Shift, Always, "\x1b[Z"},
    {Pause, 0, Always, "\x1b[P"},
};
inline constexpr KeyTable kLinuxKeyboard[] = {kDecCursorKeys, kLinuxKeys, kDecKeypad, kDecEditingKeys, kPlainKeys};

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

// The extensions claimed are those that stand behind them: 1 132 columns, 2 printer port, 6 selective erase,
// 9 national sets, 15 technical set. User-defined keys (8) and soft characters (7) are not there.
inline constexpr Personality kVt220{
    .number = 8,
    .name = "VT220",
    .hostName = "vt220",
    .dialects = kSpeaksVt220,
    .level = 2,
    .eightBitControls = true,
    .backspaceSendsDel = true,
    .primaryAttributes = "?62;1;2;6;9c",
    .secondaryAttributes = ">1;10;0c",
    .vt52Identity = "\x1b/Z",
    .keys = kVt220Keyboard,
    .vt52Keys = kVt52Keyboard,
};

inline constexpr Personality kVt320{
    .number = 13,
    .name = "VT320",
    .hostName = "vt320",
    .dialects = kSpeaksVt320,
    .level = 3,
    .eightBitControls = true,
    .backspaceSendsDel = true,
    .primaryAttributes = "?63;1;2;6;9;15c",
    .secondaryAttributes = ">24;10;0c",
    .vt52Identity = "\x1b/Z",
    .keys = kVt220Keyboard,
    .vt52Keys = kVt52Keyboard,
};

inline constexpr Personality kVt420{
    .number = 14,
    .name = "VT420",
    .hostName = "vt420",
    .dialects = kSpeaksVt420,
    .level = 4,
    .eightBitControls = true,
    .backspaceSendsDel = true,
    .primaryAttributes = "?64;1;2;6;9;15c",
    .secondaryAttributes = ">41;10;0c",
    .tertiaryAttributes = "!|00000000",
    .vt52Identity = "\x1b/Z",
    .keys = kVt220Keyboard,
    .vt52Keys = kVt52Keyboard,
};

inline constexpr Personality kLinuxConsole{
    .number = 16,
    .name = "Linux Console",
    .hostName = "linux",
    .dialects = Dialect::Common | Dialect::Linux | Dialect::Extension,
    .eightBitControls = true,
    .backspaceSendsDel = true,
    .primaryAttributes = "?6c",
    .keys = kLinuxKeyboard,
};

} // namespace kestrune::emu::types
