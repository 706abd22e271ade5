// Every command through the real menus, tool bar and popups of the real window: what it did to the session or the
// program, and the state of its tool afterwards.

#include <fakes/windowbench.h>
#include <menus/commands.h>

#include <QClipboard>
#include <QLineEdit>
#include <QMessageBox>
#include <QStatusBar>

#include <gtest/gtest.h>

#include <set>

namespace kestrune {

using namespace Qt::StringLiterals;

namespace {

// A window with one session on a telnet host that has said two lines.
class BarBench : public WindowBench
{
public:
    explicit BarBench(const QByteArray& settings = {})
    {
        QGuiApplication::clipboard()->setText(u"pasted"_s);
        clipboard.standard = u"pasted"_s;
        Open();
        Write(u"a.orcf"_s, "[Kestrune]\r\nTermType=8\r\nDevice=3\r\nHostName=host\r\n" + settings);
        first = Application().Sessions().Add(Home(u"a.orcf"_s), 0);
        lines.Current().Connect();
        lines.Current().HostSays("one\r\ntwo");
        Settle();
        pieces.TakeLog();
        log.clear();
    }

    ctlEmulator& Emulator() const { return first->Emulator(); }
    int Count() const { return Application().Sessions().Count(); }
    void Second() { second = OpenSession(u"b.orcf"_s); }
    QString Selected() const
    {
        int left = 0;
        int top = 0;
        int right = 0;
        int bottom = 0;
        const bool any = Emulator().GetSelection(left, top, right, bottom);
        return any ? u"%1,%2"_s.arg(left).arg(top) : u"none"_s;
    }
    QString Bar(const QString& name) const
    {
        const auto* bar = window->findChild<QWidget*>(name);
        return bar != nullptr && bar->isVisible() ? u"shown"_s : u"hidden"_s;
    }
    // Whether the tool is enabled, and checked, in the menu that shows it; nothing: it is in none.
    QString StateOf(int id)
    {
        const QAction* action = ActionOf(id);
        if (action == nullptr)
            return u"-"_s;
        return QString(action->isEnabled() ? u"on"_s : u"off"_s) + (action->isChecked() ? u" checked"_s : QString());
    }
    // The popup of a terminal or of a tab.
    bool ChooseOn(const QString& band, int id)
    {
        if (band == u"TabCtx"_s)
            emit window->findChild<SessionBar*>()->ToolRightClick(first->frmSession()->Handle(), QPoint(5, 5));
        else
            emit WindowOf(*first).PopupWanted(band);
        taMenuBar& of = band == u"TabCtx"_s ? window->Menu() : WindowOf(*first).Menu();
        return ChooseInPopup(of, band, id);
    }

    std::shared_ptr<clsSession> first, second;
};

enum class Route
{
    Menu,
    ToolBar,
    ContextMenu,
    TabCtx
};

using Prepare = std::function<void(BarBench&)>;
using See = std::function<QString(BarBench&)>;

struct BarCase
{
    int id;
    Route route;
    Prepare before;
    See see;
    const char* seen;
    const char* after; // the tool's state in the menu bar
};

QString Pieces(BarBench& b) { return b.pieces.TakeLog().join(u"; "_s); }
QString ShellLog(BarBench& b) { return b.log.join(u"; "_s); }
QString Sessions(BarBench& b) { return QString::number(b.Count()); }
QString Sent(BarBench& b) { return QString::fromStdString(b.lines.Current().TakeSent()); }
QString Notice(BarBench& b)
{
    for (const QWidget* panel : b.window->statusBar()->findChildren<QWidget*>())
        if (panel->isVisible() && panel->accessibleName().contains(u"is not installed"_s))
            return u"not installed"_s;
    return {};
}
QString Line(BarBench& b) { return b.lines.Current().closing ? u"closing"_s : u"open"_s; } // and then opened again
QString Selected(BarBench& b) { return b.Selected(); }
QString State(BarBench& b) { return QString::number(b.first->WindowState()); }
QString Active(BarBench& b) { return b.Application().ActiveSession() == b.first ? u"first"_s : u"second"_s; }

QString FileHas(BarBench& b, const char* name)
{
    const QString path = b.Home(QLatin1String(name));
    return QFile::exists(path) ? QString::fromUtf8(b.layer.profile.Files().Read(path)) : QString();
}
Prepare Answer(const char* file)
{
    return [file](BarBench& b) { b.ask.files = {b.Home(QLatin1String(file))}; };
}
Prepare AnswerChanged(const char* file)
{
    return [file](BarBench& b) {
        b.first->Settings().SetValue(Setting("HistoryRows"), 77);
        b.ask.files = {b.Home(QLatin1String(file))};
    };
}
See Saved(const char* file)
{
    return [file](BarBench& b) { return FileHas(b, file).contains(u"HistoryRows=77"_s) ? u"saved"_s : u"not"_s; };
}
See LayoutIn(const char* file)
{
    return [file](BarBench& b) { return FileHas(b, file).contains(u"[File1]"_s) ? u"saved"_s : u"not"_s; };
}
See BarShown(const QString& name)
{
    return [name](BarBench& b) { return b.Bar(name); };
}
See SettingIs(GlobalId id)
{
    return [id](BarBench& b) { return QString::number(b.Application().Number(id)); };
}
void Finish(BarBench& b) { b.wizardResult = WizardResult::Finished; }
void TwoWindows(BarBench& b)
{
    b.Second();
    b.first->Activate();
    b.Settle();
}
void SelectFirstLine(BarBench& b) { b.Emulator().SetSelection(0, 0, 2, 0); }
QString Copied(BarBench& b) { return b.clipboard.standard.section(u'\n', 0, 0).trimmed(); }
QString Arranged(BarBench& b)
{
    const QRect one = b.WindowOf(*b.first).geometry();
    const QRect other = b.WindowOf(*b.second).geometry();
    if (one.intersects(other))
        return u"over each other"_s;
    return one.left() == other.left() ? u"stacked"_s : u"beside each other"_s;
}
QString About(BarBench& b)
{
    auto* box = b.window->findChild<QMessageBox*>();
    QString text = box != nullptr ? box->windowTitle() : QString();
    delete box;
    return text;
}
QString Renamed(BarBench& b)
{
    auto* edit = b.window->findChild<SessionBar*>()->findChild<QLineEdit*>();
    if (edit == nullptr)
        return u"no box"_s;
    edit->setText(u"Ledger"_s);
    QTest::keyClick(edit, Qt::Key_Return);
    b.Settle();
    return b.first->frmSession()->Title();
}

constexpr auto kMenu = Route::Menu;

const BarCase kBarCases[] = {
    {101, kMenu, Finish, Sessions, "2", "on"},
    {101, Route::ToolBar, Finish, Sessions, "2", "on"},
    {103, kMenu, [](BarBench& b) { b.ask.files = {b.SessionFile(u"b.orcf"_s)}; }, Sessions, "2", "on"},
    {104, kMenu, [](BarBench& b) { b.ask.answers = {MsgResult::Yes}; }, Sessions, "0", "off"},
    {104, kMenu, [](BarBench& b) { b.ask.answers = {MsgResult::No}; }, Sessions, "1", "on"},
    {105, kMenu, AnswerChanged(""), Saved("a.orcf"), "saved", "on"},
    {106, kMenu, AnswerChanged("c.orcf"), Saved("c.orcf"), "saved", "on"},
    {108, kMenu, Answer("l.orly"), LayoutIn("l.orly"), "saved", "on"},
    {109, kMenu, Answer("l.orly"), LayoutIn("l.orly"), "saved", "on"},
    {201, kMenu, {}, [](BarBench& b) { return QString::number(b.Emulator().PrinterMode()); }, "1", "on checked"},
    {201, kMenu, [](BarBench& b) { b.Emulator().PrinterOn(0); },
     [](BarBench& b) { return QString::number(b.Emulator().PrinterMode()); }, "0", "on"},
    {202, kMenu, {}, [](BarBench& b) { return QString::number(b.printing.jobs.size()); }, "1", "on"},
    {202, Route::ToolBar, {}, [](BarBench& b) { return QString::number(b.printing.jobs.size()); }, "1", "on"},
    {203, kMenu, {}, ShellLog, "settings P", "on"},
    {303, kMenu, SelectFirstLine, Copied, "one", "on"},
    {303, Route::ContextMenu, SelectFirstLine, Copied, "one", "on"},
    {304, kMenu, {}, Copied, "one", "on"},
    {305, kMenu, {}, Sent, "pasted", "on"},
    {305, Route::ToolBar, {}, Sent, "pasted", "on"},
    {306, kMenu,
     [](BarBench& b) {
         b.ask.files = {b.Write(u"t.txt"_s, "x")};
         b.texts.files[b.Home(u"t.txt"_s)] = u"from a file"_s;
     },
     Sent, "from a file", "on"},
    {308, kMenu, {}, Selected, "0,0", "on"},
    {314, kMenu, {}, Selected, "0,0", "on"},
    {314, Route::ContextMenu, {}, Selected, "0,0", "on"},
    {316, kMenu, SelectFirstLine, Selected, "none", "on"},
    {313, kMenu, {}, ShellLog, "settings Q", "on"},
    {351, kMenu, {}, ShellLog, "settings R", "on"},
    {352, kMenu, {}, Pieces, "host tool 352/1", "on"},
    {354, kMenu, {}, Pieces, "host tool 354/1", "on"},
    {379, kMenu, {}, Pieces, "host tool 379/1", "on"},
    {401, kMenu, {}, Pieces, "help 0", "on"},
    {401, Route::ToolBar, {}, Pieces, "help 0", "on"},
    {403, kMenu, {}, Pieces, "help 1", "on"},
    {404, kMenu, {}, Pieces, "help 1", "on"},
    {405, kMenu, {}, About, "About Kestrune", "on"},
    {411, kMenu, {}, Notice, "not installed", "on"},
    {412, kMenu, {}, Notice, "not installed", "on"},
    {414, kMenu, {}, Notice, "not installed", "on"},
    {415, kMenu, {}, Notice, "not installed", "on"},
    {501, kMenu, TwoWindows, Arranged, "over each other", "on"},
    {502, kMenu, TwoWindows, Arranged, "stacked", "on"},
    {503, kMenu, TwoWindows, Arranged, "beside each other", "on"},
    {513, kMenu, {}, Pieces, "editor Main", "on"},
    {599, kMenu, {}, State, "2", "on checked"},
    {599, kMenu, [](BarBench& b) { b.first->SetWindowState(2); }, State, "0", "on"},
    {601, kMenu, {}, Pieces, "upload 1", "on"},
    {602, kMenu, {}, Pieces, "download 1", "on"},
    {603, kMenu, {}, Pieces, "capture 1", "on"},
    {611, Route::ToolBar, {}, Pieces, "upload 1", "-"},
    {611, Route::ContextMenu, [](BarBench& b) { b.pieces.hostTools = {354}; }, Pieces, "host tool 354/1", "-"},
    {612, Route::ToolBar, {}, Pieces, "download 1", "-"},
    {705, kMenu, {}, ShellLog, "settings ", "on"},
    {707, kMenu, {}, [](BarBench& b) { return b.Emulator().GetText(0, 0, 3).trimmed(); }, "", "on"},
    {708, kMenu, {}, Line, "closing", "on"},
    {711, kMenu, {}, Pieces, "designer", "on"},
    {712, kMenu, {}, Sessions, "2", "on"},
    {712, Route::ContextMenu, {}, Sessions, "2", "on"},
    {804, kMenu, {}, Pieces, "recorder", "on"},
    {1201, kMenu, {}, BarShown(u"Toolbar"_s), "hidden", "on"},
    {1202, kMenu, {}, SettingIs(GlobalId::StatusLineVisible), "0", "on"},
    {1203, kMenu, {}, BarShown(u"SessionBar"_s), "hidden", "on"},
    {1204, kMenu, {}, SettingIs(GlobalId::FuncBarVisible), "1", "on checked"},
    {1301, Route::TabCtx, [](BarBench& b) { b.Second(); }, Active, "first", "-"},
    {1302, Route::TabCtx, {}, State, "2", "-"},
    {1303, Route::TabCtx, [](BarBench& b) { b.ask.answers = {MsgResult::Yes}; }, Sessions, "0", "-"},
    {1304, Route::TabCtx, {}, Sessions, "2", "-"},
    {1305, Route::TabCtx, {}, Renamed, "Ledger", "-"},
};

bool Choose(BarBench& bench, const BarCase& each)
{
    switch (each.route) {
    case Route::Menu:
        return bench.Choose(each.id);
    case Route::ToolBar:
        return bench.ClickOnToolBar(each.id);
    case Route::ContextMenu:
        return bench.ChooseOn(u"ContextMenu"_s, each.id);
    case Route::TabCtx:
        return bench.ChooseOn(u"TabCtx"_s, each.id);
    }
    return false;
}

TEST(RealBar, EveryCommandDoesItsWorkAndItsToolShowsIt)
{
    std::set<int> driven;
    for (const BarCase& each : kBarCases) {
        SCOPED_TRACE(testing::Message() << each.id << " by route " << int(each.route));
        BarBench bench;
        if (each.before)
            each.before(bench);
        bench.Settle();
        bench.lines.Current().TakeSent();
        EXPECT_TRUE(Choose(bench, each));
        EXPECT_EQ(each.see(bench), QLatin1String(each.seen));
        bench.Settle();
        EXPECT_EQ(bench.StateOf(each.id), QLatin1String(each.after));
        EXPECT_EQ(bench.ask.unexpected, 0);
        driven.insert(each.id);
    }
    // What the default menu holds and the table above leaves out has a test of its own below.
    driven.insert({110, 506, 704, 805});
    for (const CommandRow& row : Commands())
        EXPECT_TRUE(driven.contains(row.id)) << row.id;
}

TEST(RealBar, ExitEndsTheWindow)
{
    BarBench bench;
    bench.ask.answers = {MsgResult::Yes};
    EXPECT_TRUE(bench.Choose(110));
    EXPECT_TRUE(bench.ended);
}

TEST(RealBar, TheDialerOpensForALineThatDialsOnly)
{
    BarBench bench;
    EXPECT_EQ(bench.StateOf(704), u"on"_s) << "connected";
    EXPECT_TRUE(bench.Choose(704));
    EXPECT_EQ(Pieces(bench), QString());
    bench.first->Settings().SetValue(Setting("Device"), static_cast<int>(Device::Modem));
    EXPECT_TRUE(bench.Choose(704));
    EXPECT_EQ(Pieces(bench), u"dial 1"_s);
}

// Macros come with the recorder: until one exists there is nothing to edit or run.
TEST(RealBar, MacrosThatAreNotThereAreGreyed)
{
    BarBench bench;
    for (const int id : {801, 805})
        EXPECT_EQ(bench.StateOf(id), u"off"_s) << id;
    bench.first->LoadMacroMenu(u"Login\tSigns on\tSign on & go\nOther\t\t\n"_s);
    EXPECT_EQ(bench.StateOf(805), u"on"_s);
    EXPECT_TRUE(bench.Choose(2001));
    EXPECT_EQ(Pieces(bench), u"macro Login"_s);
    EXPECT_TRUE(bench.Choose(805));
    EXPECT_EQ(Pieces(bench), u"editor Macro"_s);
}

TEST(RealBar, RecentFilesAndWindowsAreChosenFromTheirLists)
{
    BarBench bench;
    bench.Application().AddRecent(bench.SessionFile(u"b.orcf"_s));
    EXPECT_TRUE(bench.Choose(114));
    EXPECT_EQ(bench.Count(), 2);
    EXPECT_EQ(bench.StateOf(516), u"on checked"_s) << "the one that was opened";
    EXPECT_TRUE(bench.Choose(515));
    EXPECT_EQ(Active(bench), u"first"_s);
    EXPECT_EQ(bench.StateOf(515), u"on checked"_s);
    EXPECT_EQ(bench.StateOf(517), u"-"_s);
}

TEST(RealBar, WithoutASessionOnlyWhatNeedsNoneIsOffered)
{
    WindowBench bench;
    bench.Open();
    const std::set<int> offered = {101, 103, 110, 401, 403, 404,  405,  411,  412, 414,
                                   415, 513, 705, 711, 804, 1201, 1202, 1203, 1204};
    std::size_t seen = 0;
    for (const CommandRow& row : Commands())
        if (const QAction* action = bench.ActionOf(row.id)) {
            ++seen;
            EXPECT_EQ(action->isEnabled(), offered.contains(row.id)) << row.id;
        }
    EXPECT_GT(seen, 40u);
}

// Whether a window may be closed follows the tools that close it, whoever changes them.
TEST(RealBar, CloseBoxesFollowTheirTools)
{
    BarBench bench;
    bench.WindowOf(*bench.first).Tools().SetToolProperty(ToolId::FileClose, ToolProperty::Enabled, false);
    bench.WindowOf(*bench.first).close();
    bench.Settle();
    EXPECT_EQ(bench.Count(), 1);
    bench.window->Menu().SetToolProperty(ToolId::FileExit, ToolProperty::Visible, false);
    bench.window->close();
    bench.Settle();
    EXPECT_FALSE(bench.ended);
    bench.window->Menu().SetToolProperty(ToolId::FileExit, ToolProperty::Visible, true);
    bench.ask.answers = {MsgResult::Yes};
    bench.window->close();
    bench.Settle();
    EXPECT_TRUE(bench.ended);
}

} // namespace

} // namespace kestrune
