#include <fakes/print.h>
#include <fakes/shellbench.h>

#include <gtest/gtest.h>

namespace kestrune {

using namespace Qt::StringLiterals;

namespace {

struct NewCase
{
    const char* name;
    bool noWizard;
    WizardResult wizard;
    bool settingsOk;
    bool made;
    bool noWizardAfter;
    bool settingsShown;
};

class FileNewTest : public testing::TestWithParam<NewCase>
{};

TEST_P(FileNewTest, FollowsTheWizard)
{
    const NewCase& each = GetParam();
    ShellBench bench;
    if (each.noWizard)
        bench.Store(u"NoConnectWizard"_s, u"1"_s);
    Kestrune& application = bench.Run();
    bench.wizardResult = each.wizard;
    bench.settingsOk = each.settingsOk;
    const auto session = bench.main->FileNew();
    EXPECT_EQ(session != nullptr, each.made);
    EXPECT_EQ(application.Sessions().Count(), each.made ? 1 : 0);
    EXPECT_EQ(application.Boolean(GlobalId::NoConnectWizard), each.noWizardAfter);
    EXPECT_EQ(bench.Logged(u"settings D"_s), each.settingsShown);
    EXPECT_EQ(bench.Logged(u"wizard"_s), !each.noWizard);
    EXPECT_FALSE(bench.Logged(u"shown too early"_s));
    EXPECT_TRUE(session == nullptr || session->Visible());
}

INSTANTIATE_TEST_SUITE_P(
    Cases, FileNewTest,
    testing::Values(NewCase{"Finished", false, WizardResult::Finished, true, true, false, false},
                    NewCase{"Cancelled", false, WizardResult::Cancelled, true, false, false, false},
                    NewCase{"OnToSettings", false, WizardResult::Settings, true, true, false, true},
                    NewCase{"SettingsCancelled", false, WizardResult::Settings, false, false, false, true},
                    NewCase{"SettingsNeverAgain", false, WizardResult::SettingsNeverAgain, true, true, true, true},
                    NewCase{"FinishedNeverAgain", false, WizardResult::FinishedNeverAgain, true, true, true, false},
                    NewCase{"NoWizard", true, WizardResult::Cancelled, true, true, true, true}),
    [](const auto& each) { return std::string(each.param.name); });

TEST(Open, TestsLayoutsFirst)
{
    ShellBench bench;
    Kestrune& application = bench.Run();
    const QString both = bench.Write(u"both.orcf"_s, "[Kestrune]\r\nTermType=8\r\n[Kestrune Main]\r\nFiles=0\r\n");
    bench.ask.files = {both};
    EXPECT_EQ(bench.main->Open(false), 2);
    EXPECT_EQ(application.Sessions().Count(), 0);
    EXPECT_EQ(application.LayoutFileName(), both);

    const FileDialogRequest& request = bench.ask.openRequests.at(0);
    EXPECT_EQ(request.title, u"Open"_s);
    EXPECT_EQ(request.folder, bench.layer.folders.SessionDir);
    EXPECT_EQ(request.flags, 0x201008);
    EXPECT_EQ(request.defaultExtension, u"orcf"_s);
}

TEST(Open, SessionFileUnknownFileAndCancel)
{
    ShellBench bench;
    Kestrune& application = bench.Run();
    const QString session = bench.SessionFile(u"a.orcf"_s);
    const QString script = bench.Write(u"job.orsc"_s, "Sub Main\n");
    bench.ask.files = {session, script, std::nullopt};
    EXPECT_EQ(bench.main->Open(false), 1);
    EXPECT_EQ(application.Sessions().Count(), 1);
    EXPECT_EQ(application.RecentList().ListItem(1), session);

    EXPECT_EQ(bench.main->Open(false), 0); // scripts are not run here
    ASSERT_EQ(bench.ask.boxes.size(), 1u);
    EXPECT_EQ(bench.ask.boxes[0].text, u"Unable to open "_s + script);
    EXPECT_EQ(bench.ask.boxes[0].flags, MsgFlag::Exclamation);

    EXPECT_EQ(bench.main->Open(false), 0);
    EXPECT_EQ(bench.ask.boxes.size(), 1u);
}

TEST(OpenRecent, MovesToTheTopAndKeepsStaleEntries)
{
    ShellBench bench;
    Kestrune& application = bench.Run();
    const QString a = bench.SessionFile(u"a.orcf"_s);
    const QString b = bench.SessionFile(u"b.orcf"_s);
    application.AddRecent(a);
    application.AddRecent(bench.Home(u"gone.orcf"_s));
    application.AddRecent(b);

    EXPECT_EQ(bench.main->FileOpenRecent(3, false), 1);
    EXPECT_EQ(application.RecentList().ListItem(1), a);
    EXPECT_EQ(bench.main->FileOpenRecent(3, false), 0);
    ASSERT_EQ(bench.ask.boxes.size(), 1u);
    EXPECT_EQ(bench.ask.boxes[0].text, u"Unable to open "_s + bench.Home(u"gone.orcf"_s));
    EXPECT_EQ(application.RecentList().ListCount(), 3);
    for (const int outside : {0, 4, -1})
        EXPECT_EQ(bench.main->FileOpenRecent(outside, false), 0);
    EXPECT_EQ(bench.ask.boxes.size(), 1u);
}

TEST(SettingsDialog, RemembersThePageShownLast)
{
    ShellBench bench;
    bench.Run();
    bench.log.clear();
    Ormain& main = *bench.main;
    main.ShowSettingsDialog(nullptr, u"P"_s, {});
    main.ShowSettingsDialog(nullptr, {}, {});         // P again
    main.ShowSettingsDialog(nullptr, u"X"_s, u"1"_s); // one character more: not remembered
    main.ShowSettingsDialog(nullptr, {}, {});
    bench.settingsOk = false;
    main.ShowSettingsDialog(nullptr, u"Q"_s, {}); // cancelled: not remembered
    main.ShowSettingsDialog(nullptr, {}, {});
    EXPECT_EQ(bench.log, (QStringList{u"settings P"_s, u"settings P"_s, u"settings X"_s, u"settings P"_s,
                                      u"settings Q"_s, u"settings P"_s}));
}

TEST(ExecScript, GivesFailuresBack)
{
    ShellBench bench;
    bench.Run();
    int number = 9;
    QString text = u"old"_s;
    EXPECT_TRUE(bench.main->DDEExecScript(u"[a][b]"_s, u"12"_s, number, text));
    EXPECT_EQ(number, 0);
    EXPECT_EQ(text, QString());
    EXPECT_EQ(bench.engine->texts, QStringList(u"12:a\r\nb\r\n"_s));
    bench.engine->failing = true;
    EXPECT_FALSE(bench.main->DDEExecScript(u"[a]"_s, {}, number, text));
    EXPECT_EQ(number, 5);
    EXPECT_EQ(text, u"The script is wrong"_s);
}

TEST(RecentFiles, AreShownShort)
{
    ShellBench bench;
    Kestrune& application = bench.Run();
    application.AddRecent(bench.Home(u"a.orcf"_s));
    application.AddRecent(u"/somewhere/else.orcf"_s);
    EXPECT_EQ(bench.main->RecentFiles(), (QStringList{u"/somewhere/else.orcf"_s, u"a.orcf"_s}));
}

} // namespace

} // namespace kestrune
