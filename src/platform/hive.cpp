#include "hive.h"

#include "hivefile.h"

#include <dispatch/failure.h>
#include <platform/files.h>
#include <platform/system.h>

#include <QCoreApplication>

#include <algorithm>

namespace kestrune {

using namespace Qt::StringLiterals;

namespace {

QString CheckedKey(const QString& key)
{
    const bool broken = key.isEmpty() || std::ranges::any_of(key, [](QChar c) { return c.unicode() < 0x20; });
    if (broken)
        throw Failure(ErrorNumber::InvalidCall,
                      QCoreApplication::translate("Hive", "'%1' cannot be the name of a settings key.").arg(key),
                      u"Hive"_s);
    return key;
}

void MakeFolders(FileSystem& files, const QString& folder)
{
    if (folder.isEmpty() || files.Kind(folder) != PathKind::Missing)
        return;
    MakeFolders(files, folder.left(folder.lastIndexOf(u'/')));
    try {
        files.MakeFolder(folder);
    } catch (const Failure&) {
        if (files.Kind(folder) != PathKind::Folder) // else another process was quicker
            throw;
    }
}

HiveFile Open(FileSystem& files, const QString& path)
{
    return HiveFile::Parse(files.Kind(path) == PathKind::Missing ? QByteArray() : files.Read(path));
}

} // namespace

FileHive::FileHive(FileSystem& files, QString path) : files_(files), path_(std::move(path)) {}

std::optional<HiveValue> FileHive::Read(const QString& key, const QString& name) const
{
    return Open(files_, path_).Get(key, name);
}

bool FileHive::KeyExists(const QString& key) const { return Open(files_, path_).HasKey(key); }

QStringList FileHive::Keys(const QString& key) const { return Open(files_, path_).Keys(key); }

QStringList FileHive::Values(const QString& key) const { return Open(files_, path_).Values(key); }

void FileHive::Write(const QString& key, const QString& name, const HiveValue& value)
{
    MakeFolders(files_, path_.left(path_.lastIndexOf(u'/')));
    files_.Edit(path_, [&](const std::optional<QByteArray>& old) {
        auto file = HiveFile::Parse(old.value_or(HiveFile::Heading()));
        file.Set(CheckedKey(key), name, value);
        return std::optional(file.Serialise());
    });
}

void FileHive::Replace(const QString& key, const std::vector<std::pair<QString, HiveValue>>& values)
{
    MakeFolders(files_, path_.left(path_.lastIndexOf(u'/')));
    files_.Edit(path_, [&](const std::optional<QByteArray>& old) {
        auto file = HiveFile::Parse(old.value_or(HiveFile::Heading()));
        file.RemoveKey(CheckedKey(key));
        for (const auto& [name, value] : values)
            file.Set(key, name, value);
        return std::optional(file.Serialise());
    });
}

void FileHive::DeleteValue(const QString& key, const QString& name)
{
    EditExisting([&](HiveFile& file) { file.Remove(key, name); });
}

void FileHive::DeleteKey(const QString& key)
{
    EditExisting([&](HiveFile& file) {
        if (!file.Keys(key).isEmpty())
            throw Failure(ErrorNumber::PathAccess,
                          QCoreApplication::translate("Hive", "The settings key '%1' has keys below it.").arg(key),
                          u"Hive"_s);
        file.RemoveKey(key);
    });
}

void FileHive::EditExisting(const std::function<void(HiveFile&)>& change)
{
    if (files_.Kind(path_) == PathKind::Missing)
        return;
    files_.Edit(path_, [&](const std::optional<QByteArray>& old) -> std::optional<QByteArray> {
        if (!old)
            return std::nullopt;
        auto file = HiveFile::Parse(*old);
        change(file);
        return file.Serialise();
    });
}

std::unique_ptr<Hive> CurrentUserHive(FileSystem& files, const System& system)
{
    return std::make_unique<FileHive>(files, system.ConfigFolder() + u"/user.hive"_s);
}

std::unique_ptr<Hive> LocalMachineHive(FileSystem& files, const System& system)
{
    const QString folder = system.Environment(u"KESTRUNE_MACHINE_DIR"_s).value_or(u"/etc/kestrune"_s);
    return std::make_unique<FileHive>(files, folder + u"/machine.hive"_s);
}

} // namespace kestrune
