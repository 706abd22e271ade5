#include "emulatorsettings.h"

#include "keynotation.h"
#include "latintext.h"

#include <dispatch/failure.h>

#include <QCoreApplication>

#include <cmath>

namespace kestrune {

using namespace Qt::StringLiterals;

namespace {

const QString kSection = u"Kestrune"_s;
const QString kFKeyPrefix = u"FKey"_s;
const QString kPalettePrefix = u"Palette"_s;
const QString kColorPrefix = u"AttrColor"_s;

QString BagKey(const SettingRow& row)
{
    return row.bagKey.empty() ? u's' + LatinText(row.name) : LatinText(row.bagKey);
}

Variant DefaultOf(const SettingRow& row)
{
    switch (row.kind) {
    case SettingKind::Boolean:
        return row.number != 0;
    case SettingKind::Integer:
        return qint32(row.number);
    case SettingKind::Float:
        return row.number;
    case SettingKind::Text:
        return LatinText(row.text);
    }
    return {};
}

bool InRange(const SettingRow& row, double number)
{
    // A text that is no number reads as 0, so the range decides about it too.
    return number >= row.low && number <= row.high;
}

// The value in the row's kind; nothing when it is out of range.
std::optional<Variant> Fit(const SettingRow& row, const Variant& value)
{
    switch (row.kind) {
    case SettingKind::Boolean:
        return Variant(value.ToBoolean());
    case SettingKind::Text:
        return Variant(value.ToText());
    case SettingKind::Integer:
        if (InRange(row, std::nearbyint(value.ToDouble())))
            return Variant(value.ToInteger());
        break;
    case SettingKind::Float:
        if (InRange(row, value.ToDouble()))
            return Variant(value.ToDouble());
        break;
    }
    return std::nullopt;
}

QString FloatText(double number) { return QString::number(number, 'g', 7); } // 32-bit on the outside

Variant ReadRow(const KeyFile& file, const SettingRow& row)
{
    const QString key = LatinText(row.name);
    const Variant fallback = DefaultOf(row);
    Variant read;
    switch (row.kind) {
    case SettingKind::Boolean:
        read = file.GetBool(key, fallback.ToBoolean());
        break;
    case SettingKind::Integer:
        read = qint32(file.GetInt(key, fallback.ToInteger()));
        break;
    case SettingKind::Float:
        read = file.GetString(key, FloatText(row.number));
        break;
    case SettingKind::Text:
        read = file.GetString(key, fallback.ToText());
        break;
    }
    return Fit(row, read).value_or(fallback);
}

void WriteRow(KeyFile& file, const SettingRow& row, const Variant& value)
{
    const QString key = LatinText(row.name);
    const Variant fallback = DefaultOf(row);
    switch (row.kind) {
    case SettingKind::Boolean:
        file.SetBool(key, value.ToBoolean(), fallback.ToBoolean());
        return;
    case SettingKind::Integer:
        file.SetInt(key, value.ToInteger(), fallback.ToInteger());
        return;
    case SettingKind::Float:
        file.SetString(key, FloatText(value.ToDouble()), FloatText(row.number));
        return;
    case SettingKind::Text:
        file.SetString(key, value.ToText(), fallback.ToText());
        return;
    }
}

constexpr qint32 Bgr(uint32_t rgb) { return qint32((rgb & 0xFF) << 16 | (rgb & 0xFF00) | rgb >> 16); }

// A quiet dark scheme. Text colours have at least 4.5:1 on the background; blue is the exception, since full
// screen programs write light text on it: it has about 3.4:1 both ways, and bright blue carries blue text.
constexpr std::array<uint32_t, PaletteSize> kDefaultPalette{
    0x15181D, 0xE0606C, 0x8FBF6A, 0xD9B15F, 0x3B6FC4, 0xB877D6, 0x4FB3BF, 0xC9CED8, // black to white
    0x6F7787, 0xFF7B86, 0xA9D884, 0xF0CC7A, 0x7AA7F0, 0xD699EE, 0x76D0DA, 0xF4F6FA, // bright
    0xD6DAE2, 0x1C1F26, 0xF0B95A, 0x1C1F26, 0x39507A, 0xFFFFFF,                     // roles
};

// The codes of keys that can be given a text: 0 to 255 under eight combinations of Shift, Control and Alt, and
// the twelve function keys in their second set.
bool IsCode(int code)
{
    if (code >= 0 && code < 8000)
        return code % 1000 < 256;
    const int second = code - 10000;
    return second >= 0 && second < 4000 && second % 1000 >= 112 && second % 1000 <= 123;
}

std::optional<int> CodeOfKey(const QString& key)
{
    if (!key.startsWith(kFKeyPrefix, Qt::CaseInsensitive))
        return std::nullopt;
    bool ok = false;
    const int code = QStringView(key).mid(kFKeyPrefix.size()).toInt(&ok);
    return ok && IsCode(code) ? std::optional(code) : std::nullopt;
}

bool IsAttributeColor(int color)
{
    return color >= 0 && color < 32 * PaletteSize && AttributeForeground(qint16(color)) < PaletteSize;
}

template <typename Use>
void ForEachCode(Use use)
{
    for (int code = 0; code < 14000; ++code)
        if (IsCode(code))
            use(code);
}

[[noreturn]] void RaiseBadIndex(int index)
{
    throw Failure(ErrorNumber::InvalidCall,
                  QCoreApplication::translate("EmulatorSettings", "There is no entry %1.").arg(index), u"Settings"_s);
}

} // namespace

EmulatorSettings::State EmulatorSettings::Defaults()
{
    State state;
    state.values.reserve(SettingsTable.size());
    for (const SettingRow& row : SettingsTable)
        state.values.push_back(DefaultOf(row));
    for (int i = 0; i < PaletteSize; ++i)
        state.palette[size_t(i)] = DefaultPalette(i);
    for (int i = 0; i < AttributeCount; ++i)
        state.colors[size_t(i)] = DefaultColors(i);
    return state;
}

EmulatorSettings::EmulatorSettings(KeyFiles& files, QObject* parent)
    : QObject(parent), files_(files), state_(Defaults())
{}

void EmulatorSettings::ResetToDefaults()
{
    Take(Defaults());
    changed_ = false;
}

void EmulatorSettings::Load(const QString& path)
{
    State next = Defaults();
    files_.Read(path, kSection, [&](const KeyFile& file) {
        for (size_t i = 0; i < SettingsTable.size(); ++i)
            next.values[i] = ReadRow(file, SettingsTable[i]);
        for (int i = 0; i < PaletteSize; ++i)
            next.palette[size_t(i)] = file.GetInt(kPalettePrefix + QString::number(i), DefaultPalette(i)) & 0xFFFFFF;
        for (int i = 0; i < AttributeCount; ++i)
            if (const int color = file.GetInt(kColorPrefix + QString::number(i), DefaultColors(i));
                IsAttributeColor(color))
                next.colors[size_t(i)] = qint16(color);
        for (const QString& key : file.Keys())
            if (const auto code = CodeOfKey(key))
                if (const QString text = DecodeControls(file.GetString(key, {})); !text.isEmpty())
                    next.fkeys.insert(*code, text);
    });
    Take(std::move(next));
    changed_ = false;
}

void EmulatorSettings::Save(const QString& path)
{
    files_.Change(path, kSection, [this](KeyFile& file) {
        for (size_t i = 0; i < SettingsTable.size(); ++i)
            WriteRow(file, SettingsTable[i], state_.values[i]);
        const int termType = Integer(Setting("TermType"));
        file.SetInt(u"TermType"_s, termType, termType + 1); // never equal: always written
        for (int i = 0; i < PaletteSize; ++i)
            file.SetInt(kPalettePrefix + QString::number(i), Palette(i), DefaultPalette(i));
        for (int i = 0; i < AttributeCount; ++i)
            file.SetInt(kColorPrefix + QString::number(i), Colors(i), DefaultColors(i));
        for (const QString& key : file.Keys())
            if (const auto code = CodeOfKey(key); code && !state_.fkeys.contains(*code))
                file.Remove(key);
        for (auto it = state_.fkeys.cbegin(); it != state_.fkeys.cend(); ++it)
            file.SetString(kFKeyPrefix + QString::number(it.key()), EncodeControls(it.value()), {});
    });
    changed_ = false;
}

void EmulatorSettings::Take(State next)
{
    const State before = std::exchange(state_, std::move(next));
    for (size_t i = 0; i < SettingsTable.size(); ++i)
        if (!(before.values[i] == state_.values[i]))
            emit SettingChanged({uint8_t(i)});
    if (before.palette != state_.palette)
        emit PaletteChanged();
    if (before.colors != state_.colors)
        emit ColorsChanged();
    ForEachCode([&](int code) {
        if (before.fkeys.value(code) != state_.fkeys.value(code))
            emit FKeysChanged(code);
    });
}

namespace {

SettingId FindSetting(const QString& name)
{
    for (size_t i = 0; i < SettingsTable.size(); ++i)
        if (name.compare(LatinText(SettingsTable[i].name), Qt::CaseInsensitive) == 0)
            return {uint8_t(i)};
    throw Failure(ErrorNumber::NoSuchMember,
                  QCoreApplication::translate("EmulatorSettings", "There is no setting \"%1\".").arg(name),
                  u"Settings"_s);
}

} // namespace

Variant EmulatorSettings::Get(const QString& name) const { return Value(FindSetting(name)); }

void EmulatorSettings::Set(const QString& name, const Variant& value) { SetValue(FindSetting(name), value); }

void EmulatorSettings::SetValue(SettingId id, const Variant& value)
{
    const auto fit = Fit(id.Row(), value);
    if (!fit)
        throw Failure(
            ErrorNumber::InvalidCall,
            tr("%1 cannot be %2: it takes %3 to %4.")
                .arg(LatinText(id.Row().name), value.ToText(), FloatText(id.Row().low), FloatText(id.Row().high)),
            u"Settings"_s);
    Variant& held = state_.values[id.index];
    if (held == *fit)
        return;
    held = *fit;
    changed_ = true;
    emit SettingChanged(id);
}

bool EmulatorSettings::IsFKeyCode(int code) { return IsCode(code); }

void EmulatorSettings::SetFKeys(int code, const QString& text)
{
    if (!IsCode(code))
        RaiseBadIndex(code);
    if (FKeys(code) == text)
        return;
    if (text.isEmpty())
        state_.fkeys.remove(code);
    else
        state_.fkeys.insert(code, text);
    changed_ = true;
    emit FKeysChanged(code);
}

qint32 EmulatorSettings::Palette(int index) const
{
    if (index < 0 || index >= PaletteSize)
        RaiseBadIndex(index);
    return state_.palette[size_t(index)];
}

void EmulatorSettings::SetPalette(int index, qint32 color)
{
    if (Palette(index) == (color & 0xFFFFFF))
        return;
    state_.palette[size_t(index)] = color & 0xFFFFFF;
    changed_ = true;
    emit PaletteChanged();
}

qint16 EmulatorSettings::Colors(int index) const
{
    if (index < 0 || index >= AttributeCount)
        RaiseBadIndex(index);
    return state_.colors[size_t(index)];
}

void EmulatorSettings::SetColors(int index, qint16 color)
{
    if (!IsAttributeColor(color))
        throw Failure(
            ErrorNumber::InvalidCall,
            tr("%1 is no attribute colour: it is a text colour and 32 times a background, each an entry 0 to %2 "
               "of the palette.")
                .arg(color)
                .arg(PaletteSize - 1),
            u"Settings"_s);
    if (Colors(index) == color)
        return;
    state_.colors[size_t(index)] = color;
    changed_ = true;
    emit ColorsChanged();
}

qint32 EmulatorSettings::DefaultPalette(int index) { return Bgr(kDefaultPalette.at(size_t(index))); }

qint16 EmulatorSettings::DefaultColors(int index)
{
    const bool reverse = (index & 4) != 0;
    return reverse ? AttributeColor(PaletteRole::Background, PaletteRole::Foreground)
                   : AttributeColor(PaletteRole::Foreground, PaletteRole::Background);
}

void EmulatorSettings::WriteProperties(PropertyBag& bag) const
{
    for (size_t i = 0; i < SettingsTable.size(); ++i) {
        const SettingRow& row = SettingsTable[i];
        bag.WriteProperty(BagKey(row), state_.values[i], row.bagDefaultIsText ? Variant(QString()) : DefaultOf(row));
    }
    for (int i = 0; i < AttributeCount; ++i)
        bag.WriteProperty(u"sAttrColor"_s + QString::number(i), Colors(i), DefaultColors(i));
    for (int i = 0; i < PaletteSize; ++i)
        bag.WriteProperty(u"sPalette"_s + QString::number(i), Palette(i), DefaultPalette(i));
    for (auto it = state_.fkeys.cbegin(); it != state_.fkeys.cend(); ++it)
        bag.WriteProperty(u"sFKey"_s + QString::number(it.key()), it.value());
}

void EmulatorSettings::ReadProperties(const PropertyBag& bag)
{
    State next = Defaults();
    for (size_t i = 0; i < SettingsTable.size(); ++i) {
        const SettingRow& row = SettingsTable[i];
        next.values[i] = Fit(row, bag.ReadProperty(BagKey(row), DefaultOf(row))).value_or(DefaultOf(row));
    }
    for (int i = 0; i < AttributeCount; ++i)
        if (const int color = bag.ReadProperty(u"sAttrColor"_s + QString::number(i), DefaultColors(i)).ToInteger();
            IsAttributeColor(color))
            next.colors[size_t(i)] = qint16(color);
    for (int i = 0; i < PaletteSize; ++i)
        next.palette[size_t(i)] =
            bag.ReadProperty(u"sPalette"_s + QString::number(i), DefaultPalette(i)).ToInteger() & 0xFFFFFF;
    ForEachCode([&](int code) {
        if (const QString text = bag.ReadProperty(u"sFKey"_s + QString::number(code)).ToText(); !text.isEmpty())
            next.fkeys.insert(code, text);
    });
    const bool differs = next.values != state_.values || next.fkeys != state_.fkeys || next.palette != state_.palette ||
                         next.colors != state_.colors;
    Take(std::move(next));
    changed_ = changed_ || differs;
}

} // namespace kestrune
