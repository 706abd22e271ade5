#include <menus/menucmd.h>

#include <emulator/control/ctlemulator.h>
#include <emulator/control/keynotation.h>
#include <menus/defaultmenu.h>
#include <ports/application.h>
#include <ports/recorder.h>
#include <ports/scriptengine.h>
#include <ports/sessionwindow.h>

#include <sessions/layout.h>
#include <sessions/savewords.h>
#include <sessions/session.h>
#include <sessions/sessions.h>
#include <settings/layer.h>
#include <support/errors.h>
#include <support/msgbox.h>
#include <support/notices.h>

#include <algorithm>
#include <array>

namespace kestrune {

using namespace Qt::StringLiterals;

namespace {

struct CommandCall
{
    ApplicationPort& application;
    MenuHost& host;
    clsSession* session;
    Cause cause;
    int id;
};

enum class Needs
{
    Nothing,
    Session
};

struct CommandRow
{
    int id;
    Needs needs;
    void (*run)(const CommandCall&); // null: not there yet, `feature` says what
    const char* feature = "";
};

// --- what the commands do

void SaveAs(const CommandCall& call) { call.session->SaveAs(); }

void Save(const CommandCall& call)
{
    clsSession& session = *call.session;
    if (session.FileName().isEmpty()) {
        SaveAs(call);
        return;
    }
    const auto alive = session.shared_from_this(); // a box runs the message loop
    try {
        session.Save({});
    } catch (const Failure& failure) {
        const QString words =
            SaveFailureWords(failure, SavedThing::Session, call.application.Layer().spec, session.FileName());
        if (words.isEmpty()) {
            call.host.ShowNotice(failure.Text()); // no box for these, but the user must know that nothing was saved
            return;
        }
        MsgBox(call.application.Ask(), words, MsgFlag::Exclamation);
        if (session.Terminated())
            return;
        SaveAs(call);
    }
}

void SaveLayoutCommand(const CommandCall& call)
{
    try {
        SaveLayoutByCommand(call.application);
    } catch (const Failure& failure) {
        call.host.ShowNotice(failure.Text());
    }
}

void SelectFrom(const CommandCall& call, int top)
{
    call.session->Emulator().SetSelection(0, top, ctlEmulator::ToEdge, ctlEmulator::ToEdge);
}

void SelectAll(const CommandCall& call) { SelectFrom(call, -call.session->Settings().Integer(Setting("HistoryRows"))); }

void PasteFrom(const CommandCall& call)
{
    FileDialogRequest request;
    request.title = u"Select File to Paste"_s;
    request.folder = call.session->SaveDir();
    request.filter = u"Text Files (*.txt)|*.txt|All Files (*.*)|*.*"_s;
    request.filterIndex = 2;
    constexpr int fileMustExist = 0x1000;
    request.flags = fileMustExist;
    const auto session = call.session->shared_from_this(); // the dialog runs the message loop
    if (const auto file = call.application.Ask().OpenFile(request); file && !session->Terminated())
        session->Paste(*file);
}

void ToggleMaximized(const CommandCall& call)
{
    constexpr int maximized = 2;
    call.session->SetWindowState(call.session->WindowState() == maximized ? 0 : maximized);
}

// Until the capture dialogs stand: the text of what comes in, to a file that a dialog asks for.
void ToggleCapture(const CommandCall& call)
{
    const auto session = call.session->shared_from_this(); // the dialog runs the message loop
    if (session->Emulator().CaptureSource() != 0) {
        session->Emulator().CaptureEnd();
        return;
    }
    constexpr int received = 1, overwrite = 1, textOnly = 128;
    constexpr int askBeforeOverwriting = 2;
    FileDialogRequest request;
    request.title = u"File Capture"_s;
    request.folder = session->Settings().Text(Setting("DefaultCaptureDir"));
    if (request.folder.isEmpty())
        request.folder = call.application.DefaultCaptureDir();
    if (request.folder.isEmpty())
        request.folder = call.application.Layer().folders.DocumentsDir;
    request.filter = u"All files (*.*)|*.*"_s;
    request.flags = askBeforeOverwriting;
    const auto file = call.application.Ask().SaveFile(request);
    if (!file || session->Terminated())
        return;
    session->Emulator().Capture(*file, received, overwrite | textOnly);
    if (session->Emulator().CaptureSource() == 0)
        MsgBox(call.application.Ask(), u"The selected file cannot be updated. Please choose a different file."_s,
               MsgFlag::Exclamation);
}

void TogglePrinter(const CommandCall& call)
{
    ctlEmulator& emulator = call.session->Emulator();
    if (emulator.PrinterMode() != 0)
        emulator.PrinterOff();
    else
        emulator.PrinterOn();
}

void ToggleScreenMode(const CommandCall& call)
{
    if (call.session->Emulator().ScrMode() != 0)
        call.session->NormMode();
    else
        call.session->ExtMode();
}

template <Bar bar>
void FlipBar(const CommandCall& call)
{
    call.host.SetBarVisible(bar, !call.host.BarVisible(bar));
}

template <int style>
void ArrangeWindows(const CommandCall& call)
{
    if (MainWindow* frame = call.application.Frame())
        frame->Arrange(style);
}

template <char page>
void SettingsPage(const CommandCall& call)
{
    call.host.ShowSettingsDialog(call.session, page == 0 ? QString() : QString(QLatin1Char(page)), {});
}

void CloseSession(const CommandCall& call)
{
    call.session->Terminate(TerminatePrompt::UnsavedChanges | TerminatePrompt::LiveConnection);
}

void CloneSession(const CommandCall& call) { call.application.Sessions().AddClone(call.session); }

// Ids in ascending order, each once.
constexpr std::array kCommands = {
    CommandRow{101, Needs::Nothing, [](const CommandCall& c) { c.host.FileNew(); }},
    CommandRow{103, Needs::Nothing, [](const CommandCall& c) { c.host.Open(c.host.IsRecordingMacro()); }},
    CommandRow{104, Needs::Session, CloseSession},
    CommandRow{105, Needs::Session, Save},
    CommandRow{106, Needs::Session, SaveAs},
    CommandRow{108, Needs::Nothing, SaveLayoutCommand},
    CommandRow{109, Needs::Nothing, [](const CommandCall& c) { SaveLayoutAs(c.application); }},
    CommandRow{110, Needs::Nothing, [](const CommandCall& c) { c.host.Exit(); }},
    CommandRow{201, Needs::Session, TogglePrinter},
    CommandRow{202, Needs::Session, [](const CommandCall& c) { c.session->Emulator().PrintScreen(); }},
    CommandRow{203, Needs::Nothing, SettingsPage<'P'>},
    CommandRow{303, Needs::Session, [](const CommandCall& c) { c.session->Copy(); }},
    CommandRow{304, Needs::Session, [](const CommandCall& c) { c.session->CopyHistory(); }},
    CommandRow{305, Needs::Session, [](const CommandCall& c) { c.session->Paste(); }},
    CommandRow{306, Needs::Session, PasteFrom},
    CommandRow{308, Needs::Session, SelectAll},
    CommandRow{313, Needs::Nothing, SettingsPage<'Q'>},
    CommandRow{314, Needs::Session, [](const CommandCall& c) { SelectFrom(c, 0); }},
    CommandRow{316, Needs::Session, [](const CommandCall& c) { c.session->Deselect(); }},
    CommandRow{351, Needs::Nothing, SettingsPage<'R'>},
    CommandRow{401, Needs::Nothing, nullptr, "Help viewer"},
    CommandRow{403, Needs::Nothing, nullptr, "Help viewer"},
    CommandRow{404, Needs::Nothing, nullptr, "Help viewer"},
    CommandRow{405, Needs::Nothing, [](const CommandCall& c) { c.host.ShowAbout(); }},
    CommandRow{501, Needs::Nothing, ArrangeWindows<0>},
    CommandRow{502, Needs::Nothing, ArrangeWindows<1>},
    CommandRow{503, Needs::Nothing, ArrangeWindows<2>},
    CommandRow{506, Needs::Session, ToggleScreenMode},
    CommandRow{513, Needs::Nothing, nullptr, "Script editor"},
    CommandRow{599, Needs::Session, ToggleMaximized},
    CommandRow{601, Needs::Session, nullptr, "File upload"},
    CommandRow{602, Needs::Session, nullptr, "File download"},
    CommandRow{603, Needs::Session, ToggleCapture},
    CommandRow{611, Needs::Session, nullptr, "File upload"},
    CommandRow{612, Needs::Session, nullptr, "File download"},
    CommandRow{704, Needs::Session, nullptr, "Dialer"},
    CommandRow{705, Needs::Nothing, SettingsPage<0>},
    CommandRow{707, Needs::Session, [](const CommandCall& c) { c.session->ResetTerm(); }},
    CommandRow{708, Needs::Session, [](const CommandCall& c) { c.session->ResetComm(); }},
    CommandRow{711, Needs::Nothing, nullptr, "Menu designer"},
    CommandRow{712, Needs::Session, CloneSession},
    CommandRow{804, Needs::Nothing, nullptr, "Macro recorder"},
    CommandRow{805, Needs::Nothing, nullptr, "Script editor"},
    CommandRow{1201, Needs::Nothing, FlipBar<Bar::ToolBar>},
    CommandRow{1202, Needs::Nothing, FlipBar<Bar::StatusLine>},
    CommandRow{1203, Needs::Nothing, FlipBar<Bar::SessionBar>},
    CommandRow{1204, Needs::Nothing, FlipBar<Bar::FuncBar>},
    CommandRow{ToolId::TabActivate, Needs::Session, [](const CommandCall& c) { c.session->Activate(); }},
    CommandRow{ToolId::TabMaximize, Needs::Session, ToggleMaximized},
    CommandRow{ToolId::TabClose, Needs::Session, CloseSession},
    CommandRow{ToolId::TabClone, Needs::Session, CloneSession},
    CommandRow{ToolId::TabRename, Needs::Session, [](const CommandCall& c) { c.host.RenameSession(*c.session); }},
};

constexpr bool Ascending()
{
    for (std::size_t i = 1; i < kCommands.size(); ++i)
        if (kCommands[i - 1].id >= kCommands[i].id)
            return false;
    return true;
}
static_assert(Ascending(), "two rows claim one command, or one is out of order");

const CommandRow* FindCommand(int id)
{
    const auto* at = std::lower_bound(kCommands.begin(), kCommands.end(), id,
                                      [](const CommandRow& row, int wanted) { return row.id < wanted; });
    return at != kCommands.end() && at->id == id ? at : nullptr;
}

// --- what the menus of a window without a session may offer

bool AlwaysOffered(int id)
{
    constexpr int offered[] = {101, 103, 110, 113, 154, 405, 513, 705, 711, 804};
    return std::find(std::begin(offered), std::end(offered), id) != std::end(offered) || (id >= 400 && id < 450) ||
           (id >= 1200 && id < 1300) || (id >= 10000 && id < 20000);
}

constexpr int kStatusPanels = 1100;
constexpr int kHintPanel = 1103;

void ToFrameState(MenuTool& tool)
{
    tool.visible = true;
    const int ids[] = {tool.key, CommandId(tool.action)};
    const bool isPanel = tool.key >= kStatusPanels && tool.key < kStatusPanels + 100;
    tool.enabled = tool.type == ToolType::SubMenu ||
                   std::any_of(std::begin(ids), std::end(ids), [](int id) { return AlwaysOffered(id); });
    if (tool.key == kHintPanel) {
        tool.caption = u"Create a new session or open an existing one"_s;
        tool.enabled = true;
    } else if (isPanel) {
        tool.caption.clear(); // the values of no session
    }
}

MenuTool Generated(const MenuTool& placeholder, int key, int number, const QString& text)
{
    MenuTool tool = placeholder;
    tool.key = key;
    tool.visible = true;
    tool.enabled = true;
    tool.checked = false;
    tool.beginGroup = placeholder.beginGroup && number == 1;
    // An ampersand in a name is no access key.
    tool.caption = u"&%1  "_s.arg(number) + QString(text).replace(u'&', "&&"_L1);
    tool.action = u"[#%1]"_s.arg(key);
    return tool;
}

bool IsGenerated(const MenuTool& tool)
{
    const int id = CommandId(tool.action);
    return (id > ToolId::RecentFirst && id < ToolId::RecentEnd) || (id > ToolId::WindowFirst && id < ToolId::WindowEnd);
}

} // namespace

void MenuCmd::MenuToolAction(const QString& action, bool /*checked*/, clsSession* session, Cause cause)
{
    const auto alive = session != nullptr ? session->shared_from_this() : nullptr; // the command may end it
    const int id = CommandId(action);
    if (id == 0) {
        RunOther(action, session);
        return;
    }
    if (RunRange(id))
        return;
    const CommandRow* row = FindCommand(id);
    if (row == nullptr || (row->needs == Needs::Session && session == nullptr))
        return;
    if (row->run == nullptr)
        NotImplemented(application_.Ask(), QString::fromLatin1(row->feature));
    else
        row->run({application_, host_, session, cause, id});
}

bool MenuCmd::RunRange(int id)
{
    if (id >= ToolId::RecentFirst && id < ToolId::RecentEnd) {
        host_.FileOpenRecent(id - ToolId::RecentFirst, host_.IsRecordingMacro());
        return true;
    }
    if (id >= ToolId::WindowFirst && id < ToolId::WindowEnd) {
        const int index = id - ToolId::WindowFirst - 1;
        if (index >= 0 && index < application_.Sessions().Count())
            application_.Sessions().Item(index)->Activate();
        return true;
    }
    if (id >= ToolId::MacroFirst && id < ToolId::MacroEnd) {
        const ScriptEnginePort* engine = application_.ScriptEngine(true);
        if (engine != nullptr && engine->IsRunning())
            application_.Ask().Beep();
        else
            NotImplemented(application_.Ask(), u"Macro player"_s);
        return true;
    }
    return false;
}

// Script statements or keystrokes. Failures go no further.
void MenuCmd::RunOther(const QString& action, clsSession* session)
{
    if (action.startsWith(u'[')) {
        int number = 0;
        QString text;
        host_.DDEExecScript(action, session != nullptr ? session->Id() : QString(), number, text);
    } else if (session != nullptr && !action.isEmpty()) {
        Silently([&] { session->Output(DecodeControls(action)); });
    }
}

void MenuCmd::UpdateTool(MenuTools& tools, int id, clsSession* session)
{
    if (id == ToolId::WindowMaximize) {
        tools.SetToolProperty(id, ToolProperty::Enabled, session != nullptr);
        tools.SetToolProperty(id, ToolProperty::Checked, session != nullptr && session->WindowState() == 2);
    }
}

void MenuCmd::UpdateState(clsSession* session)
{
    if (session != nullptr && session->frmSession() != nullptr)
        session->frmSession()->RefreshMenu();
    if (MainWindow* frame = application_.Frame())
        frame->CheckState();
}

int MenuCmd::LoadSessionMenu(clsSession& /*session*/, MenuTools& tools)
{
    if (auto* menu = dynamic_cast<taMenuBar*>(&tools))
        LoadDefaultMenu(*menu);
    return 0; // the built-in one
}

void MenuCmd::InitSessionMenu(clsSession& /*session*/, MenuTools& tools)
{
    if (auto* menu = dynamic_cast<taMenuBar*>(&tools))
        InitBands(*menu);
}

void MenuCmd::RefreshMacroMenu(MenuTools& tools, const QString& macroList)
{
    constexpr int runMacro = 801;
    constexpr int editMacro = 805;
    for (const int id : {runMacro, editMacro})
        tools.SetToolProperty(id, ToolProperty::Enabled, !macroList.isEmpty());
}

void MenuCmd::InitBands(taMenuBar& menu)
{
    menu.SetBandVisible(u"Toolbar"_s, host_.BarVisible(Bar::ToolBar));
    menu.SetBandVisible(u"StatusBar"_s, host_.BarVisible(Bar::StatusLine));
    menu.SetBandVisible(u"SessionBar"_s, host_.BarVisible(Bar::SessionBar));
    menu.SetLargeIcons(host_.LargeIcons());
}

void MenuCmd::LoadFrameMenu(taMenuBar& menu)
{
    LoadDefaultMenu(menu);
    InitBands(menu);
    menu.EachTool(ToFrameState);
}

void MenuCmd::ToolClick(const taMenuBar& menu, const QString& band, const MenuTool& tool, clsSession* session)
{
    std::shared_ptr<clsSession> fromTab;
    const MenuBand* from = menu.Band(band);
    if (session == nullptr && from != nullptr && band.compare(u"TABCTX"_s, Qt::CaseInsensitive) == 0) {
        fromTab = SessionOfWindow(from->tag);
        session = fromTab.get();
    }
    try {
        MenuToolAction(tool.action, tool.checked, session, Cause::User);
    } catch (const Failure& failure) { // a click has no caller to tell: commands show their own messages
        if (failure.Number() == ErrorNumber::NotImplemented)
            MsgBox(application_.Ask(), failure.Text(), MsgFlag::Information);
        else
            host_.ShowNotice(failure.Text());
    }
}

void MenuCmd::BandOpen(MenuTool& tool, clsSession* session)
{
    std::vector<MenuTool>& tools = tool.tools;
    std::erase_if(tools, IsGenerated);
    for (std::size_t i = 0; i < tools.size(); ++i) {
        const int id = CommandId(tools[i].action);
        std::vector<MenuTool> made;
        if (id == ToolId::RecentFirst) {
            tools[i].visible = false;
            const QStringList files = host_.RecentFiles();
            for (int k = 0, number = 1; k < files.size(); ++k)
                if (!files[k].isEmpty())
                    made.push_back(Generated(tools[i], ToolId::RecentFirst + k + 1, number++, files[k]));
        } else if (id == ToolId::WindowFirst) {
            tools[i].visible = false;
            const MainWindow* frame = application_.Frame();
            const SessionWindow* active = frame != nullptr ? frame->ActiveChild() : nullptr;
            int number = 1;
            int index = 0;
            for (const auto& each : application_.Sessions().All()) {
                const SessionWindow* window = each->frmSession();
                const int key = ToolId::WindowFirst + 1 + index++;
                if (window == nullptr)
                    continue; // takes up an index but gets no item
                made.push_back(Generated(tools[i], key, number++, window->Title()));
                made.back().checked = window == active && window->State() != 1;
            }
        } else if (id == ToolId::WindowMaximize) {
            tools[i].enabled = session != nullptr;
            tools[i].checked = session != nullptr && session->WindowState() == 2;
        } else if (id >= 1201 && id <= 1204) {
            tools[i].checked = host_.BarVisible(static_cast<Bar>(id - 1201));
        }
        const auto behind = static_cast<std::ptrdiff_t>(i + 1);
        tools.insert(tools.begin() + behind, made.begin(), made.end());
        i += made.size();
    }
}

bool MenuCmd::PrepareTabMenu(taMenuBar& menu, quintptr window)
{
    const auto session = SessionOfWindow(window);
    if (session == nullptr || menu.Band(u"TABCTX"_s) == nullptr)
        return false;
    menu.SetBandTag(u"TABCTX"_s, window);
    for (const int id : {ToolId::TabActivate, ToolId::TabMaximize, ToolId::TabClone, ToolId::TabRename})
        menu.SetToolProperty(id, ToolProperty::Enabled, true);
    menu.SetToolProperty(ToolId::TabMaximize, ToolProperty::Checked, session->WindowState() == 2);
    menu.SetToolProperty(ToolId::TabClose, ToolProperty::Enabled,
                         session->frmSession()->Tools().GetToolProperty(ToolId::FileClose, ToolProperty::Enabled));
    return true;
}

std::shared_ptr<clsSession> MenuCmd::SessionOfWindow(quintptr window) const
{
    for (const auto& session : application_.Sessions().All())
        if (window != 0 && session->frmSession() != nullptr && session->frmSession()->Handle() == window)
            return session;
    return nullptr;
}

} // namespace kestrune
