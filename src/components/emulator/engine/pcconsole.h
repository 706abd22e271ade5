#pragma once

// What only the consoles of PCs do: ANSI.SYS and the mail boxes, and the SCO OpenServer console, screen(HW). The
// handlers stand in the tables of controls.cpp.

#include "machine.h"

namespace kestrune::emu::pc {

// --- ANSI
void ClearAll(Machine& machine);             // CSI U: clear in the normal rendition and home
void ScrollOneUp(Machine& machine);          // ESC D and ESC M move the region, wherever the cursor stands
void ScrollOneDown(Machine& machine);        //
bool Draws(uint32_t drawn, uint8_t control); // the control is a character of the ROM in this type

// --- SCO
// A code of SGR that means something else than in ECMA-48; false: it does not.
bool ScoRendition(Style& pen, int code);
// CSI 2 ; foreground ; background m and its like.
bool ScoColors(Machine& machine, const Params& params);
void ScoColor(Machine& machine, const ControlSequence& sequence);
void ScoBackgroundIntensity(Machine& machine, const ControlSequence& sequence);
void ScoCursor(Machine& machine, const ControlSequence& sequence);
void ScoCursorLines(Machine& machine, const ControlSequence& sequence);
void ScoGlyph(Machine& machine, const ControlSequence& sequence);
void ScoRepeat(Machine& machine, const ControlSequence& sequence);
void ScoClearScreen(Machine& machine, const ControlSequence& sequence);
void ScoMargin(Machine& machine, const ControlSequence& sequence);
void ScoWindow(Machine& machine, const ControlSequence& sequence);
void ScoLockLines(Machine& machine, bool on); // the lines above the cursor do not scroll

} // namespace kestrune::emu::pc
