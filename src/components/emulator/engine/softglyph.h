#pragma once

// Characters whose shapes a host draws itself (soft characters, DECDLD), as those see them who paint or read cells. In
// a cell such a character is a code point of a private area, so that it is copied, searched and sent as what it is: a
// sign without a meaning of its own. The last two digits of U+10F820 to U+10F87F are the byte that the host sends for
// it; those of a second set are U+10F8A0 to U+10F8FF.

#include <array>
#include <cstddef>
#include <cstdint>

namespace kestrune::emu {

inline constexpr char32_t FirstSoftPoint = 0x10F800;
inline constexpr char32_t LastSoftPoint = 0x10F8FF;

constexpr bool IsSoftPoint(char32_t point) { return point >= FirstSoftPoint && point <= LastSoftPoint; }

struct SoftGlyph
{
    static constexpr int MostWide = 15; // dots, VT320 programmer reference
    static constexpr int MostHigh = 16;

    bool IsLoaded() const { return width != 0; }
    bool HasDot(int x, int y) const { return ((lines[size_t(y)] >> x) & 1u) != 0; }
    void SetDot(int x, int y) { lines[size_t(y)] = uint16_t(lines[size_t(y)] | (1u << x)); }

    int width = 0; // of the whole cell, in dots; 0: the host has not drawn it
    int height = 0;
    std::array<uint16_t, MostHigh> lines{}; // from the top; bit 0 is the leftmost dot
};

} // namespace kestrune::emu
