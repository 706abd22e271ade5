#include "nativefiles.h"

#include "atomicfile.h"
#include "filedescriptor.h"

#include <platform/systemfailure.h>

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <unistd.h>

#include <sys/file.h>
#include <sys/stat.h>

namespace kestrune {

using namespace Qt::StringLiterals;

namespace {

QByteArray SystemName(const QString& path) { return QFile::encodeName(path); }

QString FilesText(const char* text, const QString& path)
{
    return QCoreApplication::translate("Files", text).arg(QDir::toNativeSeparators(path));
}

const char* const kCannotRead = QT_TRANSLATE_NOOP("Files", "The file '%1' cannot be read");
const char* const kCannotWrite = QT_TRANSLATE_NOOP("Files", "The file '%1' cannot be written");
const char* const kCannotDelete = QT_TRANSLATE_NOOP("Files", "'%1' cannot be deleted");
const char* const kCannotRename = QT_TRANSLATE_NOOP("Files", "'%1' cannot be renamed");
const char* const kCannotMakeFolder = QT_TRANSLATE_NOOP("Files", "The folder '%1' cannot be created");

[[noreturn]] void Raise(const char* text, const QString& path, int systemError, Subject subject = Subject::File)
{
    throw SystemFailure(systemError, subject, FilesText(text, path));
}

// The file that a chain of links ends at, whether it exists or not.
QString EndOfLinks(const QString& path)
{
    constexpr int kMostLinks = 40; // as the kernel's own limit, path_resolution(7)
    QFileInfo info(path);
    for (int i = 0; info.isSymbolicLink(); ++i) {
        if (i == kMostLinks)
            Raise(kCannotWrite, path, ELOOP);
        info.setFile(info.symLinkTarget());
    }
    const QString folder = info.absoluteDir().canonicalPath();
    return folder.isEmpty() ? info.absoluteFilePath() : QDir(folder).filePath(info.fileName());
}

} // namespace

SaveCalls::SaveCalls()
    : makeBeside([](const char* name, mode_t mode) {
          return ::open(name, O_CREAT | O_EXCL | O_WRONLY | O_NOFOLLOW | O_CLOEXEC, mode);
      }),
      write([](int file, const void* from, std::size_t size) { return ::write(file, from, size); }), flush(::fsync),
      rename([](const char* from, const char* to) { return ::rename(from, to); }), flushFolder(::fsync)
{}

NativeFileSystem::NativeFileSystem(SaveCalls calls) : calls_(std::move(calls)) {}

PathKind NativeFileSystem::Kind(const QString& path) const
{
    struct stat facts = {};
    if (path.isEmpty() || ::stat(SystemName(path).constData(), &facts) != 0)
        return PathKind::Missing;
    return S_ISDIR(facts.st_mode) ? PathKind::Folder : PathKind::File;
}

bool NativeFileSystem::IsReadOnly(const QString& path) const
{
    const QByteArray name = SystemName(path);
    struct stat facts = {};
    return ::stat(name.constData(), &facts) == 0 && MayNotWrite(name, facts.st_mode);
}

QString NativeFileSystem::Identity(const QString& path) const
{
    QString canonical = QFileInfo(path).canonicalFilePath();
    if (!canonical.isEmpty())
        return canonical;
    try {
        return EndOfLinks(path);
    } catch (const Failure&) {
        return path; // links in a circle are no other file's name
    }
}

QString NativeFileSystem::WorkingFolder(const QString& drive) const
{
    return drive.isEmpty() ? QDir::currentPath() : QString();
}

QStringList NativeFileSystem::List(const QString& folder) const
{
    return QDir(folder).entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot, QDir::Name);
}

QByteArray NativeFileSystem::Read(const QString& path) const
{
    const auto result = ReadWhole(SystemName(path));
    if (result.systemError != 0)
        Raise(kCannotRead, path, result.systemError);
    return result.content;
}

void NativeFileSystem::Edit(const QString& path, const Change& change)
{
    const QByteArray target = SystemName(EndOfLinks(path));
    FolderLock lock(FolderOf(target), calls_.lockPatience);
    if (lock.systemError != 0)
        Raise(kCannotWrite, path, lock.systemError);

    const auto old = ReadWhole(target);
    const bool missing = old.systemError == ENOENT;
    if (old.systemError != 0 && !missing)
        Raise(kCannotRead, path, old.systemError);
    if (old.unsteady) // another program is writing it in place: half of it must not become the whole
        Raise(kCannotRead, path, EBUSY);

    const auto content = change(missing ? std::nullopt : std::optional(old.content));
    if (!content || (!missing && *content == old.content))
        return;
    if (const int error = PutInPlace(calls_, target, *content, lock.isHeld); error != 0)
        Raise(kCannotWrite, path, error);
}

void NativeFileSystem::MakeFolder(const QString& path)
{
    if (::mkdir(SystemName(path).constData(), 0777) != 0)
        Raise(kCannotMakeFolder, path, errno, Subject::Folder);
}

void NativeFileSystem::Remove(const QString& path)
{
    if (::unlink(SystemName(path).constData()) != 0)
        Raise(kCannotDelete, path, errno);
}

void NativeFileSystem::RemoveFolder(const QString& path)
{
    if (::rmdir(SystemName(path).constData()) != 0)
        Raise(kCannotDelete, path, errno, Subject::Folder);
}

void NativeFileSystem::Rename(const QString& from, const QString& to)
{
    const QByteArray oldName = SystemName(from), newName = SystemName(to);
    if (::renameat2(AT_FDCWD, oldName.constData(), AT_FDCWD, newName.constData(), RENAME_NOREPLACE) == 0)
        return;
    if (errno != EINVAL) // EINVAL: a file system without that flag
        Raise(kCannotRename, from, errno);
    if (Kind(to) != PathKind::Missing)
        Raise(kCannotRename, from, EEXIST);
    if (::rename(oldName.constData(), newName.constData()) != 0)
        Raise(kCannotRename, from, errno);
}

void NativeFileSystem::Copy(const QString& from, const QString& to)
{
    Replace(to, Read(from));
    struct stat facts = {};
    if (::stat(SystemName(from).constData(), &facts) != 0 ||
        ::chmod(SystemName(to).constData(), facts.st_mode & 0777) != 0)
        Raise(kCannotWrite, to, errno);
}

void NativeFileSystem::ProbeWrite(const QString& path)
{
    const bool existed = Kind(path) != PathKind::Missing;
    const QByteArray name = SystemName(path);
    const FileDescriptor file(::open(name.constData(), O_WRONLY | O_CREAT | O_NONBLOCK | O_CLOEXEC, 0666));
    if (!file)
        Raise(kCannotWrite, path, errno);
    if (!existed)
        ::unlink(name.constData());
    // A save puts a new file beside the old one, so the folder must take it.
    if (::access(FolderOf(SystemName(EndOfLinks(path))).constData(), W_OK) != 0)
        Raise(kCannotWrite, path, errno);
}

bool HoldOpenFile(int descriptor) { return ::flock(descriptor, LOCK_EX | LOCK_NB) == 0 || errno != EWOULDBLOCK; }

} // namespace kestrune
