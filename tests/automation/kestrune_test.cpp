#include <automation/kestrune.h>
#include <fakes/print.h>
#include <fakes/shellbench.h>

#include <gtest/gtest.h>

namespace kestrune {

using namespace Qt::StringLiterals;

namespace {

TEST(Kestrune, ANewUserHasTheDefaults)
{
    ShellBench bench;
    Kestrune& application = bench.Run();
    EXPECT_TRUE(application.Boolean(GlobalId::ToolbarVisible));
    EXPECT_TRUE(application.Boolean(GlobalId::StatusLineVisible));
    EXPECT_TRUE(application.Boolean(GlobalId::SessionBarVisible));
    EXPECT_FALSE(application.Boolean(GlobalId::FuncBarVisible));
    EXPECT_TRUE(application.Boolean(GlobalId::LargeIcons));
    EXPECT_EQ(application.TitleFormat(), 4);
    EXPECT_EQ(application.InitChildWindowState(), 2);
    EXPECT_EQ(application.RecentList().ListSize(), 4);
    EXPECT_EQ(application.RecentList().MaxListSize(), 25);
    EXPECT_EQ(application.PhoneBookName(), bench.layer.folders.AppDataDir + u"Phone.dat"_s);
    EXPECT_EQ(application.ProductName(), u"Kestrune/WIN32"_s);
    EXPECT_EQ(bench.Stored(u"TitleFormat"_s), u"-"_s); // reading stores nothing
}

// Changed once through the application object: what the hive holds, and what the next run reads.
TEST(Kestrune, SettingsAreWrittenThroughAndReadAgain)
{
    struct Row
    {
        GlobalId id;
        QString key;
        QString value;
        QString stored;
    };
    ShellBench bench;
    Kestrune& application = bench.Run();
    const QString docs = bench.layer.folders.DocumentsDir;
    const Row rows[] = {
        {GlobalId::AutoClose, u"AutoClose"_s, u"1"_s, u"1"_s},
        {GlobalId::SessionBarVisible, u"SessionBar"_s, u"0"_s, u"0"_s},
        {GlobalId::TitleFormat, u"TitleFormat"_s, u"2"_s, u"2"_s},
        {GlobalId::RecentListSize, u"RecentListSize"_s, u"25"_s, u"25"_s},
        {GlobalId::DefaultCaptureDir, u"CapturePath"_s, docs + u"captures"_s, u"My Documents\\captures"_s},
    };
    for (const Row& row : rows) {
        application.SetText(row.id, row.value);
        EXPECT_EQ(bench.Stored(row.key), row.stored) << row.key.toStdString();
    }
    bench.main.reset();
    Kestrune& next = bench.Run();
    for (const Row& row : rows)
        EXPECT_EQ(next.Text(row.id), row.value) << row.key.toStdString();
}

TEST(Kestrune, ChangesTakeEffectAtOnce)
{
    ShellBench bench;
    Kestrune& application = bench.Run();
    const auto session = application.Sessions().Add(bench.SessionFile(u"a.orcf"_s), 0);
    const auto second = application.Sessions().Add(bench.Home(u"a.orcf"_s), 0);

    application.SetNumber(GlobalId::TitleFormat, 1);
    EXPECT_EQ(session->frmSession()->Title(), u"a [1]"_s);
    application.SetBoolean(GlobalId::TrackKeyboardState, true);
    EXPECT_TRUE(second->Emulator().TrackKeyboardState());
    application.SetBoolean(GlobalId::ToolbarVisible, false);
    EXPECT_FALSE(bench.Frame().bars[Bar::ToolBar]);
    application.SetBoolean(GlobalId::LargeIcons, false);
    EXPECT_FALSE(bench.Frame().largeIcons);
    application.SetText(GlobalId::CustomTitle, u"Ours"_s);
    EXPECT_EQ(bench.Frame().caption, u"Ours"_s);
    application.SetText(GlobalId::CustomTitle, {});
    EXPECT_EQ(bench.Frame().caption, u"Kestrune 7"_s);
    for (const char* name : {"1", "2", "3"})
        application.AddRecent(QString::fromLatin1(name));
    application.SetNumber(GlobalId::RecentListSize, 2);
    EXPECT_EQ(application.RecentList().ListCount(), 2);
}

TEST(Kestrune, ValuesOutOfRange)
{
    ShellBench bench;
    Kestrune& application = bench.Run();
    for (const int size : {-1, 26}) {
        try {
            application.SetNumber(GlobalId::RecentListSize, size);
            ADD_FAILURE() << size;
        } catch (const Failure& failure) {
            EXPECT_EQ(failure.Number(), ErrorNumber::BadRecentListSize);
            EXPECT_EQ(failure.Text(), u"Invalid RecentListSize setting"_s);
        }
    }
    application.SetNumber(GlobalId::RecentListSize, 0);
    EXPECT_EQ(application.RecentList().ListSize(), 0);
    application.SetInitChildWindowState(1);
    for (const int state : {-1, 3}) {
        application.SetInitChildWindowState(state);
        application.SetWindowState(state);
    }
    EXPECT_EQ(application.InitChildWindowState(), 1);
    EXPECT_EQ(application.WindowState(), 0);
    EXPECT_EQ(bench.Stored(u"ChildWindowState"_s), u"-"_s); // kept until Save or the end
    application.Save();
    EXPECT_EQ(bench.Stored(u"ChildWindowState"_s), u"1"_s);
}

TEST(Kestrune, InstallationValuesAndTheirTitle)
{
    ShellBench bench;
    QFile ini(bench.Path("program/ORLIN71.INI"));
    ASSERT_TRUE(ini.open(QIODevice::WriteOnly));
    ini.write("[Custom]\r\nTitle=Branch 12\r\n[Path]\r\nHosts=/etc/hosts\r\n");
    ini.close();
    Kestrune& application = bench.Run();
    EXPECT_EQ(bench.Frame().caption, u"Branch 12"_s);
    EXPECT_EQ(application.Text(GlobalId::TelnetHostsFile), u"/etc/hosts"_s);
    EXPECT_EQ(application.IniPath(), ini.fileName());
}

TEST(Kestrune, RecentFilesComeBackInOrderAndRelativeToHome)
{
    ShellBench bench;
    Kestrune& application = bench.Run();
    for (const char* name : {"a.orcf", "b.orcf", "c.orcf"})
        application.AddRecent(bench.Home(QString::fromLatin1(name)));
    application.RemoveRecent(bench.Home(u"B.ORCF"_s));
    EXPECT_EQ(bench.Stored(u"File_1"_s, u"\\RecentFiles"_s), u"c.orcf"_s);
    EXPECT_EQ(bench.Stored(u"File_3"_s, u"\\RecentFiles"_s), u"-"_s); // none left behind by the longer list
    bench.main.reset();
    Kestrune& next = bench.Run();
    ASSERT_EQ(next.RecentList().ListCount(), 2);
    EXPECT_EQ(next.RecentList().ListItem(2), bench.Home(u"a.orcf"_s));
}

TEST(Kestrune, MoveLeavesOutWhatIsNotGiven)
{
    ShellBench bench;
    Kestrune& application = bench.Run();
    bench.Frame().Move(10, 20, 300, 200);
    application.Move(100);
    EXPECT_EQ(bench.Frame().Place(), (WindowPlace{100, 20, 300, 200, 0}));
    application.Resize(400, 250);
    EXPECT_EQ(bench.Frame().Place(), (WindowPlace{100, 20, 400, 250, 0}));
    application.Move(Kestrune::NoValue, 5);
    EXPECT_EQ(application.Top(), 5);
    EXPECT_EQ(application.Left(), 100);
}

TEST(Kestrune, ASecondInstanceIsNone)
{
    ShellBench bench;
    Kestrune& application = bench.Run();
    ShellBench other;
    other.log.clear();
    other.Start();
    EXPECT_FALSE(other.main->Application()->Primary());
    EXPECT_FALSE(other.Logged(u"register"_s));
    EXPECT_EQ(other.frame, nullptr);
    EXPECT_EQ(other.main->Application()->ActiveSession(), nullptr);
    other.main.reset();
    EXPECT_EQ(Kestrune::Application(), &application);
}

TEST(Kestrune, ActiveSessionIsThatOfTheActiveWindow)
{
    ShellBench bench;
    Kestrune& application = bench.Run();
    EXPECT_EQ(application.ActiveSession(), nullptr);
    const auto first = application.Sessions().Add(bench.SessionFile(u"a.orcf"_s), 0);
    const auto second = application.Sessions().Add({}, 0);
    EXPECT_EQ(application.ActiveSession(), second);
    first->Activate();
    EXPECT_EQ(application.ActiveSession(), first);
    second->SetTerminated(false);
    bench.Frame().inner.active->SetTag(u"99"_s);
    EXPECT_EQ(application.ActiveSession(), nullptr);
}

TEST(Kestrune, TerminateOnlyPosts)
{
    ShellBench bench;
    Kestrune& application = bench.Run();
    application.Terminate(2);
    application.Terminate(0);
    EXPECT_EQ(bench.Frame().leaves, (std::vector{Leave::EndFrame, Leave::EndFrame}));
    EXPECT_TRUE(application.IsQuitting());
    EXPECT_EQ(application.PendingPrompt(), 0);
    EXPECT_TRUE(application.Visible());
    bench.Frame().closing = true;
    bench.Frame().visible = false;
    application.Show();
    EXPECT_FALSE(bench.Frame().visible);
    EXPECT_FALSE(application.Visible());
}

TEST(Kestrune, LayoutsWithAndWithoutTheirScript)
{
    ShellBench bench;
    Kestrune& application = bench.Run();
    bench.SessionFile(u"a.orcf"_s);
    const QString layout =
        bench.Write(u"l.orly"_s, "[Kestrune Main]\r\nFiles=1\r\nScript=Sub Main\r\n[File1]\r\nFileName=a.orcf\r\n");
    EXPECT_EQ(application.OpenLayout(layout), 2);
    EXPECT_EQ(application.Sessions().Count(), 1);
    EXPECT_EQ(bench.engine, nullptr); // a client's call skips the script
    const QString copy = bench.Home(u"copy.orly"_s);
    application.SaveLayout(copy);
    EXPECT_EQ(application.LayoutFileName(), copy);
    EXPECT_EQ(bench.layer.profile.ProfileGetInt(u"Kestrune Main"_s, u"Files"_s, 0, copy), 1);
}

} // namespace

} // namespace kestrune
