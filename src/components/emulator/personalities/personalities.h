#pragma once

// The terminal types that this build has, by their numbers.

#include <emulator/engine/personality.h>

#include <span>

namespace kestrune::emu {

// nullptr: there is no such type (yet).
const Personality* FindPersonality(int number);

// All types in the order of their numbers.
std::span<const Personality* const> AllPersonalities();

} // namespace kestrune::emu
