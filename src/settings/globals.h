#pragma once

// The global settings as one table: property, type, default, and where the value is kept. The application object
// reads and writes all of them by this table, and nothing else knows their keys.

#include <settings/folders.h>

#include <QString>

#include <span>

namespace kestrune {

class FileSpec;
class Profile;
class Store;

enum class GlobalType
{
    Boolean, // "1" or "0" in the store; not zero is true
    Number,  // decimal
    Path,    // contracted on disk, expanded in memory
    Text
};

enum class GlobalPlace
{
    Store,         // under the Settings root: the user's
    CustomSection, // section "Custom" of ORLIN71.INI: the installation's
    PathSection    // section "Path" of the same file
};

// When the application object reads and writes it.
enum class GlobalPhase
{
    Settings, // LoadGlobalSettings, SaveGlobalSettings
    Run,      // Load and Save only, or at shutdown
    Own       // its owner reads and writes it (folders, frame position)
};

enum class GlobalId
{
    SingleInstance,
    AutoClose,
    NoCloseWarning,
    NoConnectWizard,
    NoWelcomePage,
    DefaultCaptureDir,
    DefaultXferDir,
    PhoneBookName,
    RecentListSize,
    ToolbarVisible,
    StatusLineVisible,
    SessionBarVisible,
    FuncBarVisible,
    FuncBarPos,
    FuncBarStyle,
    LargeIcons,
    TitleFormat,
    TrackKeyboardState,
    MenuAccessKeys,
    InitChildWindowState,
    DialedNumber,
    DialedName,
    MacroFileName,
    HomePath,
    MainLeft,
    MainTop,
    MainWidth,
    MainHeight,
    MainWindowState,
    HelpPlace, // of the window with the help pages, and the page that it shows
    BarPlaces,
    CustomMouseTable,
    CustomIcon,
    CustomTitle,
    Splash,
    TelnetHostsFile
};
inline constexpr std::size_t kGlobalCount = static_cast<std::size_t>(GlobalId::TelnetHostsFile) + 1; // the last

struct GlobalSetting
{
    GlobalId id;
    QStringView property; // name on the application object
    QStringView key;
    GlobalType type;
    QStringView defaultValue; // as stored
    GlobalPlace place;
    GlobalPhase phase;
    QString Folders::*base; // paths: the folder that stored names are relative to; null: stored as it stands
    bool documents;         // paths: "My Documents" counts too
    int minimum = 0;        // numbers with a range; maximum below minimum: any
    int maximum = -1;
};

std::span<const GlobalSetting> GlobalSettingsTable();
const GlobalSetting& GlobalSettingOf(GlobalId id);

// One value by its row: text in memory form (paths expanded, missing values the default).
class GlobalValues
{
public:
    GlobalValues(const FileSpec& spec, const Folders& folders, Store& store, Profile& profile, QString iniFile)
        : spec_(spec), folders_(folders), store_(store), profile_(profile), iniFile_(std::move(iniFile))
    {}

    QString Text(GlobalId id) const;
    int Number(GlobalId id) const;   // a bad number reads as 0
    bool Boolean(GlobalId id) const; // not zero
    void SetText(GlobalId id, const QString& value);
    void SetNumber(GlobalId id, int value);
    void SetBoolean(GlobalId id, bool value); // "1" or "0"

private:
    const FileSpec& spec_;
    const Folders& folders_;
    Store& store_;
    Profile& profile_;
    QString iniFile_;
};

} // namespace kestrune
