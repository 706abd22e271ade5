#include <app/position.h>

#include <gtest/gtest.h>

namespace kestrune {

namespace {

constexpr ScreenArea kScreen{0, 0, 1600, 800};

struct PositionCase
{
    const char* name;
    ScreenArea desktop;
    StoredPosition stored;
    WindowPlace place;
};

class PositionTest : public testing::TestWithParam<PositionCase>
{};

TEST_P(PositionTest, ComesBackOnAScreenThatExists)
{
    const PositionCase& each = GetParam();
    const WindowPlace place = FramePosition(each.stored, kScreen, each.desktop);
    EXPECT_EQ(place.left, each.place.left);
    EXPECT_EQ(place.top, each.place.top);
    EXPECT_EQ(place.width, each.place.width);
    EXPECT_EQ(place.height, each.place.height);
    EXPECT_EQ(place.state, each.place.state);
}

INSTANTIATE_TEST_SUITE_P(
    Cases, PositionTest,
    testing::Values(PositionCase{"NothingStored", kScreen, {}, {200, 100, 1200, 600, 0}},
                    PositionCase{"AsItWas", kScreen, {100, 50, 900, 500, 2}, {100, 50, 900, 500, 2}},
                    PositionCase{"LeftOfTheScreen", kScreen, {-50, -20, 900, 500, 0}, {0, 0, 900, 500, 0}},
                    PositionCase{"ScreenToTheLeftStillThere",
                                 {-1600, 0, 3200, 800},
                                 {-50, 10, 900, 500, 0},
                                 {-50, 10, 900, 500, 0}},
                    PositionCase{"BeyondTheFarEdge", kScreen, {1440, 720, 100, 50, 0}, {200, 100, 100, 50, 0}},
                    PositionCase{"JustInside", kScreen, {1439, 719, 100, 50, 0}, {1439, 719, 100, 50, 0}},
                    PositionCase{"ScreenToTheRightHasGone", kScreen, {2000, 100, 900, 500, 0}, {200, 100, 900, 500, 0}},
                    PositionCase{"TooWideAndTooHigh", kScreen, {100, 50, 1501, 751, 0}, {100, 50, 1200, 600, 0}},
                    PositionCase{"FillsItJust", kScreen, {100, 50, 1500, 750, 0}, {100, 50, 1500, 750, 0}},
                    PositionCase{"NoSize", kScreen, {100, 50, 0, -1, 0}, {100, 50, 1200, 600, 0}}),
    [](const auto& each) { return std::string(each.param.name); });

TEST(Position, TheStartsOwnStateOverrides)
{
    EXPECT_EQ(FramePosition({100, 50, 900, 500, 2}, kScreen, kScreen, 1).state, 1);
}

} // namespace

} // namespace kestrune
