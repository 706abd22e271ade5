#pragma once

// The file system as the program needs it. nativefiles.h has the real one, tests/fakes/memoryfilesystem.h one
// that also plays a system with drives. Paths are text in the style of the system behind it.

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <functional>
#include <optional>

namespace kestrune {

enum class PathKind
{
    Missing,
    File, // whatever exists and is no folder
    Folder
};

class FileSystem
{
public:
    // Gets what the file holds (nothing: there is no such file), gives what it is to hold (nothing: leave it).
    using Change = std::function<std::optional<QByteArray>(const std::optional<QByteArray>& old)>;

    virtual ~FileSystem() = default;

    // --- Questions: never raise.
    virtual PathKind Kind(const QString& path) const = 0;
    virtual bool IsReadOnly(const QString& path) const = 0;        // the file's own mark, not its folder's rights
    virtual QString Identity(const QString& path) const = 0;       // equal for two names of one file
    virtual QString WorkingFolder(const QString& drive) const = 0; // drive empty: the process's own; "" on failure
    virtual QStringList List(const QString& folder) const = 0;     // names, sorted; none when it cannot be read

    // --- Operations: raise Failure.
    virtual QByteArray Read(const QString& path) const = 0;
    // Under a lock that holds off every other Edit of the file, in this process and others: reads, changes, and
    // puts the new content in place whole. Killed or out of power at any instant, the old or the new is there.
    // Links are followed, permissions kept. Raises what `change` raises, and then changes nothing.
    virtual void Edit(const QString& path, const Change& change) = 0;
    virtual void MakeFolder(const QString& path) = 0; // one level
    virtual void Remove(const QString& path) = 0;     // a file
    virtual void RemoveFolder(const QString& path) = 0;
    virtual void Rename(const QString& from, const QString& to) = 0; // refuses an existing target
    virtual void Copy(const QString& from, const QString& to) = 0;   // replaces the target
    // Opens for writing and creates the file if need be, then takes away what it created.
    virtual void ProbeWrite(const QString& path) = 0;

    void Replace(const QString& path, const QByteArray& content);
};

} // namespace kestrune
