#include <app/missingpieces.h>
#include <dispatch/failure.h>
#include <fakes/print.h>
#include <fakes/shellbench.h>
#include <menus/loadmenu.h>

#include <QFileInfo>

#include <gtest/gtest.h>

#include <filesystem>

#include "menuparts.h"

namespace kestrune {

using namespace Qt::StringLiterals;

namespace {

class MenuCmdTest : public testing::Test
{
protected:
    ShellBench bench_;
    Kestrune& application_ = bench_.Run();
    MenuCmd& menu_ = application_.Menu();

    std::shared_ptr<clsSession> Open(const QString& name = u"a.orcf"_s)
    {
        auto session = application_.Sessions().Add(bench_.SessionFile(name), 0);
        bench_.lines.Current().Connect();
        return session;
    }
    void Do(const QString& action, clsSession* session = nullptr)
    {
        menu_.MenuToolAction(action, false, session, Cause::User);
    }
    QStringList Captions(const MenuTool& tool) const
    {
        QStringList captions;
        for (const MenuTool& each : tool.tools)
            if (each.visible)
                captions.append((each.checked ? u"*"_s : QString()) + each.caption);
        return captions;
    }
};

TEST_F(MenuCmdTest, ActionsOfEachForm)
{
    const auto session = Open();
    bench_.lines.Current().sent.clear();
    Do(u"^C^M^"_s, session.get());
    EXPECT_EQ(bench_.lines.Current().sent, "\x03\r");
    Do(u"^C"_s); // no session: dropped
    Do(QString(), session.get());
    Do(u"[#9999]"_s, session.get());
    EXPECT_TRUE(bench_.ask.boxes.empty());

    Do(u"[MsgBox 1]"_s); // runs without a session too
    Do(u"[#abc]"_s, session.get());
    EXPECT_EQ(bench_.engine->texts, (QStringList{u"0:MsgBox 1\r\n"_s, u"1:#abc\r\n"_s}));
}

TEST_F(MenuCmdTest, MacroWhileAScriptRunsBeeps)
{
    application_.ScriptEngine(false);
    bench_.engine->running = true;
    Do(u"[#2001#Foo]"_s);
    EXPECT_EQ(bench_.ask.beeps, 1);
    EXPECT_TRUE(bench_.pieces.log.isEmpty());
    bench_.engine->running = false;
    Do(u"[#2001#Foo bar]rest"_s);
    EXPECT_EQ(bench_.pieces.log, QStringList{u"macro Foo bar"_s});
}

TEST_F(MenuCmdTest, SessionCommands)
{
    const auto session = Open();
    Do(u"[#1302]"_s, session.get());
    EXPECT_EQ(session->WindowState(), 2);
    Do(u"[#599]"_s, session.get());
    EXPECT_EQ(session->WindowState(), 0);
    Do(u"[#1304]"_s, session.get());
    ASSERT_EQ(application_.Sessions().Count(), 2);
    EXPECT_EQ(application_.Sessions().Item(1)->FileName(), session->FileName());
    Do(u"[#515]"_s); // the first of the window list
    EXPECT_EQ(application_.ActiveSession(), session);
    Do(u"[#549]"_s);

    bench_.ask.answers = {MsgResult::No, MsgResult::Yes};
    Do(u"[#104]"_s, session.get()); // connected: asked
    EXPECT_EQ(application_.Sessions().Count(), 2);
    Do(u"[#104]"_s, session.get());
    EXPECT_EQ(application_.Sessions().Count(), 1);
}

// Until the capture dialogs stand, a file dialog starts a capture.
TEST_F(MenuCmdTest, CaptureAndPrinterAreTurnedOnAndOff)
{
    const auto session = Open();
    MissingCommandPieces pieces(bench_.ask, {}, {});
    const QString file = bench_.Home(u"capture.txt"_s);
    bench_.ask.files = {std::nullopt, file};
    pieces.ShowCaptureStart(*session);
    EXPECT_EQ(session->Emulator().CaptureSource(), 0) << "cancelled";
    pieces.ShowCaptureStart(*session);
    EXPECT_EQ(session->Emulator().CaptureFileName(), file);
    pieces.ShowCaptureStop(*session);
    EXPECT_EQ(session->Emulator().CaptureSource(), 0);
    EXPECT_TRUE(bench_.outputs.files.contains(file));

    bench_.outputs.readOnly = true;
    bench_.ask.files = {file};
    pieces.ShowCaptureStart(*session);
    ASSERT_EQ(bench_.ask.boxes.size(), 1u);
    EXPECT_EQ(bench_.ask.boxes[0].text, u"The selected file cannot be updated. Please choose a different file."_s);

    Do(u"[#201]"_s, session.get());
    EXPECT_EQ(session->Emulator().PrinterMode(), 1);
    Do(u"[#201]"_s, session.get());
    EXPECT_EQ(session->Emulator().PrinterMode(), 0);
    Do(u"[#202]"_s, session.get());
    EXPECT_EQ(bench_.printing.jobs.size(), 1u);
}

TEST_F(MenuCmdTest, BarsAreFlippedAndStored)
{
    Do(u"[#1201]"_s);
    EXPECT_FALSE(application_.Boolean(GlobalId::ToolbarVisible));
    EXPECT_EQ(bench_.Stored(u"ToolBar"_s), u"0"_s);
    Do(u"[#1201]"_s);
    EXPECT_TRUE(application_.Boolean(GlobalId::ToolbarVisible));
}

TEST_F(MenuCmdTest, SaveOfAFileThatCannotBeWrittenLeadsToSaveAs)
{
    const auto session = Open();
    const QString file = session->FileName();
    session->Settings().SetValue(Setting("HistoryRows"), 77);
    std::filesystem::remove(file.toStdString());
    std::filesystem::create_directory(file.toStdString()); // nothing can be put there
    bench_.ask.files = {bench_.Home(u"b.orcf"_s)};
    Do(u"[#105]"_s, session.get());
    ASSERT_EQ(bench_.ask.boxes.size() + static_cast<std::size_t>(bench_.Frame().notices.size()), 1u);
    if (!bench_.ask.boxes.empty()) {
        EXPECT_TRUE(bench_.ask.boxes[0].text.endsWith(
            u"To save a copy, click OK, then give the session a new name in the Save As dialog box."_s));
        EXPECT_EQ(bench_.ask.boxes[0].flags, MsgFlag::Exclamation);
        EXPECT_EQ(session->FileName(), bench_.Home(u"b.orcf"_s));
    }
}

TEST_F(MenuCmdTest, RecentFilesAndWindowsFillTheirMenus)
{
    taMenuBar& bars = bench_.Frame().menu;
    QObject::connect(&bars, &taMenuBar::BandOpen, &bars, [&](MenuTool& tool) { menu_.BandOpen(bars, tool, nullptr); });
    application_.AddRecent(u"/x/b&c.orcf"_s);
    application_.AddRecent(bench_.Home(u"a.orcf"_s));
    const auto first = Open(u"one.orcf"_s);
    const auto second = Open(u"two.orcf"_s);

    for (int times = 0; times < 2; ++times) { // opened twice: nothing is doubled
        const QStringList file = Captions(*bars.OpenTool(u"Menu"_s, 100));
        EXPECT_EQ(file.filter(u"orcf"_s), (QStringList{u"&1  a.orcf"_s, u"&2  /x/b&&c.orcf"_s}));
        const QStringList window = Captions(*bars.OpenTool(u"Menu"_s, 500));
        EXPECT_TRUE(window.contains(u"&1  one"_s)) << window.join(u' ').toStdString();
        EXPECT_TRUE(window.contains(u"*&2  two"_s));
    }
    EXPECT_EQ(bars.Tool(114)->action, u"[#114]"_s);
    EXPECT_TRUE(Captions(*bars.OpenTool(u"Menu"_s, 99)).contains(u"*Session &Bar"_s));
}

TEST_F(MenuCmdTest, BarsFollowTheSettingsInEveryMenu)
{
    application_.SetBoolean(GlobalId::ToolbarVisible, false);
    application_.SetBoolean(GlobalId::LargeIcons, false);
    taMenuBar own;
    const auto session = Open();
    EXPECT_EQ(menu_.LoadSessionMenu(*session, own), 0);
    menu_.InitSessionMenu(*session, own);
    EXPECT_FALSE(own.Band(u"Toolbar"_s)->visible);
    EXPECT_EQ(own.Band(u"Toolbar"_s)->icons, IconSize::Small);
    EXPECT_TRUE(own.Band(u"StatusBar"_s)->visible);
    EXPECT_TRUE(own.Tool(104)->enabled);

    menu_.SetBandProperty(u"STATUSBAR"_s, {}, BandProperty::Visible, false);
    EXPECT_FALSE(bench_.Frame().menu.Band(u"StatusBar"_s)->visible);
}

TEST_F(MenuCmdTest, ChangedMenuFilesAreLoadedWhenTheDesignerSaysSo)
{
    EXPECT_EQ(menu_.FrameMenuSource(), MenuSource::BuiltIn);
    bench_.pieces.duringDesigner = [&] {
        QFile file(bench_.layer.folders.AppDataDir + kMenuFileName);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("[Menu]\r\nBandCount=1\r\nKEY_1=Menu\r\nTYPE_1=2\r\n");
    };
    Do(u"[#711]"_s);
    EXPECT_EQ(menu_.FrameMenuSource(), MenuSource::Personal);
    EXPECT_EQ(bench_.Frame().menu.Bands().size(), 1u);
}

TEST_F(MenuCmdTest, ClickOnTheTabPopupMeansItsOwnSession)
{
    const auto first = Open(u"one.orcf"_s);
    const auto second = Open(u"two.orcf"_s);
    taMenuBar& bars = bench_.Frame().menu;
    ASSERT_TRUE(menu_.PrepareTabMenu(bars, first->frmSession()->Handle()));
    menu_.ToolClick(bars, u"TabCtx"_s, *bars.Tool(ToolId::TabActivate), nullptr);
    EXPECT_EQ(application_.ActiveSession(), first);
}

TEST_F(MenuCmdTest, FailuresOfAClickAreToldInTheStatusLineOrAsMissing)
{
    const auto session = Open();
    bench_.pieces.duringDesigner = [] { throw Failure(ErrorNumber::NotImplemented, u"Not built."_s, u"test"_s); };
    taMenuBar bars;
    menu_.ToolClick(bars, {}, ToolOf(711, u"[#711]"_s), session.get());
    ASSERT_EQ(bench_.ask.boxes.size(), 1u);
    EXPECT_EQ(bench_.ask.boxes[0].flags, MsgFlag::Information);
}

} // namespace

} // namespace kestrune
