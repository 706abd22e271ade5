#pragma once

// The file system of this machine. The few calls that a save depends on come in by constructor, so that a test
// can make the disk full or the power fail between any two of them.

#include <platform/files.h>

#include <sys/types.h>

#include <chrono>
#include <cstddef>
#include <functional>

namespace kestrune {

// As the system's calls of these names: -1 and errno on failure.
struct SaveCalls
{
    SaveCalls();

    std::function<int(const char* name, mode_t mode)> makeBeside; // open with O_CREAT and O_EXCL, for writing
    std::function<ssize_t(int file, const void* from, std::size_t size)> write;
    std::function<int(int file)> flush;
    std::function<int(const char* from, const char* to)> rename;
    std::function<int(int folder)> flushFolder;
    std::chrono::milliseconds lockPatience{5000}; // then "in use", error 70
};

class NativeFileSystem : public FileSystem
{
public:
    explicit NativeFileSystem(SaveCalls calls = {});

    PathKind Kind(const QString& path) const override;
    bool IsReadOnly(const QString& path) const override;
    QString Identity(const QString& path) const override;
    QString WorkingFolder(const QString& drive) const override;
    QStringList List(const QString& folder) const override;
    QByteArray Read(const QString& path) const override;
    void Edit(const QString& path, const Change& change) override;
    void MakeFolder(const QString& path) override;
    void Remove(const QString& path) override;
    void RemoveFolder(const QString& path) override;
    void Rename(const QString& from, const QString& to) override;
    void Copy(const QString& from, const QString& to) override;
    void ProbeWrite(const QString& path) override;

private:
    SaveCalls calls_;
};

// Keeps every other process that asks the same way out of an open file, until it is closed. False: it is taken.
bool HoldOpenFile(int descriptor);

} // namespace kestrune
