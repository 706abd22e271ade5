#pragma once

// Which processors the process may use. The main process pins itself to one; what it starts has all of them back:
// a program in a local shell (between fork and exec) and a component's worker threads (first thing they do).

#include <vector>

namespace kestrune {

// Numbers of the permitted processors, ascending, as they were before anything was pinned.
std::vector<int> PermittedProcessors();

// Pins the calling thread and every thread made by it later. False: refused, nothing changed.
bool PinToProcessor(int number);

// Gives the calling thread the full permitted set back. Safe between fork and exec. Without an earlier
// PinToProcessor it does nothing.
bool GiveBackProcessors() noexcept;

} // namespace kestrune
