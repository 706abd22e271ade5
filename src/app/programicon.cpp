#include <app/programicon.h>

#include <QPainter>
#include <QPainterPath>

#include <cmath>

namespace kestrune {

namespace {

// A dark screen with a prompt and the stoop of a falcon's wing for a cursor, on a grid of 64.
QPixmap DrawProgramIcon(int side)
{
    QPixmap picture(side, side);
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.scale(side / 64.0, side / 64.0);

    QLinearGradient ground(0, 4, 0, 60);
    ground.setColorAt(0, QColor(0x35, 0x41, 0x50));
    ground.setColorAt(1, QColor(0x1d, 0x23, 0x2b));
    painter.setPen(Qt::NoPen);
    painter.setBrush(ground);
    painter.drawRoundedRect(QRectF(4, 7, 56, 50), 9, 9);

    QPen pen(QColor(0xee, 0xf1, 0xf4), 5, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin);
    painter.setPen(pen);
    painter.setBrush(Qt::NoBrush);
    QPainterPath prompt(QPointF(15, 22));
    prompt.lineTo(25, 32);
    prompt.lineTo(15, 42);
    painter.drawPath(prompt);

    QPainterPath wing(QPointF(32, 43));
    wing.quadTo(QPointF(41, 40), QPointF(50, 23));
    wing.quadTo(QPointF(50, 38), QPointF(40, 46));
    wing.closeSubpath();
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(0xf2, 0xa5, 0x41));
    painter.drawPath(wing);
    return picture;
}

} // namespace

QPixmap ProgramPicture(int side, double ratio)
{
    QPixmap picture = DrawProgramIcon(int(std::lround(side * ratio)));
    picture.setDevicePixelRatio(ratio);
    return picture;
}

QIcon ProgramIcon()
{
    QIcon icon;
    // The display server is sent all of them for each window; one of 256 alone would be a quarter of a megabyte.
    for (const int side : {16, 24, 32, 48, 64})
        icon.addPixmap(DrawProgramIcon(side));
    return icon;
}

} // namespace kestrune
