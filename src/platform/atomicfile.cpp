#include "atomicfile.h"

#include <QCryptographicHash>

#include <cerrno>
#include <climits>
#include <cstdio>
#include <fcntl.h>
#include <thread>

#include <sys/file.h>
#include <sys/stat.h>
#include <sys/xattr.h>

namespace kestrune {

namespace {

constexpr off_t kMostContent = off_t(512) * 1024 * 1024; // bytes: no file of settings or text comes near it
constexpr int kReadAttempts = 3;

bool SameState(const struct stat& a, const struct stat& b)
{
    return a.st_size == b.st_size && a.st_mtim.tv_sec == b.st_mtim.tv_sec && a.st_mtim.tv_nsec == b.st_mtim.tv_nsec;
}

int ReadAll(int file, QByteArray& content)
{
    constexpr qsizetype kBlock = 1 << 16;
    for (qsizetype have = 0;;) {
        if (have > kMostContent)
            return ENOMEM;
        content.resize(have + kBlock);
        const auto got = ::read(file, content.data() + have, kBlock);
        if (got < 0 && errno == EINTR)
            continue;
        if (got < 0)
            return errno;
        have += got;
        if (got == 0) {
            content.resize(have);
            return 0;
        }
    }
}

int WriteAll(const SaveCalls& calls, int file, QByteArrayView content)
{
    while (!content.isEmpty()) {
        const auto put = calls.write(file, content.data(), std::size_t(content.size()));
        if (put < 0 && errno == EINTR)
            continue;
        if (put <= 0)
            return put < 0 ? errno : ENOSPC;
        content = content.sliced(put);
    }
    return 0;
}

// Access lists and the like. What the system does not let us carry over stays behind.
void CopyAttributes(const QByteArray& from, int to)
{
    QByteArray names(XATTR_LIST_MAX, Qt::Uninitialized);
    const auto size = ::listxattr(from.constData(), names.data(), std::size_t(names.size()));
    if (size <= 0)
        return;
    names.resize(size);
    for (const auto& name : names.split('\0')) {
        if (name.isEmpty())
            continue;
        QByteArray value(XATTR_SIZE_MAX, Qt::Uninitialized);
        const auto length = ::getxattr(from.constData(), name.constData(), value.data(), std::size_t(value.size()));
        if (length >= 0)
            ::fsetxattr(to, name.constData(), value.constData(), std::size_t(length), 0);
    }
}

// The new file gets owner, mode and attributes of the old. The owner comes first: changing it clears mode bits.
int TakeOver(const QByteArray& name, const struct stat& old, int file)
{
    struct stat fresh = {};
    if (::fstat(file, &fresh) != 0)
        return errno;
    const bool sameOwner = fresh.st_uid == old.st_uid && fresh.st_gid == old.st_gid;
    // Somebody else's file that we may write becomes ours, as with any program that saves whole; it keeps its group
    // if we belong to it, and gives no rights of the old owner away.
    const bool kept = sameOwner || ::fchown(file, old.st_uid, old.st_gid) == 0;
    const bool keptGroup = kept || ::fchown(file, uid_t(-1), old.st_gid) == 0;
    if (::fchmod(file, old.st_mode & (kept ? 07777 : keptGroup ? 0777 : 0707)) != 0)
        return errno;
    CopyAttributes(name, file);
    return 0;
}

QByteArray NameBeside(const QByteArray& name, bool alone)
{
    QByteArray last = name.sliced(name.lastIndexOf('/') + 1);
    const QByteArray suffix = ".kestrune-new" + (alone ? QByteArray() : QByteArray::number(qint64(::getpid())));
    if (last.size() + suffix.size() + 1 > NAME_MAX)
        last = QCryptographicHash::hash(last, QCryptographicHash::Sha1).toHex();
    return FolderOf(name) + "/." + last + suffix;
}

int FillAndFlush(const SaveCalls& calls, const QByteArray& name, const struct stat* old, FileDescriptor file,
                 const QByteArray& content)
{
    if (old)
        if (const int error = TakeOver(name, *old, file.Number()); error != 0)
            return error;
    if (const int error = WriteAll(calls, file.Number(), content); error != 0)
        return error;
    if (calls.flush(file.Number()) != 0)
        return errno;
    return ::close(file.Release()) == 0 ? 0 : errno;
}

} // namespace

QByteArray FolderOf(const QByteArray& name)
{
    const auto slash = name.lastIndexOf('/');
    return slash < 0 ? QByteArray(".") : slash == 0 ? QByteArray("/") : name.left(slash);
}

bool MayNotWrite(const QByteArray& name, mode_t mode)
{
    return (mode & (S_IWUSR | S_IWGRP | S_IWOTH)) == 0 || ::access(name.constData(), W_OK) != 0;
}

FileContent ReadWhole(const QByteArray& name)
{
    FileContent result;
    for (int attempt = 0; attempt < kReadAttempts; ++attempt) {
        const FileDescriptor file(::open(name.constData(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
        struct stat before = {}, after = {};
        if (!file || ::fstat(file.Number(), &before) != 0)
            return {{}, errno, false};
        if (!S_ISREG(before.st_mode))
            return {{}, S_ISDIR(before.st_mode) ? EISDIR : ENXIO, false};
        result.systemError = ReadAll(file.Number(), result.content);
        if (result.systemError != 0)
            return {{}, result.systemError, false};
        result.unsteady = ::fstat(file.Number(), &after) != 0 || !SameState(before, after);
        if (!result.unsteady)
            break;
    }
    return result;
}

FolderLock::FolderLock(const QByteArray& folder, std::chrono::milliseconds patience)
    : folder_(::open(folder.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC))
{
    if (!folder_) {
        systemError = errno == EACCES ? 0 : errno; // EACCES: it may be entered, not listed
        return;
    }
    const auto until = std::chrono::steady_clock::now() + patience;
    while (::flock(folder_.Number(), LOCK_EX | LOCK_NB) != 0) {
        if (errno != EWOULDBLOCK && errno != EINTR)
            return;
        if (std::chrono::steady_clock::now() >= until) {
            systemError = EBUSY;
            return;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    isHeld = true;
}

int PutInPlace(const SaveCalls& calls, const QByteArray& name, const QByteArray& content, bool alone)
{
    struct stat old = {};
    const bool exists = ::stat(name.constData(), &old) == 0;
    if (exists && MayNotWrite(name, old.st_mode))
        return EACCES;

    const QByteArray beside = NameBeside(name, alone);
    const mode_t mode = exists ? 0600 : 0666; // until TakeOver, nobody else reads what will be private
    int number = calls.makeBeside(beside.constData(), mode);
    if (number < 0 && errno == EEXIST && ::unlink(beside.constData()) == 0)
        number = calls.makeBeside(beside.constData(), mode);
    if (number < 0)
        return errno;

    int error = FillAndFlush(calls, name, exists ? &old : nullptr, FileDescriptor(number), content);
    if (error == 0 && calls.rename(beside.constData(), name.constData()) != 0)
        error = errno;
    if (error != 0) {
        ::unlink(beside.constData());
        return error;
    }
    // From here on the new content is in place whole. Where the folder cannot be flushed (some file systems do not
    // know how), a power cut may bring the old content back whole; that is no failure to report.
    if (const FileDescriptor folder(::open(FolderOf(name).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)); folder)
        calls.flushFolder(folder.Number());
    return 0;
}

} // namespace kestrune
