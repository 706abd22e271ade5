#include <fakes/fakesystem.h>
#include <fakes/memoryfilesystem.h>
#include <fakes/memoryhive.h>
#include <fakes/print.h>
#include <platform/textcodec.h>
#include <settings/globals.h>
#include <settings/layer.h>

#include <gtest/gtest.h>

namespace kestrune {
namespace {

using namespace Qt::StringLiterals;

// A user's machine in Windows style; a test changes what it is about and then starts the settings.
struct Machine
{
    Machine()
    {
        files.AddFolder(u"C:\\Prog"_s);
        files.AddFolder(u"C:\\Users\\u\\Data"_s);
        files.workingFolder = u"C:\\Start"_s;
        system.program = u"C:\\Prog\\kestrune.exe"_s;
        system.personal = u"C:\\Users\\u\\Docs"_s;
        system.appData = u"C:\\Users\\u\\Data"_s;
    }
    void Isolate(const QByteArray& lines) { files.AddFile(u"C:\\Prog\\isolation.ini"_s, "[Isolation]\r\n" + lines); }
    void SetHome(Hive& hive, const QString& path)
    {
        hive.Write(StoreKey::Settings, u"HomePath"_s, {HiveValueType::String, path});
    }
    SettingsLayer& Start() { return layer.emplace(PathStyle::Windows(), files, system, user, machine); }

    MemoryFileSystem files{MemoryFileSystem::Style::Windows};
    FakeSystem system;
    MemoryHive user, machine;
    std::optional<SettingsLayer> layer;
};

TEST(Store, ValuesEqualToTheirDefaultReadBackAsTheDefault)
{
    struct Case
    {
        QString value, defaultValue, stored;
    };
    for (const auto& c : std::vector<Case>{{u"0"_s, u"0"_s, {}},
                                           {u"1"_s, u"0"_s, u"1"_s},
                                           {u"A"_s, u"a"_s, u"A"_s},
                                           {{}, {}, {}},
                                           {u"x"_s, {}, u"x"_s},
                                           {{}, u"d"_s, {}}}) {
        Machine m;
        auto& store = m.Start().store;
        store.StoreSetString(StoreKey::Settings, u"V"_s, c.value, c.defaultValue);
        EXPECT_EQ(m.user.Text(StoreKey::Settings, u"v"_s), c.stored) << "not deleted: it stands, if empty";
        EXPECT_EQ(store.StoreGetString(StoreKey::Settings, u"V"_s, c.defaultValue),
                  c.value.isEmpty() ? c.defaultValue : c.value);
    }
}

TEST(Registry, ReadsTextOfBothTypesWithinItsBuffers)
{
    Machine m;
    m.system.environment = {{u"H"_s, u"C:\\h"_s}, {u"BIG"_s, QString(9000, u'b')}};
    auto& registry = m.Start().registry;
    const auto read = [&](const HiveValue& value) {
        m.user.Write(u"K"_s, u"v"_s, value);
        return registry.RegGetString(RegFuncs::CurrentUser, u"K"_s, u"v"_s, u"default"_s);
    };
    EXPECT_EQ(read({HiveValueType::Expandable, u"%H%\\x %NONE%"_s}), u"C:\\h\\x %NONE%"_s);
    EXPECT_EQ(read({HiveValueType::String, u"%H%"_s}), u"%H%"_s);
    EXPECT_EQ(read({HiveValueType::Expandable, u"%BIG%"_s}), u"default"_s);
    EXPECT_EQ(read({HiveValueType::String, QString(4095, u'x')}).size(), 4095);
    EXPECT_EQ(read({HiveValueType::String, QString(4096, u'x')}), u"default"_s);
    EXPECT_EQ(read({HiveValueType::String, u"z"_s + QChar(0)}), u"z"_s);
    EXPECT_EQ(registry.RegGetString(0x80000003, u"K"_s, u"v"_s, u"default"_s), u"default"_s);
}

TEST(Store, IsolatedInAFileOfItsOwn)
{
    Machine m;
    m.system.environment = {{u"TEMP"_s, u"C:\\T"_s}};
    m.files.AddFolder(u"C:\\"_s);
    m.Isolate("PersistSettings=2\r\nAppDataDirectory=%TEMP%\\x y\r\nUserDataDirectory=..\\data\r\n");
    auto& layer = m.Start();
    const QString file = u"C:\\T\\x y\\appstate.ini"_s;
    EXPECT_TRUE(layer.store.IsolationActive());
    EXPECT_EQ(layer.store.IsolationAppDataDir(), u"C:\\T\\x y\\"_s);
    EXPECT_EQ(layer.folders.HomeDir, u"C:\\data\\"_s);
    EXPECT_EQ(layer.folders.AppDataDir, u"C:\\T\\x y\\"_s);

    EXPECT_FALSE(layer.spec.FileExists(file));
    layer.store.StoreSetString(StoreKey::Settings, u"V"_s, u"0"_s, u"0"_s);
    EXPECT_EQ(m.files.Content(file), QByteArray("\xFF\xFE")) << "made empty, in UTF-16";
    layer.store.StoreSetString(StoreKey::RecentFiles, {}, u"a"_s, {});
    EXPECT_EQ(layer.profile.ProfileGetString(u"orlin70_Settings_RecentFiles"_s, u"@"_s, {}, file), u"a"_s);
    EXPECT_EQ(layer.store.StoreGetString(StoreKey::RecentFiles, {}, {}), u"a"_s);
    layer.store.StoreDeleteKey(StoreKey::RecentFiles);
    EXPECT_EQ(layer.store.StoreGetString(StoreKey::RecentFiles, {}, u"gone"_s), u"gone"_s);
    EXPECT_FALSE(m.user.KeyExists(u"Software"_s)) << "nothing in the hive";
}

TEST(Store, AKeyIsReplacedInOneStepWhereverItIsKept)
{
    for (const bool isolated : {false, true}) {
        Machine m;
        if (isolated)
            m.Isolate("PersistSettings=2\r\nAppDataDirectory=C:\\T\r\n");
        auto& store = m.Start().store;
        store.StoreReplaceKey(StoreKey::RecentFiles, {{u"File_1"_s, u"a"_s}, {u"File_2"_s, u"b"_s}});
        store.StoreReplaceKey(StoreKey::RecentFiles, {{u"File_1"_s, u"b"_s}});
        EXPECT_EQ(store.StoreGetString(StoreKey::RecentFiles, u"File_1"_s, u"-"_s), u"b"_s) << isolated;
        EXPECT_EQ(store.StoreGetString(StoreKey::RecentFiles, u"File_2"_s, u"-"_s), u"-"_s) << isolated;
        EXPECT_EQ(m.user.KeyExists(StoreKey::RecentFiles), !isolated);
    }
}

TEST(Store, IsolationModes)
{
    struct Case
    {
        const char* about;
        QByteArray lines;
        bool active;
        QString readBack;
    };
    for (const auto& c : std::vector<Case>{
             {"no value: the hive", "", false, u"v"_s},
             {"1: the hive", "PersistSettings=1\n", false, u"v"_s},
             {"0: nothing is kept", "PersistSettings=0\n", true, u"d"_s},
             {"not a number", "PersistSettings=x\n", true, u"d"_s},
             {"unusable folder: beside the program", "PersistSettings=2\nAppDataDirectory=Z:\\no\n", true, u"v"_s}}) {
        SCOPED_TRACE(c.about);
        Machine m;
        m.Isolate(c.lines);
        auto& store = m.Start().store;
        store.StoreSetString(StoreKey::Settings, u"V"_s, u"v"_s, u"d"_s);
        EXPECT_EQ(store.IsolationActive(), c.active);
        EXPECT_EQ(store.IsolationAppDataDir(), u"C:\\Prog\\"_s);
        EXPECT_EQ(store.StoreGetString(StoreKey::Settings, u"V"_s, u"d"_s), c.readBack);
    }
}

TEST(Store, SectionNames)
{
    EXPECT_EQ(Store::SectionOf(StoreKey::RecentFiles), u"orlin70_Settings_RecentFiles"_s);
    EXPECT_EQ(Store::SectionOf(u"Software\\Tavle\\My Keys"_s), u"MyKeys"_s);
    EXPECT_EQ(Store::SectionOf(u"Software\\Tavle"_s), u"Software\\Tavle"_s);
}

TEST(Folders, HomeComesFromTheFirstThatNamesIt)
{
    struct Case
    {
        const char* about;
        QString user, machine, home;
    };
    for (const auto& c : std::vector<Case>{
             {"nobody: the documents", {}, {}, u"C:\\Users\\u\\Docs\\"_s},
             {"the installation's default", {}, u"C:\\All"_s, u"C:\\All\\"_s},
             {"the user's wins", u"C:\\Mine"_s, u"C:\\All"_s, u"C:\\Mine\\"_s},
             {"relative to the documents", u"My Documents\\Hosts"_s, {}, u"C:\\Users\\u\\Docs\\Hosts\\"_s},
             {"the documents themselves", u"MY DOCUMENTS"_s, {}, u"C:\\Users\\u\\Docs\\"_s},
             {"cannot be made: the program's folder", u"Z:\\none"_s, {}, u"C:\\Prog\\"_s},
         }) {
        SCOPED_TRACE(c.about);
        Machine m;
        if (!c.user.isEmpty())
            m.SetHome(m.user, c.user);
        if (!c.machine.isEmpty())
            m.SetHome(m.machine, c.machine);
        const auto& folders = m.Start().folders;
        EXPECT_EQ(folders.HomeDir, c.home);
        EXPECT_EQ(folders.SessionDir, c.home);
        EXPECT_EQ(m.files.Kind(c.home), PathKind::Folder);
    }
}

TEST(Folders, EachHasALastResort)
{
    Machine m;
    m.system.personal.reset();
    m.system.appData.reset();
    m.system.environment = {{u"USERPROFILE"_s, u"C:\\Users\\u"_s}};
    const auto folders = m.Start().folders;
    EXPECT_EQ(folders.CurrentDir, u"C:\\Start\\"_s);
    EXPECT_EQ(folders.ProgramDir, u"C:\\Prog\\"_s);
    EXPECT_EQ(folders.DocumentsDir, u"C:\\Users\\u\\My Documents\\"_s);
    EXPECT_EQ(folders.AppDataDir, folders.HomeDir);
    m.system.environment.clear();
    EXPECT_EQ(m.Start().folders.DocumentsDir, u"C:\\My Documents\\"_s);
    m.system.appData = u"C:\\Fresh\\Data"_s;
    EXPECT_EQ(m.Start().folders.AppDataDir, u"C:\\Fresh\\Data\\Tavle\\orlin70\\"_s);
}

TEST(Folders, NativeStyle)
{
    MemoryFileSystem files;
    FakeSystem system;
    MemoryHive user, machine;
    files.AddFolder(u"/opt/k"_s);
    files.AddFolder(u"/home/u"_s);
    files.workingFolder = u"/"_s;
    system.program = u"/opt/k/kestrune"_s;
    system.home = u"/home/u"_s;
    system.appData = u"/home/u/.local/share"_s;
    user.Write(StoreKey::Settings, u"HomePath"_s, {HiveValueType::String, u"My Documents\\Hosts"_s});
    const SettingsLayer layer(PathStyle::Native(), files, system, user, machine);
    EXPECT_EQ(layer.folders.CurrentDir, u"/"_s);
    EXPECT_EQ(layer.folders.HomeDir, u"/home/u/Documents/Hosts/"_s);
    EXPECT_EQ(layer.folders.AppDataDir, u"/home/u/.local/share/Tavle/orlin70/"_s);
    EXPECT_EQ(InstallationIniFile(layer.folders), u"/opt/k/ORLIN71.INI"_s);
}

TEST(Globals, TableServesEveryValue)
{
    Machine m;
    auto& layer = m.Start();
    const QString ini = InstallationIniFile(layer.folders);
    GlobalValues values(layer.spec, layer.folders, layer.store, layer.profile, ini);
    EXPECT_TRUE(values.Boolean(GlobalId::SessionBarVisible));
    EXPECT_FALSE(values.Boolean(GlobalId::FuncBarVisible));
    EXPECT_EQ(values.Number(GlobalId::TitleFormat), 4);
    EXPECT_EQ(values.Text(GlobalId::PhoneBookName), layer.folders.AppDataDir + u"Phone.dat"_s);
    for (const auto& row : GlobalSettingsTable()) { // a value set is the value read, and the default stands empty
        SCOPED_TRACE(row.property.toString().toStdString());
        const QString fresh = values.Text(row.id);
        const QString other = row.type == GlobalType::Path ? u"C:\\Users\\u\\Docs\\x.y"_s : u"1234"_s;
        values.SetText(row.id, other);
        EXPECT_EQ(values.Text(row.id), other);
        values.SetText(row.id, fresh);
        EXPECT_EQ(values.Text(row.id), fresh);
        if (row.place == GlobalPlace::Store) {
            EXPECT_EQ(m.user.Text(StoreKey::Settings, row.key.toString()), QString());
        }
    }
    values.SetText(GlobalId::DefaultXferDir, u"C:\\Users\\u\\Docs\\up"_s);
    EXPECT_EQ(m.user.Text(StoreKey::Settings, u"XferPath"_s), u"My Documents\\up"_s);
    for (const auto& splash : {u"Yes"_s, u"no"_s, u"C:\\Prog\\s.png"_s}) {
        values.SetText(GlobalId::Splash, splash);
        EXPECT_EQ(values.Text(GlobalId::Splash), splash);
    }
    EXPECT_EQ(layer.profile.ProfileGetString(u"Custom"_s, u"Splash"_s, {}, ini), u"s.png"_s);
}

} // namespace
} // namespace kestrune
