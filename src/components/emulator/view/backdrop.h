#pragma once

// The picture behind a terminal's text.

#include <emulator/control/emulatorsettings.h>

#include <QImage>
#include <QPixmap>

class QPainter;

namespace kestrune {

// Setting BackgroundPictureMode. Another number counts as Middle.
enum class BackdropMode : int
{
    Middle = 0,  // as large as it is
    Stretch = 1, // over all of the window
    Tile = 2,
    Fill = 3 // as large as it must be to leave nothing free, its shape kept
};

class Backdrop
{
public:
    // BackgroundPictureFile, -Mode and BackgroundTransparency (0: the picture as it is, 100: nothing of it). A file
    // that cannot be shown is no picture.
    void Load(const EmulatorSettings& settings);
    bool IsOn() const { return !picture_.isNull(); }
    // What of the window, which is as large as all, lies in part: the background colour and the picture on it.
    void Paint(QPainter& painter, QSize all, const QRect& part, QRgb background);

private:
    QPixmap Composed(QSize all, QRgb background) const;

    QString file_;
    QImage picture_;
    BackdropMode mode_ = BackdropMode::Middle;
    double opacity_ = 1;
    QPixmap composed_; // for this size and colour
    QRgb background_ = 0;
};

} // namespace kestrune
