#pragma once

// What the program's pictures look like: strokes on a grid of 24 by 24, some of them in the accent colour, and where
// it says more than words, a badge in the lower right corner.

#include <QLatin1StringView>
#include <QPainterPath>

#include <span>

namespace kestrune {

struct Picture
{
    QLatin1StringView name;
    QLatin1StringView ink;    // in the colour of text
    QLatin1StringView accent; // in the accent colour; may be empty
};

struct NumberedPicture
{
    int number;              // mostly that of the command
    QLatin1StringView name;  // of the picture
    QLatin1StringView badge; // drawn small over its corner; empty: none
};

std::span<const Picture> Pictures();
std::span<const NumberedPicture> NumberedPictures();
const Picture* FindPicture(QLatin1StringView name); // null: none

// M x y move, L x y line, Q x y x y curve by one control point, O x y rx ry ellipse round a centre, R x y w h
// rectangle with soft corners, D x y a dot, Z close.
QPainterPath ReadStrokes(QLatin1StringView text);

} // namespace kestrune
