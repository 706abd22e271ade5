#include <emulator/control/lightscheme.h>

#include <array>

namespace kestrune {

namespace {

constexpr Rgb kOpaque = 0xFF000000U;
constexpr std::array<Rgb, 16> kInks{
    0x15181D, 0xC4323F, 0x3A7A2C, 0x8A6100, 0x2F5FB8, 0x9040B0, 0x14727C, 0x5C6473, // black to white
    0x6A7180, 0xD03A47, 0x2F7F1E, 0x9A6800, 0x2F6BE0, 0xA846CC, 0x007A87, 0x3A404C, // bright
};
constexpr std::array<Rgb, PaletteSize - PaletteRole::Foreground> kRoles{0x2A2F3A, 0xFAFAF8, 0xA86200,
                                                                        0xFFFFFF, 0xBFD6F6, 0x14171C};

} // namespace

bool HasOwnPalette(const EmulatorSettings& settings)
{
    for (int i = 0; i < PaletteSize; ++i)
        if (settings.Palette(i) != EmulatorSettings::DefaultPalette(i))
            return true;
    return false;
}

Rgb LightRole(int paletteRole) { return kOpaque | kRoles.at(std::size_t(paletteRole - PaletteRole::Foreground)); }
Rgb LightInk(int index) { return kOpaque | kInks.at(std::size_t(index)); }

} // namespace kestrune
