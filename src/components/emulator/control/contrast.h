#pragma once

// How well colours are told apart, by the relative luminance of WCAG 2.1.

#include <emulator/control/rgb.h>

namespace kestrune {

inline constexpr double LegibleContrast = 4.5; // what WCAG asks for text of usual size
inline constexpr double VisibleContrast = 1.5; // a patch of one colour on the other is seen

double ContrastOf(Rgb a, Rgb b); // 1: the same, 21: black and white

// ink as it is when it has this contrast to paper, else moved towards black or white until it has.
Rgb LegibleOn(Rgb paper, Rgb ink, double contrast = LegibleContrast);

} // namespace kestrune
