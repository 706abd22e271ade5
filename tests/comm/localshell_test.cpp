#include "linerig.h"

#include <platform/processors.h>
#include <platform/pseudoterminal.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTimer>

#include <gtest/gtest.h>

#include <csignal>
#include <fcntl.h>
#include <sched.h>
#include <unistd.h>

namespace kestrune {

namespace {

using namespace Qt::StringLiterals;

LineOptions Program(const QString& commandLine)
{
    LineOptions options;
    options.device = Device::Extension;
    options.hostName = commandLine;
    options.terminalName = u"vt220"_s;
    options.size = {.cols = 91, .rows = 33};
    return options;
}

LineOptions Script(const QString& script) { return Program(u"sh -c '%1'"_s.arg(script)); }

QByteArray OutputOf(const LineOptions& options)
{
    LineRig rig(options);
    EXPECT_TRUE(rig.Opened().UntilClosed());
    return rig.received;
}

TEST(LocalShell, TellsHowTheProgramEndedAfterAllItsOutput)
{
    struct Case
    {
        QString commandLine;
        QByteArray output;
        int exitCode, signal;
        QString text;
    };
    const std::vector<Case> cases{
        {u"echo 'a b' c"_s, "a b c\r\n", 0, 0, u"The program has ended"_s},
        {u"sh -c 'printf x; exit 3'"_s, "x", 3, 0, u"The program has ended with exit code 3"_s},
        {u"sh -c 'kill -TERM $$'"_s, "", 0, SIGTERM, u"The program was ended by signal 15"_s},
    };
    for (const Case& c : cases) {
        LineRig rig(Program(c.commandLine));
        ASSERT_TRUE(rig.Opened().UntilClosed());
        EXPECT_EQ(rig.received, c.output);
        EXPECT_EQ(rig.programEnds, 1);
        EXPECT_EQ(rig.receivedAtEnd, rig.receivedBytes);
        EXPECT_EQ(rig.exitCode, c.exitCode);
        EXPECT_EQ(rig.signalNumber, c.signal);
        EXPECT_EQ(rig.stateText, c.text);
        EXPECT_EQ(rig.states, (std::vector{LineState::Connected, LineState::Closed}));
        EXPECT_EQ(rig.errors, QStringList());
    }
}

TEST(LocalShell, SaysWhyAProgramCouldNotBeRun)
{
    const std::vector<std::pair<QString, QString>> cases{
        {u"no-such-program-here -x"_s, u"Unable to run no-such-program-here: no program of this name was found"_s},
        {u"/no/such/file"_s, u"Unable to run /no/such/file: No such file or directory"_s},
        {u"/etc/passwd"_s, u"Unable to run /etc/passwd: Permission denied"_s},
        {u"echo 'a"_s, u"Unable to run echo 'a: a quotation mark is not closed"_s},
    };
    for (const auto& [commandLine, text] : cases) {
        LineRig rig(Program(commandLine));
        ASSERT_TRUE(rig.Opened().UntilClosed());
        EXPECT_EQ(rig.errors, QStringList(text));
        EXPECT_EQ(rig.errorWord >> 16, 6u);
        EXPECT_TRUE(rig.anyFatal);
        EXPECT_EQ(rig.programEnds, 0);
    }
}

TEST(LocalShell, GivesTheProgramATerminalOfItsOwn)
{
    LineOptions options = Script(u"tty; stty size; echo TERM=$TERM; stty -a | tr \" \" \"\\n\" | grep -x -e -*iutf8;"
                                 " stty -a | grep -o \" erase = [^;]*\""_s);
    options.utf8 = true;
    options.eraseCharacter = '\b';
    QByteArray output = OutputOf(options);
    EXPECT_TRUE(output.startsWith("/dev/pts/")) << output.data();
    EXPECT_TRUE(output.endsWith("33 91\r\nTERM=vt220\r\niutf8\r\n erase = ^H\r\n")) << output.data();
    options.utf8 = false;
    EXPECT_TRUE(OutputOf(options).contains("\r\n-iutf8\r\n"));
}

TEST(LocalShell, FollowsTheSizeOfTheWindow)
{
    LineRig rig(Script(u"trap \"stty size; exit\" WINCH; echo ready; while :; do sleep 0.01; done"_s));
    ASSERT_TRUE(rig.Opened().UntilReceived("ready"));
    rig.line->Resize({.cols = 120, .rows = 50});
    EXPECT_TRUE(rig.UntilReceived("50 120"));
}

TEST(LocalShell, InterruptsTheForegroundJob)
{
    LineRig rig(Script(u"trap \"echo interrupted; exit 4\" INT; echo ready; while :; do sleep 0.01; done"_s));
    ASSERT_TRUE(rig.Opened().UntilReceived("ready"));
    rig.line->Break(250);
    ASSERT_TRUE(rig.UntilClosed());
    EXPECT_TRUE(rig.received.contains("interrupted"));
    EXPECT_EQ(rig.exitCode, 4);
}

TEST(LocalShell, PassesOnTheEnvironmentButNotOurOwnAffairs)
{
    const QList<QByteArray> names{"KESTRUNE_SECRET", "COLUMNS", "LINES", "WINDOWID", "PASSED_ON"};
    for (const QByteArray& name : names)
        qputenv(name.constData(), "here");
    const QByteArray output = OutputOf(Program(u"env"_s));
    for (const QByteArray& name : names) {
        EXPECT_EQ(output.contains(name + "="), name == "PASSED_ON") << name.data();
        qunsetenv(name.constData());
    }
    EXPECT_TRUE(output.contains("TERM=vt220\r\n"));
}

TEST(LocalShell, StartsTheLoginShellInTheHomeFolder)
{
    QTemporaryDir folder;
    const QByteArray before = qgetenv("SHELL");
    const QByteArray home = qgetenv("HOME");
    qputenv("SHELL", "/bin/bash");
    qputenv("HOME", folder.path().toUtf8());
    QFile profile(folder.filePath(u".bash_profile"_s));
    ASSERT_TRUE(profile.open(QIODevice::WriteOnly));
    profile.write("echo \"$0 in $PWD\"; exit\n");
    profile.close();
    EXPECT_EQ(OutputOf(Program({})), "-bash in " + QDir(folder.path()).canonicalPath().toUtf8() + "\r\n");
    qputenv("SHELL", before);
    qputenv("HOME", home);
}

TEST(LocalShell, LeavesNoDescriptorOpenInTheProgram)
{
    const int leaked = ::open("/dev/null", O_RDONLY); // on purpose without close-on-exec
    const QByteArray output = OutputOf(Script(u"echo /proc/self/fd/*"_s));
    ::close(leaked);
    // 3 is the shell's own while it expands the pattern.
    for (const QByteArray& entry : output.trimmed().split(' '))
        EXPECT_LE(entry.split('/').last().toInt(), 3) << output.data();
}

TEST(LocalShell, ResetsSignalsAndGivesAllProcessorsBack)
{
    const std::vector<int> permitted = PermittedProcessors();
    cpu_set_t before;
    ASSERT_EQ(::sched_getaffinity(0, sizeof before, &before), 0);
    std::signal(SIGPIPE, SIG_IGN);
    ASSERT_TRUE(PinToProcessor(permitted.front()));
    const QByteArray output = OutputOf(Program(u"grep -E \"^(SigBlk|SigIgn):\" /proc/self/status"_s));
    const QByteArray count = OutputOf(Program(u"nproc"_s)).trimmed();
    ::sched_setaffinity(0, sizeof before, &before);
    std::signal(SIGPIPE, SIG_DFL);
    for (const QByteArray name : {"SigBlk", "SigIgn"})
        EXPECT_TRUE(output.contains(name + ":\t0000000000000000")) << output.data();
    EXPECT_EQ(count.toInt(), static_cast<int>(permitted.size()));
}

TEST(LocalShell, LosesNothingOfAFloodWhileReceivingIsSwitchedOffAndOn)
{
    LineRig rig(Program(u"head -c 100000000 /dev/zero"_s));
    rig.keep = false;
    int pieces = 0, pauses = 0;
    rig.onReceived = [&] {
        if (++pieces % 50 != 0)
            return;
        rig.receiving = false;
        rig.line->SetReceiving(false);
        ++pauses;
        QMetaObject::invokeMethod(
            QCoreApplication::instance(),
            [&rig] {
                rig.receiving = true;
                rig.line->SetReceiving(true);
            },
            Qt::QueuedConnection);
    };
    ASSERT_TRUE(rig.Opened().UntilClosed());
    EXPECT_EQ(rig.receivedBytes, 100000000);
    EXPECT_EQ(rig.exitCode, 0);
    EXPECT_GT(pauses, 10);
}

TEST(LocalShell, KeepsTheEventLoopTurningDuringAFlood)
{
    LineRig rig(Program(u"yes"_s));
    rig.keep = false;
    int turns = 0;
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, [&turns] { ++turns; });
    timer.start(1);
    rig.line->Open();
    EXPECT_TRUE(rig.Until([&] { return rig.receivedBytes > 4'000'000 && turns > 20; }));
    rig.Type("\x03");
    EXPECT_TRUE(rig.UntilClosed());
    EXPECT_EQ(rig.signalNumber, SIGINT);
}

TEST(LocalShell, IsNotHeldOpenByABackgroundProcess)
{
    struct Case
    {
        QString script;
        const char* output;
    };
    for (const Case& c : {Case{u"trap \"\" HUP; sleep 1000 & echo done"_s, "done"},
                          Case{u"trap \"\" HUP; yes & echo done; exit 0"_s, "done"}}) {
        LineRig rig(Script(c.script));
        ASSERT_TRUE(rig.Opened().UntilClosed());
        EXPECT_TRUE(rig.received.contains(c.output));
        EXPECT_EQ(rig.exitCode, 0);
    }
}

TEST(LocalShell, HangsUpOnCloseAndLeavesNoZombie)
{
    QTemporaryDir folder;
    const QString mark = folder.filePath(u"mark"_s);
    const QString trap = u"trap \"echo hup >%1; exit\" HUP; echo $$ ready; "_s.arg(mark);
    for (const QString& rest : {u"while :; do sleep 0.01; done"_s, u"kill -STOP $$; sleep 1"_s}) {
        LineRig rig(Script(trap + rest));
        ASSERT_TRUE(rig.Opened().UntilReceived("ready"));
        const pid_t process = rig.received.split(' ').first().toInt();
        rig.line->Close();
        ASSERT_TRUE(rig.UntilClosed());
        rig.line.reset();
        EXPECT_EQ(rig.programEnds, 0);
        EXPECT_TRUE(WaitUntil([process] { return ::kill(process, 0) != 0; }));
        EXPECT_TRUE(QFile::remove(mark));
    }
}

TEST(LocalShell, KillsAProgramThatDoesNotHearTheHangup)
{
    int error = 0;
    auto program = TerminalProgram::Start({.file = "/bin/sh",
                                           .arguments = {"sh", "-c", "trap '' HUP; echo $$; while :; do sleep 1; done"},
                                           .environment = {"PATH=/usr/bin:/bin"},
                                           .workingFolder = "/"},
                                          error);
    ASSERT_NE(program, nullptr);
    QByteArray output(100, '\0');
    ASSERT_TRUE(WaitUntil([&] { return program->Read(output.data(), 100) > 0; }));
    const pid_t process = output.split('\r').first().toInt();
    program->HangUp(20);
    program.reset();
    EXPECT_TRUE(WaitUntil([process] { return ::kill(process, 0) != 0; }));
}

TEST(LocalShell, QueuesWhatTheProgramDoesNotReadYet)
{
    QTemporaryDir folder;
    const QString mark = folder.filePath(u"mark"_s);
    LineRig rig(Script(u"stty raw -echo; echo ready; while [ ! -e %1 ]; do sleep 0.01; done; "
                       "head -c 3000000 | wc -c"_s.arg(mark)));
    ASSERT_TRUE(rig.Opened().UntilReceived("ready"));
    rig.Type(QByteArray(3000000, 'x'));
    EXPECT_GT(rig.line->Unsent(), 2000000);
    EXPECT_TRUE(QFile(mark).open(QIODevice::WriteOnly));
    EXPECT_TRUE(rig.UntilReceived("3000000"));
    EXPECT_EQ(rig.line->Unsent(), 0);
    EXPECT_EQ(rig.drained, 1);
}

TEST(LocalShell, TellsWhetherAJobIsRunning)
{
    LineRig rig(Program(u"env \"PS1=ready> \" bash --norc --noprofile -i"_s));
    ASSERT_TRUE(rig.Opened().UntilReceived("ready> "));
    EXPECT_FALSE(rig.line->HasChildren());
    rig.Type("cat\r");
    EXPECT_TRUE(rig.Until([&] { return rig.line->HasChildren(); }));
    rig.Type("\x04");
    EXPECT_TRUE(rig.Until([&] { return !rig.line->HasChildren(); }));
}

} // namespace

} // namespace kestrune
