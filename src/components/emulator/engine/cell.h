#pragma once

// What stands on the screen. A cell is eight bytes: text and style. Rare things (clusters of several code
// points, hyperlinks) lie aside in the terminal and are reached by id.

#include <cstdint>

namespace kestrune::emu {

// 0 default; palette entries 0..255; direct colour 0x02RRGGBB
struct Color
{
    enum class Kind : uint8_t
    {
        Default,
        Palette,
        Direct
    };

    static constexpr Color Default() { return {}; }
    static constexpr Color Palette(uint8_t index) { return Color{0x01000000u | index}; }
    static constexpr Color Direct(uint8_t r, uint8_t g, uint8_t b)
    {
        return Color{0x02000000u | (uint32_t(r) << 16) | (uint32_t(g) << 8) | b};
    }
    constexpr Kind What() const { return Kind(value >> 24); }
    constexpr uint8_t Index() const { return uint8_t(value); }
    constexpr uint8_t Red() const { return uint8_t(value >> 16); }
    constexpr uint8_t Green() const { return uint8_t(value >> 8); }
    constexpr uint8_t Blue() const { return uint8_t(value); }
    constexpr bool operator==(const Color&) const = default;

    uint32_t value = 0;
};

// Bits of Style::attributes.
namespace Attr {
inline constexpr uint16_t Bold = 1, Dim = 2, Italic = 4, Blink = 8, Reverse = 16, Invisible = 32, Strike = 64,
                          Overline = 128, Protected = 256;
} // namespace Attr

enum class Underline : uint8_t
{
    None,
    Single,
    Double,
    Curly,
    Dotted,
    Dashed
};

struct Style
{
    Color foreground;
    Color background;
    Color underlineColor;
    uint16_t attributes = 0; // Attr bits
    Underline underline = Underline::None;
    uint16_t link = 0; // 0: none
    bool operator==(const Style&) const = default;
};

using StyleId = uint16_t; // 0 is the plain style; ids are valid for one terminal

struct Cell
{
    static constexpr uint32_t ClusterBit = 0x80000000u;
    // Width marks. A wide character stands in its first cell; the second has WideTail and no text of its own.
    static constexpr uint16_t Wide = 1, WideTail = 2;

    uint32_t text = 0; // code point; 0: never written (reads as blank); ClusterBit: id of a cluster
    StyleId style = 0;
    uint16_t flags = 0;
};
static_assert(sizeof(Cell) == 8);

} // namespace kestrune::emu
