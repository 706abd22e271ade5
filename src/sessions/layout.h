#pragma once

// A layout: a file that opens a set of sessions again, each in its place, and may run a script.

#include <QString>

namespace kestrune {

class ApplicationPort;

enum class LayoutScript
{
    Run,
    Skip
};

// 2 when loaded, else 0 (not a layout: no message). Session files that cannot be opened are named to the user,
// one message each, and the rest is loaded.
int OpenLayout(ApplicationPort& application, const QString& file, LayoutScript script);

// Saves all sessions, then the layout under its present name; without one nothing happens. The file is replaced
// whole or not at all. Raises Failure FileNotFound "Path not found" or PathAccess "Access denied".
void SaveLayout(ApplicationPort& application);

// Asks for a name first. False: cancelled.
bool SaveLayoutAs(ApplicationPort& application);

// The save of the command: failures 53 and 75 get their messages and lead to SaveLayoutAs. True: saved.
bool SaveLayoutByCommand(ApplicationPort& application);

} // namespace kestrune
