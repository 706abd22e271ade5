#include "folders.h"

#include <platform/files.h>
#include <platform/system.h>
#include <settings/filespec.h>
#include <settings/regfuncs.h>
#include <settings/store.h>

namespace kestrune {

using namespace Qt::StringLiterals;

namespace {

QString UpToNul(const QString& text)
{
    const auto end = text.indexOf(QChar(0));
    return end < 0 ? text : text.left(end);
}

QString FindDocumentsDir(const FileSpec& spec, const System& system)
{
    const bool windows = spec.Style().drives;
    QString folder = UpToNul(system.PersonalFolder().value_or(QString()));
    if (folder.isEmpty() && windows) {
        const QString profile = system.Environment(u"USERPROFILE"_s).value_or(QString());
        folder = profile.isEmpty() ? u"C:\\My Documents\\"_s : profile + u"\\My Documents\\"_s;
    } else if (folder.isEmpty()) {
        folder = spec.AddBackslash(system.HomeFolder()) + u"Documents"_s;
    }
    return spec.AddBackslash(folder);
}

// The local machine's value is the installation's default; the user's own wins. An isolated installation does not
// ask the machine.
QString FindHomeDir(const FileSpec& spec, const Folders& folders, const Store& store, const RegFuncs& registry)
{
    const QString& key = StoreKey::Settings;
    const QString name = u"HomePath"_s;
    QString home = store.StoreGetString(key, name, {});
    if (home.isEmpty() && !store.IsolationActive())
        home = registry.RegGetString(RegFuncs::LocalMachine, key, name, {});
    home = spec.ExpandDocuments(home, folders.DocumentsDir);
    if (home.isEmpty())
        home = store.IsolationActive() ? store.IsolationUserDataDir() : folders.DocumentsDir;

    spec.MakePath(home);
    SpecParts parts;
    if (spec.ParseFileSpec(home, parts) != SpecResult::Folder)
        home = folders.ProgramDir;
    return spec.AddBackslash(home);
}

QString FindAppDataDir(const FileSpec& spec, const System& system, const Folders& folders, const Store& store)
{
    if (store.IsolationActive())
        return store.IsolationAppDataDir();
    const auto folder = system.AppDataFolder();
    const bool there = folder && (spec.DirExists(*folder) || spec.MakePath(*folder));
    if (!there)
        return folders.HomeDir;
    QString path = spec.RemoveBackslash(UpToNul(*folder));
    for (const QString& level : {u"Tavle"_s, u"orlin70"_s}) {
        path = spec.AddBackslash(path) + level;
        if (!spec.DirExists(path) && !spec.MakeDir(path, true) && !spec.DirExists(path))
            return folders.HomeDir;
    }
    return spec.AddBackslash(path);
}

} // namespace

QString FindProgramDir(const FileSpec& spec, const System& system) { return spec.GetDirPart(system.ProgramFile()); }

Folders SetUpFolders(FileSpec& spec, const System& system, const Store& store, const RegFuncs& registry)
{
    Folders folders;
    const QString working = spec.GetCurrentDir({});
    // The working folder may have been removed under us.
    folders.CurrentDir = spec.AddBackslash(working.isEmpty() ? system.HomeFolder() : working);
    spec.SetCurrentDir(folders.CurrentDir);
    folders.ProgramDir = FindProgramDir(spec, system);
    folders.DocumentsDir = FindDocumentsDir(spec, system);
    folders.HomeDir = FindHomeDir(spec, folders, store, registry);
    folders.SessionDir = folders.HomeDir;
    folders.AppDataDir = FindAppDataDir(spec, system, folders, store);
    return folders;
}

QString InstallationIniFile(const Folders& folders) { return folders.ProgramDir + u"ORLIN71.INI"_s; }

} // namespace kestrune
