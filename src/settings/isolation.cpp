#include "isolation.h"

#include <settings/filespec.h>
#include <settings/profile.h>

#include <utility>

namespace kestrune {

using namespace Qt::StringLiterals;

Isolation::Isolation(const FileSpec& spec, const Profile& profile, const System& system, QString programDir)
    : spec_(spec), profile_(profile), system_(system), programDir_(std::move(programDir))
{}

int Isolation::PersistSettings() const
{
    ReadOnce();
    return persistSettings_;
}

const QString& Isolation::AppDataDir() const
{
    ReadOnce();
    return appDataDir_;
}

const QString& Isolation::UserDataDir() const
{
    ReadOnce();
    return userDataDir_;
}

const QString& Isolation::AppStateFile() const
{
    ReadOnce();
    return appStateFile_;
}

void Isolation::ReadOnce() const
{
    if (std::exchange(read_, true))
        return;
    const QString file = programDir_ + u"isolation.ini"_s;
    const QString section = u"Isolation"_s;
    persistSettings_ = profile_.ProfileGetInt(section, u"PersistSettings"_s, ToRegistry, file);
    const auto folder = [&](const QString& key) {
        return ResolveIsolationDir(profile_.ProfileGetString(section, key, u"."_s, file));
    };
    appDataDir_ = folder(u"AppDataDirectory"_s);
    userDataDir_ = folder(u"UserDataDirectory"_s);
    appStateFile_ = appDataDir_ + u"appstate.ini"_s;
}

QString Isolation::ResolveIsolationDir(const QString& text) const
{
    QString folder = spec_.DotToAbsPath(text, programDir_);
    if (folder.contains(u'%'))
        folder = ExpandEnviron(system_, folder);
    if (folder.isEmpty())
        folder = programDir_;
    folder = spec_.AddBackslash(folder);
    if (spec_.DirExists(folder))
        return folder;

    const QStringList parts = spec_.RemoveBackslash(folder).split(spec_.Style().separator);
    QString walked = parts.front();
    for (const auto& part : parts.mid(1)) {
        walked += spec_.Style().separator + part;
        if (!spec_.DirExists(walked) && !spec_.MakeDir(walked, true) && !spec_.DirExists(walked))
            return spec_.AddBackslash(programDir_);
    }
    return folder;
}

} // namespace kestrune
