#pragma once

// What sessions and commands ask of the application object above them. The application object implements it;
// tests use fakes/fakeapplication.h.

#include <QString>

namespace kestrune {

class clsSession;
class clsSessions;
class OrderedList;
class ScriptEnginePort;
class RecorderPort;
class CommandPort;
class Questions;
class Clock;
class MainWindow;
class SecretKeeper;
class SessionMenus;
struct SettingsLayer;

class ApplicationPort
{
public:
    virtual ~ApplicationPort() = default;

    // --- parts it owns
    virtual clsSessions& Sessions() = 0;
    virtual OrderedList& Order() = 0;
    virtual RecorderPort& Recorder() = 0;
    virtual CommandPort& Commands() = 0;
    virtual Questions& Ask() = 0;
    virtual ScriptEnginePort* ScriptEngine(bool noCreate) = 0;
    virtual SessionMenus& Menus() = 0;
    virtual MainWindow* Frame() = 0; // null in a run for the settings alone

    // --- the world, as its parts see it
    virtual SettingsLayer& Layer() = 0; // settings/layer.h; its SessionDir follows the file loaded last
    virtual Clock& Time() = 0;
    virtual SecretKeeper* Keeper() { return nullptr; } // of passwords; null: nothing keeps any

    // --- global settings
    virtual int TitleFormat() const = 0;
    virtual bool AutoClose() const = 0;
    virtual bool NoCloseWarning() const = 0;
    virtual void SetNoCloseWarning(bool on) = 0;
    virtual int InitChildWindowState() const = 0;
    virtual void SetInitChildWindowState(int state) = 0; // outside 0 to 2: ignored
    virtual bool TrackKeyboardState() const = 0;
    virtual int CustomMode() const = 0;
    virtual bool FuncBarVisible() const = 0;
    virtual int FuncBarPos() const = 0;
    virtual int FuncBarStyle() const = 0;
    virtual int FuncBarBank() const = 0; // as stored: 0 when nothing is
    virtual void SetFuncBarBank(int bank) = 0;
    virtual QString CustomMouseTable() const = 0;
    virtual QString DefaultCaptureDir() const = 0;
    virtual QString DefaultXferDir() const = 0;
    virtual QString PhoneBookName() const = 0;
    virtual void SetPhoneBookName(const QString& name) = 0;
    virtual QString DialedNumber() const = 0;
    virtual void SetDialedNumber(const QString& number) = 0;
    virtual QString DialedName() const = 0;
    virtual void SetDialedName(const QString& name) = 0;

    // --- process-wide state
    virtual int NextSessionNumber() = 0;  // counts up, never reused in a run
    virtual void SessionWasCreated() = 0; // suppresses the welcome dialog
    virtual void SessionHasEnded() = 0;
    virtual bool IsQuitting() const = 0;
    virtual void ClearQuitting() = 0;      // a session refused to close
    virtual int PendingPrompt() const = 0; // terminate prompt: bit 1 save, bit 2 live connection
    virtual void ClearPendingPrompt() = 0;
    virtual bool CloseSweep() const = 0; // several sessions are being closed in one go
    virtual void SetCloseSweep(bool on) = 0;
    virtual QString LayoutFileName() const = 0;
    virtual void SetLayoutFileName(const QString& name) = 0;
    virtual bool IsForeground() const = 0; // the program's window is the desktop's foreground window

    // --- actions
    virtual void AddRecent(const QString& name) = 0;
    virtual void RemoveRecent(const QString& name) = 0;
    virtual void Terminate(int prompt) = 0; // posts, so that a caller leaves its call first
};

} // namespace kestrune
