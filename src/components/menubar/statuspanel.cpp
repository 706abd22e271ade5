#include "statuspanel.h"

#include <menubar/mixedcolor.h>

#include <QEvent>
#include <QHelpEvent>
#include <QPainter>
#include <QToolTip>

namespace kestrune {

namespace {

constexpr int Side = 7, Gap = 5, Above = 3; // pixels: left and right of the contents, between them, above and below

} // namespace

void StatusPanel::SetFace(const Face& face)
{
    const bool same = face.text == face_.text && face.toolTip == face_.toolTip && face.align == face_.align &&
                      face.border == face_.border && face.wraps == face_.wraps && face.lit == face_.lit &&
                      face.separated == face_.separated && face.emphasised == face_.emphasised &&
                      face.picture.cacheKey() == face_.picture.cacheKey();
    if (same)
        return;
    face_ = face;
    setAccessibleName(face.text.isEmpty() ? face.toolTip : face.text);
    setAccessibleDescription(face.toolTip);
    update();
}

int StatusPanel::PictureSide() const { return face_.picture.isNull() ? 0 : fontMetrics().height(); }

int StatusPanel::WantedWidth() const
{
    const int text = face_.text.isEmpty() ? 0 : fontMetrics().horizontalAdvance(face_.text) + 1;
    const int picture = PictureSide();
    return 2 * Side + text + picture + (text > 0 && picture > 0 ? Gap : 0);
}

int StatusPanel::Height() const { return fontMetrics().height() + 2 * Above; }

QRect StatusPanel::TextPlace() const
{
    const int picture = PictureSide();
    return rect().adjusted(Side + (picture > 0 ? picture + Gap : 0), 0, -Side + 1, 0);
}

bool StatusPanel::IsCut() const
{
    return !face_.text.isEmpty() && fontMetrics().horizontalAdvance(face_.text) > TextPlace().width();
}

bool StatusPanel::event(QEvent* event)
{
    if (event->type() != QEvent::ToolTip)
        return QWidget::event(event);
    QString text = face_.toolTip;
    if (IsCut() && face_.text != face_.toolTip)
        text = face_.toolTip.isEmpty() ? face_.text : face_.text + QLatin1Char('\n') + face_.toolTip;
    // The text may be the host's: shown as it is, not as markup.
    QToolTip::showText(
        static_cast<QHelpEvent*>(event)->globalPos(),
        text.isEmpty() ? QString() : QStringLiteral("<p style='white-space:pre-wrap'>%1</p>").arg(text.toHtmlEscaped()),
        this);
    return true;
}

void StatusPanel::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    const QColor window = palette().color(QPalette::Window);
    const QColor ink = palette().color(QPalette::Active, QPalette::WindowText);
    const QColor line = Mixed(window, ink, 0.22);
    const QRect box = rect().adjusted(2, 1, -2, -2);
    if (face_.border == Border::Inset) {
        painter.fillRect(box, Mixed(window, ink, 0.05));
        painter.setPen(Mixed(window, ink, 0.14));
        painter.drawRect(box);
    } else if (face_.border == Border::Raised) {
        painter.fillRect(box, Mixed(window, palette().color(QPalette::Light), 0.5));
        painter.setPen(line);
        painter.drawRect(box);
    }
    if (face_.separated && face_.border == Border::None) {
        painter.setPen(line);
        painter.drawLine(0, 3, 0, height() - 4);
    }
    if (const int side = PictureSide())
        face_.picture.paint(&painter, face_.text.isEmpty() ? (width() - side) / 2 : Side, (height() - side) / 2, side,
                            side, Qt::AlignCenter, face_.lit ? QIcon::Normal : QIcon::Disabled);
    if (face_.text.isEmpty())
        return;
    QFont font = this->font();
    font.setBold(face_.emphasised);
    painter.setFont(font);
    painter.setPen(face_.lit ? ink : palette().color(QPalette::Disabled, QPalette::WindowText));
    const QRect place = TextPlace();
    if (face_.wraps && place.height() >= 2 * fontMetrics().height())
        painter.drawText(place, int(face_.align | Qt::AlignVCenter) | Qt::TextWordWrap, face_.text);
    else
        painter.drawText(place, int(face_.align | Qt::AlignVCenter) | Qt::TextSingleLine,
                         painter.fontMetrics().elidedText(face_.text, Qt::ElideRight, place.width()));
}

} // namespace kestrune
