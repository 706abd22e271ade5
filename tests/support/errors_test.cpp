#include <fakes/fakequestions.h>
#include <fakes/print.h>
#include <support/errors.h>
#include <support/log.h>
#include <support/msgbox.h>
#include <support/notices.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace kestrune {

using namespace Qt::StringLiterals;

namespace {

class ErrorsTest : public testing::Test
{
protected:
    ErrorsTest() { qputenv("XDG_DATA_HOME", folder_.path().toLocal8Bit()); }
    ~ErrorsTest() override { qunsetenv("XDG_DATA_HOME"); }

    // What a procedure does that has a fall-through handler.
    ErrorAction Handle(const Failure& failure)
    {
        try {
            throw failure;
        } catch (const std::exception&) {
            return ErrHndlr(ask_, u"AddRecent"_s, u"Ormain"_s);
        }
    }

    static QString Log()
    {
        QFile file(LogFileName());
        return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
    }

    QTemporaryDir folder_;
    FakeQuestions ask_;
    const Failure failure_{ErrorNumber::PathAccess, u"Access denied"_s, u"layout"_s};
};

TEST_F(ErrorsTest, ReportHasFiveLabelledLines)
{
    const QString report = ErrorReport({u"Main"_s, u"Ormain"_s, 12},
                                       Failure(ErrorNumber::BadRecentListSize, u"Invalid"_s, u"Kestrune"_s), u"Fail"_s);
    EXPECT_EQ(report, u"Procedure: Main Ormain line 12\r\nError: -2147219503 0x800407D1\r\n"
                      u"Description: Invalid\r\nSource: Kestrune\r\nAction: Fail\r\n"_s);
}

TEST_F(ErrorsTest, UserChoosesHowToGoOn)
{
    const std::pair<Questions::ErrorChoice, ErrorAction> choices[] = {
        {Questions::ErrorChoice::Retry, ErrorAction::Retry},
        {Questions::ErrorChoice::Next, ErrorAction::Next},
        {Questions::ErrorChoice::End, ErrorAction::End}};
    for (const auto& [choice, action] : choices) {
        ask_.errorChoice = choice;
        EXPECT_EQ(Handle(failure_), action);
    }
    ASSERT_EQ(ask_.reports.size(), 3u);
    EXPECT_TRUE(ask_.reports[0].contains(u"Description: Access denied"_s));
}

TEST_F(ErrorsTest, SilentScopesNestAndKeepItQuiet)
{
    {
        const SilentErrors outer;
        {
            const SilentErrors inner;
            EXPECT_EQ(SilentErrors::Depth(), 2);
        }
        EXPECT_EQ(Handle(failure_), ErrorAction::Next);
    }
    EXPECT_EQ(SilentErrors::Depth(), 0);
    EXPECT_TRUE(ask_.reports.empty());
    EXPECT_FALSE(Silently([this] { throw failure_; }));
    EXPECT_EQ(SilentErrors::Depth(), 0);
}

TEST_F(ErrorsTest, WithNoUserItIsLoggedAndRaisedAgain)
{
    ask_.hasUser = false;
    try {
        Handle(failure_);
        FAIL();
    } catch (const Failure& raised) {
        EXPECT_EQ(raised.Number(), ErrorNumber::PathAccess);
        EXPECT_EQ(raised.Text(), u"Access denied"_s);
    }
    EXPECT_TRUE(ask_.reports.empty());
    EXPECT_TRUE(Log().contains(u" - unanticipated error\r\n"_s)) << Log().toStdString();
    EXPECT_TRUE(Log().contains(u"Action: unrecoverable\r\n"_s));
    EXPECT_TRUE(LogFileName().endsWith(u"kestrune.log"_s));
}

TEST_F(ErrorsTest, GuardedRunsAgainForAsLongAsTheUserSaysSo)
{
    ask_.errorChoice = Questions::ErrorChoice::Retry;
    int runs = 0;
    EXPECT_TRUE(Guarded(ask_, u"Main"_s, u"Ormain"_s, [&] {
        if (++runs < 3)
            throw failure_;
    }));
    EXPECT_EQ(runs, 3);
    ask_.errorChoice = Questions::ErrorChoice::End;
    EXPECT_FALSE(Guarded(ask_, u"Main"_s, u"Ormain"_s, [&] { throw failure_; }));
}

TEST_F(ErrorsTest, LogThatGrowsTooLongStartsAfresh)
{
    WriteLog(QString(2 << 20, u'x'));
    WriteLog(u"after"_s);
    EXPECT_LT(Log().size(), 100);
    EXPECT_TRUE(Log().contains(u"after"_s));
    EXPECT_TRUE(QFile::exists(LogFileName() + u".old"_s));
}

TEST_F(ErrorsTest, SystemMessageTexts)
{
    EXPECT_EQ(GetSystemMessageText(0), u"unknown error (0)"_s);
    EXPECT_EQ(GetSystemMessageText(2), u"No such file or directory"_s);
    EXPECT_EQ(GetSystemMessageText(99999), u"99999 (no error message available)"_s);
}

TEST_F(ErrorsTest, MessagesAndNotices)
{
    ask_.answers = {MsgResult::No + MsgResult::Checked};
    EXPECT_EQ(MsgBox(ask_, u"Sure?"_s, 164) & MsgBoxNoCheck, MsgResult::No);
    EXPECT_EQ(ask_.boxes[0].title, u"Kestrune"_s);
    NotImplemented(ask_, u"Dialer"_s);
    EXPECT_EQ(ask_.boxes[1].text, u"The Dialer has not been implemented at this time.\r\nThis feature will be "
                                  u"available in a updated version."_s);
    EXPECT_EQ(ask_.boxes[1].flags, 64);
    EXPECT_EQ(ask_.boxes[1].owner, 0u);
}

} // namespace

} // namespace kestrune
