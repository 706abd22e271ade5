#include "regfuncs.h"

#include "filespec.h"
#include "quietly.h"

#include <platform/hive.h>
#include <platform/system.h>

#include <optional>

namespace kestrune {

namespace {

// The read's buffers, in characters, terminator included. What does not fit is a failed read.
constexpr qsizetype kValueBuffer = 4096;
constexpr qsizetype kExpandBuffer = 8192;

} // namespace

Hive* RegFuncs::Of(quint32 hive) const
{
    return hive == CurrentUser ? &currentUser_ : hive == LocalMachine ? &localMachine_ : nullptr;
}

QString RegFuncs::RegGetString(quint32 hive, const QString& key, const QString& name, const QString& defaultValue) const
{
    std::optional<HiveValue> value;
    if (const auto* from = Of(hive))
        Quietly([&] { value = from->Read(key, name); });
    if (!value || value->text.size() >= kValueBuffer)
        return defaultValue;
    QString text = value->text;
    if (text.endsWith(QChar(0)))
        text.chop(1);
    if (value->type == HiveValueType::Expandable)
        text = ExpandEnviron(system_, text, UnknownNames::Stay);
    return text.isEmpty() || text.size() >= kExpandBuffer ? defaultValue : text;
}

void RegFuncs::RegSetString(quint32 hive, const QString& key, const QString& name, const QString& value,
                            const QString& defaultValue)
{
    // A value equal to its default is not deleted but emptied, deliberately: an empty one reads as the default.
    const bool store = defaultValue.isEmpty() || value != defaultValue;
    if (auto* to = Of(hive))
        Quietly([&] { to->Write(key, name, {HiveValueType::String, store ? value : QString()}); });
}

void RegFuncs::RegDeleteKey(quint32 hive, const QString& key)
{
    if (auto* from = Of(hive))
        Quietly([&] { from->DeleteKey(key); });
}

void RegFuncs::RegReplaceKey(quint32 hive, const QString& key, const QList<std::pair<QString, QString>>& values)
{
    std::vector<std::pair<QString, HiveValue>> stored;
    for (const auto& [name, value] : values)
        stored.emplace_back(name, HiveValue{HiveValueType::String, value});
    if (auto* to = Of(hive))
        Quietly([&] { to->Replace(key, stored); });
}

} // namespace kestrune
