#pragma once

// The pictures that programs have laid over a terminal's screen, drawn in device pixels.

#include <emulator/control/screenpicture.h>

#include <QColor>
#include <QImage>
#include <QMap>
#include <QPixmap>
#include <QPoint>
#include <QSize>

#include <vector>

class QPainter;

namespace kestrune {

class PictureLayer
{
public:
    void Set(const std::vector<ScreenPicture>& pictures);
    bool IsEmpty() const { return pictures_.empty(); }
    // origin: the upper left corner of row 0; border: in its colour and width.
    void Paint(QPainter& painter, QPoint origin, QSize cell, const QColor& border, int borderWidth);

private:
    struct Shown
    {
        ScreenPicture picture;
        QImage image;
        QPixmap scaled; // as large as it was drawn last
    };
    static QRect PlaceOf(const Shown& shown, QPoint origin, QSize cell);

    std::vector<Shown> pictures_;
};

} // namespace kestrune
