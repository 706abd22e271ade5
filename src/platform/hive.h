#pragma once

// A hive: text values by name, under keys whose parts are separated by backslashes. Names of keys and values
// are found without regard to case. There are two, the current user's and the local machine's. There is no
// cache: a read sees what another process has just written.

#include <QString>
#include <QStringList>

#include <functional>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

namespace kestrune {

class FileSystem;
class HiveFile;
class System;

enum class HiveValueType : int
{
    String = 1,
    Expandable = 2 // holds names of environment variables between percent signs
};

struct HiveValue
{
    HiveValueType type = HiveValueType::String;
    QString text;
    bool operator==(const HiveValue&) const = default;
};

class Hive
{
public:
    virtual ~Hive() = default;
    // Nothing: no such key or value. All calls raise Failure when the hive itself cannot be read or written.
    virtual std::optional<HiveValue> Read(const QString& key, const QString& name) const = 0;
    virtual bool KeyExists(const QString& key) const = 0;
    virtual QStringList Keys(const QString& key) const = 0;   // names of the keys right below
    virtual QStringList Values(const QString& key) const = 0; // names of the values
    virtual void Write(const QString& key, const QString& name, const HiveValue& value) = 0; // makes the key
    virtual void DeleteValue(const QString& key, const QString& name) = 0;                   // none there: nothing
    // With its values. A key that has keys below it stays, and the call raises: the caller sees what it would lose.
    virtual void DeleteKey(const QString& key) = 0;
    // Afterwards the key has these values and no others, whatever happens on the way: the old ones or the new ones.
    virtual void Replace(const QString& key, const std::vector<std::pair<QString, HiveValue>>& values) = 0;
};

// A hive in one file that a person can read and edit:
//     [Software\Tavle\orlin70\Settings]
//     "HomePath" = "My Documents\\Hosts"
//     "Tools" = expand:"%HOME%\\tools"
// Lines it does not understand are kept. Several processes may write at once and lose nothing. The file and its
// folder are made by the first write.
class FileHive : public Hive
{
public:
    FileHive(FileSystem& files, QString path);

    std::optional<HiveValue> Read(const QString& key, const QString& name) const override;
    bool KeyExists(const QString& key) const override;
    QStringList Keys(const QString& key) const override;
    QStringList Values(const QString& key) const override;
    void Write(const QString& key, const QString& name, const HiveValue& value) override;
    void DeleteValue(const QString& key, const QString& name) override;
    void DeleteKey(const QString& key) override;
    void Replace(const QString& key, const std::vector<std::pair<QString, HiveValue>>& values) override;

    const QString& Path() const { return path_; }

private:
    void EditExisting(const std::function<void(HiveFile&)>& change);

    FileSystem& files_;
    QString path_;
};

// $XDG_CONFIG_HOME/kestrune/user.hive
std::unique_ptr<Hive> CurrentUserHive(FileSystem& files, const System& system);
// /etc/kestrune/machine.hive; the environment variable KESTRUNE_MACHINE_DIR names another folder
std::unique_ptr<Hive> LocalMachineHive(FileSystem& files, const System& system);

} // namespace kestrune
