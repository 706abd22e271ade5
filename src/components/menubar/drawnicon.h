#pragma once

// An icon that is drawn anew for each size and scale, by paint().

#include <QIconEngine>
#include <QPainter>
#include <QPixmap>

namespace kestrune {

class DrawnIcon : public QIconEngine
{
public:
    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override
    {
        QPixmap drawn(size);
        drawn.fill(Qt::transparent);
        QPainter painter(&drawn);
        paint(&painter, QRect(QPoint(), size), mode, state);
        return drawn;
    }
};

} // namespace kestrune
