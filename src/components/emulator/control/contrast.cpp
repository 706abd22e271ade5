#include "contrast.h"

#include <algorithm>
#include <cmath>

namespace kestrune {

namespace {

constexpr int kSteps = 8; // from a colour to black or white

double Luminance(Rgb color)
{
    const auto linear = [](int channel) {
        const double c = channel / 255.0;
        return c <= 0.04045 ? c / 12.92 : std::pow((c + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(RedOf(color)) + 0.7152 * linear(GreenOf(color)) + 0.0722 * linear(BlueOf(color));
}

Rgb Towards(Rgb from, Rgb to, int step)
{
    const auto mix = [step](int a, int b) { return a + (b - a) * step / kSteps; };
    return MakeRgb(mix(RedOf(from), RedOf(to)), mix(GreenOf(from), GreenOf(to)), mix(BlueOf(from), BlueOf(to)));
}

} // namespace

double ContrastOf(Rgb a, Rgb b)
{
    const auto [dark, light] = std::minmax({Luminance(a), Luminance(b)}); // values: of two it gives references
    return (light + 0.05) / (dark + 0.05);
}

Rgb LegibleOn(Rgb paper, Rgb ink, double contrast)
{
    if (ContrastOf(paper, ink) >= contrast)
        return ink;
    const Rgb black = MakeRgb(0, 0, 0);
    const Rgb white = MakeRgb(255, 255, 255);
    const Rgb end = ContrastOf(paper, black) > ContrastOf(paper, white) ? black : white;
    for (int step = 1; step < kSteps; ++step)
        if (const Rgb moved = Towards(ink, end, step); ContrastOf(paper, moved) >= contrast)
            return moved;
    return end;
}

} // namespace kestrune
