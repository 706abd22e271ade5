#pragma once

// Keys with Alt while a session has the keyboard: they are the host's, unless the user has given them to the menus.

class QKeyEvent;

namespace kestrune {

class taMenuBar;

// True: a key with Alt that a menu's access keys or one of its tools may take. Whether one of them does is seen next;
// a key that none takes comes to the terminal all the same.
bool MenusTake(const taMenuBar& menu, const QKeyEvent& key);

} // namespace kestrune
