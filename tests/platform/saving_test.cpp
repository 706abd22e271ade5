#include <dispatch/failure.h>
#include <fakes/children.h>
#include <fakes/print.h>
#include <platform/nativefiles.h>

#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <csignal>
#include <fcntl.h>
#include <sched.h>
#include <unistd.h>

#include <sys/file.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/stat.h>

namespace kestrune {
namespace {

using namespace Qt::StringLiterals;

quint32 ErrorOf(const std::function<void()>& run, QString* text = nullptr)
{
    try {
        run();
    } catch (const Failure& failure) {
        if (text)
            *text = failure.Text();
        return quint32(failure.Number());
    }
    return 0;
}

class SavingTest : public testing::Test
{
protected:
    SavingTest() { files.Replace(path, oldContent); }
    QByteArray OnDisk() const { return files.Read(path); }
    QStringList Names() const { return files.List(dir.path()); }

    QTemporaryDir dir;
    const QString path = dir.filePath(u"a b.orcf"_s);
    const QByteArray oldContent = QByteArray(70'000, 'o'), newContent = QByteArray(200'000, 'n');
    NativeFileSystem files;
};

// A process is killed before and after each single call that a save makes; a write is also killed half way.
TEST_F(SavingTest, KilledAtAnyStepTheOldOrTheNewIsWhole)
{
    bool sawOld = false, sawNew = false;
    int killed = 0;
    for (int fatal = 0;; ++fatal) {
        files.Replace(path, oldContent);
        const int end = InChild([&] {
            int step = 0;
            const auto moment = [&] {
                if (step++ == fatal)
                    raise(SIGKILL);
            };
            const auto around = [&moment](auto call) {
                return [call, &moment](auto... arguments) {
                    moment();
                    const auto result = call(arguments...);
                    moment();
                    return result;
                };
            };
            SaveCalls calls;
            calls.makeBeside = around(calls.makeBeside);
            calls.write = around([](int file, const void* from, std::size_t size) {
                return ::write(file, from, std::min<std::size_t>(size, 60'000));
            });
            calls.flush = around(calls.flush);
            calls.rename = around(calls.rename);
            calls.flushFolder = around(calls.flushFolder);
            NativeFileSystem(calls).Replace(path, newContent);
            return 0;
        });
        if (end == 0)
            break;
        ASSERT_EQ(end, -SIGKILL);
        ++killed;
        const QByteArray found = OnDisk();
        ASSERT_TRUE(found == oldContent || found == newContent) << "step " << fatal << ", " << found.size() << " bytes";
        (found == oldContent ? sawOld : sawNew) = true;
    }
    EXPECT_GE(killed, 14);
    EXPECT_TRUE(sawOld && sawNew);
    EXPECT_EQ(Names(), QStringList(u"a b.orcf"_s)) << "the next save clears away what the killed ones left";
}

TEST_F(SavingTest, FailedSaveLeavesTheOldContentAndNothingElse)
{
    struct Case
    {
        const char* about;
        std::function<void(SaveCalls&)> spoil;
        quint32 number;
    };
    for (const auto& c : std::vector<Case>{
             {"disk full half way",
              [](SaveCalls& calls) {
                  calls.write = [n = 0](int file, const void* from, std::size_t) mutable -> ssize_t {
                      errno = ENOSPC;
                      return n++ == 0 ? ::write(file, from, 100) : -1;
                  };
              },
              61},
             {"disk full on flush",
              [](SaveCalls& calls) {
                  calls.flush = [](int) {
                      errno = ENOSPC;
                      return -1;
                  };
              },
              61},
             {"quota",
              [](SaveCalls& calls) {
                  calls.flush = [](int) {
                      errno = EDQUOT;
                      return -1;
                  };
              },
              61},
             {"broken disk",
              [](SaveCalls& calls) {
                  calls.flush = [](int) {
                      errno = EIO;
                      return -1;
                  };
              },
              68},
             {"rename refused",
              [](SaveCalls& calls) {
                  calls.rename = [](const char*, const char*) {
                      errno = EACCES;
                      return -1;
                  };
              },
              75},
             {"folder without write permission",
              [](SaveCalls& calls) {
                  calls.makeBeside = [](const char*, mode_t) {
                      errno = EROFS;
                      return -1;
                  };
              },
              75},
         }) {
        SCOPED_TRACE(c.about);
        SaveCalls calls;
        c.spoil(calls);
        QString text;
        EXPECT_EQ(ErrorOf([&] { NativeFileSystem(calls).Replace(path, newContent); }, &text), c.number);
        EXPECT_TRUE(text.contains(u"a b.orcf"_s)) << text.toStdString();
        EXPECT_EQ(OnDisk(), oldContent);
        EXPECT_EQ(Names(), QStringList(u"a b.orcf"_s));
    }
}

// The kernel itself refuses here: a limit on the size of files for anybody, and besides a small disk where the
// system lets us mount one (not in a container without that right, not in a changed root).
TEST_F(SavingTest, ReallyFullDisk)
{
    EXPECT_EQ(InChild([&] {
                  signal(SIGXFSZ, SIG_IGN);
                  const rlimit limit{100'000, 100'000};
                  setrlimit(RLIMIT_FSIZE, &limit);
                  return int(ErrorOf([&] { files.Replace(path, newContent); }));
              }),
              61);
    EXPECT_EQ(OnDisk(), oldContent);

    constexpr int kNotPermitted = 200;
    const QByteArray disk = QFile::encodeName(dir.path()) + "/disk";
    mkdir(disk.constData(), 0777);
    const int end = InChild([&] {
        const bool mounted = unshare(CLONE_NEWNS) == 0 &&
                             mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
                             mount("tmpfs", disk.constData(), "tmpfs", 0, "size=128k") == 0;
        if (!mounted)
            return kNotPermitted;
        const QString file = dir.filePath(u"disk/x"_s);
        files.Replace(file, oldContent);
        const auto number = ErrorOf([&] { files.Replace(file, newContent); });
        return files.Read(file) == oldContent && files.List(dir.filePath(u"disk"_s)).size() == 1 ? int(number) : 1;
    });
    EXPECT_TRUE(end == 61 || end == kNotPermitted) << end;
}

TEST_F(SavingTest, KeepsLinksAndPermissions)
{
    const QString link = dir.filePath(u"link"_s), dangling = dir.filePath(u"dangling"_s);
    QFile::link(path, dir.filePath(u"between"_s));
    QFile::link(u"between"_s, link);
    QFile::link(u"to come"_s, dangling);
    chmod(QFile::encodeName(path).constData(), 0640);
    files.Replace(link, newContent);
    EXPECT_TRUE(QFileInfo(link).isSymbolicLink());
    EXPECT_EQ(OnDisk(), newContent);
    struct stat facts = {};
    stat(QFile::encodeName(path).constData(), &facts);
    EXPECT_EQ(facts.st_mode & 07777, mode_t(0640));
    files.Replace(dangling, "x");
    EXPECT_EQ(files.Read(dir.filePath(u"to come"_s)), "x");
    EXPECT_EQ(files.Identity(link), files.Identity(path));
    EXPECT_EQ(files.Identity(dangling), files.Identity(dir.filePath(u"to come"_s)));
}

TEST_F(SavingTest, SaysWhatIsWrong)
{
    const QString folder = dir.filePath(u"folder"_s), pipe = dir.filePath(u"pipe"_s),
                  circle = dir.filePath(u"circle"_s);
    files.MakeFolder(folder);
    mkfifo(QFile::encodeName(pipe).constData(), 0666);
    QFile::link(u"circle"_s, circle);
    struct Case
    {
        const char* about;
        std::function<void()> run;
        quint32 number;
    };
    for (const auto& c : std::vector<Case>{
             {"read what is not there", [&] { files.Read(dir.filePath(u"none"_s)); }, 53},
             {"read a folder", [&] { files.Read(folder); }, 75},
             {"a pipe does not hold us up", [&] { files.Read(pipe); }, 68},
             {"write over a pipe", [&] { files.Replace(pipe, "x"); }, 68},
             {"write over a folder", [&] { files.Replace(folder, "x"); }, 75},
             {"a folder that is gone", [&] { files.Replace(dir.filePath(u"gone/a"_s), "x"); }, 53},
             {"a file as folder", [&] { files.Replace(path + u"/a"_s, "x"); }, 53},
             {"a name that is too long", [&] { files.Replace(dir.filePath(QString(300, u'x')), "x"); }, 53},
             {"links in a circle", [&] { files.Replace(circle, "x"); }, 53},
             {"folder there already", [&] { files.MakeFolder(folder); }, 58},
             {"folder in a folder that is gone", [&] { files.MakeFolder(dir.filePath(u"gone/b"_s)); }, 76},
             {"rename on top of another", [&] { files.Rename(path, folder); }, 58},
             {"delete what is not there", [&] { files.Remove(dir.filePath(u"none"_s)); }, 53},
             {"delete a folder with files in it", [&] { files.RemoveFolder(dir.path()); }, 75},
             {"a change that raises",
              [&] {
                  files.Edit(path, [](const auto&) -> std::optional<QByteArray> {
                      throw Failure(ErrorNumber::InvalidCall, {});
                  });
              },
              5},
         })
        EXPECT_EQ(ErrorOf(c.run), c.number) << c.about;
    EXPECT_EQ(OnDisk(), oldContent);

    chmod(QFile::encodeName(path).constData(), 0444);
    EXPECT_TRUE(files.IsReadOnly(path)) << "for the administrator too";
    EXPECT_EQ(ErrorOf([&] { files.Replace(path, newContent); }), 75u);
    EXPECT_EQ(ErrorOf([&] { files.Replace(path, oldContent); }), 0u) << "nothing to change, nothing to refuse";
    EXPECT_EQ(OnDisk(), oldContent);
    files.ProbeWrite(dir.filePath(u"probe"_s));
    EXPECT_EQ(files.Kind(dir.filePath(u"probe"_s)), PathKind::Missing);
}

TEST_F(SavingTest, WaitsForOthersAndThenSaysSo)
{
    const int folder = open(QFile::encodeName(dir.path()).constData(), O_RDONLY);
    ASSERT_EQ(flock(folder, LOCK_EX), 0);
    SaveCalls calls;
    calls.lockPatience = std::chrono::milliseconds(1);
    EXPECT_EQ(ErrorOf([&] { NativeFileSystem(calls).Replace(path, newContent); }), 70u);
    EXPECT_EQ(OnDisk(), oldContent);
    close(folder);
    NativeFileSystem(calls).Replace(path, newContent);
    EXPECT_EQ(OnDisk(), newContent);
}

TEST_F(SavingTest, NoProcessLosesAnothersChange)
{
    constexpr int kProcesses = 4, kEach = 25;
    files.Replace(path, "");
    std::vector<pid_t> children;
    children.reserve(kProcesses);
    for (int i = 0; i < kProcesses; ++i)
        children.push_back(StartChild([&] {
            for (int n = 0; n < kEach; ++n)
                files.Edit(path,
                           [&](const std::optional<QByteArray>& old) { return std::optional(*old + char('a' + i)); });
            return 0;
        }));
    for (const pid_t child : children)
        EXPECT_EQ(EndOf(child), 0);
    const QByteArray all = OnDisk();
    for (int i = 0; i < kProcesses; ++i)
        EXPECT_EQ(all.count(char('a' + i)), kEach);
}

} // namespace
} // namespace kestrune
