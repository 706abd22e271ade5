#include "picturelayer.h"

#include "picturefile.h"

#include <QPainter>

#include <algorithm>

namespace kestrune {

// A file that several pictures show is read once.
void PictureLayer::Set(const std::vector<ScreenPicture>& pictures)
{
    QMap<QString, QImage> known;
    for (const Shown& shown : pictures_)
        known.insert(shown.picture.fileName, shown.image);
    pictures_.clear();
    for (const ScreenPicture& picture : pictures) {
        if (!known.contains(picture.fileName))
            known.insert(picture.fileName, ReadPicture(picture.fileName));
        if (const QImage image = known.value(picture.fileName); !image.isNull())
            pictures_.push_back({picture, image, {}});
    }
}

QRect PictureLayer::PlaceOf(const Shown& shown, QPoint origin, QSize cell)
{
    const ScreenPicture& picture = shown.picture;
    const QSize own = shown.image.size();
    QRect room(origin + QPoint(picture.col * cell.width(), picture.row * cell.height()),
               QSize(picture.cols * cell.width(), picture.rows * cell.height()));
    if (picture.cols == 0)
        room.setWidth(picture.rows == 0 || !picture.preservesAspect ? own.width()
                                                                    : own.width() * room.height() / own.height());
    if (picture.rows == 0)
        room.setHeight(picture.cols == 0 || !picture.preservesAspect ? own.height()
                                                                     : own.height() * room.width() / own.width());
    if (!picture.preservesAspect)
        return room;
    QRect fitted(QPoint(), own.scaled(room.size(), Qt::KeepAspectRatio));
    fitted.moveCenter(room.center());
    return fitted;
}

void PictureLayer::Paint(QPainter& painter, QPoint origin, QSize cell, const QColor& border, int borderWidth)
{
    for (Shown& shown : pictures_) {
        const QRect place = PlaceOf(shown, origin, cell);
        if (shown.scaled.size() != place.size())
            shown.scaled =
                QPixmap::fromImage(shown.image.scaled(place.size(), Qt::IgnoreAspectRatio, Qt::SmoothTransformation));
        painter.drawPixmap(place.topLeft(), shown.scaled);
        if (!shown.picture.hasBorder)
            continue;
        const QRect outer = place.adjusted(-borderWidth, -borderWidth, borderWidth, borderWidth);
        for (const QRect& edge : {QRect(outer.left(), outer.top(), outer.width(), borderWidth),
                                  QRect(outer.left(), place.bottom() + 1, outer.width(), borderWidth),
                                  QRect(outer.left(), outer.top(), borderWidth, outer.height()),
                                  QRect(place.right() + 1, outer.top(), borderWidth, outer.height())})
            painter.fillRect(edge, border);
    }
}

} // namespace kestrune
