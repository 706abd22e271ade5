#pragma once

// Facts about this process and its user that come from the operating system: environment, special folders, the
// program file, how the process was started. NativeSystem is the real one, tests/fakes/fakesystem.h a settable one.

#include <QString>
#include <QStringList>

#include <optional>

namespace kestrune {

class System
{
public:
    virtual ~System() = default;
    virtual std::optional<QString> Environment(const QString& name) const = 0;
    virtual QString HomeFolder() const = 0; // of the user; no trailing separator
    // The user's documents folder; it need not exist. Nothing on failure.
    virtual std::optional<QString> PersonalFolder() const = 0;
    // Per-user application data of all programs; it need not exist. Nothing on failure.
    virtual std::optional<QString> AppDataFolder() const = 0;
    virtual QString ConfigFolder() const = 0; // where hives live
    virtual QString ProgramFile() const = 0;  // the real file, links resolved
};

class NativeSystem : public System
{
public:
    std::optional<QString> Environment(const QString& name) const override;
    QString HomeFolder() const override;
    std::optional<QString> PersonalFolder() const override;
    std::optional<QString> AppDataFolder() const override;
    QString ConfigFolder() const override;
    QString ProgramFile() const override; // KESTRUNE_PROGRAM_FILE names another one
};

// True: started by the platform to serve a client, by bus activation or with "--automation" among the arguments.
bool StartedByPlatform(const System& system, const QStringList& arguments);

} // namespace kestrune
