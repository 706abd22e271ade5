#pragma once

// One terminal type as a declarative table on the shared machine: what it answers, which sequences it knows
// and what its keys send. A new type is a new table, never a new branch in the machine.

#include <cstdint>
#include <span>
#include <string_view>

namespace kestrune::emu {

struct Personality
{
    int number = 0;            // as TermType holds it
    std::string_view name;     // "VT220"
    std::string_view hostName; // sent as terminal type
    // the rest belongs to the engine's author
};

} // namespace kestrune::emu
