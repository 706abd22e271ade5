// A telnet login that runs kestrune-rebind: cut, and resumed by the next line.

#include "telnetserver.h"

#include <QDir>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace kestrune {

namespace {

using namespace Qt::StringLiterals;

struct ResumingRig : LineRig
{
    using LineRig::LineRig;
    void LineResumed(bool sameSession) override { resumed = sameSession ? u"same"_s : u"new"_s; }
    void LineClosed() override
    {
        left = line->TakeResume();
        LineRig::LineClosed();
    }
    bool UntilResumable()
    {
        return Until([this] { return resumed == u"new"_s; });
    }
    QString resumed;
    std::shared_ptr<LineResume> left;
};

class RebindPartner : public testing::Test
{
protected:
    QByteArray Script() const
    {
        return "#!/bin/sh\nexport KESTRUNE_REBIND_DIR=" + folder_.path().toUtf8() +
               "\necho welcome\nexport PS1='$ ' ENV=\n" REBIND_PROGRAM
               " --login --keep 5 -- /bin/sh && exit\nexec /bin/sh\n";
    }
    static LineOptions Options(const TelnetServer& server, std::shared_ptr<LineResume> from = {})
    {
        LineOptions options = server.Options();
        options.resume.enabled = true;
        options.resume.from = std::move(from);
        return options;
    }

    QTemporaryDir folder_;
};

TEST_F(RebindPartner, ATelnetSessionGoesOnAfterTheServerWasKilled)
{
    const QByteArray script = Script();
    std::shared_ptr<LineResume> left;
    {
        TelnetServer server(script.constData());
        ASSERT_TRUE(server.Answers());
        ResumingRig rig(Options(server));
        ASSERT_TRUE(rig.Opened().UntilReceived("welcome"));
        ASSERT_TRUE(rig.UntilResumable());
        rig.Type("kept='gr\xc3\xbc\xc3\x9f'; (sleep 1; echo mean''while) &\r");
        ASSERT_TRUE(rig.UntilReceived("&\r\n"));
        server.Kill();
        ASSERT_TRUE(rig.UntilClosed());
        EXPECT_EQ(rig.errorWord & LineErrorCanResume, LineErrorCanResume);
        EXPECT_EQ(rig.errorWord & 0xFFFFFFU, 0x32746U);
        left = rig.left;
    }
    ASSERT_TRUE(left);
    TelnetServer server(script.constData());
    ASSERT_TRUE(server.Answers());
    ResumingRig rig(Options(server, left));
    ASSERT_TRUE(rig.Opened().UntilReceived("meanwhile\r\n"));
    EXPECT_EQ(rig.resumed, u"same"_s);
    EXPECT_TRUE(rig.deviceStatus.endsWith(u"can be resumed"_s));
    rig.Type("echo [$kept]; exit 5\r");
    ASSERT_TRUE(rig.UntilReceived("[gr\xc3\xbc\xc3\x9f]")) << rig.received.data();
    ASSERT_TRUE(rig.UntilClosed());
    EXPECT_EQ(rig.exitCode, 5);
    EXPECT_FALSE(rig.left);
    EXPECT_EQ(rig.errors, QStringList());
}

TEST_F(RebindPartner, WhoClosesTheLineTakesTheSessionAlong)
{
    const QByteArray script = Script();
    TelnetServer server(script.constData());
    ASSERT_TRUE(server.Answers());
    ResumingRig rig(Options(server));
    ASSERT_TRUE(rig.Opened().UntilReceived("welcome"));
    ASSERT_TRUE(rig.UntilResumable());
    EXPECT_FALSE(QDir(folder_.path()).isEmpty(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot));
    rig.line->Close();
    ASSERT_TRUE(rig.UntilClosed());
    EXPECT_FALSE(rig.left);
    EXPECT_TRUE(WaitUntil(
        [this] { return QDir(folder_.path()).isEmpty(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot); }));
}

// A host without it is served as ever.
TEST_F(RebindPartner, AnyOtherHostIsAnOrdinaryLine)
{
    TelnetServer server("#!/bin/sh\necho ready\nexec /bin/cat\n");
    ASSERT_TRUE(server.Answers());
    ResumingRig rig(Options(server));
    ASSERT_TRUE(rig.Opened().UntilReceived("ready"));
    rig.Type("typed\n");
    ASSERT_TRUE(rig.UntilReceived("typed\r\ntyped"));
    server.Kill();
    ASSERT_TRUE(rig.UntilClosed());
    EXPECT_EQ(rig.errorWord & LineErrorCanResume, 0U);
    EXPECT_FALSE(rig.left);
}

} // namespace
} // namespace kestrune
