#pragma once

// The application object: the root of the system. It owns the main window, the sessions, their order of use, the
// recent files and the global settings, and is what other programs will reach. The first one made in a process is
// the application; a later one is secondary and does nothing.
//
// Global settings are written through: a setter that changes a value stores it at once, unless the values are
// being loaded, and applies it. Which settings there are, their keys and defaults stand in one table
// (settings/globals.h); what a change does at once stands in one table in the source.

#include <automation/clsmenu.h>
#include <automation/frame.h>
#include <menus/menucmd.h>
#include <ports/application.h>
#include <ports/pieces.h>
#include <ports/scriptengine.h>
#include <settings/globals.h>
#include <settings/layer.h>
#include <support/ordlst.h>
#include <support/recentlist.h>

#include <array>
#include <functional>
#include <map>
#include <memory>
#include <optional>

namespace kestrune {

struct StartMode
{
    bool standAlone = true;   // started by a user, not by the platform to serve a client
    bool settingsRun = false; // for the settings dialog alone: no main window
    QString commandLine;      // raw
};

class Kestrune final : public ApplicationPort
{
public:
    struct Parts // what it stands on; all of it outlives the object
    {
        SettingsLayer& layer;
        Clock& clock;
        Questions& ask;
        RecorderPort& recorder;
        SingleInstancePort& running; // registration for other programs
        std::function<std::unique_ptr<FrameWindow>(Kestrune&)> makeFrame;
        std::function<std::unique_ptr<MenuCmd>(Kestrune&)> makeCommands;
        std::function<std::unique_ptr<ScriptEnginePort>(Kestrune&)> makeScriptEngine;
        // The remembered position of the main window: applied before it shows, stored when it closes.
        std::function<void(GlobalValues&, FrameWindow&)> placeFrame;
        std::function<void(GlobalValues&, FrameWindow&)> keepPlace;
        std::function<void(const QString&)> setSplash; // the splash choice, as stored
        SecretKeeper* keeper = nullptr;                // of passwords; null: none are kept
    };

    static constexpr int NoValue = -2147483647; // "not given" in Move

    Kestrune(const Parts& parts, StartMode mode);
    ~Kestrune() override;
    Kestrune(const Kestrune&) = delete;
    Kestrune& operator=(const Kestrune&) = delete;

    static Kestrune* Application(); // the primary one; null before and after its life

    bool Primary() const { return primary_; }
    const StartMode& Mode() const { return mode_; }
    FrameWindow* MainWindow() const { return frame_.get(); } // null in a settings run
    std::shared_ptr<clsSession> ActiveSession() const;       // null: none
    clsRecentList& RecentList() { return recent_; }
    MenuCmd& Menu() { return *commands_; }
    // The menu of the main window, or of a session, as scripts see it. The object stays the same until menu files
    // are loaded again; one that a caller has kept goes on working by its keys.
    Ref<clsMenu> MenuObject(clsSession* session = nullptr);
    QString IniPath() const { return iniPath_; }
    int Cookie() const { return cookie_; } // of the registration; 0: none
    void RevokeObject();

    // --- global settings by name of the table
    QString Text(GlobalId id) const { return held_[static_cast<std::size_t>(id)]; }
    int Number(GlobalId id) const;
    bool Boolean(GlobalId id) const { return Number(id) != 0; }
    void SetText(GlobalId id, const QString& value);
    // RecentListSize outside 0 to 25: Failure BadRecentListSize; InitChildWindowState outside 0 to 2: ignored.
    void SetNumber(GlobalId id, int value);
    void SetBoolean(GlobalId id, bool value) { SetNumber(id, value ? 1 : 0); }

    void Load();
    void Save();
    void LoadGlobalSettings();
    void SaveGlobalSettings();
    QString Caption() const; // the custom title, or the program's

    // --- window; numbers in pixels
    bool Visible() const;
    void SetVisible(bool on);
    void Show() { SetVisible(true); }
    void Hide() { SetVisible(false); }
    void Move(int left, int top = NoValue, int width = NoValue, int height = NoValue);
    void Resize(int width, int height) { Move(NoValue, NoValue, width, height); }
    int Left() const;
    int Top() const;
    int Width() const;
    int Height() const;
    int WindowState() const;
    void SetWindowState(int state); // outside 0 to 2: ignored
    void Arrange(int style);
    void Activate();

    QString ProductName() const;
    QString ProductRelease() const;

    int OpenLayout(const QString& file); // the script in it is not run
    void SaveLayout(const QString& file = {});

    // --- start and end, for the start-up and shutdown code
    void SetQuitting(bool on) { quitting_ = on; }
    void SetPendingPrompt(int prompt) { pendingPrompt_ = prompt; }
    bool SessionCreated() const { return sessionCreated_; }
    void SaveAtClose();  // the state of new session windows
    void SavePosition(); // of the main window

    // --- ApplicationPort
    clsSessions& Sessions() override { return *sessions_; }
    OrderedList& Order() override { return order_; }
    RecorderPort& Recorder() override { return parts_.recorder; }
    CommandPort& Commands() override { return *commands_; }
    Questions& Ask() override { return parts_.ask; }
    ScriptEnginePort* ScriptEngine(bool noCreate) override;
    SessionMenus& Menus() override { return *commands_; }
    kestrune::MainWindow* Frame() override { return frame_.get(); }
    SettingsLayer& Layer() override { return parts_.layer; }
    Clock& Time() override { return parts_.clock; }
    SecretKeeper* Keeper() override { return parts_.keeper; }

    int TitleFormat() const override { return Number(GlobalId::TitleFormat); }
    bool AutoClose() const override { return Boolean(GlobalId::AutoClose); }
    bool NoCloseWarning() const override { return Boolean(GlobalId::NoCloseWarning); }
    void SetNoCloseWarning(bool on) override { SetBoolean(GlobalId::NoCloseWarning, on); }
    int InitChildWindowState() const override { return Number(GlobalId::InitChildWindowState); }
    void SetInitChildWindowState(int state) override { SetNumber(GlobalId::InitChildWindowState, state); }
    bool TrackKeyboardState() const override { return Boolean(GlobalId::TrackKeyboardState); }
    int CustomMode() const override { return 0; } // stored nowhere
    bool FuncBarVisible() const override { return Boolean(GlobalId::FuncBarVisible); }
    int FuncBarPos() const override { return Number(GlobalId::FuncBarPos); }
    int FuncBarStyle() const override { return Number(GlobalId::FuncBarStyle); }
    int FuncBarBank() const override;
    void SetFuncBarBank(int bank) override;
    QString CustomMouseTable() const override { return Text(GlobalId::CustomMouseTable); }
    QString DefaultCaptureDir() const override { return Text(GlobalId::DefaultCaptureDir); }
    QString DefaultXferDir() const override { return Text(GlobalId::DefaultXferDir); }
    QString PhoneBookName() const override { return Text(GlobalId::PhoneBookName); }
    void SetPhoneBookName(const QString& name) override { SetText(GlobalId::PhoneBookName, name); }
    QString DialedNumber() const override { return Text(GlobalId::DialedNumber); }
    void SetDialedNumber(const QString& number) override { SetText(GlobalId::DialedNumber, number); }
    QString DialedName() const override { return Text(GlobalId::DialedName); }
    void SetDialedName(const QString& name) override { SetText(GlobalId::DialedName, name); }

    int NextSessionNumber() override { return ++sessionCounter_; }
    void SessionWasCreated() override { sessionCreated_ = true; }
    void SessionHasEnded() override { sessionEnded_ = true; }
    bool IsQuitting() const override { return quitting_; }
    void ClearQuitting() override { quitting_ = false; }
    int PendingPrompt() const override { return pendingPrompt_; }
    void ClearPendingPrompt() override { pendingPrompt_ = 0; }
    bool CloseSweep() const override { return closeSweep_; }
    void SetCloseSweep(bool on) override { closeSweep_ = on; }
    QString LayoutFileName() const override { return layoutFileName_; }
    void SetLayoutFileName(const QString& name) override { layoutFileName_ = name; }
    bool IsForeground() const override { return frame_ != nullptr && frame_->IsForeground(); }

    void AddRecent(const QString& name) override;
    void RemoveRecent(const QString& name) override;
    void Terminate(int prompt) override;

private:
    void LoadOne(GlobalId id);
    void LoadRecentList();
    void RewriteRecentList();
    void WriteThrough(GlobalId id);
    void Apply(GlobalId id);
    QString Normalised(const QString& name) const;

    Parts parts_;
    StartMode mode_;
    bool primary_ = false;
    QString iniPath_;
    GlobalValues stored_;
    std::array<QString, kGlobalCount> held_; // memory form of each setting, by GlobalId
    bool loading_ = false;

    clsRecentList recent_;
    OrderedList order_;
    std::unique_ptr<clsSessions> sessions_;
    std::unique_ptr<MenuCmd> commands_;
    std::unique_ptr<ScriptEnginePort> engine_;
    std::unique_ptr<FrameWindow> frame_;

    std::map<QString, Ref<clsMenu>> menuObjects_; // by session id, empty: of the main window
    int menuReloads_ = 0;                         // that they were made after
    int cookie_ = 0;
    int sessionCounter_ = 0;
    bool sessionCreated_ = false;
    bool sessionEnded_ = false;
    bool quitting_ = false;
    int pendingPrompt_ = 0;
    bool closeSweep_ = false;
    QString layoutFileName_;
};

} // namespace kestrune
