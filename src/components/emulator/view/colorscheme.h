#pragma once

// What colours a style has: the settings' palette and attribute colours, the 256 colours that hosts know, and
// what the host has changed of them.

#include <emulator/control/emulatorsettings.h>
#include <emulator/engine/terminal.h>

#include <QRgb>

#include <array>
#include <vector>

namespace kestrune {

struct CellColors
{
    QRgb foreground = 0;
    QRgb background = 0;
    QRgb underline = 0;
    bool operator==(const CellColors&) const = default;
};

class ColorScheme
{
public:
    void Load(const EmulatorSettings& settings);
    // Takes over what the host has set, and screen reverse. True: something changed, all rows look different.
    bool Follow(const emu::Terminal& screen);

    CellColors Of(const emu::Style& style) const;
    QRgb Role(int paletteRole) const { return palette_[size_t(paletteRole)]; } // PaletteRole
    QRgb Background() const;                                                   // of the screen where there is no text

private:
    QRgb Indexed(int index) const;

    std::array<QRgb, PaletteSize> palette_{};
    std::array<qint16, AttributeCount> attributes_{};
    std::array<uint32_t, 256> host_{}; // 0: as here
    bool reverse_ = false;
};

} // namespace kestrune
