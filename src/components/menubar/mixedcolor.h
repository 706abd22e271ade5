#pragma once

#include <QColor>

namespace kestrune {

// share: of the second, 0 to 1.
inline QColor Mixed(const QColor& one, const QColor& other, double share)
{
    const auto mix = [share](float a, float b) { return static_cast<float>(a * (1 - share) + b * share); };
    return QColor::fromRgbF(mix(one.redF(), other.redF()), mix(one.greenF(), other.greenF()),
                            mix(one.blueF(), other.blueF()));
}

} // namespace kestrune
