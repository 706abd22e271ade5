// Settings, session files and the hive under SIGKILL at random moments and under several writers.

#include <fakes/children.h>
#include <fakes/print.h>
#include <platform/hive.h>
#include <platform/nativefiles.h>
#include <settings/profile.h>

#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <array>
#include <chrono>
#include <csignal>
#include <random>
#include <unistd.h>

namespace kestrune {
namespace {

using namespace Qt::StringLiterals;

constexpr int kKeys = 200;

QString KeyName(int i) { return u"Key%1"_s.arg(i); }

// Every generation writes its number under all keys, as a session save does.
void SaveGeneration(Profile& profile, const QString& file, int generation)
{
    ProfileGroup group(profile, file);
    for (int i = 0; i < kKeys; ++i)
        profile.ProfileSetInt(u"Kestrune"_s, KeyName(i), generation, 0, file);
    group.Commit();
}

TEST(Crash, KilledWhileSavingEverythingIsOfOneGeneration)
{
    QTemporaryDir dir;
    const QString file = dir.filePath(u"s.orcf"_s), hivePath = dir.filePath(u"k/user.hive"_s);
    NativeFileSystem files;
    Profile profile(files);
    FileHive hive(files, hivePath);
    SaveGeneration(profile, file, 1);
    hive.Write(u"K"_s, u"n"_s, {HiveValueType::String, u"1"_s});
    std::mt19937 random(20);
    for (int round = 0; round < 20; ++round) {
        std::array<int, 2> pipes{};
        ASSERT_EQ(pipe(pipes.data()), 0);
        const pid_t child = StartChild([&] {
            close(pipes[0]);
            for (int generation = 2;; ++generation) {
                SaveGeneration(profile, file, generation);
                hive.Write(u"K"_s, u"n"_s, {HiveValueType::String, QString::number(generation)});
                if (write(pipes[1], "x", 1) != 1)
                    return 1;
            }
        });
        close(pipes[1]);
        char byte = 0;
        for (auto saves = random() % 5; saves > 0; --saves)
            ASSERT_EQ(read(pipes[0], &byte, 1), 1);
        const auto moment = std::chrono::steady_clock::now() + std::chrono::microseconds(random() % 3000);
        while (std::chrono::steady_clock::now() < moment) { // any moment will do; no outcome rests on the time
        }
        kill(child, SIGKILL);
        EXPECT_EQ(EndOf(child), -SIGKILL);
        close(pipes[0]);

        const int generation = profile.ProfileGetInt(u"Kestrune"_s, KeyName(0), -1, file);
        ASSERT_GT(generation, 0);
        const auto document = profile.ReadDocument(file);
        ASSERT_EQ(document.Keys(u"Kestrune"_s).size(), kKeys);
        for (int i = 0; i < kKeys; ++i)
            ASSERT_EQ(document.Get(u"Kestrune"_s, KeyName(i)), QString::number(generation));
        const auto inHive = hive.Read(u"K"_s, u"n"_s);
        ASSERT_TRUE(inHive);
        ASSERT_GT(inHive->text.toInt(), 0);
    }
    hive.Write(u"K"_s, u"last"_s, {HiveValueType::String, u"1"_s});
    SaveGeneration(profile, file, 1);
    EXPECT_EQ(files.List(dir.path()), QStringList({u"k"_s, u"s.orcf"_s})) << "nothing is left beside";
}

TEST(Crash, TwoProcessesWritingDifferentSettingsLoseNone)
{
    constexpr int kProcesses = 2, kEach = 30;
    QTemporaryDir dir;
    const QString file = dir.filePath(u"appstate.ini"_s), section = u"S"_s;
    NativeFileSystem files;
    std::array<pid_t, kProcesses> children{};
    for (int p = 0; p < kProcesses; ++p)
        children[std::size_t(p)] = StartChild([&] {
            Profile profile(files);
            FileHive hive(files, dir.filePath(u"user.hive"_s));
            for (int i = 0; i < kEach; ++i) {
                const QString name = u"p%1n%2"_s.arg(p).arg(i);
                profile.ProfileSetString(section, name, name, {}, file);
                hive.Write(u"K"_s, name, {HiveValueType::String, name});
            }
            return 0;
        });
    for (const pid_t child : children)
        EXPECT_EQ(EndOf(child), 0);
    EXPECT_EQ(Profile(files).ReadDocument(file).Keys(section).size(), kProcesses * kEach);
    EXPECT_EQ(FileHive(files, dir.filePath(u"user.hive"_s)).Values(u"K"_s).size(), kProcesses * kEach);
}

} // namespace
} // namespace kestrune
