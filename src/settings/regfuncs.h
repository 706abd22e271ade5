#pragma once

// Text values under a hive. Nothing here reports a failure: reads give the default, writes are silent.

#include <QString>

namespace kestrune {

class Hive;
class System;

class RegFuncs
{
public:
    // The platform's handles of the two hives.
    static constexpr quint32 CurrentUser = 0x80000001;
    static constexpr quint32 LocalMachine = 0x80000002;

    RegFuncs(Hive& currentUser, Hive& localMachine, const System& system)
        : currentUser_(currentUser), localMachine_(localMachine), system_(system)
    {}

    QString RegGetString(quint32 hive, const QString& key, const QString& name, const QString& defaultValue) const;
    // A value equal to its default stands as an empty value, so that the next read gives the default.
    void RegSetString(quint32 hive, const QString& key, const QString& name, const QString& value,
                      const QString& defaultValue);
    void RegDeleteKey(quint32 hive, const QString& key);
    // Deletes the key and writes these values, in one step: name and value.
    void RegReplaceKey(quint32 hive, const QString& key, const QList<std::pair<QString, QString>>& values);

private:
    Hive* Of(quint32 hive) const;

    Hive& currentUser_;
    Hive& localMachine_;
    const System& system_;
};

} // namespace kestrune
