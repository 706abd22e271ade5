#include <fakes/print.h>
#include <menubar/tamenubar.h>
#include <menus/defaultmenu.h>

#include <gtest/gtest.h>

#include <set>

namespace kestrune {

using namespace Qt::StringLiterals;

namespace {

MenuTool ToolOf(int key, const QString& action)
{
    MenuTool tool;
    tool.key = key;
    tool.caption = QString::number(key);
    tool.action = action;
    return tool;
}

void AddBandOf(taMenuBar& menu, const QString& key, std::vector<MenuTool> tools)
{
    MenuBand band;
    band.key = key;
    band.tools = std::move(tools);
    EXPECT_TRUE(menu.AddBand(std::move(band)));
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
    LoadDefaultMenu(menu);
    for (const int id : {0, 9999}) {
        menu.SetToolProperty(id, ToolProperty::Visible, true);
        EXPECT_FALSE(menu.GetToolProperty(id, ToolProperty::Caption).isValid());
    }
}

TEST(taMenuBar, BandKeysAreUnique)
{
    taMenuBar menu;
    AddBandOf(menu, u"Toolbar"_s, {});
    MenuBand again;
    again.key = u"TOOLBAR"_s;
    EXPECT_FALSE(menu.AddBand(again));
    EXPECT_EQ(menu.Bands().size(), 1u);
}

TEST(DefaultMenu, HasTheSixBandsAndEachToolItsOwnCommand)
{
    taMenuBar menu;
    LoadDefaultMenu(menu);
    LoadDefaultMenu(menu); // replaces what stands there
    QStringList keys;
    for (const MenuBand& band : menu.Bands())
        keys.append(band.key);
    EXPECT_EQ(keys,
              (QStringList{u"Menu"_s, u"StatusBar"_s, u"Toolbar"_s, u"ContextMenu"_s, u"SessionBar"_s, u"TabCtx"_s}));
    std::set<QString> shortcuts;
    menu.EachTool([&](MenuTool& tool) {
        EXPECT_EQ(CommandId(tool.action), tool.key);
        EXPECT_FALSE(tool.caption.isEmpty());
        EXPECT_TRUE(tool.shortcut.isEmpty() || shortcuts.insert(tool.shortcut).second) << tool.shortcut.toStdString();
    });
}

} // namespace

} // namespace kestrune
