// Files written behind the user's back, on a real disk.

#include <fakes/failures.h>
#include <platform/backgroundfiles.h>
#include <platform/eventclock.h>
#include <platform/eventwaiter.h>

#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace kestrune {

using namespace Qt::StringLiterals;

namespace {

QByteArray Content(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : "cannot be read";
}

TEST(BackgroundFiles, WriteInOrderWhatTheyAreGiven)
{
    EventClock clock;
    BackgroundFiles outputs(clock);
    const QTemporaryDir folder;
    const QString path = folder.filePath(u"capture"_s);
    const auto write = [&](OutputFiles::Mode mode, std::initializer_list<QByteArray> blocks) {
        const auto file = outputs.Open(path, mode, [](const QString& why) { ADD_FAILURE() << qPrintable(why); });
        for (const QByteArray& block : blocks)
            file->Write(block);
        EXPECT_EQ(file->Close(), QString());
        return file->WasEmpty();
    };
    QByteArray large;
    for (int i = 0; i < 100'000; ++i)
        large += QByteArray::number(i) + '\n';
    EXPECT_TRUE(write(OutputFiles::Mode::New, {"a", large, "b"}));
    EXPECT_EQ(Content(path), "a" + large + "b");
    EXPECT_FALSE(write(OutputFiles::Mode::Append, {"c"}));
    EXPECT_EQ(Content(path), "a" + large + "bc");
    EXPECT_TRUE(write(OutputFiles::Mode::Replace, {"d"}));
    EXPECT_EQ(Content(path), "d");
    EXPECT_EQ(FailureNumber([&] { outputs.Open(path, OutputFiles::Mode::New, {}); }), int(ErrorNumber::FileExists));
    EXPECT_EQ(FailureNumber([&] { outputs.Open(folder.path(), OutputFiles::Mode::Append, {}); }),
              int(ErrorNumber::PathAccess));
}

TEST(BackgroundFiles, ADiskThatIsFullIsToldOnceAndAtTheEnd)
{
    const QString full = u"/dev/full"_s;
    if (!QFileInfo::exists(full))
        GTEST_SKIP() << "this system has no device that is always full";
    EventClock clock;
    EventWaiter waiter;
    BackgroundFiles outputs(clock);
    const auto wait = waiter.Begin();
    QStringList told;
    const auto file = outputs.Open(full, OutputFiles::Mode::Replace, [&](const QString& why) {
        told << why;
        wait->End();
    });
    file->Write("lost");
    wait->Run();
    file->Write("lost, too");
    EXPECT_EQ(told.size(), 1);
    EXPECT_EQ(file->Close(), told.value(0));

    const auto atEnd = outputs.Open(full, OutputFiles::Mode::Replace, [](const QString&) { ADD_FAILURE(); });
    atEnd->Write("lost");
    EXPECT_FALSE(atEnd->Close().isEmpty());
}

} // namespace

} // namespace kestrune
