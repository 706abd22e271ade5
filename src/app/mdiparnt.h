#pragma once

// What the main window decides, with no toolkit: its title, when it may close, where the focus goes, the popup of
// a session's tab. The window tells it what happened and does what its port (automation/frame.h) is asked for.
// Failures inside are ignored: a failing session window must not keep the frame from closing.

#include <automation/frame.h>
#include <ports/clock.h>

#include <functional>
#include <memory>

namespace kestrune {

class Kestrune;

// Who closes the frame; the platform's numbers.
enum class CloseCode : int
{
    CloseBox = 0,
    Code = 1,
    SessionEnds = 2, // the desktop's session
    TaskManager = 3,
    Owner = 4
};

class MdiParent
{
public:
    // shutDown: what runs when the frame has gone. All of it outlives the object.
    MdiParent(Kestrune& application, FrameWindow& window, std::function<void()> shutDown);

    // --- what happened to the window
    void Activated();
    void ApplicationActivated(bool active);
    void GotFocus(bool clientHasFocus); // the frame or the area of the session windows
    void PlaceChanged();                // moved, resized, or another state
    bool CloseBox();                    // true: the frame may go at once
    bool DesktopSessionEnds();          // likewise

    // --- what happened in its bars
    void ToolClick(const QString& band, const MenuTool& tool);
    void SessionTabClose(quintptr window);
    bool ToolRightClick(quintptr window); // true: the tab popup is ready to be shown

    // --- requests
    void PostLeave(Leave request); // carried out from the event loop
    bool EndFrame(CloseCode code); // asks, then unloads; false: it stays
    void CheckState();             // the platform's close command follows the exit command

    // --- title
    void SetTitle(const QString& text);
    const QString& Title() const { return title_; }
    void RefreshCaption();

    bool IsClosing() const { return closing_; }

private:
    bool QueryUnload(CloseCode code);
    void Unload();
    void TryFocus(Clock::Duration ifRefused);
    void RestoreFocus();
    bool ScriptLetsClose() const;

    Kestrune& application_;
    FrameWindow& window_;
    std::function<void()> shutDown_;
    QString title_;
    bool canClose_ = true;
    bool closing_ = false;
    bool asking_ = false;         // the questions of a close are up
    bool activatedEmpty_ = false; // activated with no session window
    WindowPlace lastPlace_{0, 0, 0, 0, -1};
    std::unique_ptr<Clock::Timer> reactivateTimer_;
};

// The frame's title with a session window in it.
QString FrameTitle(const QString& title, bool maximised, const QString& caption);

} // namespace kestrune
