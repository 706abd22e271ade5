#pragma once

// The colour table report (DECCTR) and its return (DECRSTS), as the makers' colour terminals have them: the sixteen
// colours that SGR names. Only a colour that the host has set itself is told; where the user's own stands, the report
// has none, and giving it back leaves or brings back the user's.

#include "machine.h"

namespace kestrune::emu::colortable {

void Report(Machine& machine, int space); // DECRQTSR 2: in HLS (0, 1) or RGB (2)
// What stands behind "2$p" in DECRSTS. What is malformed changes nothing.
void Restore(Machine& machine, std::string_view entries);

} // namespace kestrune::emu::colortable
