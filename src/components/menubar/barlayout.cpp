#include <menubar/barlayout.h>

#include <algorithm>
#include <cstdint>

namespace kestrune {

namespace {

constexpr int GripSize = 24; // pixels

} // namespace

std::vector<int> PanelWidths(std::span<const PanelSize> panels, int room)
{
    std::int64_t firm = 0;
    int springs = 0;
    for (const PanelSize& panel : panels) {
        firm += panel.spring ? 0 : panel.wanted;
        springs += panel.spring ? 1 : 0;
    }
    room = std::max(room, 0);
    const std::int64_t shared = std::max<std::int64_t>(room - firm, 0);
    std::vector<int> widths;
    int springsSoFar = 0;
    std::int64_t wantedSoFar = 0;
    for (const PanelSize& panel : panels) {
        if (panel.spring) {
            const std::int64_t start = shared * springsSoFar / springs;
            ++springsSoFar;
            widths.push_back(static_cast<int>(shared * springsSoFar / springs - start));
        } else if (firm <= room) {
            widths.push_back(panel.wanted);
        } else { // borders by running sums, so that no pixel is lost
            const std::int64_t start = room * wantedSoFar / firm;
            wantedSoFar += panel.wanted;
            widths.push_back(static_cast<int>(room * wantedSoFar / firm - start));
        }
    }
    return widths;
}

QPoint FloatingPlace(const QRect& bar, const QList<QRect>& screens, const QPoint& home)
{
    const bool seen = std::any_of(screens.begin(), screens.end(), [&](const QRect& screen) {
        const QRect part = screen & bar;
        return part.topLeft() == bar.topLeft() && part.width() >= std::min(GripSize, bar.width()) &&
               part.height() >= std::min(GripSize, bar.height());
    });
    return seen ? bar.topLeft() : home;
}

} // namespace kestrune
