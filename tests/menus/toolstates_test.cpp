#include <fakes/print.h>
#include <fakes/shellbench.h>
#include <menus/loadmenu.h>

#include <gtest/gtest.h>

#include "menuparts.h"

namespace kestrune {

using namespace Qt::StringLiterals;

namespace {

class ToolStatesTest : public testing::Test
{
protected:
    ToolStatesTest() { LoadMenu(menu_, bench_.layer); }
    void HostToolsOff()
    {
        bench_.layer.profile.ProfileSetString(u"MVServices"_s, u"Enabled"_s, u"False"_s, {},
                                              InstallationIniFile(bench_.layer.folders));
    }

    ShellBench bench_;
    MenuCmd& commands_ = bench_.Run().Menu();
    taMenuBar menu_;
};

TEST_F(ToolStatesTest, WithoutASession)
{
    menu_.AddTool(u"Toolbar"_s, ToolOf(10001));
    menu_.AddTool(u"Toolbar"_s, ToolOf(10002, u"[#104]"_s));
    menu_.AddTool(u"Toolbar"_s, ToolOf(9000, u"[#705]"_s));
    commands_.MenuInitFrame(menu_);
    for (const int id :
         {100, 300, 154, 101, 103, 110, 113, 513, 705, 711, 804, 401, 405, 415, 1201, 1204, 1103, 10001, 10002, 9000})
        EXPECT_TRUE(menu_.Tool(id)->enabled) << id;
    for (const int id : {104, 105, 106, 108, 109, 201, 203, 303, 308,  350,  351,
                         352, 501, 514, 599, 603, 707, 712, 805, 1101, 1108, 1301})
        EXPECT_FALSE(menu_.Tool(id)->enabled) << id;
    EXPECT_EQ(menu_.Tool(1103)->caption, u"Create a new session or open an existing one"_s);
    EXPECT_EQ(menu_.Tool(1101)->caption, u"Emulation"_s);
    EXPECT_TRUE(menu_.Tool(352)->visible);
}

TEST_F(ToolStatesTest, HostToolsShowWhereTheInstallationHasThem)
{
    commands_.MenuInitSession(menu_);
    EXPECT_TRUE(menu_.Tool(350)->visible && menu_.Tool(352)->enabled);
    HostToolsOff();
    commands_.MenuInitSession(menu_);
    EXPECT_FALSE(menu_.Tool(350)->visible || menu_.Tool(u"Toolbar"_s, 380)->visible);
    EXPECT_TRUE(menu_.Tool(349)->visible);
    commands_.MenuInitFrame(menu_);
    EXPECT_FALSE(menu_.Tool(353)->visible || menu_.Tool(353)->enabled);
}

TEST_F(ToolStatesTest, MacroMenuFollowsTheList)
{
    const auto items = [&] {
        QStringList lines;
        for (const MenuTool& tool : menu_.Tool(801)->tools)
            lines.append(tool.caption + u'|' + tool.toolTipText + u'|' + tool.action);
        return lines;
    };
    for (int twice = 0; twice < 2; ++twice)
        commands_.RefreshMacroMenu(menu_, u"Log in\tTo the host\t\r\nB\tx\tR & D & more\r\n"_s);
    EXPECT_EQ(items(), (QStringList{u"Log in|To the host|[#2001#Log in]"_s, u"R && D & more|x|[#2002#B]"_s}));
    EXPECT_EQ(menu_.Tool(2001)->style, 3);
    EXPECT_TRUE(menu_.Tool(801)->enabled && menu_.Tool(805)->enabled);
    commands_.RefreshMacroMenu(menu_, {});
    EXPECT_TRUE(items().isEmpty());
    EXPECT_FALSE(menu_.Tool(801)->enabled || menu_.Tool(805)->enabled);
}

} // namespace

} // namespace kestrune
