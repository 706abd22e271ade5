#pragma once

// What a file is, and where a named file lies.

#include <QString>
#include <QStringView>

namespace kestrune {

class KeyFiles;
struct Folders;

inline constexpr char16_t SessionSection[] = u"Kestrune";
inline constexpr char16_t LayoutSection[] = u"Kestrune Main";
// Entries with a dot of their own, to which the lookup adds another: a script names a file with its extension.
// Kept as it stands.
inline constexpr char16_t SessionExtensions[] = u".orcf;.cfg";

enum class FileType : int
{
    Unknown = 0,
    Session = 1,
    Layout = 2,
    Script = 3
};

// Session file first, then layout, then script: a file with the marks of two is what comes first here.
FileType FileKind(KeyFiles& files, const Folders& folders, const QString& name);

// These answer false for a file that is not there or cannot be read.
bool IsConfigFile(KeyFiles& files, const QString& name); // key TermType is not empty; the extension plays no part
bool IsLayoutFile(KeyFiles& files, const QString& name); // the layout section holds a key
bool IsScriptFile(const Folders& folders, const QString& name);

// Full path of an existing file, or empty. extensions: a list with ";" between. Looks below the home folder, then
// below the current one; each time the name as given, then, if it has no dot, with each extension.
QString GetFilePath(const Folders& folders, const QString& name, const QString& extensions);

} // namespace kestrune
