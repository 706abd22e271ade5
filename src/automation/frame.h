#pragma once

// The main window as the application object and the start see it: the port of sessions, and what only its owner
// may ask. All numbers are pixels.

#include <menubar/tamenubar.h>
#include <menus/menuhost.h>
#include <ports/sessionwindow.h>

#include <QString>

namespace kestrune {

struct ScreenArea
{
    int left = 0;
    int top = 0;
    int width = 0;
    int height = 0;
};

// Why a frame is asked to go: the first argument of the posted request.
enum class Leave : int
{
    ByCommand = 0, // runs the action of the exit command, with its questions
    EndFrame = 1   // closes the frame itself
};

class FrameWindow : public MainWindow
{
public:
    virtual taMenuBar& Menu() = 0;
    virtual void ShowPopup(const QString& band) = 0;  // of its own menu, at the pointer; unknown: nothing
    virtual void SetCaption(const QString& text) = 0; // the program's part of the title
    virtual bool ChangeIcon(const QString& path) = 0; // empty or unreadable: the program's own
    virtual void PostLeave(Leave request) = 0;        // carried out from the event loop
    virtual bool IsClosing() const = 0;               // it has begun to go, there is no way back
    virtual void ApplyBar(Bar bar, bool visible) = 0; // on its own menu and every session's
    virtual void ApplyLargeIcons(bool on) = 0;        // likewise
    virtual void ShowNotice(const QString& line) = 0; // in the status line, for a while
    virtual bool RenameTab(clsSession& session) = 0;  // in place, on the tab; false: cancelled
    virtual void ShowAbout() = 0;
    virtual void RecentFilesChanged() = 0; // what the page of an empty frame shows
    virtual ScreenArea PrimaryScreen() const = 0;
    virtual ScreenArea VirtualScreen() const = 0; // all screens together
    virtual bool IsForeground() const = 0;

    // --- for the decisions of the frame (app/mdiparnt.h)
    virtual void SetTitleText(const QString& text) = 0; // what the title bar shows
    virtual void SetCloseEnabled(bool on) = 0;          // the platform's close command
    virtual bool FocusIsOnFrame() const = 0;            // on the frame itself, on no session in it
    virtual bool FocusActiveChild() = 0;                // false: it cannot accept the focus now
    virtual bool QueryUnloadChildren() = 0;             // asks each session; false: one stays
};

} // namespace kestrune
