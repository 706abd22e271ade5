#include <app/mdiparnt.h>
#include <app/shutdown.h>
#include <fakes/print.h>
#include <fakes/shellbench.h>

#include <gtest/gtest.h>

namespace kestrune {

using namespace Qt::StringLiterals;
using std::chrono::milliseconds;

namespace {

class MdiParentTest : public testing::Test
{
protected:
    ShellBench bench_;
    Kestrune& application_ = bench_.Run();
    int shutDowns_ = 0;
    MdiParent parent_{application_, bench_.Frame(), [this] { ++shutDowns_; }};

    std::shared_ptr<clsSession> Open() { return application_.Sessions().Add(bench_.SessionFile(u"a.orcf"_s), 0); }
};

TEST(FrameTitle, ShowsAMaximisedSession)
{
    EXPECT_EQ(FrameTitle(u"Kestrune 7"_s, true, u"host"_s), u"Kestrune 7 - [host]"_s);
    EXPECT_EQ(FrameTitle(u"Kestrune 7"_s, false, u"host"_s), u"Kestrune 7"_s);
}

TEST_F(MdiParentTest, TitleFollowsTheActiveSession)
{
    parent_.SetTitle(u"Kestrune 7"_s);
    EXPECT_EQ(bench_.Frame().titleText, u"Kestrune 7"_s);
    const auto session = Open();
    session->SetWindowState(2);
    parent_.RefreshCaption();
    EXPECT_EQ(bench_.Frame().titleText, u"Kestrune 7 - [a]"_s);
    session->SetWindowState(0);
    parent_.RefreshCaption();
    EXPECT_EQ(bench_.Frame().titleText, u"Kestrune 7"_s);
}

struct CodeCase
{
    CloseCode code;
    int promptBefore;
    int promptAfter;
    bool scriptRuns;
    bool ends;
};

TEST_F(MdiParentTest, CloseCodes)
{
    const CodeCase rows[] = {
        {CloseCode::CloseBox, 2, 2, false, false}, // goes the way of the exit command
        {CloseCode::Code, 2, 2, true, true},       // a client's own prompt: a script does not hold it up
        {CloseCode::Code, 3, 3, true, false},        {CloseCode::Code, 3, 3, false, true},
        {CloseCode::SessionEnds, 1, 1, false, true}, {CloseCode::TaskManager, 3, 0, true, true},
        {CloseCode::Owner, 0, 3, false, true},
    };
    for (const CodeCase& row : rows) {
        ShellBench bench;
        bench_.main.reset(); // one application at a time
        Kestrune& application = bench.Run();
        application.ScriptEngine(false);
        bench.engine->running = row.scriptRuns;
        application.SetPendingPrompt(row.promptBefore);
        int shutDowns = 0;
        MdiParent parent(application, bench.Frame(), [&] { ++shutDowns; });
        EXPECT_EQ(parent.EndFrame(row.code), row.ends) << static_cast<int>(row.code);
        EXPECT_EQ(application.PendingPrompt(), row.promptAfter);
        EXPECT_EQ(shutDowns, row.ends ? 1 : 0);
        EXPECT_EQ(application.IsQuitting(), row.ends);
        EXPECT_EQ(parent.IsClosing(), row.ends);
        bench.clock.RunPosted(); // the close box's request, while its frame is there
    }
}

TEST_F(MdiParentTest, CloseBoxRunsTheExitCommandOfTheMenu)
{
    int exits = 0;
    bench_.main->SetExit([&] { ++exits; });
    EXPECT_FALSE(parent_.CloseBox());
    EXPECT_EQ(exits, 0); // from the event loop, not from inside the close
    bench_.clock.RunPosted();
    EXPECT_EQ(exits, 1);
    EXPECT_EQ(application_.PendingPrompt(), 3);

    bench_.Frame().menu.SetToolProperty(ToolId::FileExit, ToolProperty::Action, u"[#9999]"_s);
    parent_.CloseBox();
    bench_.clock.RunPosted();
    EXPECT_EQ(exits, 1);
}

TEST_F(MdiParentTest, ASessionThatStaysKeepsTheFrame)
{
    bench_.Frame().childrenLetGo = false;
    application_.SetQuitting(true);
    EXPECT_FALSE(parent_.EndFrame(CloseCode::Code));
    EXPECT_FALSE(application_.IsQuitting());
    EXPECT_FALSE(application_.CloseSweep());
    EXPECT_TRUE(bench_.Frame().visible);
    EXPECT_EQ(shutDowns_, 0);
}

TEST_F(MdiParentTest, ClosingEndsSessionsAndStoresThePosition)
{
    Open();
    bench_.Frame().Move(40, 50, 700, 300);
    application_.SetInitChildWindowState(1);
    EXPECT_TRUE(parent_.EndFrame(CloseCode::Code));
    EXPECT_EQ(application_.Sessions().Count(), 0);
    EXPECT_FALSE(bench_.Frame().visible);
    EXPECT_EQ(bench_.Stored(u"MainLeft"_s), u"40"_s);
    EXPECT_EQ(bench_.Stored(u"MainHeight"_s), u"300"_s);
    EXPECT_EQ(bench_.Stored(u"ChildWindowState"_s), u"1"_s);
    EXPECT_TRUE(parent_.EndFrame(CloseCode::Code)); // already closing: nothing happens
    EXPECT_EQ(shutDowns_, 1);
    parent_.PostLeave(Leave::EndFrame);
    bench_.clock.RunPosted();
    EXPECT_EQ(shutDowns_, 1);
}

TEST_F(MdiParentTest, FocusIsTriedAgainLessAndLessOften)
{
    Open();
    FakeFrame& frame = bench_.Frame();
    frame.acceptsFocus = false;
    frame.focusIsOnFrame = true;
    parent_.Activated();
    const int first = frame.focusTries;
    const auto triesAfter = [&](int ms) {
        bench_.clock.Advance(milliseconds(ms));
        return frame.focusTries - first;
    };
    EXPECT_EQ(triesAfter(99), 0);
    EXPECT_EQ(triesAfter(1), 1);
    EXPECT_EQ(triesAfter(200), 2);
    EXPECT_EQ(triesAfter(300), 3);
    EXPECT_EQ(triesAfter(300), 4); // goes on while the focus is nowhere useful
    frame.focusIsOnFrame = false;
    EXPECT_EQ(triesAfter(300), 4); // somebody else has it: given up
    EXPECT_EQ(triesAfter(3000), 4);
}

TEST_F(MdiParentTest, WithNoSessionNoTimerRuns)
{
    parent_.Activated();
    bench_.clock.Advance(milliseconds(2000));
    EXPECT_EQ(bench_.Frame().focusTries, 0);
}

TEST_F(MdiParentTest, FocusOnTheAreaGoesToTheSession)
{
    const auto session = Open();
    auto& window = bench_.Frame().inner.Window(*session);
    const int before = window.focused;
    bench_.Frame().focusIsOnFrame = true;
    parent_.GotFocus(true);
    EXPECT_EQ(window.focused, before);
    bench_.clock.RunPosted();
    EXPECT_EQ(window.focused, before + 1);
}

TEST_F(MdiParentTest, CloseCommandOfTheDesktopFollowsTheExitCommand)
{
    taMenuBar& menu = bench_.Frame().menu;
    menu.SetToolProperty(ToolId::FileExit, ToolProperty::Enabled, false);
    parent_.CheckState();
    EXPECT_FALSE(bench_.Frame().closeEnabled);
    menu.SetToolProperty(ToolId::FileExit, ToolProperty::Enabled, true);
    parent_.CheckState();
    EXPECT_TRUE(bench_.Frame().closeEnabled);
}

TEST_F(MdiParentTest, TabCloseAndTabMenuFollowTheSessionsOwnCloseTool)
{
    const auto session = Open();
    auto& window = bench_.Frame().inner.Window(*session);
    window.tools.SetToolProperty(ToolId::FileClose, ToolProperty::Enabled, false);
    parent_.SessionTabClose(window.Handle());
    EXPECT_EQ(application_.Sessions().Count(), 1);
    EXPECT_TRUE(parent_.ToolRightClick(window.Handle()));
    const taMenuBar& menu = bench_.Frame().menu;
    EXPECT_FALSE(menu.Tool(ToolId::TabClose)->enabled);
    EXPECT_TRUE(menu.Tool(ToolId::TabActivate)->enabled);
    EXPECT_EQ(menu.Band(u"tabctx"_s)->tag, window.Handle());
    EXPECT_FALSE(parent_.ToolRightClick(999));

    window.tools.SetToolProperty(ToolId::FileClose, ToolProperty::Enabled, true);
    parent_.SessionTabClose(window.Handle());
    EXPECT_EQ(application_.Sessions().Count(), 0);
}

// --- the last steps

class ShutdownTest : public testing::Test
{
protected:
    ShellBench bench_;
    Kestrune& application_ = bench_.Run();
    bool formsGo_ = true;
    int cleared_ = 0;
    bool released_ = false;
    frmShutdown shutdown_{{bench_.clock, [this] { return bench_.main->Application(); }, [this] { return formsGo_; },
                           [this] { ++cleared_; },
                           [this] {
                               released_ = true;
                               bench_.main->Release();
                           }}};
};

TEST_F(ShutdownTest, RevokesClearsAndReleases)
{
    shutdown_.Shutdown();
    EXPECT_TRUE(bench_.Logged(u"revoke 7"_s));
    EXPECT_EQ(cleared_, 1);
    EXPECT_TRUE(released_);
    EXPECT_EQ(Kestrune::Application(), nullptr);
    shutdown_.Shutdown(); // nothing is left to do
    EXPECT_EQ(cleared_, 1);
}

TEST_F(ShutdownTest, WaitsForARunningScript)
{
    application_.ScriptEngine(false);
    bench_.engine->running = true;
    shutdown_.Shutdown();
    EXPECT_EQ(application_.Cookie(), 0); // not found by a new start any more
    bench_.clock.Advance(milliseconds(1000));
    EXPECT_FALSE(released_);
    EXPECT_EQ(cleared_, 0);
    bench_.engine->running = false;
    bench_.clock.Advance(milliseconds(100));
    EXPECT_EQ(cleared_, 1);
    EXPECT_TRUE(released_);
    EXPECT_EQ(bench_.log.filter(u"revoke"_s).size(), 1);
}

TEST_F(ShutdownTest, WaitsForAFormThatStays)
{
    formsGo_ = false;
    shutdown_.Shutdown();
    bench_.clock.Advance(milliseconds(500));
    EXPECT_FALSE(released_);
    formsGo_ = true;
    bench_.clock.Advance(milliseconds(100));
    EXPECT_TRUE(released_);
}

} // namespace

} // namespace kestrune
