#include <fakes/children.h>
#include <fakes/fakesystem.h>
#include <fakes/print.h>
#include <platform/eventclock.h>
#include <platform/processors.h>
#include <platform/system.h>
#include <platform/systemfailure.h>

#include <QCoreApplication>
#include <QDir>
#include <QEventLoop>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <cerrno>
#include <sched.h>
#include <thread>

namespace kestrune {
namespace {

using namespace Qt::StringLiterals;

TEST(SystemFailure, ShellNumbers)
{
    const std::map<int, quint32> numbers = {{2, 53},   {3, 76},   {4, 67},   {5, 5},   {6, 52},  {8, 7},
                                            {15, 68},  {16, 75},  {145, 75}, {17, 74}, {32, 70}, {80, 58},
                                            {183, 58}, {112, 61}, {1, 5},    {-1, 5}};
    for (const auto& [platform, shell] : numbers)
        EXPECT_EQ(quint32(ShellErrorNumber(platform)), shell) << platform;
    const SystemFailure failure(ENOSPC, Subject::File, u"The file 'x' cannot be written"_s);
    EXPECT_EQ(failure.Text(), u"The file 'x' cannot be written: No space left on device."_s);
}

int ProcessorsOfThisThread()
{
    cpu_set_t mask;
    CPU_ZERO(&mask);
    sched_getaffinity(0, sizeof mask, &mask);
    return CPU_COUNT(&mask);
}

// In a process of its own, since a test program keeps its processors.
TEST(Processors, PinnedProcessGivesThemBackToWhatItStarts)
{
    EXPECT_EQ(InChild([] {
                  const auto permitted = PermittedProcessors();
                  const int all = int(permitted.size());
                  const bool pinned = PinToProcessor(permitted.back()) && ProcessorsOfThisThread() == 1;
                  int inherited = 0, given = 0;
                  std::thread([&] {
                      inherited = ProcessorsOfThisThread();
                      GiveBackProcessors();
                      given = ProcessorsOfThisThread();
                  }).join();
                  const bool right = pinned && inherited == 1 && given == all && ProcessorsOfThisThread() == 1 &&
                                     PermittedProcessors() == permitted && !PinToProcessor(-1) && !PinToProcessor(5000);
                  return right ? 0 : 1;
              }),
              0);
}

TEST(EventClock, RunsInTheEventLoop)
{
    EventClock clock;
    QStringList order;
    QEventLoop loop;
    const auto before = clock.Now();
    std::unique_ptr<Clock::Timer> own;
    own = clock.After(Clock::Duration(2), [&] {
        order += u"timer"_s;
        own.reset(); // a timer may end itself
        loop.quit();
    });
    auto cancelled = clock.After(Clock::Duration(0), [&] { order += u"cancelled"_s; });
    cancelled.reset();
    clock.Post([&] { order += u"posted"_s; });
    EXPECT_TRUE(order.isEmpty()) << "nothing runs inside the call";
    loop.exec();
    EXPECT_EQ(order, QStringList({u"posted"_s, u"timer"_s}));
    EXPECT_GE(clock.Now() - before, Clock::Duration(2));
}

TEST(NativeSystem, FindsFoldersAndProgram)
{
    QTemporaryDir home;
    const auto keep = [](const char* name) { return std::pair(name, qgetenv(name)); };
    const std::vector before = {keep("HOME"), keep("XDG_CONFIG_HOME"), keep("XDG_DATA_HOME"),
                                keep("KESTRUNE_PROGRAM_FILE")};
    qputenv("HOME", QFile::encodeName(home.path()));
    qputenv("XDG_CONFIG_HOME", QFile::encodeName(home.filePath(u"c"_s)));
    qputenv("XDG_DATA_HOME", QFile::encodeName(home.filePath(u"d"_s)));
    qunsetenv("KESTRUNE_PROGRAM_FILE");
    const NativeSystem system;
    EXPECT_EQ(system.PersonalFolder(), home.filePath(u"Documents"_s));
    QDir().mkpath(home.filePath(u"c"_s));
    QFile dirs(home.filePath(u"c/user-dirs.dirs"_s));
    ASSERT_TRUE(dirs.open(QIODevice::WriteOnly));
    dirs.write("XDG_DOCUMENTS_DIR=\"$HOME/Papiere\"\n");
    dirs.close();
    EXPECT_EQ(system.PersonalFolder(), home.filePath(u"Papiere"_s));
    EXPECT_EQ(system.AppDataFolder(), home.filePath(u"d"_s));
    EXPECT_EQ(system.ConfigFolder(), home.filePath(u"c/kestrune"_s));
    EXPECT_EQ(system.ProgramFile(), QFileInfo(QCoreApplication::applicationFilePath()).canonicalFilePath());
    qputenv("KESTRUNE_PROGRAM_FILE", "/opt/k/kestrune");
    EXPECT_EQ(system.ProgramFile(), u"/opt/k/kestrune"_s);
    for (const auto& [name, value] : before)
        value.isNull() ? qunsetenv(name) : qputenv(name, value);
}

TEST(System, KnowsWhoStartedIt)
{
    FakeSystem system;
    EXPECT_FALSE(StartedByPlatform(system, {u"a.orcf"_s}));
    EXPECT_TRUE(StartedByPlatform(system, {u"--automation"_s}));
    system.environment[u"DBUS_STARTER_ADDRESS"_s] = u"unix:x"_s;
    EXPECT_TRUE(StartedByPlatform(system, {}));
}

} // namespace
} // namespace kestrune
