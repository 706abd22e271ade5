#pragma once

// Presentation state reports (VT320, VT420): a host asks for the state of the cursor or for the tab stops and hands
// the answer back later. Answers hold numbers and names of known character sets only, never text of the host.

#include "machine.h"

namespace kestrune::emu::presentation {

void Report(Machine& machine, const ControlSequence& sequence); // DECRQPSR
// A device control string that gives a state back (DECRSPS) or names the user-preferred set (DECAUPSS). What is
// malformed changes nothing. Returns whether the string was one of these.
bool Take(Machine& machine, std::string_view body);
void ReportPreferredSet(Machine& machine, const ControlSequence& sequence); // DECRQUPSS

} // namespace kestrune::emu::presentation
