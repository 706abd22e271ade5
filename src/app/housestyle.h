#pragma once

// The toolkit's own style where no desktop brings one: what it leaves hard to see, above all on dark desktops, is drawn
// so that it can be seen. A desktop's own style is left as it is.

#include <QProxyStyle>

class QApplication;

namespace kestrune {

class HouseStyle : public QProxyStyle
{
    Q_OBJECT

public:
    using QProxyStyle::QProxyStyle;

    void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                       const QWidget* widget) const override;
    void drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                     const QWidget* widget) const override;
    void drawComplexControl(ComplexControl control, const QStyleOptionComplex* option, QPainter* painter,
                            const QWidget* widget) const override;
};

// A palette whose hints stand out from the ground that they are written on; the same one when they do.
QPalette Readable(QPalette palette);

// From now on, also when the desktop changes from light to dark.
void DressApplication(QApplication& application);

} // namespace kestrune
