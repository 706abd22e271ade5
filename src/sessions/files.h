#pragma once

// What a file is, and where a named file lies.

#include <QString>
#include <QStringView>

namespace kestrune {

struct SettingsLayer;

inline constexpr QStringView SessionSection = u"Kestrune";
inline constexpr QStringView LayoutSection = u"Kestrune Main";
// Entries with a dot of their own, to which the lookup adds another: a script names a file with its extension.
// Kept as it stands.
inline constexpr QStringView SessionExtensions = u".orcf;.cfg";

enum class FileType : int
{
    Unknown = 0,
    Session = 1,
    Layout = 2,
    Script = 3
};

// Session file first, then layout, then script: a file with the marks of two is what comes first here.
FileType FileKind(const SettingsLayer& layer, const QString& name);

// These answer false for a file that is not there or cannot be read.
bool IsConfigFile(const SettingsLayer& layer,
                  const QString& name); // TermType is not empty; the extension plays no part
bool IsLayoutFile(const SettingsLayer& layer, const QString& name); // the layout section holds a key
bool IsScriptFile(const SettingsLayer& layer, const QString& name); // a line begins like a script's

// Full path of an existing file, or empty. extensions: a list with ";" between. Looks below the home folder, then
// below the current one; each time the name as given, then, if it has no dot, with each extension.
QString GetFilePath(const SettingsLayer& layer, const QString& name, const QString& extensions);

} // namespace kestrune
