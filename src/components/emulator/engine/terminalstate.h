#pragma once

// Terminal state reports (VT320, VT420): a host asks for the state of modes and margins, or for the table of colours,
// and hands the answer back later. The answer holds numbers only, and what is malformed changes nothing.

#include "machine.h"

namespace kestrune::emu::terminalstate {

void Report(Machine& machine, const ControlSequence& sequence); // DECRQTSR, answered by DECTSR, DECCTR
bool Take(Machine& machine, std::string_view body);             // DECRSTS; whether the string was one

} // namespace kestrune::emu::terminalstate
