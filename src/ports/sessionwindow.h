#pragma once

// Windows as sessions, layouts and the application object see them: what can be asked of a session window
// and of the frame, with no toolkit. All numbers are pixels.

#include <ports/recorder.h>

#include <QString>
#include <QStringList>

#include <memory>

namespace kestrune {

class ctlEmulator;
class clsSession;
class LinePanels;
class MenuTools;

class SessionWindow
{
public:
    virtual ~SessionWindow() = default;
    virtual ctlEmulator& Emulator() = 0;
    virtual MenuTools& Tools() = 0;
    virtual LinePanels& Panels() = 0;

    virtual void SetTag(const QString& id) = 0; // the session's Id: the window finds its session by it
    virtual QString Tag() const = 0;
    virtual quintptr Handle() const = 0; // of the emulator's view in it
    virtual void ChangeCaption(const QString& text) = 0;
    virtual QString Title() const = 0;
    virtual bool ChangeIcon(const QString& path) = 0; // empty or unreadable: the program's own, and false

    virtual WindowPlace Place() const = 0; // restored position when maximised or minimised; state as it is now
    virtual void Move(int left, int top, int width, int height) = 0;
    virtual void SetState(int state) = 0; // 0 normal, 1 minimised, 2 maximised
    virtual int State() const = 0;
    virtual bool IsVisible() const = 0;
    virtual bool IsEnabled() const = 0;
    virtual void SetVisible(bool on) = 0;
    virtual void Activate() = 0;                     // restores a minimised window, brings it to the front
    virtual void RunActivation() = 0;                // what the window does when it became active
    virtual void RunResize() = 0;                    // what it does after a resize
    virtual void ShowInactive() = 0;                 // shows it without activating: for the time a modal dialog is up
    virtual void TakeFocus() = 0;                    // to the emulator, or to the panel over it
    virtual void TakeWindowFocus() = 0;              // to the window itself
    virtual bool FocusIsOnWindow() const = 0;        // on the window itself, not on the emulator in it
    virtual void SetCanClose(bool on) = 0;           // the Close entry of the system menu
    virtual bool ShowPopup(const QString& band) = 0; // at the pointer; false: there is no such band
    virtual void RefreshMenu() = 0;
    virtual void SetMenuDirty() = 0;

    virtual bool IgnoreEvents() const = 0; // the program itself moves the window: not recorded
    virtual void SetIgnoreEvents(bool on) = 0;
    virtual bool IsClosing() const = 0;
    virtual void SetClosing() = 0;
    // Ends the window without questions. The window and its control are taken apart from the event loop, not
    // here: this is also called from inside one of the control's own events.
    virtual void Unload() = 0;
    virtual void PostClose() = 0; // the deferred close: runs the action of the close tool
    virtual void PostTransfer(const TransferRequest& request) = 0; // the deferred upload or download
};

// The main window as the shell's decisions see it.
class MainWindow
{
public:
    virtual ~MainWindow() = default;
    // A hidden, loaded session window for this session; it lives until its Unload.
    virtual SessionWindow* NewSessionWindow(clsSession& session) = 0;
    virtual SessionWindow* ActiveChild() const = 0; // null: none
    virtual void UpdateNoActiveSession() = 0;       // menus and title for an empty frame
    virtual void RefreshCaption() = 0;              // puts the title of a maximised child into the frame's
    virtual void RefreshSessionBar() = 0;
    virtual void CheckState() = 0; // the frame's own Close entry follows its exit command
    virtual void TakeFocus() = 0;
    virtual bool ClipboardHasText() const = 0;
    virtual QStringList FontNames() const = 0; // the screen's font list, in its order

    virtual WindowPlace Place() const = 0;
    virtual void Move(int left, int top, int width, int height) = 0;
    virtual void SetState(int state) = 0;
    virtual int State() const = 0;
    virtual bool IsVisible() const = 0;
    virtual void SetVisible(bool on) = 0;
    virtual void Activate() = 0;
    virtual void Arrange(int style) = 0;
    virtual void RunEventsOnce() = 0; // lets the message loop run once
    virtual MenuTools& Tools() = 0;
    virtual quintptr Handle() const = 0;
};

// Runs program-made changes of a window with its events kept from the recorder.
class IgnoringEvents
{
public:
    explicit IgnoringEvents(SessionWindow& window) : window_(window), before_(window.IgnoreEvents())
    {
        window_.SetIgnoreEvents(true);
    }
    ~IgnoringEvents() { window_.SetIgnoreEvents(before_); }
    IgnoringEvents(const IgnoringEvents&) = delete;
    IgnoringEvents& operator=(const IgnoringEvents&) = delete;

private:
    SessionWindow& window_;
    bool before_;
};

} // namespace kestrune
