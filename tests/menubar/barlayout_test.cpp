#include <menubar/barlayout.h>

#include <gtest/gtest.h>

#include <numeric>

namespace kestrune {
namespace {

TEST(BarLayout, PanelsShareTheWidth)
{
    struct Case
    {
        const char* what;
        std::vector<PanelSize> panels;
        int room;
        std::vector<int> widths;
    };
    const Case cases[] = {
        {"a spring takes the rest", {{50, false}, {0, true}, {30, false}}, 200, {50, 120, 30}},
        {"two springs share it", {{51, false}, {0, true}, {0, true}}, 200, {51, 74, 75}},
        {"none: the rest stays free", {{50, false}, {60, false}}, 200, {50, 60}},
        {"springs give way first", {{50, false}, {90, true}, {50, false}}, 100, {50, 0, 50}},
        {"then all shrink alike", {{60, false}, {0, true}, {30, false}}, 45, {30, 0, 15}},
        {"no room", {{60, false}, {0, true}}, -5, {0, 0}},
        {"nothing wanted", {{0, false}, {0, false}}, 0, {0, 0}},
        {"no panels", {}, 10, {}},
    };
    for (const Case& row : cases)
        EXPECT_EQ(PanelWidths(row.panels, row.room), row.widths) << row.what;
}

TEST(BarLayout, AFloatingBarIsWhereItCanBeGripped)
{
    const QPoint home(7, 8);
    const QList<QRect> screens{QRect(0, 0, 1000, 800), QRect(1000, 0, 500, 500)};
    const std::pair<QRect, QPoint> rows[] = {
        {QRect(10, 20, 300, 40), QPoint(10, 20)}, {QRect(1400, 400, 300, 40), QPoint(1400, 400)},
        {QRect(1490, 400, 300, 40), home},        {QRect(-5, 20, 300, 40), home},
        {QRect(10, 790, 300, 40), home},          {QRect(1200, 600, 300, 40), home},
        {QRect(990, 100, 300, 10), home},         {QRect(970, 100, 300, 10), QPoint(970, 100)},
    };
    for (const auto& [bar, place] : rows)
        EXPECT_EQ(FloatingPlace(bar, screens, home), place) << bar.x() << "," << bar.y();
    EXPECT_EQ(FloatingPlace(QRect(1, 2, 3, 4), {}, home), home);
}

} // namespace
} // namespace kestrune
