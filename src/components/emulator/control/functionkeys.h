#pragma once

// The key codes under which users give keys a text, the banks of function keys that the modifiers make, and what
// the keyboard settings turn one key into.
//
// A code is the virtual key plus 1000 for Shift, 2000 for Control, 4000 for Alt. The label that the function bar
// shows for F1 to F12 stands under 10000 more, for the four banks without Alt.

#include <emulator/control/emulatorsettings.h>
#include <emulator/engine/keys.h>

namespace kestrune {

inline constexpr int FunctionKeyCount = 12; // on the bar: F1 to F12

// Banks count from 1: 1 the keys alone, 2 with Shift, 3 Control, 4 Shift and Control, 5 to 8 the same with Alt.
inline constexpr int FunctionBankCount = 8;
int FunctionBankOf(uint8_t modifiers);           // emu::Modifier bits
uint8_t FunctionBankModifiers(int bank);         // a number that is no bank counts as 1
int FunctionKeyCode(int number, int bank);       // number 1 to 24
QString FunctionBankName(int bank);              // "Ctrl+Shift"; empty for bank 1
emu::KeyPress FunctionKey(int number, int bank); // number 1 to 20

// What the bar shows for a key: the label given to it, else its text on one line with controls as "^M", the last
// line end left out; empty: the key sends its own sequence.
QString FunctionLabel(const EmulatorSettings& settings, int number, int bank);

// Shift+F1 to Shift+F10 stand for F11 to F20, which few keyboards have (setting MapUpperFKeys).
emu::KeyPress MappedUpperFunctionKey(const emu::KeyPress& key);

// Setting BreakKeyAction; a number that has no name here counts as Signal.
enum class BreakKeyAction : int
{
    Signal = 0,    // the break of the line
    None = 1,      // the key does nothing
    Interrupt = 2, // Control-C
    Character = 3, // the setting SSHBreakCharacter; Control-C when it is 0
};

} // namespace kestrune
