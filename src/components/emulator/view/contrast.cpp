#include "contrast.h"

#include <algorithm>
#include <cmath>

namespace kestrune {

namespace {

constexpr int kSteps = 8; // from a colour to black or white

double Luminance(QRgb color)
{
    const auto linear = [](int channel) {
        const double c = channel / 255.0;
        return c <= 0.04045 ? c / 12.92 : std::pow((c + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(qRed(color)) + 0.7152 * linear(qGreen(color)) + 0.0722 * linear(qBlue(color));
}

QRgb Towards(QRgb from, QRgb to, int step)
{
    const auto mix = [step](int a, int b) { return a + (b - a) * step / kSteps; };
    return qRgb(mix(qRed(from), qRed(to)), mix(qGreen(from), qGreen(to)), mix(qBlue(from), qBlue(to)));
}

} // namespace

double ContrastOf(QRgb a, QRgb b)
{
    const auto [dark, light] = std::minmax({Luminance(a), Luminance(b)}); // values: of two it gives references
    return (light + 0.05) / (dark + 0.05);
}

QRgb LegibleOn(QRgb paper, QRgb ink, double contrast)
{
    if (ContrastOf(paper, ink) >= contrast)
        return ink;
    const QRgb black = qRgb(0, 0, 0);
    const QRgb white = qRgb(255, 255, 255);
    const QRgb end = ContrastOf(paper, black) > ContrastOf(paper, white) ? black : white;
    for (int step = 1; step < kSteps; ++step)
        if (const QRgb moved = Towards(ink, end, step); ContrastOf(paper, moved) >= contrast)
            return moved;
    return end;
}

} // namespace kestrune
