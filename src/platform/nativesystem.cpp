#include "system.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>

namespace kestrune {

using namespace Qt::StringLiterals;

namespace {

std::optional<QString> UnlessEmpty(const QString& text) { return text.isEmpty() ? std::nullopt : std::optional(text); }

} // namespace

std::optional<QString> NativeSystem::Environment(const QString& name) const
{
    const QByteArray key = name.toLocal8Bit();
    if (!qEnvironmentVariableIsSet(key.constData()))
        return std::nullopt;
    return qEnvironmentVariable(key.constData());
}

QString NativeSystem::HomeFolder() const { return QDir::homePath(); }

// By user-dirs.dirs, as the desktop's other programs find it.
std::optional<QString> NativeSystem::PersonalFolder() const
{
    return UnlessEmpty(QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation));
}

std::optional<QString> NativeSystem::AppDataFolder() const
{
    return UnlessEmpty(QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation));
}

QString NativeSystem::ConfigFolder() const
{
    return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) + u"/kestrune"_s;
}

QString NativeSystem::ProgramFile() const
{
    if (const auto named = Environment(u"KESTRUNE_PROGRAM_FILE"_s))
        return *named;
    QString target = QFile::symLinkTarget(u"/proc/self/exe"_s);
    // proc(5): the kernel marks the name of a program file that was replaced while it runs
    const QString replaced = u" (deleted)"_s;
    if (!QFileInfo::exists(target) && target.endsWith(replaced))
        target.chop(replaced.size());
    return target;
}

bool StartedByPlatform(const System& system, const QStringList& arguments)
{
    return system.Environment(u"DBUS_STARTER_ADDRESS"_s).has_value() || arguments.contains(u"--automation"_s);
}

} // namespace kestrune
