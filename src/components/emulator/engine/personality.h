#pragma once

// One terminal type as a declarative table on the shared machine: what it answers, which sequences it knows
// and what its keys send. A new type is a new table, never a new branch in the machine.
//
// Personalities are constants with static storage; a terminal keeps a pointer to the one it was given.

#include <emulator/engine/keys.h>

#include <cstdint>
#include <span>
#include <string_view>

namespace kestrune::emu {

// Families of control sequences. Each row of the control tables names the families that it belongs to, and a
// type obeys a row when it speaks one of them.
using Dialects = uint16_t;
namespace Dialect {
inline constexpr Dialects Typewriter = 1024; // C0 only
inline constexpr Dialects Vt52 = 1;          // ESC letter, addresses plus 32; native or as a mode of the later ones
inline constexpr Dialects Common = 2;        // what all terminals with CSI share
inline constexpr Dialects Vt100 = 4;         // DEC, conformance level 1
inline constexpr Dialects Vt220 = 8;         // level 2
inline constexpr Dialects Vt320 = 16;        // level 3
inline constexpr Dialects Vt420 = 32;        // level 4
inline constexpr Dialects Linux = 64;        // Linux console
inline constexpr Dialects Ansi = 128;        // PC ANSI
inline constexpr Dialects Sco = 256;         // SCO console
inline constexpr Dialects Extension = 512;   // colours, mouse, titles: not in the originals, used by today's hosts
} // namespace Dialect

// What must hold for a key row to apply. The first row that fits a key press wins, so a special case stands
// before the general one.
enum class KeyWhen : uint8_t
{
    Always,
    ApplicationCursor, // DECCKM
    ApplicationKeypad  // DECKPAM
};

struct KeyRow
{
    Key key = Key::Text;
    uint8_t modifiers = Modifier::None; // exactly these
    KeyWhen when = KeyWhen::Always;
    std::string_view bytes; // 7-bit form; the machine shortens ESC [ and ESC O when it sends 8-bit controls
};
using KeyTable = std::span<const KeyRow>;

enum class WrapStyle : uint8_t
{
    Pending, // the next character wraps (VT100 and later)
    AtOnce,  // writing the last column wraps (PC consoles)
    Never    // the last column is overwritten (VT52)
};

struct Personality
{
    int number = 0;            // as TermType holds it
    std::string_view name;     // "VT220"
    std::string_view hostName; // sent as terminal type

    Dialects dialects = Dialect::Typewriter;
    int level = 0; // DEC conformance level, 0 for others
    WrapStyle wrap = WrapStyle::Pending;
    bool eightBitControls = false;             // the type has C1 bytes
    bool formFeedClears = false;               // FF clears and homes instead of moving down
    bool clearHomes = false;                   // ED 2 homes
    uint32_t drawnControls = 0;                // bit n: control n is a character of the PC's ROM
    bool backspaceSendsDel = false;            // the type's own choice, see BackspaceKey
    std::string_view primaryAttributes = {};   // answer to DA1, after CSI; empty: silent
    std::string_view secondaryAttributes = {}; // answer to DA2, after CSI
    std::string_view tertiaryAttributes = {};  // answer to DA3, inside DCS
    std::string_view vt52Identity = {};        // answer to ESC Z in VT52 mode
    std::span<const KeyTable> keys = {};       // looked through in order
    std::span<const KeyTable> level1Keys = {}; // the same where a later model was told to be a VT100; empty: no others
    std::span<const KeyTable> vt52Keys = {};   // and in VT52 mode
};

} // namespace kestrune::emu
