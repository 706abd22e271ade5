#pragma once

// What state the tools of a menu get: after a load, by whether a window has a session, and the items that are made
// when a sub-menu opens. Functions of tools and facts alone.

#include <menubar/tamenubar.h>

#include <QString>
#include <QStringList>

#include <vector>

namespace kestrune {

// The state of one tool in a window without a session. hostTools: the MultiValue services are on.
void ToFrameState(MenuTool& tool, bool hostTools);
// In a session's window the file's states stay, but for the host tools.
void ToSessionState(MenuTool& tool, bool hostTools);

// Takes a shortcut away that a terminal has a use for. What a person has written into a menu file is never treated so.
void LeaveKeyToHost(MenuTool& tool);

struct ListedItem
{
    int key = 0;
    QString text;
    bool checked = false;
};

bool IsGeneratedItem(const MenuTool& tool);
// Puts the items behind their placeholder, which is hidden; they are numbered from 1 and look like it.
void InsertBehind(std::vector<MenuTool>& tools, std::size_t placeholder, const std::vector<ListedItem>& items);

// One macro a line: name, description, caption, with tabs between.
void RefreshMacroItems(std::vector<MenuTool>& tools, const QStringList& macros);

} // namespace kestrune
