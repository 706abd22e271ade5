#include <app/position.h>

namespace kestrune {

namespace {

// One direction of the rule: where the window starts and how long it is.
struct Span
{
    int start;
    int length;
};

Span CorrectedSpan(std::optional<int> start, std::optional<int> length, int screenLength, int desktopStart,
                   int desktopLength)
{
    constexpr int startFraction = 8;
    constexpr double farEdge = 0.9;
    constexpr double usualPart = 0.75;
    const int usualStart = screenLength / startFraction;
    const int usualLength = static_cast<int>(screenLength * usualPart);

    Span span{start.value_or(usualStart), length.value_or(usualLength)};
    if (span.start < desktopStart)
        span.start = desktopStart;
    if (span.start >= desktopLength * farEdge)
        span.start = usualStart;
    if (span.length <= 0 || span.start + span.length > desktopLength)
        span.length = usualLength;
    return span;
}

constexpr GlobalId kPlaceIds[] = {GlobalId::MainLeft, GlobalId::MainTop, GlobalId::MainWidth, GlobalId::MainHeight};

} // namespace

WindowPlace FramePosition(const StoredPosition& stored, const ScreenArea& screen, const ScreenArea& desktop,
                          std::optional<int> shownAs)
{
    const Span across = CorrectedSpan(stored.left, stored.width, screen.width, desktop.left, desktop.width);
    const Span down = CorrectedSpan(stored.top, stored.height, screen.height, desktop.top, desktop.height);
    return {across.start, down.start, across.length, down.length, shownAs.value_or(stored.state)};
}

WindowPlace PosFormGet(const GlobalValues& values, const FrameWindow& frame, std::optional<int> shownAs)
{
    const auto read = [&](GlobalId id) {
        return values.Text(id).isEmpty() ? std::nullopt : std::optional(values.Number(id));
    };
    const StoredPosition stored{read(kPlaceIds[0]), read(kPlaceIds[1]), read(kPlaceIds[2]), read(kPlaceIds[3]),
                                values.Number(GlobalId::MainWindowState)};
    return FramePosition(stored, frame.PrimaryScreen(), frame.VirtualScreen(), shownAs);
}

void PosFormSave(GlobalValues& values, const FrameWindow& frame, bool saveState)
{
    if (!frame.IsVisible())
        return;
    const WindowPlace place = frame.Place();
    values.SetNumber(GlobalId::MainLeft, place.left);
    values.SetNumber(GlobalId::MainTop, place.top);
    values.SetNumber(GlobalId::MainWidth, place.width);
    values.SetNumber(GlobalId::MainHeight, place.height);
    if (saveState)
        values.SetNumber(GlobalId::MainWindowState, place.state);
}

} // namespace kestrune
