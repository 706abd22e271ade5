// The real session window in a real area of windows, offscreen.

#include "bench.h"

#include <emulator/view/terminalview.h>
#include <menubar/tamenubar.h>
#include <sessions/mdichild.h>
#include <sessions/sessionarea.h>

#include <QAction>
#include <QMainWindow>
#include <QMenu>
#include <QPointer>
#include <QTest>

namespace kestrune {
namespace {

using namespace Qt::StringLiterals;

class AreaFrame : public FakeMainWindow
{
public:
    AreaFrame(FakeApplication& application, const EmulatorPorts& ports)
        : FakeMainWindow(application, ports), application_(application), ports_(ports)
    {
        main.setCentralWidget(&area);
        main.resize(900, 700);
        main.show();
    }
    ~AreaFrame() override { main.takeCentralWidget(); }

    SessionWindow* NewSessionWindow(clsSession&) override
    {
        auto menu = std::make_unique<taMenuBar>();
        MenuBand band;
        band.key = u"ContextMenu"_s;
        MenuTool close;
        close.key = Tool::CloseSession;
        close.action = u"[#104]"_s;
        MenuTool status;
        status.key = Tool::ConnectionStatus;
        band.tools = {close, status};
        menu->SetBands({band});
        auto* window = new frmMdiChild(application_, std::make_unique<ctlEmulator>(ports_), std::move(menu));
        area.addSubWindow(window);
        window->hide();
        return window;
    }
    SessionWindow* ActiveChild() const override { return dynamic_cast<frmMdiChild*>(area.activeSubWindow()); }

private:
    FakeApplication& application_;
    EmulatorPorts ports_;

public:
    QMainWindow main;
    SessionArea area;
};

struct WindowBench : SessionBench
{
    WindowBench() : area(*this, Ports()) {}
    ~WindowBench() override
    {
        for (const auto& session : sessions.All())
            session->Delete();
        Settle();
    }
    MainWindow* Frame() override { return &area; }
    std::shared_ptr<clsSession> Open(int hidden = 0) { return sessions.Add(SessionFile(u"a.orcf"_s), 0, 0, hidden); }
    static frmMdiChild& Of(const clsSession& session) { return dynamic_cast<frmMdiChild&>(*session.frmSession()); }
    static void Settle()
    {
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QCoreApplication::processEvents();
    }

    AreaFrame area;
};

TEST(SessionWindow, ShowsWhatTheHostSaysAndSendsWhatIsTyped)
{
    WindowBench bench;
    const auto session = bench.Open();
    frmMdiChild& window = WindowBench::Of(*session);
    ASSERT_TRUE(window.isVisible());
    EXPECT_EQ(window.windowTitle(), u"a"_s);
    EXPECT_EQ(bench.area.ActiveChild(), &window);
    bench.lines.Current().Connect();
    EXPECT_EQ(window.Tools().GetToolProperty(Tool::ConnectionStatus, ToolProperty::Caption).toString(), u"Connected"_s);
    bench.lines.Current().HostSays("login: ");
    EXPECT_EQ(session->Emulator().GetText(0, 0, 6), u"login:"_s);
    session->Emulator().SetRow(0);
    QTest::keyClicks(&window.View(), u"me"_s);
    EXPECT_EQ(bench.lines.Current().TakeSent(), "me");
    const int colsBefore = session->Emulator().Cols();
    session->Resize(900, 600);
    EXPECT_TRUE(QTest::qWaitFor([&] { return session->Emulator().Cols() > colsBefore; })) << "the grid follows";
    EXPECT_EQ(bench.lines.Current().size.cols, session->Emulator().Cols());
}

TEST(SessionWindow, KeepsItsNormalPlaceWhileMaximisedOrHidden)
{
    WindowBench bench;
    const auto session = bench.Open(AddHidden::NotShown);
    session->Move(30, 40, 400, 300);
    session->SetWindowState(WindowMaximised);
    EXPECT_FALSE(session->frmSession()->IsVisible());
    session->Show();
    WindowBench::Settle();
    EXPECT_EQ(session->WindowState(), WindowMaximised);
    EXPECT_TRUE(WindowBench::Of(*session).isMaximized());
    EXPECT_EQ(session->frmSession()->Place(), (WindowPlace{30, 40, 400, 300, WindowMaximised}));
    session->SetWindowState(WindowNormal);
    WindowBench::Settle();
    EXPECT_EQ(session->frmSession()->Place(), (WindowPlace{30, 40, 400, 300, WindowNormal}));
    EXPECT_EQ(WindowBench::Of(*session).geometry(), QRect(30, 40, 400, 300));
    session->SetWindowState(WindowMinimised);
    session->Activate();
    EXPECT_EQ(session->WindowState(), WindowNormal);
    session->Hide();
    EXPECT_EQ(session->WindowState(), WindowMinimised);
    session->Show();
    EXPECT_EQ(WindowBench::Of(*session).geometry(), QRect(30, 40, 400, 300));
}

TEST(SessionWindow, CloseBoxGoesThroughTheCloseToolUnlessItIsGreyed)
{
    WindowBench bench;
    const auto session = bench.Open();
    frmMdiChild& window = WindowBench::Of(*session);
    window.close();
    EXPECT_TRUE(window.isVisible());
    bench.clock.RunPosted();
    EXPECT_EQ(bench.commands.actions, QStringList{u"[#104]"_s});
    QAction* close = nullptr;
    for (QAction* action : window.systemMenu()->actions()) {
        EXPECT_TRUE(action->shortcut().isEmpty()) << "the key belongs to the host";
        if (!action->isSeparator())
            close = action; // the last one
    }
    ASSERT_NE(close, nullptr);
    EXPECT_TRUE(close->isEnabled());
    window.Tools().SetToolProperty(Tool::CloseSession, ToolProperty::Enabled, false);
    window.RefreshMenu();
    EXPECT_FALSE(close->isEnabled());
    window.close();
    bench.clock.RunPosted();
    EXPECT_EQ(bench.commands.actions.size(), 1);
}

TEST(SessionWindow, GoesFromTheEventLoopWhenItsSessionEnds)
{
    WindowBench bench;
    const auto first = bench.Open();
    const auto second = bench.Open();
    const QPointer<frmMdiChild> window(&WindowBench::Of(*second));
    emit window->Emulator().CloseSession(); // ends it from inside one of its control's events
    EXPECT_TRUE(second->Terminated());
    ASSERT_FALSE(window.isNull());
    EXPECT_FALSE(window->isVisible());
    WindowBench::Settle();
    EXPECT_TRUE(window.isNull());
    EXPECT_EQ(bench.area.area.subWindowList().size(), 1);
}

TEST(SessionWindow, ControlTabReachesTheSessionsNotTheHost)
{
    WindowBench bench;
    const auto first = bench.Open();
    const auto second = bench.Open();
    bench.lines.Current().Connect();
    bench.lines.Current().TakeSent();
    ASSERT_EQ(bench.area.ActiveChild(), second->frmSession());
    QTest::keyPress(&WindowBench::Of(*second).View(), Qt::Key_Tab, Qt::ControlModifier);
    EXPECT_EQ(bench.area.ActiveChild(), first->frmSession());
    QTest::keyRelease(&WindowBench::Of(*first).View(), Qt::Key_Control);
    EXPECT_FALSE(bench.sessions.Walking());
    EXPECT_EQ(bench.lines.Current().TakeSent(), "");
}

TEST(SessionWindow, TitleIsShownAsItStandsAndAPopupNeedsItsBand)
{
    WindowBench bench;
    const auto session = bench.Open();
    frmMdiChild& window = WindowBench::Of(*session);
    session->SetCaption(u"x [*] y"_s);
    EXPECT_EQ(session->frmSession()->Title(), u"x [*] y"_s);
    EXPECT_EQ(window.windowTitle(), u"x [*][*] y"_s) << "a doubled mark is shown as text";
    QString wanted;
    QObject::connect(&window, &frmMdiChild::PopupWanted, [&](const QString& band) { wanted = band; });
    EXPECT_FALSE(window.ShowPopup(u"None"_s));
    EXPECT_TRUE(window.ShowPopup(u"ContextMenu"_s));
    EXPECT_EQ(wanted, u"ContextMenu"_s);
}

} // namespace
} // namespace kestrune
