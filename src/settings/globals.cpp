#include "globals.h"

#include <settings/filespec.h>
#include <settings/profile.h>
#include <settings/store.h>

#include <algorithm>
#include <array>

namespace kestrune {

using namespace Qt::StringLiterals;

namespace {

constexpr auto kStore = GlobalPlace::Store;
constexpr auto kCustom = GlobalPlace::CustomSection;
constexpr auto kSettings = GlobalPhase::Settings;
constexpr auto kRun = GlobalPhase::Run;
constexpr auto kOwn = GlobalPhase::Own;

constexpr GlobalSetting Switch(GlobalId id, QStringView property, QStringView defaultValue, QStringView key)
{
    return {id, property, key, GlobalType::Boolean, defaultValue, kStore, kSettings, nullptr, false};
}

constexpr GlobalSetting NumberIn(GlobalId id, QStringView property, QStringView key, QStringView defaultValue,
                                 GlobalPhase phase, int minimum = 0, int maximum = -1)
{
    return {id, property, key, GlobalType::Number, defaultValue, kStore, phase, nullptr, false, minimum, maximum};
}

using Id = GlobalId;

constexpr std::array kGlobals = {
    Switch(Id::SingleInstance, u"SingleInstance", u"1", u"SingleInstance"),
    Switch(Id::AutoClose, u"AutoClose", u"0", u"AutoClose"),
    Switch(Id::NoCloseWarning, u"NoCloseWarning", u"0", u"NoCloseWarning"),
    Switch(Id::NoConnectWizard, u"NoConnectWizard", u"0", u"NoConnectWizard"),
    Switch(Id::NoWelcomePage, u"NoWelcomePage", u"0", u"NoWelcomePage"),
    GlobalSetting{Id::DefaultCaptureDir, u"DefaultCaptureDir", u"CapturePath", GlobalType::Path, u"", kStore, kSettings,
                  &Folders::CurrentDir, true},
    GlobalSetting{Id::DefaultXferDir, u"DefaultXferDir", u"XferPath", GlobalType::Path, u"", kStore, kSettings,
                  &Folders::CurrentDir, true},
    GlobalSetting{Id::PhoneBookName, u"PhoneBookName", u"PhoneBook", GlobalType::Path, u"Phone.dat", kStore, kSettings,
                  &Folders::AppDataDir, true},
    NumberIn(Id::RecentListSize, u"RecentListSize", u"RecentListSize", u"4", kSettings, 0, 25),
    Switch(Id::ToolbarVisible, u"ToolbarVisible", u"1", u"ToolBar"),
    Switch(Id::StatusLineVisible, u"StatusLineVisible", u"1", u"StatusLine"),
    Switch(Id::SessionBarVisible, u"SessionBarVisible", u"1", u"SessionBar"),
    Switch(Id::FuncBarVisible, u"FuncBarVisible", u"0", u"FuncBar"),
    NumberIn(Id::FuncBarPos, u"FuncBarPos", u"FuncBarPos", u"0", kSettings),
    NumberIn(Id::FuncBarStyle, u"FuncBarStyle", u"FuncBarStyle", u"0", kSettings),
    Switch(Id::LargeIcons, u"LargeIcons", u"1", u"LargeIcons"),
    NumberIn(Id::TitleFormat, u"TitleFormat", u"TitleFormat", u"4", kSettings),
    Switch(Id::TrackKeyboardState, u"TrackKeyboardState", u"0", u"TrackKeyboardState"),
    Switch(Id::MenuAccessKeys, u"MenuAccessKeys", u"0", u"MenuAccessKeys"),
    NumberIn(Id::InitChildWindowState, u"InitChildWindowState", u"ChildWindowState", u"2", kRun, 0, 2),
    GlobalSetting{Id::DialedNumber, u"DialedNumber", u"DialedNumber", GlobalType::Text, u"", kStore, kRun, nullptr,
                  false},
    GlobalSetting{Id::DialedName, u"DialedName", u"DialedName", GlobalType::Text, u"", kStore, kRun, nullptr, false},
    GlobalSetting{Id::MacroFileName, u"MacroFileName", u"MacroFileName", GlobalType::Path, u"Kestrune Macros.orsc",
                  kStore, kRun, &Folders::HomeDir, false},
    GlobalSetting{Id::HomePath, u"HomePath", u"HomePath", GlobalType::Path, u"", kStore, kOwn, nullptr, true},
    NumberIn(Id::MainLeft, u"MainLeft", u"MainLeft", u"", kOwn),
    NumberIn(Id::MainTop, u"MainTop", u"MainTop", u"", kOwn),
    NumberIn(Id::MainWidth, u"MainWidth", u"MainWidth", u"", kOwn),
    NumberIn(Id::MainHeight, u"MainHeight", u"MainHeight", u"", kOwn),
    NumberIn(Id::MainWindowState, u"MainWindowState", u"MainWindowState", u"", kOwn),
    GlobalSetting{Id::HelpPlace, u"HelpPlace", u"HelpPlace", GlobalType::Text, u"", kStore, kOwn, nullptr, false},
    GlobalSetting{Id::BarPlaces, u"BarPlaces", u"BarPlaces", GlobalType::Text, u"", kStore, kOwn, nullptr, false},
    GlobalSetting{Id::CustomMouseTable, u"CustomMouseTable", u"MouseTable", GlobalType::Path, u"", kCustom, kSettings,
                  &Folders::ProgramDir, false},
    GlobalSetting{Id::CustomIcon, u"CustomIcon", u"Icon", GlobalType::Path, u"", kCustom, kSettings,
                  &Folders::ProgramDir, false},
    GlobalSetting{Id::CustomTitle, u"CustomTitle", u"Title", GlobalType::Text, u"", kCustom, kSettings, nullptr, false},
    GlobalSetting{Id::Splash, u"Splash", u"Splash", GlobalType::Path, u"", kCustom, kSettings, &Folders::ProgramDir,
                  false},
    GlobalSetting{Id::TelnetHostsFile, u"TelnetHostsFile", u"Hosts", GlobalType::Path, u"", GlobalPlace::PathSection,
                  kSettings, nullptr, false},
};

static_assert(
    [] {
        for (std::size_t i = 0; i < kGlobals.size(); ++i)
            if (kGlobals[i].id != GlobalId(i))
                return false;
        return true;
    }(),
    "rows stand in the order of their ids");

QString SectionName(GlobalPlace place) { return place == kCustom ? u"Custom"_s : u"Path"_s; }

// The splash choice is a picture's path or one of two words, in any case.
bool IsPath(const GlobalSetting& row, const QString& value)
{
    const bool word = row.id == GlobalId::Splash && (value.compare(u"yes"_s, Qt::CaseInsensitive) == 0 ||
                                                     value.compare(u"no"_s, Qt::CaseInsensitive) == 0);
    return row.type == GlobalType::Path && !word;
}

} // namespace

std::span<const GlobalSetting> GlobalSettingsTable() { return kGlobals; }

const GlobalSetting& GlobalSettingOf(GlobalId id) { return kGlobals[std::size_t(id)]; }

QString GlobalValues::Text(GlobalId id) const
{
    const auto& row = GlobalSettingOf(id);
    const QString key = row.key.toString(), defaultValue = row.defaultValue.toString();
    QString stored = row.place == kStore
                         ? store_.StoreGetString(StoreKey::Settings, key, defaultValue)
                         : profile_.ProfileGetString(SectionName(row.place), key, defaultValue, iniFile_);
    if (!row.base || !IsPath(row, stored))
        return stored;
    return spec_.ExpandPath(stored, folders_.*row.base, row.documents ? folders_.DocumentsDir : QString());
}

int GlobalValues::Number(GlobalId id) const { return ParseNumber(Text(id)); }

bool GlobalValues::Boolean(GlobalId id) const { return Number(id) != 0; }

void GlobalValues::SetText(GlobalId id, const QString& value)
{
    const auto& row = GlobalSettingOf(id);
    const QString key = row.key.toString(), defaultValue = row.defaultValue.toString();
    QString stored = value;
    if (row.base && IsPath(row, value))
        stored = spec_.ContractPath(value, folders_.*row.base, row.documents ? folders_.DocumentsDir : QString());
    if (row.place == kStore)
        store_.StoreSetString(StoreKey::Settings, key, stored, defaultValue);
    else
        profile_.ProfileSetString(SectionName(row.place), key, stored, defaultValue, iniFile_);
}

void GlobalValues::SetNumber(GlobalId id, int value) { SetText(id, QString::number(value)); }

void GlobalValues::SetBoolean(GlobalId id, bool value) { SetText(id, value ? u"1"_s : u"0"_s); }

} // namespace kestrune
