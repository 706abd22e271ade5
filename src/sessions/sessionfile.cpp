#include <sessions/sessionfile.h>

#include <dispatch/propertybag.h>
#include <dispatch/variant.h>
#include <ports/keyfile.h>
#include <sessions/sessionsettings.h>
#include <settings/filespec.h>
#include <settings/profile.h>

#include <array>

namespace kestrune {

using namespace Qt::StringLiterals;

namespace {

enum class SessionKeyKind
{
    Flag,
    Number,
    Text,
    Path
};

struct SessionKey
{
    QStringView fileKey;
    QStringView bagKey;
    SessionKeyKind kind;
    Variant (*get)(const SessionSettings&);
    void (*set)(SessionSettings&, const Variant&);
};

constexpr qsizetype MostText = 4095; // what the profile's buffer holds: a title of megabytes is nobody's

using S = SessionSettings;
using V = Variant;

constexpr std::array SessionKeys = {
    SessionKey{u"AutoClose", u"SessionAutoClose", SessionKeyKind::Flag, [](const S& s) { return V(s.AutoClose()); },
               [](S& s, const V& v) { s.SetAutoClose(v.ToBoolean()); }},
    SessionKey{u"SessionTitle", u"SessionTitle", SessionKeyKind::Text, [](const S& s) { return V(s.Caption()); },
               [](S& s, const V& v) { s.SetCaption(v.ToText()); }},
    SessionKey{u"Icon", u"SessionIcon", SessionKeyKind::Path, [](const S& s) { return V(s.Icon()); },
               [](S& s, const V& v) { s.SetIcon(v.ToText()); }},
    SessionKey{u"CustomMouseTable", u"SessionMouseTable", SessionKeyKind::Path,
               [](const S& s) { return V(s.MouseTable()); }, [](S& s, const V& v) { s.SetMouseTable(v.ToText()); }},
    SessionKey{u"ShowErrs", u"SessionShowErrs", SessionKeyKind::Flag, [](const S& s) { return V(s.ShowErrs()); },
               [](S& s, const V& v) { s.SetShowErrs(v.ToBoolean()); }},
    SessionKey{u"CapsLock", u"SessionCapsLock", SessionKeyKind::Flag, [](const S& s) { return V(s.CapsLock() != 0); },
               [](S& s, const V& v) { s.SetCapsLock(v.ToBoolean() ? 1 : 0); }},
    SessionKey{u"CopyPasteShortcut", u"CopyPasteShortcut", SessionKeyKind::Number,
               [](const S& s) { return V(qint32(s.CopyPasteShortcut())); },
               [](S& s, const V& v) { s.SetCopyPasteShortcut(v.ToInteger()); }},
};

// A number or a word; of a number only the lowest bit counts.
bool FlagFromText(const QString& text)
{
    const int number = ParseNumber(text);
    return number != 0 ? (number & 1) != 0 : ParseBool(text);
}

Variant ValueFromFile(const SessionKey& key, const KeyFile& file)
{
    const QString name = key.fileKey.toString();
    switch (key.kind) {
    case SessionKeyKind::Flag:
        return FlagFromText(file.GetString(name, {}));
    case SessionKeyKind::Number:
        return qint32(file.GetInt(name, 0));
    case SessionKeyKind::Text:
    case SessionKeyKind::Path:
        return file.GetString(name, {}).left(MostText);
    }
    return {};
}

Variant EmptyValue(const SessionKey& key)
{
    switch (key.kind) {
    case SessionKeyKind::Flag:
        return false;
    case SessionKeyKind::Number:
        return qint32(0);
    case SessionKeyKind::Text:
    case SessionKeyKind::Path:
        return QString();
    }
    return {};
}

template <typename ValueOf>
std::optional<Failure> AssignAll(SessionSettings& settings, ValueOf&& valueOf)
{
    std::optional<Failure> first;
    for (const SessionKey& key : SessionKeys) {
        try {
            key.set(settings, valueOf(key));
        } catch (const Failure& failure) {
            if (!first)
                first.emplace(failure);
        }
    }
    return first;
}

} // namespace

std::optional<Failure> ReadSessionKeys(const KeyFile& file, SessionSettings& settings)
{
    return AssignAll(settings, [&file](const SessionKey& key) { return ValueFromFile(key, file); });
}

void WriteSessionKeys(KeyFile& file, const SessionSettings& settings, const FileSpec& spec, const QString& programDir)
{
    for (const SessionKey& key : SessionKeys) {
        const QString name = key.fileKey.toString();
        const Variant value = key.get(settings);
        if (value == EmptyValue(key)) // also for a number, where the profile's own rule would store a 0
            file.Remove(name);
        else if (key.kind == SessionKeyKind::Flag)
            file.SetBool(name, true, false);
        else if (key.kind == SessionKeyKind::Path)
            file.SetString(name, spec.ContractPath(value.ToText(), programDir, {}), {});
        else
            file.SetString(name, value.ToText(), {});
    }
}

std::optional<Failure> ReadSessionBag(const PropertyBag& bag, SessionSettings& settings)
{
    return AssignAll(
        settings, [&bag](const SessionKey& key) { return bag.ReadProperty(key.bagKey.toString(), EmptyValue(key)); });
}

void WriteSessionBag(PropertyBag& bag, const SessionSettings& settings)
{
    for (const SessionKey& key : SessionKeys)
        bag.WriteProperty(key.bagKey.toString(), key.get(settings), EmptyValue(key));
}

} // namespace kestrune
