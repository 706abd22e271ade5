#pragma once

// How a session without colours of its own looks on a light desktop. The sixteen colours stay what they are where a
// program sets both text and background: full-screen programs choose them for each other. Text in one of them on the
// bare background takes a darker ink of the same hue, and all inks have at least 4.5:1 on that background.

#include <emulator/control/emulatorsettings.h>
#include <emulator/control/rgb.h>

namespace kestrune {

// What a session shows its text on where it does not say itself.
enum class Ground
{
    Dark,
    Light
};

// A palette is one thing: a session that has changed a single entry keeps all of them.
bool HasOwnPalette(const EmulatorSettings& settings);

Rgb LightRole(int paletteRole); // PaletteRole
Rgb LightInk(int index);        // 0 to 15

} // namespace kestrune
