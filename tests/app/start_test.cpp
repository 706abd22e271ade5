#include <fakes/print.h>
#include <fakes/shellbench.h>

#include <gtest/gtest.h>

namespace kestrune {

using namespace Qt::StringLiterals;

namespace {

const QString kRecent = u"\\RecentFiles"_s;

TEST(Start, BareStartEndsInTheWelcomeDialogInThisOrder)
{
    ShellBench bench;
    bench.Start();
    EXPECT_EQ(bench.outcome, Ormain::Outcome::Runs);
    EXPECT_EQ(bench.log, (QStringList{u"pin"_s, u"upgrade"_s, u"instance "_s, u"splash"_s, u"application"_s,
                                      u"register"_s, u"ask for class"_s, u"splash gone"_s, u"welcome"_s}));
    EXPECT_TRUE(bench.Frame().visible);
    EXPECT_EQ(bench.Frame().caption, u"Kestrune 7"_s);
    EXPECT_EQ(bench.ask.hourglass, 0);
    EXPECT_EQ(bench.Application().Sessions().Count(), 0);
}

TEST(Start, SessionFileOpensGoesOnLineAndIsRemembered)
{
    ShellBench bench;
    bench.SessionFile(u"host a.orcf"_s);
    bench.Start(u"host a"_s); // the extension is found
    ASSERT_EQ(bench.Application().Sessions().Count(), 1);
    const auto session = bench.Application().Sessions().Item(0);
    EXPECT_EQ(session->FileName(), bench.Home(u"host a.orcf"_s));
    EXPECT_TRUE(session->Visible());
    EXPECT_TRUE(session->Emulator().OnLine());
    EXPECT_EQ(session->WindowState(), 2); // the default for new windows
    EXPECT_EQ(bench.Stored(u"File_1"_s, kRecent), u"host a.orcf"_s);
    EXPECT_FALSE(bench.Logged(u"welcome"_s));
    EXPECT_TRUE(bench.Logged(u"instance "_s + QString(bench.Home(u"host a.orcf"_s)).remove(bench.folder.path())));
}

TEST(Start, LayoutOpensItsSessions)
{
    ShellBench bench;
    bench.SessionFile(u"a.orcf"_s);
    bench.SessionFile(u"b.orcf"_s);
    const QString layout =
        bench.Write(u"two.orly"_s, "[Kestrune Main]\r\nWindowState=0\r\nFiles=2\r\nScript=Sub Main\r\n"
                                   "[File1]\r\nFileName=a.orcf\r\n[File2]\r\nFileName=b.orcf\r\n");
    bench.Start(layout);
    EXPECT_EQ(bench.Application().Sessions().Count(), 2);
    EXPECT_EQ(bench.Application().LayoutFileName(), layout);
    EXPECT_EQ(bench.Stored(u"File_1"_s, kRecent), u"two.orly"_s);
    ASSERT_NE(bench.engine, nullptr);
    EXPECT_EQ(bench.engine->runs, QStringList(u"Sub Main"_s));
    EXPECT_FALSE(bench.Logged(u"welcome"_s));
}

TEST(Start, ScriptRunsAndTheWelcomeDialogFollows)
{
    ShellBench bench;
    const QString script = bench.Write(u"job.orsc"_s, "' does things\nSub Main\nEnd Sub\n");
    bench.Start(script);
    ASSERT_NE(bench.engine, nullptr);
    EXPECT_EQ(bench.engine->files, QStringList(script));
    EXPECT_TRUE(bench.Logged(u"welcome"_s));
    EXPECT_EQ(bench.Stored(u"File_1"_s, kRecent), u"-"_s);
}

TEST(Start, UnknownAndMissingFilesAreIgnoredWithoutAMessage)
{
    for (const bool exists : {true, false}) {
        ShellBench bench;
        if (exists)
            bench.Write(u"notes.orcf"_s, "hello\n");
        bench.Start(u"notes.orcf"_s);
        EXPECT_TRUE(bench.ask.boxes.empty());
        EXPECT_TRUE(bench.Logged(u"welcome"_s));
        EXPECT_EQ(bench.Application().Sessions().Count(), 0);
        EXPECT_EQ(bench.Stored(u"File_1"_s, kRecent), u"-"_s);
    }
}

TEST(Start, WelcomeDialogCanBeSwitchedOff)
{
    ShellBench bench;
    bench.Store(u"NoWelcomePage"_s, u"1"_s);
    bench.Start();
    EXPECT_FALSE(bench.Logged(u"welcome"_s));
    EXPECT_TRUE(bench.Frame().visible);
}

TEST(Start, MinimisedStartShowsNoDialog)
{
    ShellBench bench;
    bench.Store(u"MainWindowState"_s, u"1"_s);
    bench.Start();
    EXPECT_FALSE(bench.Logged(u"welcome"_s));
}

TEST(Start, SecondStartHandsOverBeforeAnythingIsMade)
{
    ShellBench bench;
    bench.handedOver = true;
    bench.SessionFile(u"a.orcf"_s);
    bench.Start(u"a.orcf"_s);
    EXPECT_EQ(bench.outcome, Ormain::Outcome::Ends);
    EXPECT_EQ(bench.main->Application(), nullptr);
    EXPECT_EQ(bench.log.size(), 3);
    EXPECT_EQ(bench.Stored(u"File_1"_s, kRecent), u"-"_s);
}

TEST(Start, UpgradeThatStopsTheRun)
{
    ShellBench bench;
    bench.mustStop = true;
    bench.Start();
    EXPECT_EQ(bench.outcome, Ormain::Outcome::Ends);
    EXPECT_EQ(bench.log, (QStringList{u"pin"_s, u"upgrade"_s}));
}

TEST(Start, ByThePlatformWaitsForItsClient)
{
    ShellBench bench;
    bench.SessionFile(u"a.orcf"_s);
    Ormain& main = bench.Start(u"a.orcf"_s, true);
    EXPECT_EQ(bench.outcome, Ormain::Outcome::Runs);
    EXPECT_EQ(bench.log, (QStringList{u"pin"_s, u"upgrade"_s}));
    main.MakeApplication();
    EXPECT_TRUE(bench.Frame().visible);
    EXPECT_EQ(bench.Frame().State(), 1); // an icon until the client moves it
    EXPECT_EQ(bench.Application().Sessions().Count(), 0);
}

struct WordCase
{
    QString command;
    QStringList log; // behind "pin"
    bool ends;
};

TEST(Start, SettingsAndMigrationRuns)
{
    const WordCase rows[] = {
        {u"/settings"_s, {u"application for settings"_s, u"settings "_s}, true},
        {u"/SETTINGS"_s, {u"application for settings"_s, u"settings "_s}, true},
        {u"/migrate=3"_s, {u"migrate 3"_s}, true},
        {u"/migrate"_s, {u"migrate 0"_s}, true},
        {u"/MIGRATE=7x"_s, {u"migrate 7"_s}, true},
    };
    for (const WordCase& row : rows) {
        ShellBench bench;
        bench.Start(row.command);
        EXPECT_EQ(bench.log.mid(1), row.log) << row.command.toStdString();
        EXPECT_EQ(bench.outcome == Ormain::Outcome::Ends, row.ends);
        EXPECT_EQ(bench.main->Application(), nullptr);
        EXPECT_TRUE(bench.ask.boxes.empty());
    }
}

TEST(Start, SettingsWithMoreBehindIsAFileName)
{
    ShellBench bench;
    bench.StartWith(CommandLine::FromText(u"/settings x"_s));
    EXPECT_TRUE(bench.Logged(u"application"_s));
    EXPECT_TRUE(bench.Logged(u"instance "_s)); // not found
}

TEST(Start, MigrationThatFailsSaysSo)
{
    ShellBench bench;
    bench.migrates = false;
    bench.Start(u"/migrate=1"_s);
    ASSERT_EQ(bench.ask.boxes.size(), 1u);
    EXPECT_EQ(bench.ask.boxes[0].text, u"Settings import failed!"_s);
    EXPECT_EQ(bench.ask.boxes[0].title, u"Kestrune 7 Upgrade"_s);
}

TEST(Start, WelcomeAnswers)
{
    struct Row
    {
        WelcomeChoice choice;
        int sessions;
        QString file; // of the home folder
        QString logged;
    };
    const Row rows[] = {
        {WelcomeChoice::Cancelled, 0, {}, u"welcome"_s},
        {WelcomeChoice::NewSession, 1, {}, u"wizard"_s},
        {WelcomeChoice::OpenFile, 1, u"a.orcf"_s, u"welcome"_s},
        {WelcomeChoice::OpenFile, 1, u"two.orly"_s, u"welcome"_s},
        {WelcomeChoice::OpenFile, 0, u"job.orsc"_s, u"welcome"_s},
        {WelcomeChoice::OpenFile, 0, u"gone.orcf"_s, u"welcome"_s},
    };
    for (const Row& row : rows) {
        ShellBench bench;
        bench.SessionFile(u"a.orcf"_s);
        bench.Write(u"two.orly"_s, "[Kestrune Main]\r\nFiles=1\r\n[File1]\r\nFileName=a.orcf\r\n");
        bench.Write(u"job.orsc"_s, "Sub Main\nEnd Sub\n");
        bench.welcomeChoice = row.choice;
        bench.welcomeFile = row.file.isEmpty() ? QString() : bench.Home(row.file);
        bench.wizardResult = WizardResult::Finished;
        bench.Start();
        EXPECT_EQ(bench.Application().Sessions().Count(), row.sessions) << row.file.toStdString();
        EXPECT_TRUE(bench.Logged(row.logged));
        EXPECT_EQ(bench.engine, nullptr); // a script chosen there is not run
    }
}

} // namespace

} // namespace kestrune
