#pragma once

// How well colours are told apart, by the relative luminance of WCAG 2.1.

#include <QRgb>

namespace kestrune {

inline constexpr double LegibleContrast = 4.5; // what WCAG asks for text of usual size
inline constexpr double VisibleContrast = 1.5; // a patch of one colour on the other is seen

double ContrastOf(QRgb a, QRgb b); // 1: the same, 21: black and white

// ink as it is when it has this contrast to paper, else moved towards black or white until it has.
QRgb LegibleOn(QRgb paper, QRgb ink, double contrast = LegibleContrast);

} // namespace kestrune
