#pragma once

// Which menu a window gets: the user's own file, the one that an administrator put beside the program, or the one
// that is built in.

#include <menubar/tamenubar.h>

#include <QString>

namespace kestrune {

struct SettingsLayer;

enum class MenuSource : int
{
    BuiltIn = 0,
    Master = 1,
    Personal = 2
};

inline constexpr QLatin1StringView kMenuFileName{"menu71.ini"};

QString BuiltInMenu(); // the text of the built-in menu file

// Loads the first of personal, master and built-in menu that can be loaded, in place of what stands. Files that are
// missing or bad are passed over without a word.
MenuSource LoadMenu(taMenuBar& menu, const SettingsLayer& layer);

// False: the file is missing or bad; then nothing has changed.
bool LoadMenuFile(taMenuBar& menu, const SettingsLayer& layer, const QString& fileName);

} // namespace kestrune
