#pragma once

// Where bars and what is on them come to stand.

#include <QList>
#include <QPoint>
#include <QRect>

#include <span>
#include <vector>

namespace kestrune {

inline constexpr int TwipsPerPixel = 15; // widths of tools are kept in twips

struct PanelSize
{
    int wanted = 0;      // pixels: what it holds, or its fixed width
    bool spring = false; // takes what the others leave
};

// One width for each panel. Springs share evenly what the others leave, down to nothing; where even that is too
// little, the others shrink in proportion.
std::vector<int> PanelWidths(std::span<const PanelSize> panels, int room);

// A floating bar belongs where its grip, at the upper left, can be seen and reached: its own place, or `home` when no
// screen shows enough of it. All in pixels of the desktop.
QPoint FloatingPlace(const QRect& bar, const QList<QRect>& screens, const QPoint& home);

} // namespace kestrune
