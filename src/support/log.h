#pragma once

// The program's log, for what happens when no user is there to be told: "kestrune.log" in the user's data folder.

#include <QString>

namespace kestrune {

QString LogFileName();              // full path; the folder need not exist
void WriteLog(const QString& text); // appended with date and time; a log that cannot be written is given up

} // namespace kestrune
