#include <dispatch/failure.h>
#include <fakes/fakesystem.h>
#include <fakes/memoryfilesystem.h>
#include <fakes/memoryhive.h>
#include <fakes/print.h>
#include <platform/nativefiles.h>

#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace kestrune {
namespace {

using namespace Qt::StringLiterals;

TEST(Hive, FindsNamesWithoutRegardToCase)
{
    MemoryHive hive;
    hive.Write(u"Software\\Tavle\\S"_s, u"Name"_s, {HiveValueType::String, u"v"_s});
    hive.Write(u"software\\tavle\\s"_s, u"NAME"_s, {HiveValueType::Expandable, u"w"_s});
    EXPECT_EQ(hive.Read(u"SOFTWARE\\Tavle\\s"_s, u"name"_s), (HiveValue{HiveValueType::Expandable, u"w"_s}));
    EXPECT_EQ(hive.Values(u"Software\\Tavle\\S"_s), QStringList(u"Name"_s));
    EXPECT_TRUE(hive.KeyExists(u"software"_s));
    EXPECT_FALSE(hive.KeyExists(u"soft"_s));
    EXPECT_EQ(hive.Keys(u"Software"_s), QStringList(u"Tavle"_s));
}

TEST(Hive, KeepsWhateverTextHolds)
{
    MemoryHive hive;
    const QStringList texts = {{},
                               u" blank "_s,
                               u"\"q\" = \\ [k]"_s,
                               u"line\r\n\tend\u0001"_s,
                               u"日本 😀"_s,
                               QString(QChar(0xD800)) + u"x"_s,
                               QString(100'000, u'l')};
    for (const auto& text : texts)
        for (const auto& name : {text.left(50), u"v"_s}) {
            hive.Write(u"K"_s, name, {HiveValueType::String, text});
            EXPECT_EQ(hive.Text(u"K"_s, name), text);
        }
    EXPECT_THROW(hive.Write(u"a\nb"_s, u"v"_s, {}), Failure);
    EXPECT_THROW(hive.Write({}, u"v"_s, {}), Failure);
}

TEST(Hive, DeletesNoMoreThanAsked)
{
    MemoryHive hive;
    for (const auto& key : {u"A"_s, u"A\\B"_s, u"AB"_s})
        hive.Write(key, u"v"_s, {HiveValueType::String, key});
    EXPECT_THROW(hive.DeleteKey(u"a"_s), Failure) << "a key below it";
    EXPECT_EQ(hive.Text(u"A"_s, u"v"_s), u"A"_s);
    hive.DeleteKey(u"a\\b"_s);
    EXPECT_FALSE(hive.KeyExists(u"A\\B"_s));
    hive.DeleteKey(u"A"_s);
    EXPECT_FALSE(hive.KeyExists(u"A"_s));
    hive.DeleteValue(u"AB"_s, u"V"_s);
    hive.DeleteValue(u"AB"_s, u"none"_s);
    EXPECT_TRUE(hive.KeyExists(u"AB"_s));
    EXPECT_FALSE(hive.Read(u"AB"_s, u"v"_s));
}

// The file is a person's to read and edit; what the program does not understand it leaves alone.
TEST(Hive, FileIsReadable)
{
    MemoryFileSystem files;
    FileHive hive(files, u"/c/k/user.hive"_s);
    hive.Write(u"Software\\Tavle"_s, u"Path"_s, {HiveValueType::String, u"My Documents\\Hosts"_s});
    hive.Write(u"Software\\Tavle"_s, u"Tools"_s, {HiveValueType::Expandable, u"%HOME%"_s});
    hive.Write(u"Other"_s, {}, {HiveValueType::String, u"default"_s});
    EXPECT_EQ(files.Content(hive.Path()),
              "# Settings of Kestrune. The program may be running while this file is edited.\n"
              "\n[Software\\Tavle]\n\"Path\" = \"My Documents\\\\Hosts\"\n"
              "\"Tools\" = expand:\"%HOME%\"\n\n[Other]\n\"\" = \"default\"\n");
    const QByteArray edited =
        "  [ k ]\r\n[K]\r\n  \"a\"=\"1\"\r\n# mine\n\"b\" = 2\n\"c\" = \"\\u00e9\\q\"\n\xFF\xFE\n\"d\" = \"4\"";
    files.AddFile(hive.Path(), edited);
    EXPECT_EQ(hive.Values(u"k"_s), QStringList({u"a"_s, u"d"_s}));
    hive.Write(u"K"_s, u"e"_s, {HiveValueType::String, u"5"_s});
    EXPECT_EQ(files.Content(hive.Path()), edited + "\n\"e\" = \"5\"\n");
}

TEST(Hive, LivesWhereTheSystemSays)
{
    QTemporaryDir dir;
    NativeFileSystem files;
    FakeSystem system;
    system.config = dir.filePath(u"config/kestrune"_s);
    system.environment[u"KESTRUNE_MACHINE_DIR"_s] = dir.path();
    const auto user = CurrentUserHive(files, system), machine = LocalMachineHive(files, system);
    EXPECT_FALSE(user->Read(u"K"_s, u"v"_s));
    user->Write(u"K"_s, u"v"_s, {HiveValueType::String, u"1"_s});
    machine->Write(u"K"_s, u"v"_s, {HiveValueType::String, u"2"_s});
    EXPECT_EQ(CurrentUserHive(files, system)->Read(u"k"_s, u"V"_s)->text, u"1"_s);
    EXPECT_EQ(files.List(dir.path()), QStringList({u"config"_s, u"machine.hive"_s}));
}

} // namespace
} // namespace kestrune
