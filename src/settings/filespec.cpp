#include "filespec.h"

#include <dispatch/failure.h>
#include <platform/files.h>
#include <platform/system.h>
#include <platform/systemfailure.h>
#include <textfile/textfiles.h>

#include <algorithm>

namespace kestrune {

using namespace Qt::StringLiterals;

namespace {

constexpr QStringView kDocumentsName = u"my documents";

bool IsBackslash(QChar c) { return c == u'\\'; }

bool StartsWithFold(const QString& text, const QString& front, bool foldsCase)
{
    return text.startsWith(front, foldsCase ? Qt::CaseInsensitive : Qt::CaseSensitive);
}

} // namespace

const PathStyle& PathStyle::Windows()
{
    static const PathStyle style{u'\\', true, true, u"/:*?<>|\""};
    return style;
}

const PathStyle& PathStyle::Native()
{
#ifdef Q_OS_WIN
    return Windows();
#else
    // A NUL alone is in no name; ":" and "?" are ordinary letters here.
    static const PathStyle style{u'/', false, false, QStringView(u"\0", 1)};
    return style;
#endif
}

bool FileSpec::IsUnc(const QString& path) const { return style_.drives && path.startsWith(u"\\\\"_s); }

bool FileSpec::HasDrive(const QString& path) const { return style_.drives && path.size() > 1 && path.at(1) == u':'; }

QString FileSpec::ToNative(const QString& path) const
{
    return style_.drives ? path : QString(path).replace(u'\\', style_.separator);
}

QString FileSpec::AddBackslash(const QString& path) const
{
    return path.isEmpty() || path.endsWith(style_.separator) ? path : path + style_.separator;
}

QString FileSpec::RemoveBackslash(const QString& path) const
{
    return path.endsWith(style_.separator) ? path.chopped(1) : path;
}

SpecParts FileSpec::SplitFileSpec(const QString& spec) const
{
    SpecParts parts;
    QString rest = spec;
    if (!IsUnc(spec) && HasDrive(spec)) {
        parts.drive = spec.left(2);
        rest = spec.sliced(2);
    }
    const auto fileStart = rest.lastIndexOf(style_.separator) + 1;
    parts.dir = rest.left(fileStart);
    parts.file = rest.sliced(fileStart);
    const auto dot = parts.file.lastIndexOf(u'.');
    if (dot >= 0) {
        parts.ext = parts.file.sliced(dot);
        parts.file.truncate(dot);
    }
    return parts;
}

QString FileSpec::GetFileNameExt(const QString& spec) const
{
    const auto parts = SplitFileSpec(spec);
    return parts.file + parts.ext;
}

QString FileSpec::GetFileName(const QString& spec) const { return SplitFileSpec(spec).file; }

QString FileSpec::GetDirPart(const QString& spec) const
{
    const auto parts = SplitFileSpec(spec);
    return parts.drive + parts.dir;
}

QString FileSpec::GetFileExt(const QString& spec) const { return SplitFileSpec(spec).ext.mid(1); }

bool FileSpec::IsValidFileSpec(const QString& spec) const
{
    qsizetype start = 0;
    if (style_.drives && spec.startsWith(u"::"_s)) {
        start = 2;
    } else if (HasDrive(spec)) {
        const char16_t letter = spec.at(0).toLower().unicode();
        if (letter < u'a' || letter > u'z')
            return false;
        start = 2;
    }
    return std::ranges::none_of(QStringView(spec).sliced(start),
                                [this](QChar c) { return style_.notAllowed.contains(c); });
}

QString FileSpec::BackupName(const QString& spec) const
{
    for (auto i = spec.size(); i-- > 0;) {
        const QChar c = spec.at(i);
        if (c == style_.separator || (style_.drives && c == u':'))
            break;
        if (c == u'.') // the old extension counts case-sensitively, deliberately: "a.BAK" becomes "a.bak"
            return spec.left(i) + (spec.sliced(i + 1) == u"bak"_s ? u".~ak"_s : u".bak"_s);
    }
    return spec + u".bak"_s;
}

QString FileSpec::DotToAbsPath(const QString& path, const QString& base) const
{
    const QString sep(style_.separator);
    QString text = ToNative(path);
    if (text == u".."_s || text.startsWith(u".."_s + sep))
        text.prepend(u"."_s + sep);
    // The text from its second character on begins with the separator, which may then stand twice.
    if (text == u"."_s || text.startsWith(u"."_s + sep))
        text = base + text.sliced(1);
    while (text.contains(sep + sep)) // also at the head: UNC names are not meant to come here
        text.replace(sep + sep, sep);
    QStringList kept;
    for (const auto& part : text.split(style_.separator)) {
        if (part != u".."_s)
            kept += part;
        else if (kept.size() > 1)
            kept.removeLast();
    }
    const QString joined = kept.join(style_.separator);
    return joined.isEmpty() ? sep : joined;
}

// Steps as on every system; the result has this style's separators.
QString FileSpec::Contracted(const QString& path, const QString& home, const QString& documents) const
{
    const bool slashed = path.endsWith(style_.separator);
    const auto restBehind = [&](const QString& folder) -> std::optional<QString> {
        const QString front = AddBackslash(folder);
        const QString whole = AddBackslash(path);
        if (folder.isEmpty() || !StartsWithFold(whole, front, style_.foldsCase))
            return std::nullopt;
        return RemoveBackslash(whole.sliced(front.size()));
    };
    if (const auto rest = restBehind(home))
        return rest->isEmpty() ? u"."_s : slashed ? *rest + style_.separator : *rest;
    if (const auto rest = restBehind(documents)) {
        const QString text = RemoveBackslash(u"My Documents"_s + style_.separator + *rest);
        return slashed ? text + style_.separator : text;
    }
    return path;
}

// Where every character but one may stand in a name, a short form can be ambiguous ("a\b", "x:y", a folder "My
// Documents" at home). It is used only when it leads back to where it came from.
QString FileSpec::ContractPath(const QString& path, const QString& home, const QString& documents) const
{
    if (path.isEmpty() || style_.drives)
        return Contracted(path, home, documents);
    const auto leadsBack = [&](const QString& portable) {
        return RemoveBackslash(ExpandPath(portable, home, documents)) == RemoveBackslash(path);
    };
    for (const QString& tried : {Contracted(path, home, documents), Contracted(path, {}, documents)}) {
        QString portable = QString(tried).replace(style_.separator, u'\\');
        if (tried != path && leadsBack(portable))
            return portable;
    }
    return path;
}

QString FileSpec::ExpandPath(const QString& path, const QString& base, const QString& documents) const
{
    const auto isSeparator = [this](QChar c) { return c == style_.separator || IsBackslash(c); };
    if (path.isEmpty() || isSeparator(path.at(0)) || (path.size() > 1 && path.at(1) == u':'))
        return path;
    if (!documents.isEmpty()) {
        if (path.compare(kDocumentsName, Qt::CaseInsensitive) == 0)
            return documents;
        if (path.startsWith(kDocumentsName, Qt::CaseInsensitive) && isSeparator(path.at(kDocumentsName.size())))
            return AddBackslash(documents) + ToNative(path.sliced(kDocumentsName.size() + 1));
    }
    if (base.isEmpty())
        return path;
    if (path == u"."_s)
        return RemoveBackslash(base);
    if (path.size() == 2 && path.at(0) == u'.' && isSeparator(path.at(1)))
        return AddBackslash(base);
    return AddBackslash(base) + ToNative(path);
}

QString FileSpec::ExpandDocuments(const QString& path, const QString& documents) const
{
    const QString text = AddBackslash(ToNative(path));
    if (!text.startsWith(kDocumentsName.toString() + style_.separator, Qt::CaseInsensitive))
        return path;
    QString rest = ToNative(path).sliced(kDocumentsName.size());
    if (rest.startsWith(style_.separator))
        rest.remove(0, 1);
    return documents + rest;
}

SpecResult FileSpec::ParseFileSpec(QString& spec, SpecParts& parts, const QString& base) const
{
    if (!IsValidFileSpec(spec))
        return SpecResult::Invalid;
    const QString from = AddBackslash(base.isEmpty() ? currentDir_ : base);
    const SpecParts baseParts =
        HasDrive(from) ? SpecParts{from.left(2), from.sliced(2), {}, {}} : SpecParts{{}, from, {}, {}};
    // A name may hold backslashes on this system; if there is no such file, they are another system's separators.
    const bool literal = style_.drives || !spec.contains(u'\\') || PathExists(spec) || PathExists(from + spec);
    const QString name = literal ? spec : ToNative(spec);

    SpecParts found;
    const auto startsAtRoot = [this](const QString& dir) { return dir.startsWith(style_.separator); };
    if (IsUnc(name)) {
        found.dir = name;
    } else if (HasDrive(name)) {
        found.drive = name.left(2);
        found.dir = name.sliced(2);
    } else {
        found.drive = baseParts.drive;
        found.dir = startsAtRoot(name) ? name : baseParts.dir + name;
    }
    if (found.dir.isEmpty())
        found.dir = AddBackslash(baseParts.dir);
    if (!startsAtRoot(found.dir)) // "C:file"
        found.dir = AddBackslash(SplitDrive(GetCurrentDir(found.drive))) + found.dir;
    if (!style_.drives)
        found.dir = WithoutDots(found.dir);
    const auto fileStart = found.dir.lastIndexOf(style_.separator) + 1;
    found.file = found.dir.sliced(fileStart);
    found.dir.truncate(fileStart);
    spec = found.drive + found.dir + found.file;

    if (!found.file.isEmpty()) {
        const bool isFolder = DirExists(spec);
        if (isFolder) {
            spec += style_.separator;
            found.dir += found.file + style_.separator;
            found.file.clear();
        }
        if (isFolder || FileExists(spec)) {
            parts = found;
            return isFolder ? SpecResult::Folder : SpecResult::File;
        }
    }
    const bool isRoot = found.dir.size() == 1;
    if (!DirExists(found.drive + (isRoot ? found.dir : RemoveBackslash(found.dir))))
        return SpecResult::Invalid;
    parts = found;
    return found.file.isEmpty() ? SpecResult::Folder : SpecResult::NewFile;
}

QString FileSpec::SplitDrive(const QString& path) const { return HasDrive(path) ? path.sliced(2) : path; }

// "/a/./b//c" is "/a/b/c". A ".." stays: behind a link it is not what its letters say.
QString FileSpec::WithoutDots(const QString& dir) const
{
    QStringList parts = dir.split(style_.separator);
    const bool folder = parts.back() == u"."_s;
    parts.removeAll(u"."_s);
    QString joined = parts.join(style_.separator) + (folder ? QString(style_.separator) : QString());
    const QString twice(2, style_.separator);
    while (joined.contains(twice))
        joined.replace(twice, QString(style_.separator));
    return joined;
}

bool FileSpec::DirExists(const QString& path) const { return textfile::PathIsDirectory(files_, path); }

bool FileSpec::PathExists(const QString& path) const { return textfile::PathFileExists(files_, path); }

bool FileSpec::FileExists(const QString& path) const { return textfile::IsExistingFile(files_, path); }

bool FileSpec::CanWrite(const QString& path) const { return textfile::IsWritableFile(files_, path); }

bool FileSpec::MakeDir(const QString& path, bool noRaise) const
{
    try {
        files_.MakeFolder(path);
        return true;
    } catch (const SystemFailure& failure) {
        if (noRaise)
            return false;
        throw Failure(ShellErrorNumber(PlatformError(failure.SystemError(), Subject::Folder)), failure.Text(),
                      u"Files.MakeDir"_s);
    }
}

bool FileSpec::MakePath(const QString& path) const
{
    const bool rooted = style_.drives
                            ? IsUnc(path) || path.sliced(std::min<qsizetype>(1, path.size())).startsWith(u":\\"_s)
                            : path.startsWith(style_.separator);
    if (!rooted)
        return false;
    if (DirExists(path))
        return true;
    const QStringList parts = RemoveBackslash(path).split(style_.separator);
    constexpr qsizetype kUncRootParts = 4; // "", "", server, share
    const qsizetype rootParts = IsUnc(path) ? kUncRootParts : 1;
    QString walked = parts.mid(0, rootParts).join(style_.separator) + style_.separator;
    if (!DirExists(walked))
        return false;
    for (const auto& part : parts.mid(rootParts)) {
        walked = AddBackslash(walked) + part;
        if (!PathExists(walked) && !MakeDir(walked, true) && !DirExists(walked)) // another process may be quicker
            return false;
        if (FileExists(walked))
            return false;
    }
    return DirExists(path);
}

QString FileSpec::TempFileName(const QString& folder) const
{
    constexpr int kLast = 999;
    for (int i = 1; i <= kLast; ++i) {
        QString name = AddBackslash(folder) + u"Work%1.tmp"_s.arg(i);
        if (!PathExists(name))
            return name;
    }
    return {};
}

QString FileSpec::GetCurrentDir(const QString& drive) const
{
    const QString own = files_.WorkingFolder({});
    return drive.isEmpty() || StartsWithFold(own, drive, true) ? own : files_.WorkingFolder(drive);
}

QString ExpandEnviron(const System& system, const QString& text, UnknownNames unknown)
{
    QString result = text;
    for (qsizetype at = 0;;) {
        const auto open = result.indexOf(u'%', at);
        const auto close = open < 0 ? -1 : result.indexOf(u'%', open + 1);
        if (close < 0)
            return result;
        const auto value = system.Environment(result.sliced(open + 1, close - open - 1));
        if (!value && unknown == UnknownNames::Stay) {
            at = close; // it may open another name
            continue;
        }
        result.replace(open, close - open + 1, value.value_or(QString()));
        at = open + value.value_or(QString()).size(); // a value that names itself does not go round for ever
    }
}

} // namespace kestrune
