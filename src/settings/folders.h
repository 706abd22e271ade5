#pragma once

// The folders of the program, each with a trailing separator, found once at start.

#include <QString>

namespace kestrune {

class FileSpec;
class RegFuncs;
class Store;
class System;

struct Folders
{
    QString CurrentDir;   // working folder at start
    QString ProgramDir;   // of the program file, links resolved
    QString DocumentsDir; // the user's documents
    QString HomeDir;      // session files, layouts, macros; the user can change it ("HomePath")
    QString SessionDir;   // where the open and save dialogs start
    QString AppDataDir;   // per-user application data
};

// The folder of the program file: needed before the store exists, since isolation.ini lies there.
QString FindProgramDir(const FileSpec& spec, const System& system);

// The whole set-up; makes HomeDir and AppDataDir where they are missing and sets the base of relative names in
// `spec`. Never fails: each folder has a last resort.
Folders SetUpFolders(FileSpec& spec, const System& system, const Store& store, const RegFuncs& registry);

// "ORLIN71.INI" in ProgramDir: what belongs to the installation.
QString InstallationIniFile(const Folders& folders);

} // namespace kestrune
