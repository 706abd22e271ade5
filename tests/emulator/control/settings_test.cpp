#include <emulator/control/emulatorsettings.h>
#include <fakes/failures.h>
#include <fakes/memorykeyfile.h>

#include <gtest/gtest.h>

namespace kestrune {

using namespace Qt::StringLiterals;

namespace {

const QString kPath = u"/sessions/a.orcf"_s;

QString NameOf(const SettingRow& row) { return QString::fromLatin1(row.name.data(), qsizetype(row.name.size())); }

// A value that the row takes and that is not its default.
Variant Another(const SettingRow& row)
{
    switch (row.kind) {
    case SettingKind::Boolean:
        return row.number == 0;
    case SettingKind::Integer:
        return qint32(row.number == row.high ? row.low : row.number + 1);
    case SettingKind::Float:
        return row.number + 1.5;
    case SettingKind::Text:
        return u" \"Grüße\" "_s;
    }
    return {};
}

void ChangeEverything(EmulatorSettings& settings)
{
    for (const SettingRow& row : SettingsTable)
        settings.Set(NameOf(row), Another(row));
    settings.SetFKeys(112, u"ls\r^\\\x7f"_s);
    settings.SetFKeys(10115, u"menu\x1b"_s);
    settings.SetPalette(16, 0x123456);
    settings.SetColors(4, AttributeColor(3, 4));
}

void ExpectSame(const EmulatorSettings& a, const EmulatorSettings& b)
{
    for (const SettingRow& row : SettingsTable)
        EXPECT_TRUE(a.Get(NameOf(row)) == b.Get(NameOf(row))) << row.name;
    for (int code = 0; code < 14000; ++code)
        EXPECT_EQ(a.FKeys(code), b.FKeys(code)) << code;
    for (int i = 0; i < PaletteSize; ++i)
        EXPECT_EQ(a.Palette(i), b.Palette(i)) << i;
    for (int i = 0; i < AttributeCount; ++i)
        EXPECT_EQ(a.Colors(i), b.Colors(i)) << i;
}

TEST(Settings, SavedAndLoadedEverythingComesBack)
{
    MemoryKeyFiles files;
    EmulatorSettings saved(files);
    ChangeEverything(saved);
    EXPECT_TRUE(saved.Changed());
    saved.Save(kPath);
    EXPECT_FALSE(saved.Changed());
    EXPECT_EQ(files.writes, 1);
    EXPECT_EQ(files.Section(kPath).GetString(u"FKey112"_s, {}), u"ls^M^^\\\\^?"_s);

    EmulatorSettings loaded(files);
    loaded.Load(kPath);
    EXPECT_FALSE(loaded.Changed());
    ExpectSame(saved, loaded);

    loaded.ResetToDefaults();
    ExpectSame(loaded, EmulatorSettings(files));
}

TEST(Settings, CarriedInABagEverythingComesBack)
{
    MemoryKeyFiles files;
    EmulatorSettings original(files), clone(files);
    ChangeEverything(original);
    PropertyBag bag;
    original.WriteProperties(bag);
    EXPECT_TRUE(bag.Contains(u"sOverrideCfg"_s)); // the one key that is not "s" and the name
    EXPECT_TRUE(bag.Contains(u"sFKey10115"_s));
    clone.ReadProperties(bag);
    EXPECT_TRUE(clone.Changed());
    ExpectSame(original, clone);

    clone.ReadProperties({});
    ExpectSame(clone, EmulatorSettings(files));
}

TEST(Settings, AFileOfDefaultsHoldsOnlyItsMarkAndWhatIsNotOurs)
{
    MemoryKeyFiles files;
    auto& section = files.Section(kPath);
    section.entries = {{u"Made by"_s, u"a later version"_s},
                       {u"hostname"_s, u"old"_s},
                       {u"FKey112"_s, u"gone"_s},
                       {u"FKeyboard"_s, u"not a function key"_s}};
    EmulatorSettings(files).Save(kPath);
    EXPECT_EQ(section.Keys(), (QStringList{u"Made by"_s, u"FKeyboard"_s, u"TermType"_s}));
}

TEST(Settings, AFileThatCannotBeUsedChangesNothing)
{
    MemoryKeyFiles files;
    EmulatorSettings settings(files);
    settings.Set(u"HostName"_s, u"there"_s);
    EXPECT_EQ(FailureNumber([&] { settings.Load(u"/nowhere"_s); }), int(ErrorNumber::FileNotFound));
    files.readOnly.insert(kPath);
    EXPECT_EQ(FailureNumber([&] { settings.Save(kPath); }), int(ErrorNumber::PathAccess));
    EXPECT_TRUE(settings.Changed());
    EXPECT_EQ(settings.Text(Setting("HostName")), u"there"_s);
}

TEST(Settings, ValuesInAFileThatNobodyCanMeanReadAsDefaults)
{
    MemoryKeyFiles files;
    files.Section(kPath).entries = {{u"TermType"_s, u"8"_s},      {u"Baud"_s, u"-3"_s},    {u"NormCols"_s, u"99999"_s},
                                    {u"FontSize"_s, u"-1.5"_s},   {u"FKey9999"_s, u"x"_s}, {u"Device"_s, u"12"_s},
                                    {u"ScaleFont"_s, u"False"_s}, {u"fontsize"_s, u"9"_s}};
    EmulatorSettings settings(files);
    settings.Load(kPath);
    EXPECT_EQ(settings.Integer(Setting("TermType")), 8);
    EXPECT_EQ(settings.Integer(Setting("Baud")), 4);
    EXPECT_EQ(settings.Integer(Setting("NormCols")), 80);
    EXPECT_EQ(settings.Integer(Setting("Device")), 0);
    EXPECT_EQ(settings.Number(Setting("FontSize")), 0);
    EXPECT_FALSE(settings.Boolean(Setting("ScaleFont")));
}

TEST(Settings, RefusedValuesChangeNothingAndSayWhy)
{
    MemoryKeyFiles files;
    EmulatorSettings settings(files);
    int notices = 0;
    QObject::connect(&settings, &EmulatorSettings::SettingChanged, [&] { ++notices; });
    EXPECT_EQ(FailureNumber([&] { settings.Set(u"Baud"_s, 10); }), 5);
    EXPECT_EQ(FailureNumber([&] { settings.Set(u"NormRows"_s, 0); }), 5);
    EXPECT_EQ(FailureNumber([&] { settings.Set(u"Colour"_s, 1); }), 438);
    EXPECT_EQ(FailureNumber([&] { settings.Get(u"Colour"_s); }), 438);
    EXPECT_EQ(FailureNumber([&] { settings.SetPalette(22, 0); }), 5);
    EXPECT_EQ(FailureNumber([&] { settings.SetColors(-1, 0); }), 5);
    EXPECT_EQ(FailureNumber([&] { settings.SetFKeys(256, {}); }), 5);
    settings.Set(u"hostNAME"_s, QString()); // the same as before
    EXPECT_EQ(notices, 0);
    EXPECT_FALSE(settings.Changed());
    settings.Set(u"hostNAME"_s, u"x"_s);
    EXPECT_EQ(notices, 1);
    EXPECT_TRUE(settings.Changed());
}

} // namespace

} // namespace kestrune
