#include "backdrop.h"

#include "picturefile.h"

#include <QPainter>

#include <algorithm>
#include <utility>

namespace kestrune {

void Backdrop::Load(const EmulatorSettings& settings)
{
    if (const QString file = settings.Text(Setting("BackgroundPictureFile")); std::exchange(file_, file) != file)
        picture_ = file.isEmpty() ? QImage() : ReadPicture(file);
    const int mode = settings.Integer(Setting("BackgroundPictureMode"));
    mode_ = mode >= 0 && mode <= int(BackdropMode::Fill) ? BackdropMode(mode) : BackdropMode::Middle;
    opacity_ = 1 - std::clamp(settings.Integer(Setting("BackgroundTransparency")), 0, 100) / 100.0;
    composed_ = {};
}

QPixmap Backdrop::Composed(QSize all, QRgb background) const
{
    QPixmap result(all);
    result.fill(QColor(background));
    QPainter painter(&result);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.setOpacity(opacity_);
    const QRect window(QPoint(), all);
    const auto drawIn = [&](QSize size) {
        QRect where(QPoint(), size);
        where.moveCenter(window.center());
        painter.drawImage(where, picture_);
    };
    switch (mode_) {
    case BackdropMode::Middle:
        drawIn(picture_.size());
        break;
    case BackdropMode::Stretch:
        painter.drawImage(window, picture_);
        break;
    case BackdropMode::Fill:
        drawIn(picture_.size().scaled(all, Qt::KeepAspectRatioByExpanding));
        break;
    case BackdropMode::Tile:
        painter.drawTiledPixmap(window, QPixmap::fromImage(picture_));
        break;
    }
    return result;
}

void Backdrop::Paint(QPainter& painter, QSize all, const QRect& part, QRgb background)
{
    if (composed_.size() != all || std::exchange(background_, background) != background)
        composed_ = Composed(all, background);
    background_ = background;
    painter.drawPixmap(part, composed_, part);
}

} // namespace kestrune
