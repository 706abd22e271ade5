#pragma once

// The hive of a test: the real one over files in memory.

#include <fakes/memoryfilesystem.h>
#include <platform/hive.h>

namespace kestrune {

class MemoryHive : public Hive
{
public:
    std::optional<HiveValue> Read(const QString& key, const QString& name) const override
    {
        return hive_.Read(key, name);
    }
    bool KeyExists(const QString& key) const override { return hive_.KeyExists(key); }
    QStringList Keys(const QString& key) const override { return hive_.Keys(key); }
    QStringList Values(const QString& key) const override { return hive_.Values(key); }
    void Write(const QString& key, const QString& name, const HiveValue& value) override
    {
        hive_.Write(key, name, value);
    }
    void DeleteValue(const QString& key, const QString& name) override { hive_.DeleteValue(key, name); }
    void DeleteKey(const QString& key) override { hive_.DeleteKey(key); }
    void Replace(const QString& key, const std::vector<std::pair<QString, HiveValue>>& values) override
    {
        hive_.Replace(key, values);
    }

    // Text of a value, "<none>" when there is none.
    QString Text(const QString& key, const QString& name) const
    {
        const auto value = Read(key, name);
        return value ? value->text : QStringLiteral("<none>");
    }

private:
    MemoryFileSystem files_;
    FileHive hive_{files_, QStringLiteral("/hive")};
};

} // namespace kestrune
