// Clicks on text of the screen, by the mouse table.

#include <emulator/control/mousereply.h>
#include <fakes/emulatorbench.h>

#include <gtest/gtest.h>

namespace kestrune {

using namespace Qt::StringLiterals;

namespace {

struct ReplyCase
{
    const char* name;
    MouseClick click;
    std::optional<QString> reply;
};

class MouseReplies : public testing::TestWithParam<ReplyCase>
{};

TEST_P(MouseReplies, ComeFromTheTable)
{
    EmulatorBench bench;
    bench.Connect();
    //              0123456789012345678
    bench.HostSays("1. Orders  F3=Exit\r\n中文3=x");
    auto& control = bench.control;
    control.MouseTableAdd(1, u"(broken"_s, u"never"_s, {});
    control.MouseTableAdd(1, u"(\\d)\\. \\w+"_s, u"$1\r"_s, u"$0 for $$5$"_s);
    control.MouseTableAdd(2, u"F\\d=\\w+"_s, u"right"_s, {});
    control.MouseTableAdd(1, u"F(\\d)=\\w+"_s, {}, u"F$1"_s);
    control.MouseTableAdd(1, u"文"_s, u"wide"_s, {});
    EXPECT_EQ(MouseReply(control, GetParam().click), GetParam().reply);
    control.Settings().SetValue(Setting("MouseEnable"), false);
    EXPECT_EQ(MouseReply(control, GetParam().click), std::nullopt);
}

INSTANTIATE_TEST_SUITE_P(All, MouseReplies,
                         testing::Values(ReplyCase{"FirstCharacter", {1, false, 0, 0}, u"1\r"_s},
                                         ReplyCase{"LastCharacter", {1, false, 8, 0}, u"1\r"_s},
                                         ReplyCase{"BehindTheMatch", {1, false, 9, 0}, std::nullopt},
                                         ReplyCase{"DoubleClick", {1, true, 3, 0}, u"1. Orders for $5$"_s},
                                         ReplyCase{"OtherButton", {2, false, 12, 0}, u"right"_s},
                                         ReplyCase{"NothingForThatButton", {4, false, 12, 0}, std::nullopt},
                                         ReplyCase{"NothingForASingleClick", {1, false, 12, 0}, std::nullopt},
                                         ReplyCase{"OnlyADoubleClick", {1, true, 12, 0}, u"F3"_s},
                                         ReplyCase{"WideBefore", {1, false, 1, 1}, std::nullopt},
                                         ReplyCase{"WideFirstCell", {1, false, 2, 1}, u"wide"_s},
                                         ReplyCase{"WideSecondCell", {1, false, 3, 1}, u"wide"_s},
                                         ReplyCase{"OutsideTheScreen", {1, false, 200, 0}, std::nullopt}),
                         [](const auto& test) { return test.param.name; });

} // namespace

} // namespace kestrune
