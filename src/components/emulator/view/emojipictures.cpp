#include "emojipictures.h"

#include <QPainter>

#include <algorithm>

namespace kestrune {

QImage EmojiPictures::Of(const QString& text, const QSize& size, QRgb color, const std::function<void(QPainter&)>& draw)
{
    const Key key{text, size.width(), color};
    if (const QImage* known = held_.object(key))
        return *known;
    QImage picture(size, QImage::Format_ARGB32_Premultiplied);
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    draw(painter);
    painter.end();
    held_.insert(key, new QImage(picture), std::max(1, int(picture.sizeInBytes() / 1024)));
    return picture;
}

} // namespace kestrune
