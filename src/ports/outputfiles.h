#pragma once

// Files that are written while a session goes on: captures and prints. Nobody waits for a disk.

#include <QByteArray>
#include <QString>

#include <functional>
#include <memory>

namespace kestrune {

class OutputFile
{
public:
    virtual ~OutputFile() = default;          // closes; what went wrong then is lost, see Close
    virtual bool WasEmpty() const = 0;        // there was nothing in it when it was opened
    virtual void Write(QByteArray bytes) = 0; // queued
    // Writes what is queued, which may wait for the disk. Why not all of it could be written, for people; empty: it
    // is. What was written before a failure stays in the file.
    [[nodiscard]] virtual QString Close() = 0;
};

class OutputFiles
{
public:
    enum class Mode
    {
        New, // refuses a file that is there
        Replace,
        Append
    };
    using Failed = std::function<void(const QString& why)>;

    virtual ~OutputFiles() = default;
    // Raises Failure. failed is called at most once, from the event loop; nothing more is written after it. Not
    // after Close.
    virtual std::unique_ptr<OutputFile> Open(const QString& path, Mode mode, Failed failed) = 0;
};

} // namespace kestrune
