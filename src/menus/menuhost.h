#pragma once

// What commands need of the shell above them: the entry points of the program that open things, and the main
// window's own state.

#include <ports/cause.h>

#include <QString>
#include <QStringList>

#include <memory>

namespace kestrune {

class clsSession;

enum class Bar
{
    ToolBar,
    StatusLine,
    SessionBar,
    FuncBar
};

class MenuHost
{
public:
    virtual ~MenuHost() = default;
    virtual std::shared_ptr<clsSession> FileNew() = 0; // null: cancelled
    virtual int Open(bool skipScript) = 0;             // 0: nothing was opened
    virtual int FileOpenRecent(int index, bool skipScript) = 0;
    virtual bool ShowSettingsDialog(clsSession* session, const QString& page, const QString& extra) = 0;
    virtual void Exit() = 0; // asks what is to be asked, then ends the frame
    // Bracketed script text. False: failed, with number and text.
    virtual bool DDEExecScript(const QString& command, const QString& sessionIndex, int& errNumber,
                               QString& errText) = 0;
    virtual bool RenameSession(clsSession& session) = 0;
    virtual void ShowAbout() = 0;
    virtual void ShowNotice(const QString& line) = 0; // in the status line, for a while

    virtual bool BarVisible(Bar bar) const = 0;
    virtual void SetBarVisible(Bar bar, bool on) = 0;
    virtual bool LargeIcons() const = 0;
    virtual bool MenuAccessKeys() const = 0;     // in sessions too
    virtual QStringList RecentFiles() const = 0; // as shown to people, the latest first; an empty one is skipped
    virtual bool IsRecordingMacro() const = 0;   // layouts then open without their script
};

} // namespace kestrune
