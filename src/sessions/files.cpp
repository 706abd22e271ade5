#include <sessions/files.h>

#include <settings/layer.h>

#include <QStringList>

#include "textlines.h"

#include <algorithm>
#include <array>

namespace kestrune {

using namespace Qt::StringLiterals;

namespace {

// How a line of a script begins, in lower case. "rem" has no blank behind it, deliberately: "remark" counts too.
constexpr std::array<QStringView, 13> ScriptWords = {
    u"sub ",   u"function ", u"dim ",  u"global ",      u"static ",           u"public ", u"private ",
    u"begin ", u"option ",   u"type ", u"declare sub ", u"declare function ", u"rem"};

bool LooksLikeScript(const QString& line)
{
    qsizetype start = 0;
    while (start < line.size() && line.at(start) == u' ')
        ++start;
    const QString text = line.sliced(start).left(32).toLower(); // longer than any of the words
    if (text.startsWith(u'\''))
        return false;
    return std::any_of(ScriptWords.begin(), ScriptWords.end(),
                       [&text](QStringView word) { return text.startsWith(word); });
}

} // namespace

FileType FileKind(const SettingsLayer& layer, const QString& name)
{
    if (IsConfigFile(layer, name))
        return FileType::Session;
    if (IsLayoutFile(layer, name))
        return FileType::Layout;
    return IsScriptFile(layer, name) ? FileType::Script : FileType::Unknown;
}

bool IsConfigFile(const SettingsLayer& layer, const QString& name)
{
    return !layer.profile.ProfileGetString(SessionSection.toString(), u"TermType"_s, {}, name).isEmpty();
}

bool IsLayoutFile(const SettingsLayer& layer, const QString& name)
{
    return !layer.profile.ProfileGetKeys(LayoutSection.toString(), name).isEmpty();
}

bool IsScriptFile(const SettingsLayer& layer, const QString& name)
{
    QString path = name;
    SpecParts parts;
    if (layer.spec.ParseFileSpec(path, parts) != SpecResult::File)
        return false;
    TextLines lines(path);
    QString line;
    while (lines.Next(line))
        if (LooksLikeScript(line))
            return true;
    return false;
}

QString GetFilePath(const SettingsLayer& layer, const QString& name, const QString& extensions)
{
    for (const QString& base : {layer.folders.HomeDir, layer.folders.CurrentDir}) {
        for (const QString& extension : extensions.split(u';')) {
            QString path = name;
            SpecParts parts;
            if (layer.spec.ParseFileSpec(path, parts, base) == SpecResult::File)
                return path;
            if (parts.file.contains(u'.'))
                break;
            path = name + u'.' + extension;
            if (layer.spec.ParseFileSpec(path, parts, base) == SpecResult::File)
                return path;
        }
    }
    return {};
}

} // namespace kestrune
