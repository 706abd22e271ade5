#include "store.h"

#include "quietly.h"

#include <platform/files.h>
#include <platform/textcodec.h>
#include <settings/isolation.h>
#include <settings/profile.h>
#include <settings/regfuncs.h>

namespace kestrune {

using namespace Qt::StringLiterals;

namespace {

QString NameInFile(const QString& name) { return name.isEmpty() ? u"@"_s : name; }

} // namespace

QString Store::SectionOf(const QString& key)
{
    QStringList parts = key.split(u'\\');
    for (qsizetype i = 0; i < 2 && i < parts.size(); ++i)
        parts[i].clear();
    const QString section = parts.join(u'_').mid(2).remove(u' ');
    return section.isEmpty() ? key : section;
}

QString Store::StoreGetString(const QString& key, const QString& name, const QString& defaultValue) const
{
    switch (isolation_.PersistSettings()) {
    case Isolation::ToRegistry:
        return registry_.RegGetString(RegFuncs::CurrentUser, key, name, defaultValue);
    case Isolation::ToFile:
        return profile_.ProfileGetString(SectionOf(key), NameInFile(name), defaultValue, isolation_.AppStateFile());
    default:
        return defaultValue;
    }
}

void Store::StoreSetString(const QString& key, const QString& name, const QString& value, const QString& defaultValue)
{
    switch (isolation_.PersistSettings()) {
    case Isolation::ToRegistry:
        registry_.RegSetString(RegFuncs::CurrentUser, key, name, value, defaultValue);
        return;
    case Isolation::ToFile:
        MakeAppStateFile();
        profile_.ProfileSetString(SectionOf(key), NameInFile(name), value, defaultValue, isolation_.AppStateFile());
        return;
    default:
        return;
    }
}

void Store::StoreDeleteKey(const QString& key)
{
    switch (isolation_.PersistSettings()) {
    case Isolation::ToRegistry:
        registry_.RegDeleteKey(RegFuncs::CurrentUser, key);
        return;
    case Isolation::ToFile:
        profile_.ProfileDeleteSection(SectionOf(key), isolation_.AppStateFile());
        return;
    default:
        return;
    }
}

void Store::StoreReplaceKey(const QString& key, const QList<std::pair<QString, QString>>& values)
{
    switch (isolation_.PersistSettings()) {
    case Isolation::ToRegistry:
        registry_.RegReplaceKey(RegFuncs::CurrentUser, key, values);
        return;
    case Isolation::ToFile:
        MakeAppStateFile();
        Quietly([&] {
            ProfileGroup group(profile_, isolation_.AppStateFile());
            StoreDeleteKey(key);
            for (const auto& [name, value] : values)
                StoreSetString(key, name, value, {});
            group.Commit();
        });
        return;
    default:
        return;
    }
}

// Empty, in UTF-16 with its mark. Looked for under the file's lock: another process may have just made and filled it.
void Store::MakeAppStateFile()
{
    auto& files = profile_.Files();
    if (files.Kind(isolation_.AppStateFile()) != PathKind::Missing)
        return;
    Quietly([&] {
        files.Edit(isolation_.AppStateFile(), [](const std::optional<QByteArray>& old) -> std::optional<QByteArray> {
            return old ? std::nullopt : std::optional(MarkOf(TextEncoding::Utf16LeMark));
        });
    });
}

bool Store::IsolationActive() const { return isolation_.IsActive(); }

QString Store::IsolationAppDataDir() const { return isolation_.AppDataDir(); }

QString Store::IsolationUserDataDir() const { return isolation_.UserDataDir(); }

} // namespace kestrune
