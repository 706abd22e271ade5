#include "bench.h"

#include <sessions/files.h>
#include <sessions/layout.h>

namespace kestrune {
namespace {

using namespace Qt::StringLiterals;

struct LayoutBench : SessionBench
{
    QString LayoutKey(const QString& section, const QString& key) const
    {
        return layer.profile.ProfileGetString(section, key, u"(none)"_s, layoutFileName);
    }
    QStringList Titles() const
    {
        QStringList titles;
        for (const auto& session : sessions.All())
            titles.append(session->frmSession()->Title());
        return titles;
    }
};

TEST(Layout, SavedSessionsOpenAgainInTheirPlaces)
{
    LayoutBench bench;
    const QString file = bench.SessionFile(u"a.orcf"_s);
    const auto first = bench.sessions.Add(file);
    bench.sessions.Add(); // without a file: not in the layout
    const auto third = bench.sessions.Add(file);
    first->Move(1, 2, 300, 200);
    third->Move(5, 6, 500, 400);
    third->SetWindowState(WindowMaximised);
    first->Activate();
    bench.frame.place = {-3, 4, 1000, 700, WindowMaximised};
    bench.engine.modules[u"Main"_s] = u"Sub Main\r\n  x = 2 ^ 3\r\n\r\nEnd Sub"_s;
    bench.layoutFileName = bench.Path(u"two.orly"_s);
    SaveLayout(bench);

    EXPECT_TRUE(IsLayoutFile(bench.layer, bench.layoutFileName));
    EXPECT_EQ(bench.LayoutKey(u"Kestrune Main"_s, u"Files"_s), u"2"_s);
    EXPECT_EQ(bench.LayoutKey(u"Kestrune Main"_s, u"ChildState"_s), u"0"_s);
    EXPECT_EQ(bench.LayoutKey(u"File1"_s, u"FileName"_s), u"a.orcf"_s) << "beside the layout: a bare name";
    EXPECT_EQ(bench.LayoutKey(u"File1"_s, u"Active"_s), u"True"_s);
    EXPECT_EQ(bench.LayoutKey(u"File2"_s, u"Active"_s), u"(none)"_s);
    EXPECT_EQ(bench.recent.value(0), bench.layoutFileName);

    const QString layout = bench.layoutFileName;
    for (int i = 0; i < 3; ++i)
        bench.sessions.Remove(0);
    bench.frame.place = {};
    bench.layoutFileName.clear();
    EXPECT_EQ(OpenLayout(bench, layout, LayoutScript::Run), 2);
    EXPECT_EQ(bench.frame.place, (WindowPlace{-3, 4, 1000, 700, WindowMaximised}));
    EXPECT_EQ(bench.Titles(), (QStringList{u"a (1)"_s, u"a (2)"_s}));
    EXPECT_EQ(bench.Window(*bench.sessions.Item(0)).place, (WindowPlace{1, 2, 300, 200, WindowNormal}));
    EXPECT_EQ(bench.Window(*bench.sessions.Item(1)).place, (WindowPlace{5, 6, 500, 400, WindowMaximised}));
    EXPECT_EQ(bench.frame.active, bench.sessions.Item(0)->frmSession());
    EXPECT_TRUE(bench.sessions.Item(1)->Emulator().OnLine());
    EXPECT_EQ(bench.engine.runs, QStringList{u"Sub Main\r\n  x = 2 ^ 3\r\n\r\nEnd Sub"_s});
    EXPECT_EQ(bench.layoutFileName, layout);
}

TEST(Layout, SaveEmptiesTheOldFileAndKeepsAbsoluteNames)
{
    LayoutBench bench;
    QDir(bench.layer.folders.HomeDir).mkpath(u"sub"_s);
    const QString file = bench.SessionFile(bench.Path(u"sub/a.orcf"_s));
    bench.sessions.Add(file);
    bench.layoutFileName =
        bench.Write(u"l.lyt"_s, "[Kestrune Main]\nFiles=9\nScript=old\n[File9]\nFileName=x\n[Junk]\na=b\n");
    SaveLayout(bench);
    EXPECT_EQ(bench.layer.profile.ProfileGetSections(bench.layoutFileName),
              (QStringList{u"Kestrune Main"_s, u"File1"_s}));
    EXPECT_EQ(bench.LayoutKey(u"Kestrune Main"_s, u"Script"_s), u"(none)"_s);
    EXPECT_EQ(bench.LayoutKey(u"File1"_s, u"FileName"_s), file);
}

struct OddLayout
{
    const char* what;
    QByteArray content;
    int result;
    int sessions;
    int messages;
};

TEST(Layout, OddOnesOpenAsFarAsTheyGo)
{
    const QByteArray main = "[Kestrune Main]\n";
    const OddLayout cases[] = {
        {"state out of range is no layout", main + "WindowState=7\nFiles=1\n[File1]\nFileName=a.orcf\n", 0, 0, 0},
        {"negative state", main + "WindowState=-1\n", 0, 0, 0},
        {"no sessions", main + "Files=0\n", 2, 0, 0},
        {"a bare name", main + "Files=1\n[File1]\nFileName=a.orcf\n", 2, 1, 0},
        {"the other separator", main + "Files=1\n[File1]\nFileName=sub\\b.orcf\n", 2, 0, 1},
        {"a missing file in the middle",
         main + "Files=3\n[File1]\nFileName=a.orcf\n[File2]\nFileName=gone.orcf\n[File3]\nFileName=a.orcf\n", 2, 2, 1},
        {"no session file", main + "Files=1\n[File1]\nFileName=l.orly\n", 2, 0, 1},
        {"a count that is not so", main + "Files=2000000000\n[File1]\nFileName=a.orcf\n", 2, 1, 1},
    };
    for (const OddLayout& row : cases) {
        SCOPED_TRACE(row.what);
        LayoutBench bench;
        bench.SessionFile(u"a.orcf"_s);
        const WindowPlace before = bench.frame.place;
        const QString path = bench.Write(u"l.orly"_s, row.content);
        EXPECT_EQ(OpenLayout(bench, path, LayoutScript::Run), row.result);
        EXPECT_EQ(bench.sessions.Count(), row.sessions);
        EXPECT_EQ(bench.ask.boxes.size(), std::size_t(row.messages));
        for (const auto& box : bench.ask.boxes) {
            EXPECT_TRUE(box.text.startsWith(u"Unable to open "_s + bench.layer.folders.HomeDir))
                << box.text.toStdString();
            EXPECT_EQ(box.flags, MsgFlag::Exclamation);
        }
        EXPECT_EQ(bench.frame.place, before) << "a layout without sizes leaves the window's own";
        EXPECT_EQ(bench.layoutFileName, row.result == 0 ? QString() : path);
    }
}

TEST(Layout, ScriptCanBeSkipped)
{
    LayoutBench bench;
    const QString path = bench.Write(u"l.orly"_s, "[Kestrune Main]\nScript=Beep\n");
    OpenLayout(bench, path, LayoutScript::Skip);
    EXPECT_TRUE(bench.engine.runs.isEmpty());
    OpenLayout(bench, path, LayoutScript::Run);
    EXPECT_EQ(bench.engine.runs, QStringList{u"Beep"_s});
}

TEST(Layout, SessionEndedWhileTheLayoutLoadsIsLeftOut)
{
    LayoutBench bench;
    bench.SessionFile(u"a.orcf"_s);
    const QString path = bench.Write(
        u"l.orly"_s, "[Kestrune Main]\nFiles=1\n[File1]\nFileName=a.orcf\nActive=True\nWidth=10\nHeight=10\n");
    bench.frame.duringEvents = [&] {
        if (bench.sessions.Count() > 0)
            bench.sessions.Remove(0);
    };
    EXPECT_EQ(OpenLayout(bench, path, LayoutScript::Run), 2);
    EXPECT_EQ(bench.sessions.Count(), 0);
}

TEST(Layout, SaveFailuresHaveTheirNumbersAndWords)
{
    const QString tail = u" To save a copy, click OK, then give the layout a new name in the Save As dialog box."_s;
    LayoutBench bench;
    SaveLayout(bench); // no name: nothing
    const auto numberOf = [&](const QString& name) {
        bench.layoutFileName = name;
        try {
            SaveLayout(bench);
        } catch (const Failure& failure) {
            return failure.Text() + u' ' + QString::number(int(failure.Number()));
        }
        return u"saved"_s;
    };
    const QString readOnly = bench.Write(u"r.orly"_s, "[Kestrune Main]\nFiles=0\n");
    QFile::setPermissions(readOnly, QFileDevice::ReadOwner);
    EXPECT_EQ(numberOf(bench.Path(u"gone/l.orly"_s)), u"Path not found 53"_s);
    EXPECT_EQ(numberOf(readOnly), u"Access denied 75"_s);

    bench.ask.files = {bench.Path(u"new.orly"_s)};
    EXPECT_TRUE(SaveLayoutByCommand(bench));
    EXPECT_EQ(bench.ask.boxes.at(0).text, u"'r.orly' is read-only."_s + tail);
    EXPECT_EQ(bench.ask.saveRequests.at(0).filter,
              u"Kestrune Layout (.orly)|*.orly|Old Kestrune Layout (.lyt)|*.lyt"_s);
    EXPECT_EQ(bench.layoutFileName, bench.Path(u"new.orly"_s));
    bench.layoutFileName = bench.Path(u"gone/l.orly"_s);
    EXPECT_FALSE(SaveLayoutByCommand(bench)) << "dialog cancelled";
    EXPECT_EQ(bench.ask.boxes.at(1).text,
              u"The folder or file name '%1' is not valid."_s.arg(bench.layoutFileName) + tail);
    bench.ask.files = {bench.Path(u"gone/2.orly"_s)};
    EXPECT_THROW(SaveLayoutAs(bench), Failure);
    EXPECT_EQ(bench.layoutFileName, bench.Path(u"gone/l.orly"_s));
}

TEST(Layout, OneSessionThatCannotBeSavedDoesNotStopTheOthers)
{
    LayoutBench bench;
    const QString locked = bench.SessionFile(u"a.orcf"_s);
    const QString free = bench.SessionFile(u"b.orcf"_s);
    const auto first = bench.sessions.Add(locked);
    const auto second = bench.sessions.Add(free);
    QFile::setPermissions(locked, QFileDevice::ReadOwner);
    first->SetCaption(u"One"_s);
    second->SetCaption(u"Two"_s);
    bench.layoutFileName = bench.Path(u"l.orly"_s);
    SaveLayout(bench);
    EXPECT_TRUE(first->Changed());
    EXPECT_EQ(bench.Key(free, u"SessionTitle"_s), u"Two"_s);
    EXPECT_EQ(bench.LayoutKey(u"Kestrune Main"_s, u"Files"_s), u"2"_s);
}

} // namespace
} // namespace kestrune
