#pragma once

// The terminal types that this build has, by their numbers.

#include <emulator/engine/personality.h>

#include <span>
#include <string_view>

namespace kestrune::emu {

// nullptr: there is no such type (yet).
const Personality* FindPersonality(int number);

// By the name of an emulation, as an installation's list of custom types has it: "VT220", "Lanpar", "SCO Console".
// Case, blanks and dashes do not matter.
const Personality* FindPersonality(std::string_view emulation);

// All types in the order of their numbers.
std::span<const Personality* const> AllPersonalities();

} // namespace kestrune::emu
