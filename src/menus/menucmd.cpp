#include <menus/menucmd.h>

#include "toolstates.h"

#include <emulator/control/ctlemulator.h>
#include <emulator/control/keynotation.h>
#include <menus/commands.h>
#include <ports/application.h>
#include <ports/pieces.h>
#include <ports/recorder.h>
#include <ports/scriptengine.h>
#include <ports/sessionwindow.h>

#include <sessions/session.h>
#include <sessions/sessions.h>
#include <settings/layer.h>
#include <support/errors.h>
#include <support/msgbox.h>

#include <algorithm>

namespace kestrune {

using namespace Qt::StringLiterals;

namespace {

taMenuBar* BarsOf(MenuTools& tools) { return dynamic_cast<taMenuBar*>(&tools); }

// A name that stands between the second "#" and the first "]" behind it.
QString MacroName(const QString& action) { return action.section(u'#', 2, 2).section(u']', 0, 0); }

} // namespace

void MenuCmd::MenuToolAction(const QString& action, bool /*checked*/, clsSession* session, Cause cause)
{
    const auto alive = session != nullptr ? session->shared_from_this() : nullptr; // the command may end it
    const int id = CommandId(action);
    if (id == 0) {
        RunOther(action, session);
        return;
    }
    if (RunRange(id, action, session))
        return;
    const CommandRow* row = FindCommand(id);
    if (row == nullptr || (row->needs == Needs::Session && session == nullptr))
        return;
    CommandCall call{application_, host_, pieces_, *this, session, cause, {id, session, {}, 0}};
    if (row->run(call) && row->records == Records::WhenDone)
        application_.Recorder().CommandRan(call.record);
}

// The commands that are ranges of numbers.
bool MenuCmd::RunRange(int id, const QString& action, clsSession* session)
{
    if (id >= ToolId::RecentFirst && id < ToolId::RecentEnd) {
        if (host_.FileOpenRecent(id - ToolId::RecentFirst, host_.IsRecordingMacro()) != 0)
            Record(id, nullptr);
        return true;
    }
    if (id >= ToolId::WindowFirst && id < ToolId::WindowEnd) {
        const int index = id - ToolId::WindowFirst - 1;
        if (index >= 0 && index < application_.Sessions().Count()) {
            const auto chosen = application_.Sessions().Item(index);
            chosen->Activate();
            Record(id, chosen.get());
        }
        return true;
    }
    if (id >= ToolId::MacroFirst && id < ToolId::MacroEnd) {
        RunMacro(action, session);
        return true;
    }
    return false;
}

void MenuCmd::Record(int id, clsSession* session) { application_.Recorder().CommandRan({id, session, {}, 0}); }

void MenuCmd::RunMacro(const QString& action, clsSession* session)
{
    const ScriptEnginePort* engine = application_.ScriptEngine(true);
    if (engine != nullptr && engine->IsRunning())
        application_.Ask().Beep();
    else
        pieces_.RunMacro(MacroName(action), session);
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

// --- states

void MenuCmd::UpdateTool(MenuTools& tools, int id, clsSession* session)
{
    if (id == ToolId::WindowMaximize) {
        tools.SetToolProperty(id, ToolProperty::Enabled, session != nullptr);
        tools.SetToolProperty(id, ToolProperty::Checked, session != nullptr && session->WindowState() == 2);
    }
}

void MenuCmd::ToolStateWritten(int id)
{
    if (id != ToolId::FileClose && id != ToolId::FileExit)
        return;
    MainWindow* frame = application_.Frame();
    if (frame == nullptr)
        return;
    frame->CheckState();
    if (SessionWindow* active = frame->ActiveChild())
        active->RefreshMenu();
}

void MenuCmd::UpdateState(clsSession* session)
{
    if (session != nullptr && session->frmSession() != nullptr)
        session->frmSession()->RefreshMenu();
    if (MainWindow* frame = application_.Frame())
        frame->CheckState();
}

bool MenuCmd::HostToolsOn() const
{
    const SettingsLayer& layer = application_.Layer();
    return layer.profile.ProfileGetBool(u"MVServices"_s, u"Enabled"_s, true, InstallationIniFile(layer.folders));
}

int MenuCmd::LoadSessionMenu(clsSession& /*session*/, MenuTools& tools)
{
    taMenuBar* menu = BarsOf(tools);
    if (menu == nullptr)
        return 0;
    const MenuSource source = LoadMenu(*menu, application_.Layer());
    menu->SetAccessKeys(host_.MenuAccessKeys());
    if (source == MenuSource::BuiltIn && !host_.MenuAccessKeys())
        menu->EachTool(LeaveKeyToHost);
    return static_cast<int>(source);
}

void MenuCmd::InitSessionMenu(clsSession& /*session*/, MenuTools& tools)
{
    if (taMenuBar* menu = BarsOf(tools))
        MenuInitSession(*menu);
}

void MenuCmd::RefreshMacroMenu(MenuTools& tools, const QString& macroList)
{
    taMenuBar* menu = BarsOf(tools);
    if (menu == nullptr)
        return;
    const QStringList macros = QString(macroList).remove(u'\r').split(u'\n', Qt::SkipEmptyParts);
    menu->EachBand([&](MenuBand& band) { RefreshMacroItems(band.tools, macros); });
}

void MenuCmd::InitBands(taMenuBar& menu)
{
    constexpr std::pair<QLatin1StringView, Bar> bars[] = {
        {"Toolbar"_L1, Bar::ToolBar}, {"StatusBar"_L1, Bar::StatusLine}, {"SessionBar"_L1, Bar::SessionBar}};
    for (const auto& [name, bar] : bars)
        menu.SetBandProperty(name, {}, BandProperty::Visible, host_.BarVisible(bar));
    menu.SetBandProperty({}, BandType::ToolBar, BandProperty::LargeIcons, host_.LargeIcons());
}

void MenuCmd::LoadFrameMenu(taMenuBar& menu)
{
    frameSource_ = LoadMenu(menu, application_.Layer());
    MenuInitFrame(menu);
    RefreshMacroMenu(menu, MacroList());
}

void MenuCmd::MenuInitFrame(taMenuBar& menu)
{
    InitBands(menu);
    const bool hostTools = HostToolsOn();
    menu.EachTool([hostTools](MenuTool& tool) { ToFrameState(tool, hostTools); });
}

void MenuCmd::MenuInitSession(taMenuBar& menu)
{
    InitBands(menu);
    const bool hostTools = HostToolsOn();
    menu.EachTool([hostTools](MenuTool& tool) { ToSessionState(tool, hostTools); });
}

void MenuCmd::ReloadMenus()
{
    ++reloads_;
    if (MainWindow* frame = application_.Frame())
        if (taMenuBar* menu = BarsOf(frame->Tools()); menu != nullptr && frameSource_)
            LoadFrameMenu(*menu);
    for (const auto& session : application_.Sessions().All())
        if (session->frmSession() != nullptr)
            session->ApplySessionMenu();
}

// At once, not when a macro menu is next opened: a menu that is open is never changed under the user's hand.
void MenuCmd::MacroListChanged()
{
    if (MainWindow* frame = application_.Frame())
        RefreshMacroMenu(frame->Tools(), MacroList());
    for (const auto& session : application_.Sessions().All())
        if (session->frmSession() != nullptr)
            session->LoadMacroMenu(MacroList());
}

void MenuCmd::SetBandProperty(const QString& name, BandType type, BandProperty property, bool value)
{
    const auto set = [&](MenuTools& tools) {
        if (taMenuBar* menu = BarsOf(tools))
            menu->SetBandProperty(name, type, property, value);
    };
    if (MainWindow* frame = application_.Frame())
        set(frame->Tools());
    for (const auto& session : application_.Sessions().All())
        if (session->frmSession() != nullptr)
            set(session->frmSession()->Tools());
}

// --- clicks and openings

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

void MenuCmd::BandOpen(taMenuBar& menu, MenuTool& tool, clsSession* session)
{
    std::vector<MenuTool>& tools = tool.tools;
    std::erase_if(tools, IsGeneratedItem);
    for (std::size_t i = 0; i < tools.size(); ++i) {
        const int id = CommandId(tools[i].action);
        if (id == ToolId::RecentFirst) {
            InsertRecentFiles(tools, i);
        } else if (id == ToolId::WindowFirst) {
            InsertWindows(tools, i);
            UpdateTool(menu, ToolId::WindowMaximize, session);
        } else if (id >= ToolId::ViewToolbar && id <= ToolId::ViewFuncBar) {
            tools[i].checked = host_.BarVisible(static_cast<Bar>(id - ToolId::ViewToolbar));
        }
    }
}

// An entry without text is skipped, but its number is not given to another.
void MenuCmd::InsertRecentFiles(std::vector<MenuTool>& tools, std::size_t placeholder)
{
    std::vector<ListedItem> items;
    int key = ToolId::RecentFirst;
    const QStringList files = host_.RecentFiles();
    for (const QString& file : files)
        if (++key < ToolId::RecentEnd && !file.isEmpty())
            items.push_back({key, file, false});
    InsertBehind(tools, placeholder, items);
}

// A session without a window takes up a number but gets no item; numbers beyond the range would be no commands.
void MenuCmd::InsertWindows(std::vector<MenuTool>& tools, std::size_t placeholder)
{
    const MainWindow* frame = application_.Frame();
    const SessionWindow* active = frame != nullptr ? frame->ActiveChild() : nullptr;
    std::vector<ListedItem> items;
    int key = ToolId::WindowFirst;
    for (const auto& session : application_.Sessions().All()) {
        const SessionWindow* window = session->frmSession();
        if (++key < ToolId::WindowEnd && window != nullptr)
            items.push_back({key, window->Title(), window == active && window->State() != 1});
    }
    InsertBehind(tools, placeholder, items);
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
