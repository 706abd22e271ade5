#pragma once

// A system whose facts a test sets.

#include <platform/system.h>

#include <map>

namespace kestrune {

class FakeSystem : public System
{
public:
    std::optional<QString> Environment(const QString& name) const override
    {
        const auto at = environment.find(name);
        return at == environment.end() ? std::nullopt : std::optional(at->second);
    }
    QString HomeFolder() const override { return home; }
    std::optional<QString> PersonalFolder() const override { return personal; }
    std::optional<QString> AppDataFolder() const override { return appData; }
    QString ConfigFolder() const override { return config; }
    QString ProgramFile() const override { return program; }

    std::map<QString, QString> environment;
    QString home, config, program;
    std::optional<QString> personal, appData;
};

} // namespace kestrune
