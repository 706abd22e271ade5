#pragma once

// INI files in memory: names without regard to case, a value equal to its default is removed, a change that
// fails leaves the file as it was.

#include <ports/keyfile.h>

#include <dispatch/failure.h>

#include <map>
#include <set>
#include <utility>
#include <vector>

namespace kestrune {

class MemoryKeyFile : public KeyFile
{
public:
    QString GetString(const QString& key, const QString& fallback) const override
    {
        const auto* entry = Find(key);
        return entry ? entry->second : fallback;
    }
    int GetInt(const QString& key, int fallback) const override
    {
        const auto* entry = Find(key);
        return entry ? entry->second.toInt() : fallback;
    }
    bool GetBool(const QString& key, bool fallback) const override
    {
        const auto* entry = Find(key);
        if (!entry)
            return fallback;
        return entry->second.compare(QStringLiteral("True"), Qt::CaseInsensitive) == 0 || entry->second.toInt() != 0;
    }
    QStringList Keys() const override
    {
        QStringList keys;
        for (const auto& entry : entries)
            keys << entry.first;
        return keys;
    }
    bool Contains(const QString& key) const override { return Find(key) != nullptr; }

    void SetString(const QString& key, const QString& value, const QString& fallback) override
    {
        Write(key, value, value == fallback);
    }
    void SetInt(const QString& key, int value, int fallback) override
    {
        Write(key, QString::number(value), value == fallback);
    }
    void SetBool(const QString& key, bool value, bool fallback) override
    {
        Write(key, value ? QStringLiteral("True") : QStringLiteral("False"), value == fallback);
    }
    void Remove(const QString& key) override { Write(key, {}, true); }

    std::vector<std::pair<QString, QString>> entries;

private:
    const std::pair<QString, QString>* Find(const QString& key) const
    {
        for (const auto& entry : entries)
            if (entry.first.compare(key, Qt::CaseInsensitive) == 0)
                return &entry;
        return nullptr;
    }
    void Write(const QString& key, const QString& value, bool remove)
    {
        auto* entry = const_cast<std::pair<QString, QString>*>(Find(key));
        if (remove)
            std::erase_if(entries, [&](const auto& e) { return e.first.compare(key, Qt::CaseInsensitive) == 0; });
        else if (entry)
            entry->second = value;
        else
            entries.emplace_back(key, value);
    }
};

class MemoryKeyFiles : public KeyFiles
{
public:
    using Sections = std::map<QString, MemoryKeyFile>;

    void Read(const QString& path, const QString& section, const std::function<void(const KeyFile&)>& use) override
    {
        const auto file = files.find(path);
        if (file == files.end())
            throw Failure(ErrorNumber::FileNotFound, QStringLiteral("Cannot find ") + path);
        use(file->second[section]);
    }

    void Change(const QString& path, const QString& section, const std::function<void(KeyFile&)>& use) override
    {
        const bool outermost = open_.insert(path).second;
        const bool existed = files.contains(path);
        const Sections before = existed ? files[path] : Sections();
        try {
            if (readOnly.contains(path))
                throw Failure(ErrorNumber::PathAccess, path + QStringLiteral(" is read-only"));
            use(files[path][section]);
        } catch (...) {
            if (outermost) {
                open_.erase(path);
                files[path] = before;
                if (!existed)
                    files.erase(path);
            }
            throw;
        }
        if (outermost) {
            open_.erase(path);
            ++writes;
        }
    }

    MemoryKeyFile& Section(const QString& path, const QString& section = QStringLiteral("Kestrune"))
    {
        return files[path][section];
    }

    std::map<QString, Sections> files;
    std::set<QString> readOnly;
    int writes = 0; // files put in place

private:
    std::set<QString> open_;
};

} // namespace kestrune
