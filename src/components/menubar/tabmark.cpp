#include "tabmark.h"

#include "drawnicon.h"

#include <QCoreApplication>
#include <QGuiApplication>
#include <QPainter>
#include <QPainterPath>
#include <QPalette>

#include <array>

namespace kestrune {

namespace {

struct MarkRow
{
    SessionBar::Mark mark;
    QRgb onLight, onDark;
    const char* text;
    void (*shape)(QPainterPath& path, const QRectF& box);
};

// The cross is drawn as a line, the others are filled.
constexpr std::array kMarks = {
    MarkRow{SessionBar::Mark::Connected, 0xff1a8f4c, 0xff4cc38a, QT_TRANSLATE_NOOP("SessionBar", "Connected"),
            [](QPainterPath& path, const QRectF& box) { path.addEllipse(box); }},
    MarkRow{SessionBar::Mark::Lost, 0xffc62828, 0xffff7b72, QT_TRANSLATE_NOOP("SessionBar", "Connection lost"),
            [](QPainterPath& path, const QRectF& box) {
                path.moveTo(box.topLeft());
                path.lineTo(box.bottomRight());
                path.moveTo(box.topRight());
                path.lineTo(box.bottomLeft());
            }},
    MarkRow{SessionBar::Mark::Activity, 0xff1f6fd0, 0xff6cb0ff, QT_TRANSLATE_NOOP("SessionBar", "New output"),
            [](QPainterPath& path, const QRectF& box) {
                path.addPolygon(
                    QPolygonF({QPointF(box.center().x(), box.top()), QPointF(box.right(), box.center().y()),
                               QPointF(box.center().x(), box.bottom()), QPointF(box.left(), box.center().y())}));
                path.closeSubpath();
            }},
    MarkRow{SessionBar::Mark::Bell, 0xffb26a00, 0xffffb454, QT_TRANSLATE_NOOP("SessionBar", "The bell has rung"),
            [](QPainterPath& path, const QRectF& box) {
                path.addPolygon(QPolygonF({QPointF(box.center().x(), box.top()), box.bottomRight(), box.bottomLeft()}));
                path.closeSubpath();
            }},
};

const MarkRow* RowOf(SessionBar::Mark mark)
{
    for (const MarkRow& row : kMarks)
        if (row.mark == mark)
            return &row;
    return nullptr;
}

class MarkEngine : public DrawnIcon
{
public:
    MarkEngine(const QIcon& picture, const MarkRow& row) : picture_(picture), row_(row) {}

    void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State state) override
    {
        if (!picture_.isNull())
            picture_.paint(painter, rect, Qt::AlignCenter, mode, state);
        const QColor ground = QGuiApplication::palette().color(QPalette::Window);
        const double side = picture_.isNull() ? rect.width() * 0.55 : rect.width() * 0.5;
        const QRectF box = picture_.isNull()
                               ? QRectF(rect.center().x() - side / 2, rect.center().y() - side / 2, side, side)
                               : QRectF(rect.right() + 1 - side, rect.bottom() + 1 - side, side, side);
        QPainterPath path;
        row_.shape(path, box.adjusted(1, 1, -1, -1));
        painter->save();
        painter->setRenderHint(QPainter::Antialiasing);
        const QColor color = QColor::fromRgb(ground.lightness() > 127 ? row_.onLight : row_.onDark);
        painter->strokePath(path, QPen(ground, side * 0.45, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin)); // a rim
        if (row_.mark == SessionBar::Mark::Lost)
            painter->strokePath(path, QPen(color, side * 0.24, Qt::SolidLine, Qt::RoundCap));
        else
            painter->fillPath(path, color);
        painter->restore();
    }
    QIconEngine* clone() const override { return new MarkEngine(picture_, row_); }

private:
    QIcon picture_;
    const MarkRow& row_;
};

} // namespace

QIcon MarkedPicture(const QIcon& picture, SessionBar::Mark mark)
{
    const MarkRow* row = RowOf(mark);
    return row == nullptr ? picture : QIcon(new MarkEngine(picture, *row));
}

QString MarkText(SessionBar::Mark mark)
{
    const MarkRow* row = RowOf(mark);
    return row == nullptr ? QString() : QCoreApplication::translate("SessionBar", row->text);
}

} // namespace kestrune
