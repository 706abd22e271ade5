#pragma once

// A picture that a program has laid over the screen. It stays where it is while text goes on, until it is unloaded or
// the terminal is reset.

#include <QString>

namespace kestrune {

struct ScreenPicture
{
    static constexpr int MostPictures = 100; // of one screen

    QString fileName;
    int col = 0; // of its upper left corner
    int row = 0;
    int cols = 0; // 0: as large as the picture itself
    int rows = 0;
    bool preservesAspect = false; // it is as large as fits into cols and rows, and in their middle
    bool hasBorder = false;
};

} // namespace kestrune
