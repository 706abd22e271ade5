#pragma once

// Handlers of the DEC functions that work on rectangles and on columns (conformance level 4). They stand in the
// table of controls.cpp.

#include "machine.h"

namespace kestrune::emu::areas {

void SetLeftAndRight(Machine& machine, const ControlSequence& sequence);   // DECSLRM
void Copy(Machine& machine, const ControlSequence& sequence);              // DECCRA
void Fill(Machine& machine, const ControlSequence& sequence);              // DECFRA
void Erase(Machine& machine, const ControlSequence& sequence);             // DECERA
void EraseUnprotected(Machine& machine, const ControlSequence& sequence);  // DECSERA
void ChangeAttributes(Machine& machine, const ControlSequence& sequence);  // DECCARA
void ReverseAttributes(Machine& machine, const ControlSequence& sequence); // DECRARA
void SelectExtent(Machine& machine, const ControlSequence& sequence);      // DECSACE
void Checksum(Machine& machine, const ControlSequence& sequence);          // DECRQCRA

} // namespace kestrune::emu::areas
