#pragma once

// The one entry for every user command.

#include <ports/cause.h>

#include <QString>

namespace kestrune {

class clsSession;
class MenuTools;

class CommandPort
{
public:
    virtual ~CommandPort() = default;
    // action: "[#id]" a command, "[#id#name]" a macro, other bracketed text script, other text keystrokes.
    // session: null for a command of the main window.
    virtual void MenuToolAction(const QString& action, bool checked, clsSession* session, Cause cause) = 0;
    // Brings caption, check mark and state of one tool, or of all, up to date.
    virtual void UpdateTool(MenuTools& tools, int id, clsSession* session) = 0;
    virtual void UpdateState(clsSession* session) = 0;
};

} // namespace kestrune
