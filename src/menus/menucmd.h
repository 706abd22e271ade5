#pragma once

// Where every user command ends: the action text of a tool is a command (commands.h), a macro, script statements, or
// keystrokes for the session. And what keeps the menus of all windows in step with the program.

#include <menubar/tamenubar.h>
#include <menus/loadmenu.h>
#include <menus/menuhost.h>
#include <ports/commands.h>
#include <ports/sessionmenus.h>

#include <QString>

namespace kestrune {

class ApplicationPort;
class CommandPieces;

namespace ToolId {
inline constexpr int FileExit = 110, FileClose = 104, RecentFirst = 113, RecentEnd = 150, WindowFirst = 514,
                     WindowEnd = 550, WindowMaximize = 599, MacroFirst = 2000, MacroEnd = 3000, MacroRun = 801,
                     MacroEdit = 805, ViewToolbar = 1201, ViewFuncBar = 1204;
inline constexpr int TabActivate = 1301, TabMaximize = 1302, TabClose = 1303, TabClone = 1304, TabRename = 1305;
} // namespace ToolId

class MenuCmd : public CommandPort, public SessionMenus
{
public:
    MenuCmd(ApplicationPort& application, MenuHost& host, CommandPieces& pieces)
        : application_(application), host_(host), pieces_(pieces)
    {}

    // --- CommandPort
    void MenuToolAction(const QString& action, bool checked, clsSession* session, Cause cause) override;
    void UpdateTool(MenuTools& tools, int id, clsSession* session) override;
    void UpdateState(clsSession* session) override;

    // --- SessionMenus
    int LoadSessionMenu(clsSession& session, MenuTools& tools) override;
    void InitSessionMenu(clsSession& session, MenuTools& tools) override;
    QString MacroList() const override { return {}; }
    void RefreshMacroMenu(MenuTools& tools, const QString& macroList) override;

    // A tool was chosen. band: the one that it stands on; the tab popup names its session in its tag. Failures end
    // here; of a piece that is not there yet the user is told.
    void ToolClick(const taMenuBar& menu, const QString& band, const MenuTool& tool, clsSession* session);
    // A sub-menu is about to open: recent files, windows and check marks as they are now.
    void BandOpen(taMenuBar& menu, MenuTool& tool, clsSession* session);
    // The enabled or visible state of a tool was written on some menu: two of them decide what may be closed.
    void ToolStateWritten(int id);
    // Loads the main window's own menu, in the state for no session.
    void LoadFrameMenu(taMenuBar& menu);
    // State after a load: bars by the settings, and what a window without a session or with one may offer.
    void MenuInitFrame(taMenuBar& menu);
    void MenuInitSession(taMenuBar& menu);
    void ReloadMenus(); // menu files have changed: the main window's menu and each session's
    void MacroListChanged();
    // On the main window's menu and every session's: the bands of that name or, when it is empty, of that type.
    void SetBandProperty(const QString& name, BandType type, BandProperty property, bool value);
    MenuSource FrameMenuSource() const { return frameSource_.value_or(MenuSource::BuiltIn); }
    int Reloads() const { return reloads_; } // how often ReloadMenus ran
    bool HostToolsOn() const;                // the MultiValue services of the installation
    // The popup of a session's tab. False: no such session, or no such popup.
    bool PrepareTabMenu(taMenuBar& menu, quintptr window);

    std::shared_ptr<clsSession> SessionOfWindow(quintptr window) const; // null: none
    QStringList RecentFiles() const { return host_.RecentFiles(); }

private:
    void InitBands(taMenuBar& menu);
    void RunOther(const QString& action, clsSession* session);
    bool RunRange(int id, const QString& action, clsSession* session);
    void RunMacro(const QString& action, clsSession* session);
    void Record(int id, clsSession* session);
    void InsertRecentFiles(std::vector<MenuTool>& tools, std::size_t placeholder);
    void InsertWindows(std::vector<MenuTool>& tools, std::size_t placeholder);

    ApplicationPort& application_;
    MenuHost& host_;
    CommandPieces& pieces_;
    std::optional<MenuSource> frameSource_; // nothing: the settings are still being read, and it is loaded after them
    int reloads_ = 0;
};

} // namespace kestrune
