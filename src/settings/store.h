#pragma once

// The settings store: the one pair of read and write operations for the user's values. They go to the current
// user's hive, to the private file of an isolated installation, or nowhere. There is no cache. Reads never fail,
// writes are silent, and a value equal to its default reads back as the default.

#include <QString>

namespace kestrune {

class Isolation;
class Profile;
class RegFuncs;

// The number 70 is that of an earlier release and stands for all releases of the 7 series, on purpose.
namespace StoreKey {
inline const QString Settings = QStringLiteral("Software\\Tavle\\orlin70\\Settings");
inline const QString RecentFiles = QStringLiteral("Software\\Tavle\\orlin70\\Settings\\RecentFiles");
inline const QString WelcomePage = QStringLiteral("Software\\Tavle\\orlin70\\Settings\\WelcomePage");
inline const QString Control = QStringLiteral("Software\\Tavle\\orlin70\\Control");
} // namespace StoreKey

class Store
{
public:
    Store(const Isolation& isolation, RegFuncs& registry, Profile& profile)
        : isolation_(isolation), registry_(registry), profile_(profile)
    {}

    QString StoreGetString(const QString& key, const QString& name, const QString& defaultValue) const;
    void StoreSetString(const QString& key, const QString& name, const QString& value, const QString& defaultValue);
    void StoreDeleteKey(const QString& key);
    // Deletes the key and stores these values, name and value, in one step: killed at any instant, the old list or
    // the new one is there.
    void StoreReplaceKey(const QString& key, const QList<std::pair<QString, QString>>& values);

    bool IsolationActive() const; // the store is anything other than the hive
    QString IsolationAppDataDir() const;
    QString IsolationUserDataDir() const;

    // Section of the private file for a key: "Software\Tavle\orlin70\Settings" is "orlin70_Settings".
    static QString SectionOf(const QString& key);

private:
    void MakeAppStateFile();

    const Isolation& isolation_;
    RegFuncs& registry_;
    Profile& profile_;
};

} // namespace kestrune
