#include "formbench.h"

#include <sessions/tools.h>

#include <gtest/gtest.h>

#include <QAction>
#include <QLineEdit>
#include <QMenuBar>
#include <QStatusBar>
#include <QTest>
#include <QToolBar>

#include "fakes/print.h"

namespace kestrune {
namespace {

using namespace Qt::StringLiterals;

TEST(Frame, TabsFollowTheSessionsAndADraggedOneMovesItsSession)
{
    FormBench bench;
    const auto a = bench.Open(u"a.orcf"_s), b = bench.Open(u"b.orcf"_s), c = bench.Open(u"c.orcf"_s);
    EXPECT_EQ(bench.TabTexts(), (QStringList{u"a"_s, u"b"_s, u"c"_s}));
    emit bench.Tabs().Dragged(c->frmSession()->Handle(), a->frmSession()->Handle());
    bench.Settle();
    EXPECT_EQ(bench.TabTexts(), (QStringList{u"c"_s, u"a"_s, u"b"_s}));
    MenuTool windows;
    windows.key = 514;
    windows.action = u"[#514]"_s;
    MenuTool menu;
    menu.tools = {windows};
    bench.Application().Menu().BandOpen(bench.window->Menu(), menu, nullptr);
    ASSERT_EQ(menu.tools.size(), 4u);
    EXPECT_EQ(menu.tools[1].caption, u"&1  c"_s) << "the Window list has the same order";

    emit bench.Tabs().SessionTabClose(a->frmSession()->Handle());
    bench.Settle();
    EXPECT_EQ(bench.TabTexts(), (QStringList{u"c"_s, u"b"_s}));
    EXPECT_TRUE(b->Visible());
}

TEST(Frame, ATabIsRenamedInPlace)
{
    FormBench bench;
    const auto session = bench.Open(u"a.orcf"_s);
    ASSERT_TRUE(bench.window->RenameTab(*session));
    auto* box = bench.Tabs().findChild<QLineEdit*>(u"frmRename"_s);
    QTest::keyClicks(box, u"Payroll & co"_s);
    QTest::keyClick(box, Qt::Key_Return);
    bench.Settle();
    EXPECT_EQ(session->frmSession()->Title(), u"Payroll & co"_s);
    EXPECT_EQ(bench.TabTexts(), QStringList{u"Payroll && co"_s});
    EXPECT_TRUE(bench.window->windowTitle().endsWith(u"[Payroll & co]"_s));

    const auto other = bench.Open(u"b.orcf"_s);
    emit bench.Tabs().Dragged(session->frmSession()->Handle(), 0);
    bench.Settle();
    EXPECT_EQ(bench.TabTexts(), (QStringList{u"b"_s, u"Payroll && co"_s})) << "it holds while others come and move";
    session->SetCaption(u"Sales"_s);
    bench.Settle();
    EXPECT_EQ(bench.TabTexts(), (QStringList{u"b"_s, u"Sales"_s})) << "until the session itself is named anew";
}

TEST(Frame, ATabTellsOfASessionThatIsNotLookedAt)
{
    FormBench bench;
    const auto a = bench.Open(u"a.orcf"_s);
    a->Emulator().SetOnLine(true);
    FakeLine& host = bench.lines.Current();
    host.Connect();
    const auto b = bench.Open(u"b.orcf"_s);
    const auto says = [&](int tab) {
        bench.Settle();
        return bench.Tabs().accessibleTabName(tab);
    };
    EXPECT_EQ(says(0), u"a Connected"_s);
    host.HostSays("new mail\r\n");
    bench.clock.RunPosted();
    EXPECT_EQ(says(0), u"a New output"_s);
    a->Activate();
    EXPECT_EQ(says(0), u"a Connected"_s);
    EXPECT_EQ(says(1), u"b"_s);
}

class Changes : public QObject
{
public:
    bool eventFilter(QObject* watched, QEvent* event) override
    {
        const auto* widget = qobject_cast<QWidget*>(watched);
        if (widget == nullptr || !frame->isAncestorOf(widget))
            return false;
        const bool bar = qobject_cast<const QToolBar*>(widget) || qobject_cast<const QMenuBar*>(widget) ||
                         qobject_cast<const QStatusBar*>(widget);
        moves += bar && (event->type() == QEvent::Move || event->type() == QEvent::Resize ||
                         event->type() == QEvent::Hide || event->type() == QEvent::Show);
        return false;
    }
    const QWidget* frame = nullptr;
    int moves = 0;
};

TEST(Frame, WindowsAreMaximisedTogetherAndASwitchLeavesTheirSizeAlone)
{
    FormBench bench;
    const auto a = bench.Open(u"a.orcf"_s), b = bench.Open(u"b.orcf"_s), c = bench.Open(u"c.orcf"_s);
    const auto states = [&] {
        bench.Settle();
        return std::vector{a->WindowState(), b->WindowState(), c->WindowState()};
    };
    const auto front = [&] { return bench.window->ActiveChild(); };
    ASSERT_EQ(states(), (std::vector{WindowMaximised, WindowMaximised, WindowMaximised}));
    const QSize size = FormBench::WindowOf(*a).size();
    b->Activate();
    EXPECT_EQ(states(), (std::vector{WindowMaximised, WindowMaximised, WindowMaximised}));
    EXPECT_EQ(FormBench::WindowOf(*a).size(), size);

    b->SetWindowState(WindowNormal);
    EXPECT_EQ(states(), (std::vector{WindowNormal, WindowNormal, WindowNormal})) << "none hides behind a full one";
    EXPECT_EQ(front(), b->frmSession());
    a->Activate();
    EXPECT_EQ(states(), (std::vector{WindowNormal, WindowNormal, WindowNormal}));
    a->SetWindowState(WindowMaximised);
    c->Activate();
    EXPECT_EQ(states(), (std::vector{WindowMaximised, WindowNormal, WindowMaximised})) << "as they come to the front";
    EXPECT_EQ(front(), c->frmSession());
    for (const int style : {0, 1, 2}) {
        c->SetWindowState(WindowMaximised);
        bench.window->Arrange(style);
        EXPECT_EQ(states(), (std::vector{WindowNormal, WindowNormal, WindowNormal}));
        EXPECT_EQ(front(), c->frmSession()) << "cascaded or tiled";
    }
    c->SetWindowState(WindowMaximised);
    bench.Settle();
    a->Activate();
    EXPECT_EQ(states(), (std::vector{WindowMaximised, WindowNormal, WindowMaximised}));
    c->Delete();
    bench.Settle();
    a->Delete();
    bench.Settle();
    EXPECT_EQ(b->WindowState(), WindowMaximised) << "the next one takes its place";
    b->SetWindowState(WindowMinimised);
    bench.Settle();
    EXPECT_EQ(b->WindowState(), WindowMinimised);
}

TEST(Frame, ASwitchOfSessionsMovesNoBar)
{
    FormBench bench;
    const auto a = bench.Open(u"a.orcf"_s), b = bench.Open(u"b.orcf"_s);
    Changes changes;
    changes.frame = bench.window;
    qApp->installEventFilter(&changes);
    for (int i = 0; i < 4; ++i) {
        (i % 2 == 0 ? a : b)->Activate();
        bench.Settle();
    }
    qApp->removeEventFilter(&changes);
    EXPECT_EQ(changes.moves, 0);
}

TEST(Frame, BarPlacesAreKeptAsTheyAreMoved)
{
    QString places;
    {
        FormBench bench;
        const auto session = bench.Open(u"a.orcf"_s);
        EXPECT_EQ(bench.Stored(u"BarPlaces"_s), u"-"_s);
        auto& bars = FormBench::WindowOf(*session).Menu();
        EXPECT_TRUE(bars.ChangeBand(u"Toolbar"_s, [](MenuBand& band) { band.dock = BandDock::Left; }));
        bench.Settle();
        places = bench.Stored(u"BarPlaces"_s);
        EXPECT_NE(places, u"-"_s);
        EXPECT_EQ(bench.window->Menu().Band(u"Toolbar"_s)->dock, BandDock::Left) << "in every menu";
    }
    FormBench again;
    again.window->RestoreBars(places);
    again.Settle();
    EXPECT_EQ(again.window->Menu().Band(u"Toolbar"_s)->dock, BandDock::Left);
    again.window->RestoreBars(u"%% not even this"_s);
    EXPECT_EQ(again.window->Menu().Band(u"Toolbar"_s)->dock, BandDock::Left);
}

TEST(Frame, CtrlTabWalksBackThroughTheSessionsAsTheyWereUsed)
{
    FormBench bench;
    const auto a = bench.Open(u"a.orcf"_s), b = bench.Open(u"b.orcf"_s), c = bench.Open(u"c.orcf"_s);
    emit bench.Tabs().Dragged(c->frmSession()->Handle(), a->frmSession()->Handle()); // the order of tabs is another
    a->Activate();
    bench.Settle();
    const auto active = [&] { return dynamic_cast<frmMdiChild*>(bench.window->ActiveChild()); };
    ASSERT_EQ(active(), &FormBench::WindowOf(*a));
    QTest::keyPress(&active()->View(), Qt::Key_Tab, Qt::ControlModifier);
    bench.Settle();
    QTest::keyRelease(&active()->View(), Qt::Key_Control);
    EXPECT_EQ(active(), &FormBench::WindowOf(*c)) << "the one used before";
}

} // namespace
} // namespace kestrune
