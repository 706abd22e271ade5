#include <menus/commands.h>

#include <emulator/control/ctlemulator.h>
#include <menus/menucmd.h>
#include <menus/menuhost.h>
#include <platform/files.h>
#include <ports/application.h>
#include <ports/pieces.h>
#include <ports/sessionwindow.h>
#include <sessions/layout.h>
#include <sessions/savewords.h>
#include <sessions/session.h>
#include <sessions/sessions.h>
#include <settings/layer.h>
#include <support/msgbox.h>

#include <QCoreApplication>

#include <algorithm>
#include <array>

namespace kestrune {

using namespace Qt::StringLiterals;

namespace {

using Call = CommandCall;

constexpr int kMaximized = 2;

// --- files

bool FileNew(Call& call)
{
    const auto made = call.host.FileNew();
    call.record.session = made.get();
    return made != nullptr;
}

bool FileOpen(Call& call) { return call.host.Open(call.host.IsRecordingMacro()) != 0; }

bool FileClose(Call& call)
{
    call.session->Terminate(TerminatePrompt::UnsavedChanges | TerminatePrompt::LiveConnection);
    return call.session->Terminated();
}

bool FileSaveAs(Call& call)
{
    const bool saved = call.session->SaveAs();
    call.record.text = call.session->FileName();
    return saved;
}

bool FileSave(Call& call)
{
    clsSession& session = *call.session;
    if (session.FileName().isEmpty())
        return FileSaveAs(call);
    try {
        session.Save({});
        return true;
    } catch (const Failure& failure) {
        const QString words =
            SaveFailureWords(failure, SavedThing::Session, call.application.Layer().spec, session.FileName());
        if (words.isEmpty()) {
            call.host.ShowNotice(failure.Text()); // no box for these, but the user must know that nothing was saved
            return false;
        }
        MsgBox(call.application.Ask(), words, MsgFlag::Exclamation);
        return !session.Terminated() && FileSaveAs(call); // a box runs the message loop
    }
}

bool FileSaveLayout(Call& call)
{
    try {
        SaveLayoutByCommand(call.application);
    } catch (const Failure& failure) {
        call.host.ShowNotice(failure.Text());
        return false;
    }
    call.record.text = call.application.LayoutFileName();
    return !call.record.text.isEmpty();
}

bool FileSaveLayoutAs(Call& call)
{
    const bool saved = SaveLayoutAs(call.application);
    call.record.text = call.application.LayoutFileName();
    return saved;
}

bool FileExit(Call& call)
{
    call.application.Recorder().CommandRan(call.record); // before it: behind it there may be nobody left to tell
    call.host.Exit();
    return true;
}

// --- printer

bool PrinterToggle(Call& call)
{
    ctlEmulator& emulator = call.session->Emulator();
    const bool on = emulator.PrinterMode() == 0;
    if (on)
        emulator.PrinterOn(0);
    else
        emulator.PrinterOff();
    call.record.value = on ? 1 : 0;
    return true;
}

bool PrintScreen(Call& call)
{
    call.session->Emulator().PrintScreen();
    return true;
}

// --- edit

bool EditCopy(Call& call)
{
    call.session->Copy();
    return true;
}

bool EditCopyHistory(Call& call)
{
    call.session->CopyHistory();
    return true;
}

bool EditPaste(Call& call)
{
    call.session->Paste();
    return true;
}

bool EditPasteFrom(Call& call)
{
    FileDialogRequest request;
    request.title = u"Select File to Paste"_s;
    request.folder = call.session->SaveDir();
    request.filter = u"Text Files (*.txt)|*.txt|All Files (*.*)|*.*"_s;
    request.filterIndex = 2;
    constexpr int fileMustExist = 0x1000;
    request.flags = fileMustExist;
    const auto file = call.application.Ask().OpenFile(request);
    if (!file || call.session->Terminated()) // the dialog runs the message loop
        return false;
    call.session->Paste(*file);
    call.record.text = *file;
    return true;
}

bool SelectFrom(Call& call, int top)
{
    call.session->Emulator().SetSelection(0, top, ctlEmulator::ToEdge, ctlEmulator::ToEdge);
    return true;
}

bool EditSelectAll(Call& call) { return SelectFrom(call, -call.session->Settings().Integer(Setting("HistoryRows"))); }
bool EditSelectScreen(Call& call) { return SelectFrom(call, 0); }

bool EditSelectNone(Call& call)
{
    call.session->Emulator().ClearSelection();
    return true;
}

// --- view and windows

template <Bar bar>
bool FlipBar(Call& call)
{
    const bool on = !call.host.BarVisible(bar);
    call.host.SetBarVisible(bar, on);
    call.record.value = on ? 1 : 0;
    return true;
}

bool ScreenMode(Call& call)
{
    if (call.session->Emulator().ScrMode() != 0)
        call.session->NormMode();
    else
        call.session->ExtMode();
    call.record.value = call.session->Emulator().ScrMode();
    return true;
}

template <int style>
bool Arrange(Call& call)
{
    if (MainWindow* frame = call.application.Frame())
        frame->Arrange(style);
    return true;
}

bool Maximize(Call& call)
{
    call.session->SetWindowState(call.session->WindowState() == kMaximized ? 0 : kMaximized);
    call.record.value = call.session->WindowState();
    return true;
}

bool Activate(Call& call)
{
    call.session->Activate();
    return true;
}

bool Rename(Call& call) { return call.host.RenameSession(*call.session); }

// --- transfers and lines

bool Upload(Call& call)
{
    if (call.session->Emulator().XferStatus() == 0)
        call.pieces.ShowUpload(*call.session);
    return true;
}

bool Download(Call& call)
{
    if (call.session->Emulator().XferStatus() == 0)
        call.pieces.ShowDownload(*call.session);
    return true;
}

// The tool bar's buttons mean the host tool of the same purpose where there is one.
template <int hostTool, bool (*otherwise)(Call&)>
bool Transfer(Call& call)
{
    if (call.menus.HostToolsOn() && call.pieces.HasHostTool(hostTool)) {
        call.pieces.InvokeMVService(hostTool, call.session->Id());
        return true;
    }
    return otherwise(call);
}

bool Capture(Call& call)
{
    if (call.session->Emulator().CaptureSource() != 0)
        call.pieces.ShowCaptureStop(*call.session);
    else
        call.pieces.ShowCaptureStart(*call.session);
    return true;
}

bool AutoDial(Call& call)
{
    if (call.session->Settings().Integer(Setting("Device")) != static_cast<int>(Device::Modem))
        return false;
    const DialResult result = call.pieces.ShowDial(*call.session, call.record.text);
    if (result == DialResult::Cancelled || call.session->Terminated())
        return false;
    call.record.value = static_cast<int>(result);
    if (result == DialResult::Dial)
        call.session->Emulator().Dial(call.record.text);
    else
        call.session->Emulator().HangUp();
    return true;
}

bool ResetTerminal(Call& call)
{
    call.session->ResetTerm();
    call.record.value = 1;
    return true;
}

bool ResetConnection(Call& call)
{
    call.session->ResetComm();
    call.record.value = 2;
    return true;
}

bool Clone(Call& call)
{
    const auto made = call.application.Sessions().AddClone(call.session);
    call.record.session = made.get();
    return made != nullptr;
}

// --- tools

template <char page>
bool SettingsPage(Call& call)
{
    return call.host.ShowSettingsDialog(call.session, page == 0 ? QString() : QString(QLatin1Char(page)), {});
}

bool MenuDesigner(Call& call)
{
    const bool changed = call.pieces.ShowMenuDesigner(call.session);
    if (changed)
        call.menus.ReloadMenus();
    return changed;
}

bool ScriptEditor(Call& call)
{
    call.pieces.OpenScriptEditor(u"Main"_s, {});
    return true;
}

bool MacroEditor(Call& call)
{
    call.pieces.OpenScriptEditor(u"Macro"_s, {});
    return true;
}

bool MacroRecord(Call& call)
{
    call.pieces.StartMacroRecorder();
    return true;
}

bool HostTool(Call& call)
{
    call.pieces.InvokeMVService(call.record.id, call.session != nullptr ? call.session->Id() : QString());
    return true;
}

// --- help

template <HelpPage page>
bool Help(Call& call)
{
    call.pieces.ShowHelp(page);
    return true;
}

bool About(Call& call)
{
    call.host.ShowAbout();
    return true;
}

struct Document
{
    int id;
    QLatin1StringView name;
};

constexpr Document kDocuments[] = {
    {411, "userman.pdf"_L1}, {412, "vbaman.pdf"_L1}, {414, "release notes.pdf"_L1}, {415, "guiman.pdf"_L1}};

bool OpenDocument(Call& call)
{
    const auto* row = std::find_if(std::begin(kDocuments), std::end(kDocuments),
                                   [&](const Document& each) { return each.id == call.record.id; });
    const SettingsLayer& layer = call.application.Layer();
    const QString path = layer.spec.ExpandPath("doc\\"_L1 + row->name, layer.folders.ProgramDir, {});
    if (layer.profile.Files().Kind(path) != PathKind::File) {
        call.host.ShowNotice(
            QCoreApplication::translate("Commands", "The document \"%1\" is not installed.").arg(row->name));
        return false;
    }
    call.pieces.OpenDocument(path);
    return true;
}

consteval CommandRow Row(int id, Needs needs, Records records, bool (*run)(Call&))
{
    const std::string_view key = ToolKeyName(id);
    if (key.empty() && (id < 352 || id > 399)) // host tools have numbers without a key
        throw "a command without a key";
    return {id, key, needs, records, run};
}

constexpr auto kNothing = Needs::Nothing;
constexpr auto kSession = Needs::Session;
constexpr auto kRecorded = Records::WhenDone;
constexpr auto kUnrecorded = Records::Nothing;

// By number, each once.
constexpr std::array kCommands = {
    Row(101, kNothing, kRecorded, FileNew),
    Row(103, kNothing, kRecorded, FileOpen),
    Row(104, kSession, kRecorded, FileClose),
    Row(105, kSession, kRecorded, FileSave),
    Row(106, kSession, kRecorded, FileSaveAs),
    Row(108, kNothing, kRecorded, FileSaveLayout),
    Row(109, kNothing, kRecorded, FileSaveLayoutAs),
    Row(110, kNothing, kUnrecorded, FileExit),
    Row(201, kSession, kRecorded, PrinterToggle),
    Row(202, kSession, kRecorded, PrintScreen),
    Row(203, kNothing, kUnrecorded, SettingsPage<'P'>),
    Row(303, kSession, kRecorded, EditCopy),
    Row(304, kSession, kRecorded, EditCopyHistory),
    Row(305, kSession, kRecorded, EditPaste),
    Row(306, kSession, kRecorded, EditPasteFrom),
    Row(308, kSession, kRecorded, EditSelectAll),
    Row(313, kNothing, kUnrecorded, SettingsPage<'Q'>),
    Row(314, kSession, kRecorded, EditSelectScreen),
    Row(316, kSession, kRecorded, EditSelectNone),
    Row(351, kNothing, kUnrecorded, SettingsPage<'R'>),
    Row(401, kNothing, kUnrecorded, Help<HelpPage::Contents>),
    Row(403, kNothing, kUnrecorded, Help<HelpPage::Index>),
    Row(404, kNothing, kUnrecorded, Help<HelpPage::Index>),
    Row(405, kNothing, kUnrecorded, About),
    Row(411, kNothing, kUnrecorded, OpenDocument),
    Row(412, kNothing, kUnrecorded, OpenDocument),
    Row(414, kNothing, kUnrecorded, OpenDocument),
    Row(415, kNothing, kUnrecorded, OpenDocument),
    Row(501, kNothing, kUnrecorded, Arrange<0>),
    Row(502, kNothing, kUnrecorded, Arrange<1>),
    Row(503, kNothing, kUnrecorded, Arrange<2>),
    Row(506, kSession, kRecorded, ScreenMode),
    Row(513, kNothing, kUnrecorded, ScriptEditor),
    Row(599, kSession, kRecorded, Maximize),
    Row(601, kSession, kUnrecorded, Upload),
    Row(602, kSession, kUnrecorded, Download),
    Row(603, kSession, kUnrecorded, Capture),
    Row(611, kSession, kUnrecorded, Transfer<354, Upload>),
    Row(612, kSession, kUnrecorded, Transfer<355, Download>),
    Row(704, kSession, kRecorded, AutoDial),
    Row(705, kNothing, kUnrecorded, SettingsPage<0>),
    Row(707, kSession, kRecorded, ResetTerminal),
    Row(708, kSession, kRecorded, ResetConnection),
    Row(711, kNothing, kUnrecorded, MenuDesigner),
    Row(712, kSession, kRecorded, Clone),
    Row(804, kNothing, kUnrecorded, MacroRecord),
    Row(805, kNothing, kUnrecorded, MacroEditor),
    Row(1201, kNothing, kRecorded, FlipBar<Bar::ToolBar>),
    Row(1202, kNothing, kRecorded, FlipBar<Bar::StatusLine>),
    Row(1203, kNothing, kRecorded, FlipBar<Bar::SessionBar>),
    Row(1204, kNothing, kRecorded, FlipBar<Bar::FuncBar>),
    Row(1301, kSession, kRecorded, Activate),
    Row(1302, kSession, kRecorded, Maximize),
    Row(1303, kSession, kRecorded, FileClose),
    Row(1304, kSession, kRecorded, Clone),
    Row(1305, kSession, kUnrecorded, Rename),
};

constexpr bool CommandsAscend()
{
    for (std::size_t i = 1; i < kCommands.size(); ++i)
        if (kCommands[i - 1].id >= kCommands[i].id)
            return false;
    return true;
}
static_assert(CommandsAscend(), "two rows claim one command, or one is out of order");

// All numbers of this range are host tools; which there are is data of the installation.
constexpr int kFirstHostTool = 352;
constexpr int kLastHostTool = 399;
constexpr CommandRow kHostTools = Row(kFirstHostTool, kNothing, kUnrecorded, HostTool);

} // namespace

std::span<const CommandRow> Commands() { return kCommands; }

const CommandRow* FindCommand(int id)
{
    if (id >= kFirstHostTool && id <= kLastHostTool)
        return &kHostTools;
    const auto* at = std::lower_bound(kCommands.begin(), kCommands.end(), id,
                                      [](const CommandRow& row, int wanted) { return row.id < wanted; });
    return at != kCommands.end() && at->id == id ? at : nullptr;
}

} // namespace kestrune
