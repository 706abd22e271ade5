#pragma once

// The menu that the program has when no menu file says otherwise.

namespace kestrune {

class taMenuBar;

void LoadDefaultMenu(taMenuBar& menu); // replaces what stands in it

} // namespace kestrune
