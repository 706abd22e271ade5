#pragma once

// What a session window decides, with no toolkit: it turns the emulator's events into status texts, session calls,
// messages and recorder notices, and answers what happens to the window. The window tells it what happened and
// does what its port (SessionWindow) is asked for. Which session is meant is looked up by the window's Tag each
// time; nothing happens when there is none.

#include <ports/clock.h>
#include <ports/linepanels.h>
#include <ports/sessionwindow.h>

#include <memory>
#include <optional>

namespace kestrune {

class ApplicationPort;
class clsSession;
class EmulatorEvents;
class LineTrouble;

// Who closes the window; the numbers are those of the platform's close query.
enum class UnloadMode : int
{
    CloseBox = 0,
    Code = 1,
    SessionEnds = 2,
    TaskManager = 3,
    MainWindow = 4
};

class ChildLogic
{
public:
    // Listens to the emulator's events from now on. window outlives it.
    ChildLogic(ApplicationPort& application, SessionWindow& window);
    ~ChildLogic();
    ChildLogic(const ChildLogic&) = delete;
    ChildLogic& operator=(const ChildLogic&) = delete;

    std::shared_ptr<clsSession> Session() const; // null: none, or it has ended

    // --- what happened to the window
    void FrameActivated();            // its frame became active: the focus follows 250 ms later
    bool FrameDeactivated();          // true: swallow it, the frame is not repainted as inactive
    void MdiActivated();              // it became the active one of the main window's windows
    void Activated();                 // the same, once all is in place
    void Resized();                   // moved, resized, or another state
    bool CloseQuery(UnloadMode mode); // true: it may close
    void Unloaded();                  // the last thing told
    // key: the platform's key code; shift: 1 shift, 2 control, 4 alt. True: eaten.
    bool KeyDown(int key, int shift);
    void KeyUp(int key);
    void PanelPressed(LineButton button);
    void SecretsTyped(std::vector<Secret> values, bool remember); // on the panel that asked for them

    // --- state the window's port shows
    bool IsClosing() const { return closing_; }
    void SetClosing() { closing_ = true; }
    bool IgnoreEvents() const { return ignoreEvents_; }
    void SetIgnoreEvents(bool on) { ignoreEvents_ = on; }
    void SetMenuDirty() { menuDirty_ = true; }
    void RefreshMenu();
    bool CanClose() const { return canClose_; }

    // --- deferred work: runs from the message loop, and not at all when the session is gone by then
    void PostClose();
    void PostTransfer(const TransferRequest& request);

private:
    void FocusAfterActivation();
    bool ActivateNextInOrder();

    ApplicationPort& application_;
    SessionWindow& window_;
    bool closing_ = false;
    bool ignoreEvents_ = false;
    bool menuDirty_ = false;
    bool canClose_ = true;
    bool swallowDeactivation_ = false;
    WindowPlace lastPlace_{0, 0, 0, 0, -1};
    std::optional<Clock::Duration> lastActivation_;
    std::unique_ptr<Clock::Timer> activateTimer_;
    std::unique_ptr<EmulatorEvents> events_;
    std::unique_ptr<LineTrouble> trouble_;
};

} // namespace kestrune
