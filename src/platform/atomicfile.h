#pragma once

// A file replaced whole: written beside, flushed, renamed, its folder flushed. Names are the system's bytes.
// Failures are errno values here; nativefiles.cpp gives them their words.

#include "filedescriptor.h"

#include <platform/nativefiles.h>

#include <QByteArray>

#include <chrono>

namespace kestrune {

QByteArray FolderOf(const QByteArray& name);

// No write bit at all is the read-only mark, which binds the system's administrator too; otherwise the system's word.
bool MayNotWrite(const QByteArray& name, mode_t mode);

struct FileContent
{
    QByteArray content;
    int systemError = 0;
    bool unsteady = false; // it changed at every attempt; content is what the last one found
};

// A regular file only: no pipe or device can hold the program up.
FileContent ReadWhole(const QByteArray& name);

// The lock of all files in a folder, between processes and threads. It is a lock on the folder itself, so that
// none is left behind. A folder that cannot be locked (some network file systems) is used without.
class FolderLock
{
public:
    FolderLock(const QByteArray& folder, std::chrono::milliseconds patience);

    int systemError = 0; // EBUSY: somebody held it for longer than patience
    bool isHeld = false;

private:
    FileDescriptor folder_;
};

// 0 or the error; then the old file stands and nothing is left beside it. alone: the folder's lock is held, so
// what stands under the name of the new file is left over from a process that was killed.
int PutInPlace(const SaveCalls& calls, const QByteArray& name, const QByteArray& content, bool alone);

} // namespace kestrune
