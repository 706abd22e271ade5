#include <fakes/print.h>
#include <menubar/tamenubar.h>

#include <gtest/gtest.h>

#include "menuparts.h"

namespace kestrune {

using namespace Qt::StringLiterals;

namespace {

void AddBandOf(taMenuBar& menu, const QString& key, std::vector<MenuTool> tools)
{
    EXPECT_TRUE(menu.AddBand(BandOf(key, BandType::Popup, std::move(tools))));
}

TEST(CommandId, OfActions)
{
    const std::pair<QString, int> rows[] = {{u"[#101]"_s, 101},
                                            {u"[#101"_s, 101},
                                            {u"[#101 anything"_s, 101},
                                            {u"[#2001#Name]"_s, 2001},
                                            {u"[#abc]"_s, 0},
                                            {u"[Sub x]"_s, 0},
                                            {u"^C"_s, 0},
                                            {QString(), 0},
                                            {u"[#99999999999]"_s, 999999}};
    for (const auto& [action, id] : rows)
        EXPECT_EQ(CommandId(action), id) << action.toStdString();
}

TEST(taMenuBar, WritesReachEveryBandAndReadsTheFirst)
{
    taMenuBar menu;
    MenuTool sub = ToolOf(300, u"[#300]"_s);
    sub.tools = {ToolOf(303, u"[#303]"_s)};
    AddBandOf(menu, u"Menu"_s, {sub});
    AddBandOf(menu, u"Toolbar"_s,
              {ToolOf(303, u"[#303]"_s), ToolOf(10001, u"[#303]"_s), ToolOf(10002, u"^C"_s), ToolOf(305, u"[#305]"_s)});
    std::vector<int> told;
    QObject::connect(&menu, &taMenuBar::CommandStateChanged, &menu, [&](int key) { told.push_back(key); });
    menu.SetToolProperty(303, ToolProperty::Enabled, false);
    EXPECT_FALSE(menu.Band(u"MENU"_s)->tools[0].tools[0].enabled);
    const auto& bar = menu.Band(u"toolbar"_s)->tools;
    EXPECT_FALSE(bar[0].enabled);
    EXPECT_FALSE(bar[1].enabled); // by its action
    EXPECT_FALSE(bar[2].enabled); // a plain tool right behind takes the change too
    EXPECT_TRUE(bar[3].enabled);
    EXPECT_EQ(menu.GetToolProperty(303, ToolProperty::Enabled), QVariant(false));
    EXPECT_EQ(told, std::vector{303});
}

TEST(taMenuBar, ActionIsWrittenByKeyAloneAndNeverEmpty)
{
    taMenuBar menu;
    AddBandOf(menu, u"Toolbar"_s, {ToolOf(303, u"[#303]"_s), ToolOf(10001, u"[#303]"_s)});
    menu.SetToolProperty(303, ToolProperty::Action, u"^C"_s);
    EXPECT_EQ(menu.Tool(303)->action, u"^C"_s);
    EXPECT_EQ(menu.Tool(10001)->action, u"[#303]"_s);
    menu.SetToolProperty(303, ToolProperty::Action, QString());
    EXPECT_EQ(menu.Tool(303)->action, u"[#303]"_s);
}

TEST(taMenuBar, UnknownIdsAreSilent)
{
    taMenuBar menu;
    AddBandOf(menu, u"Toolbar"_s, {ToolOf(303, u"[#303]"_s)});
    for (const int id : {0, 9999}) {
        menu.SetToolProperty(id, ToolProperty::Visible, true);
        EXPECT_FALSE(menu.GetToolProperty(id, ToolProperty::Caption).isValid());
    }
}

TEST(taMenuBar, BandKeysAreUnique)
{
    taMenuBar menu;
    AddBandOf(menu, u"Toolbar"_s, {});
    EXPECT_FALSE(menu.AddBand(BandOf(u"TOOLBAR"_s)));
    EXPECT_EQ(menu.Bands().size(), 1u);
}

TEST(taMenuBar, BandsAndToolsComeAndGoAndEachChangeIsTold)
{
    taMenuBar menu;
    int told = 0;
    QObject::connect(&menu, &taMenuBar::BandsChanged, &menu, [&] { ++told; });
    const auto tellsOnce = [&](bool done) { return std::exchange(told, 0) == (done ? 1 : 0) && done; };

    EXPECT_TRUE(tellsOnce(menu.AddBand(BandOf(u"Menu"_s))));
    EXPECT_TRUE(tellsOnce(menu.AddTool(u"MENU"_s, ToolOf(300))));
    EXPECT_TRUE(tellsOnce(menu.AddTool(u"Menu"_s, ToolOf(303), 300)));
    EXPECT_TRUE(tellsOnce(menu.AddTool(u"Menu"_s, ToolOf(305), 300)));
    EXPECT_TRUE(tellsOnce(menu.AddTool(u"Menu"_s, ToolOf(304), 300, 1)));
    EXPECT_TRUE(tellsOnce(menu.AddTool(u"Menu"_s, ToolOf(100), 0, 0)));
    EXPECT_FALSE(tellsOnce(menu.AddTool(u"Menu"_s, ToolOf(1), 999)));
    EXPECT_FALSE(tellsOnce(menu.AddTool(u"Other"_s, ToolOf(1))));
    std::vector<int> keys;
    menu.EachTool([&](MenuTool& tool) { keys.push_back(tool.key); });
    EXPECT_EQ(keys, (std::vector{100, 300, 303, 304, 305}));
    told = 0;

    EXPECT_TRUE(tellsOnce(menu.RemoveTool(u"menu"_s, 304)));
    EXPECT_FALSE(tellsOnce(menu.RemoveTool(u"menu"_s, 304)));
    EXPECT_EQ(menu.Tool(304), nullptr);
    EXPECT_NE(menu.Tool(u"Menu"_s, 305), nullptr);
    EXPECT_EQ(menu.Tool(u"Toolbar"_s, 305), nullptr);

    EXPECT_TRUE(
        tellsOnce(menu.ChangeBand(u"menu"_s, [](MenuBand& band) { band = BandOf(u"Stolen"_s, BandType::ToolBar); })));
    EXPECT_EQ(menu.Band(u"Menu"_s)->type, BandType::ToolBar); // its key is no field to change
    EXPECT_FALSE(tellsOnce(menu.ChangeBand(u"Stolen"_s, [](MenuBand&) {})));
    EXPECT_TRUE(tellsOnce(menu.RemoveBand(u"mENU"_s)));
    EXPECT_FALSE(tellsOnce(menu.RemoveBand(u"Menu"_s)));

    menu.SetBands({BandOf(u"A"_s), BandOf(u"a"_s, BandType::ToolBar), BandOf(u"B"_s)});
    ASSERT_EQ(menu.Bands().size(), 2u);
    EXPECT_EQ(menu.Band(u"a"_s)->type, BandType::Popup); // the first stays
}

TEST(taMenuBar, BandPropertiesByNameOrByType)
{
    taMenuBar menu;
    menu.SetBands({BandOf(u"Toolbar"_s, BandType::ToolBar), BandOf(u"Mine"_s, BandType::ToolBar),
                   BandOf(u"Menu"_s, BandType::MainMenu)});
    int told = 0;
    QObject::connect(&menu, &taMenuBar::BandsChanged, &menu, [&] { ++told; });
    menu.SetBandProperty(u"TOOLBAR"_s, {}, BandProperty::Visible, false);
    EXPECT_FALSE(menu.Band(u"Toolbar"_s)->visible);
    EXPECT_TRUE(menu.Band(u"Mine"_s)->visible);
    menu.SetBandProperty({}, BandType::ToolBar, BandProperty::LargeIcons, false);
    EXPECT_EQ(menu.Band(u"Mine"_s)->icons, IconSize::Small);
    EXPECT_EQ(menu.Band(u"Menu"_s)->icons, IconSize::Large);
    EXPECT_EQ(std::exchange(told, 0), 2);
    menu.SetBandProperty({}, BandType::ToolBar, BandProperty::LargeIcons, false);
    menu.SetBandProperty(u"None"_s, {}, BandProperty::Visible, false);
    EXPECT_EQ(told, 0); // nothing changed
}

} // namespace

} // namespace kestrune
