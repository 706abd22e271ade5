#include "bench.h"

namespace kestrune {
namespace {

using namespace Qt::StringLiterals;

struct ChildBench : SessionBench
{
    ChildBench() { Open(); }
    void Open(const QByteArray& more = {})
    {
        session = sessions.Add(SessionFile(u"a.orcf"_s, more));
        window = &Window(*session);
        clock.RunPosted();
    }
    QVariant Property(int tool, ToolProperty property) const { return window->tools.GetToolProperty(tool, property); }

    std::shared_ptr<clsSession> session;
    FakeSessionWindow* window = nullptr;
};

TEST(ChildLogic, EmulatorEventsBecomeStatusTexts)
{
    ChildBench bench;
    ctlEmulator& emulator = *bench.window->emulator;
    const FakeMenuTools& tools = bench.window->tools;
    QString status;
    emit emulator.ConnectionStatus(0, &status);
    EXPECT_EQ(status, u"no connection"_s) << "replaced for the caller too";
    EXPECT_EQ(tools.Caption(1102), u"no connection"_s);
    EXPECT_FALSE(bench.Property(Tool::AutoDial, ToolProperty::Enabled).toBool());
    status = u"Connected to a host with a long name"_s;
    emit emulator.ConnectionStatus(4, &status);
    EXPECT_EQ(tools.Caption(1102), u"Connected to a host with "_s);
    EXPECT_TRUE(bench.Property(Tool::AutoDial, ToolProperty::Enabled).toBool());
    emit emulator.DeviceStatus(u"Telnet host:23"_s);
    EXPECT_EQ(tools.Caption(1103), u"Telnet host:23"_s);
    emit emulator.ScreenSizeChange(132, 25, 2, true);
    EXPECT_EQ(tools.Caption(1104), u"132,25,2"_s);
    EXPECT_TRUE(bench.Property(Tool::ScreenMode, ToolProperty::Checked).toBool());
    emit emulator.CursorMove(3, 4, 1);
    EXPECT_EQ(tools.Caption(1107), u"3,4,1"_s);
    for (const auto& [state, caption] : {std::pair{-1, u"Off"_s}, {0, u"Idle"_s}, {1, u"On"_s}}) {
        emit emulator.PrinterChange(state);
        EXPECT_EQ(tools.Caption(1105), caption);
        EXPECT_EQ(bench.Property(Tool::PrinterOn, ToolProperty::Checked).toBool(), state == 1);
    }
    emit emulator.CaptureChange(2);
    EXPECT_EQ(tools.Caption(1106), u"Capture On"_s);
    emit emulator.CaptureChange(0);
    EXPECT_EQ(tools.Caption(1106), u"Capture Off"_s);
    emit emulator.KeyboardLock(true);
    EXPECT_TRUE(bench.Property(1108, ToolProperty::Checked).toBool());
    EXPECT_EQ(bench.Property(1108, ToolProperty::ToolTipText).toString(), u"Keyboard locked"_s);
    emit emulator.KeyboardLock(false);
    EXPECT_EQ(bench.Property(1108, ToolProperty::ToolTipText).toString(), u"Keyboard unlocked"_s);
}

TEST(ChildLogic, StatusSurvivesAMenuThatIsLoadedAnew)
{
    ChildBench bench;
    EXPECT_EQ(bench.window->tools.Caption(1101), u"VT220"_s);
    bench.lines.Current().Connect();
    bench.window->tools.SetToolProperty(1101, ToolProperty::Caption, u"Emulation"_s);
    bench.window->tools.SetToolProperty(1102, ToolProperty::Caption, QString());
    bench.session->ApplySessionMenu();
    EXPECT_EQ(bench.window->tools.Caption(1101), u"VT220"_s);
    EXPECT_EQ(bench.window->tools.Caption(1102), u"Connected"_s);
}

TEST(ChildLogic, TerminalTypesHaveNames)
{
    ChildBench bench;
    bench.Write(InstallationIniFile(bench.layer.folders), "[Custom]\nTT51=a,b,My Type,c\n");
    for (const auto& [type, name] : {std::pair{0, u"TTY"_s},
                                     {8, u"VT220"_s},
                                     {16, u"Linux Console"_s},
                                     {19, u"MDIS P8"_s},
                                     {77, u"VT220 Lanpar"_s},
                                     {50, u"Unk"_s},
                                     {51, u"My Type"_s}}) {
        emit bench.window->emulator->TermTypeChange(type);
        EXPECT_EQ(bench.window->tools.Caption(1101), name);
    }
}

TEST(ChildLogic, EmulatorAsksTheSession)
{
    ChildBench bench;
    ctlEmulator& emulator = *bench.window->emulator;
    emit emulator.ServerStart(u"srv"_s);
    EXPECT_EQ(bench.session->ServerMode(), 1);
    EXPECT_EQ(bench.window->title, u"a [server]"_s);
    emit emulator.ServerExit();
    EXPECT_EQ(bench.session->ServerName(), QString());
    bench.session->SetCaption(u"Mine"_s);
    emit emulator.SaveSettings();
    EXPECT_FALSE(bench.session->Changed());
    bench.session->SetCaption(u"Other"_s);
    emit emulator.LoadSettings();
    EXPECT_EQ(bench.session->Caption(), u"Mine"_s);

    QString heard;
    int ready = 0;
    QObject::connect(bench.session.get(), &clsSession::Extension, [&](const QString& command) { heard = command; });
    QObject::connect(bench.session.get(), &clsSession::DataReady, [&] { ++ready; });
    emit emulator.Extension(u"cmd"_s);
    emit emulator.DataReady();
    EXPECT_EQ(heard, u"cmd"_s);
    EXPECT_EQ(ready, 1);

    bool done = false;
    emit emulator.ExecScript(u"Beep"_s, true, &done);
    EXPECT_TRUE(done);
    EXPECT_EQ(bench.engine.texts, QStringList{u"1:Beep"_s});
    bench.engine.failing = true;
    emit emulator.ExecScript(u"Bad"_s, true, &done);
    EXPECT_TRUE(bench.ask.boxes.empty()) << "a failed script stays silent here";

    bench.Write(InstallationIniFile(bench.layer.folders), "[Sec]\nkey=value\n");
    QString value = u"old"_s;
    bool found = false;
    emit emulator.ReadProfile(u"Sec"_s, u"key"_s, &value, &found);
    EXPECT_TRUE(found);
    EXPECT_EQ(value, u"value"_s);
    emit emulator.ReadProfile(u"Sec"_s, u"other"_s, &value, &found);
    EXPECT_TRUE(found);
    EXPECT_EQ(value, QString());

    bool handled = false;
    emit emulator.ContextMenu(2, 0, 0, u"Named"_s, &handled);
    emit emulator.ContextMenu(3, 0, 0, u"Named"_s, &handled);
    emit emulator.ContextMenu(3, 0, 0, {}, &handled);
    EXPECT_TRUE(handled);
    EXPECT_EQ(bench.window->popups, (std::vector<QString>{u"ContextMenu"_s, u"Named"_s, u"ContextMenu"_s}));

    emit emulator.CloseSession(); // without questions, from inside the control's own event
    EXPECT_TRUE(bench.session->Terminated());
    EXPECT_TRUE(bench.ask.boxes.empty());
}

TEST(ChildLogic, SaveThatTheEmulatorAskedForSaysWhyItFailed)
{
    ChildBench bench;
    QFile::setPermissions(bench.session->FileName(), QFileDevice::ReadOwner);
    bench.session->SetCaption(u"Mine"_s);
    emit bench.window->emulator->SaveSettings();
    ASSERT_EQ(bench.ask.boxes.size(), 1u);
    EXPECT_FALSE(bench.ask.boxes[0].text.isEmpty());
}

TEST(ChildLogic, RecorderHearsOfTheActiveWindowOnly)
{
    ChildBench bench;
    const auto first = bench.session;
    FakeSessionWindow* firstWindow = bench.window;
    bench.Open();
    bench.recorder.TakeLog();
    emit firstWindow->emulator->RecordText(u"a"_s);
    emit bench.window->emulator->RecordText(u"b"_s);
    emit bench.window->emulator->RecordKey(u"k"_s, 13);
    EXPECT_EQ(bench.recorder.TakeLog(), (QStringList{u"text b"_s, u"key k"_s}));
    bench.recorder.recording = true;
    first->frmSession()->RunActivation();
    EXPECT_EQ(bench.recorder.TakeLog(), QStringList{u"activated 1"_s});
    EXPECT_TRUE(first->Emulator().RecordingText() && first->Emulator().RecordingKeys());
}

TEST(ChildLogic, MovesAreRecordedOnceAndTheStateWhenItChanged)
{
    ChildBench bench;
    bench.window->Move(1, 2, 3, 4);
    bench.recorder.TakeLog();
    bench.window->RunResize();
    bench.window->Move(1, 2, 30, 40);
    bench.window->SetState(WindowMaximised);
    EXPECT_EQ(bench.recorder.TakeLog(), (QStringList{u"moved 1,2,30,40 -1"_s, u"moved 1,2,30,40 2"_s}));
    EXPECT_EQ(bench.initState, 2);
    bench.window->SetState(WindowMinimised);
    EXPECT_EQ(bench.initState, 2) << "a minimised window is no model for new ones";
}

TEST(ChildLogic, MenuFollowsClipboardPrintersAndTheCloseTool)
{
    ChildBench bench;
    bench.window->RefreshMenu();
    EXPECT_FALSE(bench.Property(Tool::Paste, ToolProperty::Enabled).toBool());
    EXPECT_TRUE(bench.Property(Tool::PrinterStatus, ToolProperty::Enabled).toBool());
    EXPECT_TRUE(bench.window->canClose);
    bench.clipboard.standard = u"x"_s;
    bench.session->Settings().Set(u"SlavePrinterName"_s, u"No Printer"_s);
    bench.session->Settings().Set(u"ScreenPrinterName"_s, u"No Printer"_s);
    bench.window->tools.SetToolProperty(Tool::CloseSession, ToolProperty::Enabled, false);
    bench.window->RefreshMenu();
    EXPECT_TRUE(bench.Property(Tool::Paste, ToolProperty::Enabled).toBool());
    EXPECT_FALSE(bench.Property(Tool::PrinterStatus, ToolProperty::Enabled).toBool());
    EXPECT_FALSE(bench.Property(Tool::PrintScreen, ToolProperty::Enabled).toBool());
    EXPECT_FALSE(bench.window->canClose);
}

TEST(ChildLogic, ControlTabWalksInOrderOfUseUntilControlGoesUp)
{
    ChildBench bench;
    bench.Open();
    bench.Open();
    const auto id = [&] { return bench.frame.active->tag; };
    const auto tab = [&] { return bench.frame.active->logic->KeyDown(9, 2); };
    ASSERT_EQ(id(), u"3"_s);
    EXPECT_TRUE(tab());
    EXPECT_EQ(id(), u"2"_s);
    EXPECT_TRUE(tab());
    EXPECT_EQ(id(), u"1"_s) << "the order stands still during the walk";
    bench.frame.active->logic->KeyUp(17);
    EXPECT_TRUE(tab());
    EXPECT_EQ(id(), u"3"_s) << "the two used last are toggled";
    bench.frame.active->logic->KeyUp(17);
    bench.Window(*bench.sessions.Item(0)).visible = false;
    EXPECT_TRUE(tab());
    EXPECT_EQ(id(), u"2"_s) << "an invisible one is passed over";
    bench.frame.active->logic->KeyUp(17);

    EXPECT_FALSE(bench.frame.active->logic->KeyDown(9, 3)) << "Shift is down too";
    EXPECT_FALSE(bench.frame.active->logic->KeyDown(65, 2));
    bench.sessions.Item(u"2"_s)->Settings().SetFKeys(2009, u"x"_s);
    EXPECT_FALSE(tab()) << "the key has a function of its own";
}

TEST(ChildLogic, FocusFollowsActivationLater)
{
    ChildBench bench;
    bench.window->focusIsOnWindow = true;
    bench.window->focused = 0;
    bench.window->logic->FrameActivated();
    EXPECT_EQ(bench.window->focused, 0);
    bench.clock.Advance(Clock::Duration(250));
    EXPECT_EQ(bench.window->focused, 1);
    bench.foreground = false;
    bench.window->logic->FrameActivated();
    bench.clock.Advance(Clock::Duration(250));
    EXPECT_EQ(bench.window->focused, 1) << "another program has the desktop";
}

TEST(ChildLogic, QuickSecondActivationSwallowsOneDeactivation)
{
    ChildBench bench;
    ChildLogic& logic = *bench.window->logic;
    logic.MdiActivated();
    EXPECT_FALSE(logic.FrameDeactivated());
    bench.clock.Advance(Clock::Duration(499));
    logic.MdiActivated();
    EXPECT_TRUE(logic.FrameDeactivated());
    EXPECT_FALSE(logic.FrameDeactivated());
    bench.clock.Advance(Clock::Duration(500));
    logic.MdiActivated();
    EXPECT_FALSE(logic.FrameDeactivated());
}

struct CloseCase
{
    UnloadMode mode;
    int pendingPrompt;
    int boxes; // all answered with No
    bool closes;
};

TEST(ChildLogic, CloseQueryAsksByMode)
{
    const CloseCase cases[] = {
        {UnloadMode::MainWindow, 0, 0, true},   {UnloadMode::MainWindow, 1, 1, true},
        {UnloadMode::MainWindow, 3, 1, false},  {UnloadMode::TaskManager, 3, 0, true},
        {UnloadMode::SessionEnds, 0, 1, false}, {UnloadMode::Code, 0, 1, false},
    };
    for (const CloseCase& row : cases) {
        SCOPED_TRACE(int(row.mode) * 10 + row.pendingPrompt);
        ChildBench bench;
        bench.lines.Current().Connect();
        bench.session->SetChanged(true);
        bench.pendingPrompt = row.pendingPrompt;
        bench.quitting = bench.closeSweep = true;
        bench.ask.answers = {MsgResult::No, MsgResult::No};
        EXPECT_EQ(bench.window->logic->CloseQuery(row.mode), row.closes);
        EXPECT_EQ(bench.ask.boxes.size(), std::size_t(row.boxes));
        EXPECT_EQ(bench.quitting, row.closes) << "a refusal calls the end of the program off";
        EXPECT_EQ(bench.closeSweep, row.closes);
    }
}

TEST(ChildLogic, CloseBoxRunsTheCloseToolFromTheMessageLoop)
{
    ChildBench bench;
    EXPECT_FALSE(bench.window->logic->CloseQuery(UnloadMode::CloseBox));
    EXPECT_TRUE(bench.commands.actions.isEmpty());
    bench.clock.RunPosted();
    EXPECT_EQ(bench.commands.actions, QStringList{u"[#104]"_s});
    bench.window->PostClose();
    bench.session->Delete();
    bench.clock.RunPosted();
    EXPECT_EQ(bench.commands.actions.size(), 1) << "the session was gone by then";
}

TEST(ChildLogic, DeferredTransferRunsFromTheMessageLoop)
{
    ChildBench bench;
    TransferRequest request;
    request.upload = true;
    request.fileName = u"/x"_s;
    request.textEncoding = 3;
    bench.window->PostTransfer(request);
    EXPECT_EQ(bench.session->Emulator().TextFileEncoding(), 0);
    bench.clock.RunPosted();
    EXPECT_EQ(bench.session->Emulator().TextFileEncoding(), 3);
    EXPECT_EQ(bench.ask.boxes.size(), 1u) << "transfers are not there yet, and say so";
    request.mode = 1;
    request.textEncoding = 2;
    bench.window->PostTransfer(request);
    bench.clock.RunPosted();
    EXPECT_EQ(bench.session->Emulator().TextFileEncoding(), 3) << "of no use for a binary transfer";
}

} // namespace
} // namespace kestrune
