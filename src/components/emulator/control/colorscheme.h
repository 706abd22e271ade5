#pragma once

// What colours a style has: the settings' palette and attribute colours, the 256 colours that hosts know, and
// what the host has changed of them (OSC 4, 10, 11 and 12).

#include <emulator/control/emulatorsettings.h>
#include <emulator/control/lightscheme.h>
#include <emulator/control/rgb.h>
#include <emulator/engine/terminal.h>

#include <array>

namespace kestrune {

struct CellColors
{
    Rgb foreground = 0;
    Rgb background = 0;
    Rgb underline = 0;
    bool operator==(const CellColors&) const = default;
};

class ColorScheme
{
public:
    // desktop: what the session takes when it has no palette of its own.
    void Load(const EmulatorSettings& settings, Ground desktop);
    // Takes over what the host has set, and screen reverse. True: something changed, all rows look different.
    bool Follow(const emu::Terminal& screen);

    CellColors Of(const emu::Style& style) const;
    // Selected text that has these colours otherwise: the selection's own, unless it would not be seen on them.
    CellColors Selected(const CellColors& plain) const;
    // Text that a search has found; current: the hit that the user stands on.
    CellColors Found(const CellColors& plain, bool current) const;
    // The cursor as background, and the text in it: seen on a cell of these colours whatever they are.
    CellColors Cursor(const CellColors& plain) const;
    Rgb Role(int paletteRole) const; // PaletteRole
    Rgb Background() const;          // of the screen where there is no text

private:
    static constexpr int kHostColors = 259; // 256 foreground, 257 background, 258 cursor

    Rgb Indexed(int index) const;
    Rgb Ink(int index) const;
    Rgb Entry(int paletteEntry) const;

    std::array<Rgb, PaletteSize> palette_{};
    std::array<qint16, AttributeCount> attributes_{};
    std::array<uint32_t, kHostColors> host_{}; // 0: as here
    bool light_ = false;                       // the light desktop's colours
    bool reverse_ = false;
    bool legible_ = false; // text keeps its distance from its background
};

} // namespace kestrune
