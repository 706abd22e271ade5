#pragma once

// An installation can be told to keep nothing in the hives and nothing in the user's profile: "isolation.ini"
// beside the program says so. Read once, when anything first touches the settings.

#include <QString>

namespace kestrune {

class FileSpec;
class Profile;
class System;

class Isolation
{
public:
    static constexpr int ToRegistry = 1;
    static constexpr int ToFile = 2; // any other value of PersistSettings: nothing is kept

    // programDir: with trailing separator
    Isolation(const FileSpec& spec, const Profile& profile, const System& system, QString programDir);

    int PersistSettings() const;
    bool IsActive() const { return PersistSettings() != ToRegistry; }
    const QString& AppDataDir() const;  // trailing separator; made if need be
    const QString& UserDataDir() const; // the same
    const QString& AppStateFile() const;

private:
    void ReadOnce() const;
    QString ResolveIsolationDir(const QString& text) const;

    const FileSpec& spec_;
    const Profile& profile_;
    const System& system_;
    QString programDir_;
    mutable bool read_ = false;
    mutable int persistSettings_ = ToRegistry;
    mutable QString appDataDir_;
    mutable QString userDataDir_;
    mutable QString appStateFile_;
};

} // namespace kestrune
