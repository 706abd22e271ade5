#pragma once

// A picture file as the view shows it. Nothing that a file claims makes more memory go than a screen is worth.

#include <QImage>
#include <QString>

namespace kestrune {

inline constexpr int LargestPicture = 8192; // pixels a side

QImage ReadPicture(const QString& path); // turned as the camera was; null: there is none, or none that can be shown

} // namespace kestrune
