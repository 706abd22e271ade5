#pragma once

// What a session asks of the menu room while it (re)loads its window's menu.

#include <QString>

namespace kestrune {

class clsSession;
class MenuTools;

class SessionMenus
{
public:
    virtual ~SessionMenus() = default;
    // Loads the session menu into the window's tools. The result says where the menu came from.
    virtual int LoadSessionMenu(clsSession& session, MenuTools& tools) = 0;
    // States of tools and status line that hold after a load.
    virtual void InitSessionMenu(clsSession& session, MenuTools& tools) = 0;
    // One macro a line: name, description, caption, with tabs between. Empty: there are none.
    virtual QString MacroList() const = 0;
    virtual void RefreshMacroMenu(MenuTools& tools, const QString& macroList) = 0;
};

} // namespace kestrune
