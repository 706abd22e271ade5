#include <app/housestyle.h>

#include <menubar/mixedcolor.h>

#include <QApplication>
#include <QEvent>
#include <QPainter>
#include <QStyleFactory>
#include <QStyleOption>

#include <array>
#include <cmath>

namespace kestrune {

namespace {

constexpr double EdgeShare = 0.28, LineShare = 0.16, BoxShare = 0.45; // of the ink in the ground
constexpr double HintShare = 0.6;
constexpr float LeastHintContrast = 0.25F; // difference in lightness, 0 to 1

bool IsDark(const QPalette& palette) { return palette.color(QPalette::Window).lightness() < 128; }

QColor Ink(const QPalette& palette, double share)
{
    return Mixed(palette.color(QPalette::Active, QPalette::Window),
                 palette.color(QPalette::Active, QPalette::WindowText), share);
}

// A toolkit style paints a chosen entry's picture in its everyday colours, on the colour of the selection.
QIcon AsSelected(const QIcon& icon, const QStyleOptionMenuItem& item, const QWidget* widget)
{
    const int side = item.maxIconWidth > 0 ? item.maxIconWidth : 16;
    const double scale = widget != nullptr ? widget->devicePixelRatioF() : qApp->devicePixelRatio();
    QIcon selected;
    for (const QIcon::State state : {QIcon::Off, QIcon::On})
        selected.addPixmap(icon.pixmap(QSize(side, side), scale, QIcon::Selected, state), QIcon::Active, state);
    return selected;
}

void DrawMenuItem(const QProxyStyle& style, const QStyleOptionMenuItem& option, QPainter& painter,
                  const QWidget* widget)
{
    QStyleOptionMenuItem item = option;
    const bool isSelected = item.state.testFlag(QStyle::State_Selected) && item.state.testFlag(QStyle::State_Enabled);
    if (isSelected && !item.icon.isNull())
        item.icon = AsSelected(item.icon, item, widget);
    style.QProxyStyle::drawControl(QStyle::CE_MenuItem, &item, &painter, widget);
    if (item.menuItemType == QStyleOptionMenuItem::Separator && item.text.isEmpty() && IsDark(item.palette)) {
        constexpr int margin = 6; // pixels
        painter.setPen(Ink(item.palette, LineShare));
        const int middle = item.rect.center().y();
        painter.drawLine(item.rect.left() + margin, middle, item.rect.right() - margin, middle);
    }
}

// A toolkit style draws edges darker than the ground: on a dark one they are gone.
void DrawEdge(QStyle::PrimitiveElement element, const QStyleOption& option, QPainter& painter)
{
    const QRectF inside = QRectF(option.rect).adjusted(0.5, 0.5, -0.5, -0.5);
    const bool isBox = element == QStyle::PE_IndicatorCheckBox, isRadio = element == QStyle::PE_IndicatorRadioButton;
    if (!isBox && !isRadio && element != QStyle::PE_FrameMenu && element != QStyle::PE_PanelMenu)
        return;
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setBrush(Qt::NoBrush);
    painter.setPen(Ink(option.palette, isBox || isRadio ? BoxShare : EdgeShare));
    if (isRadio)
        painter.drawEllipse(inside);
    else
        painter.drawRect(inside);
    painter.restore();
}

// --- the three marks of a maximised session window, in the menu bar

void DrawMinimise(QPainter& painter, const QRectF& box) { painter.drawLine(box.bottomLeft(), box.bottomRight()); }

void DrawRestore(QPainter& painter, const QRectF& box)
{
    const double step = std::round(box.width() / 4);
    painter.drawRect(QRectF(box.left(), box.top() + step, box.width() - step, box.height() - step));
    painter.drawPolyline(
        QPolygonF({QPointF(box.left() + step, box.top() + step), QPointF(box.left() + step, box.top()), box.topRight(),
                   QPointF(box.right(), box.bottom() - step), QPointF(box.right() - step, box.bottom() - step)}));
}

void DrawClose(QPainter& painter, const QRectF& box)
{
    painter.setRenderHint(QPainter::Antialiasing);
    painter.drawLine(box.topLeft(), box.bottomRight());
    painter.drawLine(box.topRight(), box.bottomLeft());
}

struct WindowMark
{
    QStyle::SubControl control;
    void (*draw)(QPainter& painter, const QRectF& box);
};
constexpr std::array kWindowMarks = {WindowMark{QStyle::SC_MdiMinButton, DrawMinimise},
                                     WindowMark{QStyle::SC_MdiNormalButton, DrawRestore},
                                     WindowMark{QStyle::SC_MdiCloseButton, DrawClose}};

void DrawWindowMarks(const QStyle& style, const QStyleOptionComplex& option, QPainter& painter, const QWidget* widget)
{
    constexpr double side = 8; // pixels
    for (const WindowMark& mark : kWindowMarks) {
        if (!option.subControls.testFlag(mark.control))
            continue;
        const QRect place = style.subControlRect(QStyle::CC_MdiControls, &option, mark.control, widget);
        if (place.isEmpty())
            continue;
        painter.save();
        if (option.activeSubControls.testFlag(mark.control)) {
            const bool isDown = option.state.testFlag(QStyle::State_Sunken);
            painter.fillRect(place, Ink(option.palette, isDown ? EdgeShare : LineShare));
        }
        painter.setPen(QPen(Ink(option.palette, 0.85), 1));
        const QPoint corner(place.left() + (place.width() - static_cast<int>(side)) / 2,
                            place.top() + (place.height() - static_cast<int>(side)) / 2);
        mark.draw(painter, QRectF(corner, QSizeF(side, side)));
        painter.restore();
    }
}

// Keeps the palette readable when the desktop brings another.
class PaletteKeeper : public QObject
{
public:
    explicit PaletteKeeper(QApplication& application) : QObject(&application)
    {
        application.installEventFilter(this);
        Keep();
    }
    bool eventFilter(QObject* watched, QEvent* event) override
    {
        if (watched == qApp && event->type() == QEvent::ApplicationPaletteChange)
            Keep();
        return false;
    }

private:
    static void Keep()
    {
        const QPalette now = QApplication::palette();
        if (const QPalette readable = Readable(now); readable != now)
            QApplication::setPalette(readable);
    }
};

} // namespace

void HouseStyle::drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                               const QWidget* widget) const
{
    QProxyStyle::drawPrimitive(element, option, painter, widget);
    if (IsDark(option->palette))
        DrawEdge(element, *option, *painter);
}

void HouseStyle::drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                             const QWidget* widget) const
{
    const auto* item = qstyleoption_cast<const QStyleOptionMenuItem*>(option);
    if (element == CE_MenuItem && item != nullptr) {
        DrawMenuItem(*this, *item, *painter, widget);
    } else if (element == CE_MenuBarItem && item != nullptr) { // one that is off stands on the bar like the others
        QStyleOptionMenuItem onBar = *item;
        onBar.palette.setBrush(QPalette::Disabled, QPalette::Window,
                               onBar.palette.brush(QPalette::Active, QPalette::Window));
        QProxyStyle::drawControl(element, &onBar, painter, widget);
    } else {
        QProxyStyle::drawControl(element, option, painter, widget);
    }
}

void HouseStyle::drawComplexControl(ComplexControl control, const QStyleOptionComplex* option, QPainter* painter,
                                    const QWidget* widget) const
{
    if (control == CC_MdiControls)
        DrawWindowMarks(*proxy(), *option, *painter, widget);
    else
        QProxyStyle::drawComplexControl(control, option, painter, widget);
}

QPalette Readable(QPalette palette)
{
    const QColor ground = palette.color(QPalette::Active, QPalette::Base);
    const QColor hint = palette.color(QPalette::Active, QPalette::PlaceholderText);
    const float seen = Mixed(ground, hint, hint.alphaF()).lightnessF();
    if (std::abs(seen - ground.lightnessF()) < LeastHintContrast)
        palette.setColor(QPalette::PlaceholderText,
                         Mixed(ground, palette.color(QPalette::Active, QPalette::Text), HintShare));
    return palette;
}

void DressApplication(QApplication& application)
{
    new PaletteKeeper(application);
    if (QApplication::style()->name().compare(QLatin1String("fusion"), Qt::CaseInsensitive) == 0)
        QApplication::setStyle(new HouseStyle(QStringLiteral("fusion"))); // the application owns it
}

} // namespace kestrune
