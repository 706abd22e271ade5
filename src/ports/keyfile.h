#pragma once

// Typed reads and writes on one section of an INI file, as components see it. The shell's profile layer
// stands behind it; tests use fakes/memorykeyfile.h. A value equal to its default is removed, not written.

#include <QString>
#include <QStringList>

#include <functional>

namespace kestrune {

class KeyFile
{
public:
    virtual ~KeyFile() = default;
    virtual QString GetString(const QString& key, const QString& fallback) const = 0;
    virtual int GetInt(const QString& key, int fallback) const = 0;
    virtual bool GetBool(const QString& key, bool fallback) const = 0;
    virtual QStringList Keys() const = 0;
    virtual bool Contains(const QString& key) const = 0;
    virtual void SetString(const QString& key, const QString& value, const QString& fallback) = 0;
    virtual void SetInt(const QString& key, int value, int fallback) = 0;
    virtual void SetBool(const QString& key, bool value, bool fallback) = 0;
    virtual void Remove(const QString& key) = 0;
};

// Many changes of one file, put in place whole or not at all. A Change inside another Change of the same path
// joins it, and the file is written once, when the outermost ends without a failure. Raises Failure with the
// number and the text for people when the file cannot be read or written (53, 61, 70, 75, 76).
class KeyFiles
{
public:
    virtual ~KeyFiles() = default;
    virtual void Read(const QString& path, const QString& section, const std::function<void(const KeyFile&)>& use) = 0;
    virtual void Change(const QString& path, const QString& section, const std::function<void(KeyFile&)>& use) = 0;
};

} // namespace kestrune
