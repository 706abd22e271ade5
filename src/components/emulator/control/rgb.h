#pragma once

// A colour as 0xAARRGGBB, which is how windows have it too.

#include <QtGlobal>

namespace kestrune {

using Rgb = quint32;

constexpr Rgb MakeRgb(int red, int green, int blue)
{
    return 0xFF000000U | quint32(red & 0xFF) << 16 | quint32(green & 0xFF) << 8 | quint32(blue & 0xFF);
}
constexpr int RedOf(Rgb color) { return int(color >> 16 & 0xFF); }
constexpr int GreenOf(Rgb color) { return int(color >> 8 & 0xFF); }
constexpr int BlueOf(Rgb color) { return int(color & 0xFF); }

} // namespace kestrune
