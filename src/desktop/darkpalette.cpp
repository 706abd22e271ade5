#include <desktop/darkpalette.h>

#include <QGuiApplication>

#include <utility>

namespace kestrune {

QPalette DarkPalette()
{
    const QColor window(0x2A2D34), base(0x1F2228), text(0xE4E7EC), faint(0x858C99), accent(0x4C7FD0);
    // From a button's and a window's colour the toolkit makes the shades for edges.
    QPalette palette(QColor(0x363A43), window);
    for (const auto& [role, color] : {std::pair{QPalette::WindowText, text},
                                      {QPalette::Text, text},
                                      {QPalette::ButtonText, text},
                                      {QPalette::BrightText, QColor(Qt::white)},
                                      {QPalette::Base, base},
                                      {QPalette::AlternateBase, window},
                                      {QPalette::ToolTipBase, QColor(0x3A3F49)},
                                      {QPalette::ToolTipText, text},
                                      {QPalette::PlaceholderText, faint},
                                      {QPalette::Highlight, accent},
                                      {QPalette::HighlightedText, QColor(Qt::white)},
                                      {QPalette::Link, QColor(0x82B1FF)},
                                      {QPalette::LinkVisited, QColor(0xC39BE8)}})
        palette.setColor(role, color);
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        palette.setColor(QPalette::Disabled, role, faint);
    palette.setColor(QPalette::Disabled, QPalette::Highlight, QColor(0x454A55));
    return palette;
}

void DarkWindows::Follow(bool dark)
{
    const QPalette now = QGuiApplication::palette();
    const bool isLight = now.color(QPalette::Window).lightness() > now.color(QPalette::WindowText).lightness();
    if (dark && isLight) {
        QGuiApplication::setPalette(DarkPalette());
        areOurs_ = true;
    } else if (!dark && areOurs_) {
        QGuiApplication::setPalette(QPalette()); // the style's own again
        areOurs_ = false;
    }
}

} // namespace kestrune
