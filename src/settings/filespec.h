#pragma once

// The rules for names of files and folders: one implementation for two styles. The Windows style knows drives and
// UNC names. The native style runs with "/" as separator and root, no drive, and takes every name that the system
// takes; wherever a rule says "backslash" it means the separator. Text made for files on disk (ContractPath) has
// backslashes in both styles, so that files travel; reading takes both separators.

#include <QString>
#include <QStringView>

namespace kestrune {

class FileSystem;
class System;

struct PathStyle
{
    QChar separator;
    bool drives = false;    // "C:" and "\\server\share"
    bool foldsCase = false; // two names that differ in case only are one file
    QStringView notAllowed; // characters of no file name

    static const PathStyle& Windows();
    static const PathStyle& Native(); // of the system this is built for
};

// Results of ParseFileSpec.
enum class SpecResult : int
{
    Invalid = 0, // or the folder is not there
    Folder = 1,
    File = 2,
    NewFile = 3 // the folder exists, the named file does not
};

// The parts of a name. `dir` ends in a separator; `ext` begins with its dot.
struct SpecParts
{
    QString drive;
    QString dir;
    QString file; // ParseFileSpec: name and extension
    QString ext;  // SplitFileSpec only
};

class FileSpec
{
public:
    FileSpec(const PathStyle& style, FileSystem& files) : style_(style), files_(files) {}

    const PathStyle& Style() const { return style_; }
    FileSystem& Files() const { return files_; }
    // The folder that relative names start from when no base is given.
    void SetCurrentDir(const QString& folder) { currentDir_ = AddBackslash(folder); }
    const QString& CurrentDir() const { return currentDir_; }

    // --- Text only, no look at the disk.
    SpecParts SplitFileSpec(const QString& spec) const;
    QString GetFileNameExt(const QString& spec) const; // "a.orcf"
    QString GetFileName(const QString& spec) const;    // "a"
    QString GetDirPart(const QString& spec) const;     // drive and folder, with the separator
    QString GetFileExt(const QString& spec) const;     // without its dot
    QString AddBackslash(const QString& path) const;
    QString RemoveBackslash(const QString& path) const; // one
    bool IsValidFileSpec(const QString& spec) const;
    QString BackupName(const QString& spec) const;
    QString DotToAbsPath(const QString& path, const QString& base) const;
    // Short and portable for what is stored, and back. Either folder may be empty.
    QString ContractPath(const QString& path, const QString& home, const QString& documents) const;
    QString ExpandPath(const QString& path, const QString& base, const QString& documents) const;
    // "My Documents\Hosts" becomes the documents folder and "Hosts"; other text stays as it is.
    QString ExpandDocuments(const QString& path, const QString& documents) const;
    // Separators of the other style become this one's. Nothing to do in the Windows style.
    QString ToNative(const QString& path) const;

    // --- With a look at the disk; none of these raises unless it says so.
    // Normalises `spec` against `base` (empty: CurrentDir). Invalid by its characters: nothing is changed.
    SpecResult ParseFileSpec(QString& spec, SpecParts& parts, const QString& base = {}) const;
    bool DirExists(const QString& path) const;
    bool PathExists(const QString& path) const;
    bool FileExists(const QString& path) const; // exists and is no folder
    bool CanWrite(const QString& path) const;
    bool MakeDir(const QString& path, bool noRaise) const; // one level; raises Failure with noRaise false
    bool MakePath(const QString& path) const;              // every missing level; true: it exists now
    QString TempFileName(const QString& folder) const;     // "Work1.tmp" to "Work999.tmp"; empty: all taken
    QString GetCurrentDir(const QString& drive) const;

private:
    bool IsUnc(const QString& path) const;
    bool HasDrive(const QString& path) const;
    QString SplitDrive(const QString& path) const;
    QString WithoutDots(const QString& dir) const;
    QString Contracted(const QString& path, const QString& home, const QString& documents) const;

    const PathStyle& style_;
    FileSystem& files_;
    QString currentDir_;
};

// "%NAME%" becomes the variable's value; a percent sign with no partner ends the search. An unknown name becomes
// nothing or, as in a registry value of type 2, stays as it stands, percent signs and all.
enum class UnknownNames
{
    Go,
    Stay
};
QString ExpandEnviron(const System& system, const QString& text, UnknownNames unknown = UnknownNames::Go);

} // namespace kestrune
