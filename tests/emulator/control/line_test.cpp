// The control and its line: opening, ending, typing, pasting.

#include <fakes/emulatorbench.h>
#include <fakes/failures.h>

#include <gtest/gtest.h>

namespace kestrune {

using namespace Qt::StringLiterals;

namespace {

// Everything that the control says about its line, in order.
struct LineDiary : QStringList
{
    explicit LineDiary(ctlEmulator& control)
    {
        QObject::connect(&control, &ctlEmulator::ConnectionStatus, [this](qint16 status, const QString* text) {
            *this << u"status %1 %2"_s.arg(status).arg(*text).trimmed();
        });
        QObject::connect(&control, &ctlEmulator::CommError,
                         [this](const quint32* word, const QString& text, bool fatal) {
                             *this << u"error %1 %2 %3"_s.arg(*word, 0, 16).arg(text).arg(fatal);
                         });
        QObject::connect(&control, &ctlEmulator::Disconnect, [this] { *this << u"disconnect"_s; });
    }
};

TEST(EmulatorLine, OpensWhatTheSettingsDescribe)
{
    EmulatorBench bench(EmulatorBench::LinuxConsole, 100, 30);
    auto& settings = bench.control.Settings();
    settings.Set(u"HostName"_s, u"host"_s);
    settings.Set(u"HostPort"_s, u"2323"_s);
    settings.Set(u"TelnetBinary"_s, true);
    settings.Set(u"KeepaliveInterval"_s, 30);
    settings.Set(u"Baud"_s, 9);
    EXPECT_FALSE(bench.control.OnLine());
    bench.control.SetOnLine(true);
    bench.control.SetOnLine(true); // once is enough
    ASSERT_EQ(bench.lines.made.size(), 1U);
    const LineOptions& made = bench.lines.made[0];
    EXPECT_EQ(made.device, Device::Telnet);
    EXPECT_EQ(made.hostName, u"host"_s);
    EXPECT_EQ(made.hostPort, u"2323"_s);
    EXPECT_EQ(made.terminalName, u"linux"_s);
    EXPECT_EQ(made.size, (TerminalSize{100, 30, 800, 480}));
    EXPECT_TRUE(made.telnet.binary);
    EXPECT_TRUE(made.utf8);
    EXPECT_EQ(made.keepaliveInterval, 30);
    EXPECT_EQ(made.serial.baud, 115200);

    EXPECT_TRUE(bench.control.OnLine());
    EXPECT_FALSE(bench.control.Connected());
    bench.Host().Connect();
    EXPECT_TRUE(bench.control.Connected());
    settings.Set(u"HostTermType"_s, u"xterm"_s);
    settings.Set(u"KeepaliveInterval"_s, 0);
    settings.Set(u"TelnetKeepalive"_s, 7);
    bench.control.Reset(int(ResetMode::Line));
    bench.Host().Drop();
    ASSERT_EQ(bench.lines.made.size(), 2U);
    EXPECT_EQ(bench.lines.made[1].terminalName, u"xterm"_s);
    EXPECT_EQ(bench.lines.made[1].keepaliveInterval, 7) << "the name of earlier releases";
}

struct Ending
{
    const char* name;
    void (*act)(EmulatorBench&);
    QStringList diary;
    QString onScreen;
};

class EmulatorLineEnd : public testing::TestWithParam<Ending>
{};

TEST_P(EmulatorLineEnd, IsToldAndShown)
{
    EmulatorBench bench;
    bench.Connect();
    bench.HostSays("left over");
    LineDiary diary(bench.control);
    GetParam().act(bench);
    bench.clock.RunPosted();
    EXPECT_EQ(diary, GetParam().diary) << diary.join(u" | "_s).toStdString();
    EXPECT_EQ(bench.RowText(0), u"left over"_s);
    EXPECT_EQ(bench.RowText(1), GetParam().onScreen);
    EXPECT_FALSE(bench.control.OnLine());

    bench.Connect(); // what was on the screen is still there
    bench.HostSays("$ ");
    EXPECT_EQ(bench.RowText(0), u"left over"_s);
    EXPECT_EQ(bench.RowText(2), u"$"_s);
}

const QString kByHost = u"Connection closed by the host"_s;

INSTANTIATE_TEST_SUITE_P(All, EmulatorLineEnd,
                         testing::Values(Ending{"DroppedByTheHost",
                                                [](EmulatorBench& b) { b.Host().Drop(); },
                                                {u"status 0"_s, u"status 0 "_s + kByHost, u"disconnect"_s},
                                                u"["_s + kByHost + u"]"_s},
                                         Ending{"ProgramEnds",
                                                [](EmulatorBench& b) { b.Host().Exit(3); },
                                                {u"status 0 Process ended with exit code 3"_s,
                                                 u"status 0 Process ended with exit code 3"_s, u"disconnect"_s},
                                                u"[Process ended with exit code 3]"_s},
                                         Ending{"ProgramKilled",
                                                [](EmulatorBench& b) { b.Host().Exit(0, 9); },
                                                {u"status 0 Process ended by signal 9"_s,
                                                 u"status 0 Process ended by signal 9"_s, u"disconnect"_s},
                                                u"[Process ended by signal 9]"_s},
                                         Ending{"FatalError",
                                                [](EmulatorBench& b) { b.Host().Fail(0x32746, u"reset"_s); },
                                                {u"error 32746 reset 1"_s, u"status 0 reset"_s, u"status 0 reset"_s,
                                                 u"disconnect"_s},
                                                u"[reset]"_s},
                                         Ending{"HungUpHere",
                                                [](EmulatorBench& b) {
                                                    b.control.HangUp();
                                                    b.Host().Drop();
                                                },
                                                {u"status 0"_s, u"status 0 Disconnected"_s},
                                                u"[Disconnected]"_s}),
                         [](const auto& test) { return test.param.name; });

TEST(EmulatorLine, ADeviceThatIsNotThereIsAnErrorInWords)
{
    EmulatorBench bench;
    LineDiary diary(bench.control);
    bench.control.Settings().Set(u"Device"_s, int(Device::Ssh));
    bench.control.SetOnLine(true);
    EXPECT_TRUE(diary.isEmpty()) << "nothing is told from inside the call";
    bench.clock.RunPosted();
    EXPECT_EQ(diary.value(0), u"error 52726 The Device 5 connection has not been implemented at this time. 1"_s);
    EXPECT_EQ(diary.value(2), u"disconnect"_s);
    EXPECT_TRUE(bench.RowText(0).startsWith(u"[The Device 5 connection"_s));
}

TEST(EmulatorLine, ASessionThatWantsVersionOneOfSshAloneIsToldThatThereIsNone)
{
    struct Case
    {
        Device device;
        int version;
        bool refused;
    };
    for (const Case& c : {Case{Device::Ssh, 1, true}, Case{Device::Ssh, 0, false}, Case{Device::Ssh, 2, false},
                          Case{Device::Telnet, 1, false}}) {
        EmulatorBench bench;
        bench.lines.devices = {c.device};
        LineDiary diary(bench.control);
        bench.control.Settings().Set(u"Device"_s, int(c.device));
        bench.control.Settings().Set(u"SSHVersion"_s, c.version);
        bench.control.SetOnLine(true);
        bench.clock.RunPosted();
        EXPECT_EQ(bench.lines.current == nullptr, c.refused);
        EXPECT_EQ(diary.value(0).startsWith(u"error 5273b Unable to connect: this session asks for version 1"_s),
                  c.refused)
            << diary.value(0).toStdString();
    }
}

TEST(EmulatorLine, AProgramThatDiedInTheMiddleLeavesAUsableScreen)
{
    EmulatorBench bench;
    bench.Connect();
    bench.HostSays("shell$ \x1b[?1049h\x1b[?1000;1006h\x1b[?2004h\x1b[?1h\x1b[41mfull screen\x1b]0;half a ti");
    bench.Host().Exit(1);
    EXPECT_EQ(bench.RowText(0), u"shell$"_s);
    EXPECT_EQ(bench.RowText(1), u"[Process ended with exit code 1]"_s);
    const auto modes = bench.control.Screen().Modes();
    EXPECT_FALSE(modes.alternateScreen);
    EXPECT_FALSE(modes.bracketedPaste);
    EXPECT_FALSE(modes.applicationCursor);
    EXPECT_EQ(modes.mouse, emu::MouseReport::None);
}

TEST(EmulatorLine, ShutDownNothingIsToldAnyMore)
{
    EmulatorBench bench;
    bench.Connect();
    LineDiary diary(bench.control);
    // A handler may end the session from inside the notice.
    QObject::connect(&bench.control, &ctlEmulator::CommError, [&] { bench.control.Shutdown(); });
    bench.Host().Fail(0x32746, u"reset"_s);
    EXPECT_EQ(diary, (QStringList{u"error 32746 reset 1"_s}));
    EXPECT_EQ(bench.lines.current, nullptr);
    bench.control.SetOnLine(true);
    EXPECT_EQ(bench.lines.current, nullptr);
    bench.clock.RunPosted();
    EXPECT_EQ(diary.size(), 1);
}

TEST(EmulatorLine, CountsBytesAndPassesSizeAndBreakOn)
{
    EmulatorBench bench;
    bench.Connect();
    bench.HostSays("12345");
    bench.control.WriteText(u"é!"_s);
    EXPECT_EQ(bench.Host().TakeSent(), "\xc3\xa9!");
    EXPECT_EQ(bench.control.BytesIn(), 5);
    EXPECT_EQ(bench.control.BytesOut(), 3);
    bench.control.Break();
    EXPECT_EQ(bench.Host().breaks, 1);
    bench.control.Resize(90, 20, 720, 320);
    bench.control.Resize(90, 20, 720, 320);
    EXPECT_EQ(bench.Host().size, (TerminalSize{90, 20, 720, 320}));
    EXPECT_EQ(bench.Host().resizes, 1);
}

// A host that asks without end is answered at a bounded rate, in whole answers; one that does not read, not at all.
TEST(EmulatorLine, AnswersAreBounded)
{
    EmulatorBench bench;
    bench.Connect();
    const std::string answer = "\x1b[0n";
    std::string questions;
    for (int i = 0; i < 50'000; ++i)
        questions += "\x1b[5n";
    const auto answers = [&] {
        bench.HostSays(questions);
        const std::string sent = bench.Host().TakeSent();
        EXPECT_EQ(sent.size() % answer.size(), 0u);
        return sent.size() / answer.size();
    };
    const size_t atOnce = answers();
    EXPECT_GT(atOnce, 10'000u);
    EXPECT_LT(atOnce, 20'000u);
    EXPECT_EQ(answers(), 0u);
    bench.clock.Advance(std::chrono::milliseconds(500));
    EXPECT_NEAR(double(answers()), double(atOnce) / 2, 2);
    bench.clock.Advance(std::chrono::seconds(5));
    bench.Host().unsent = 1'000'000;
    EXPECT_EQ(answers(), 0u);
    bench.Host().unsent = 0;
    EXPECT_EQ(answers(), atOnce);
}

// --- typing

struct Typing
{
    const char* name;
    const char* setting; // "" or one that is set to value
    int value;
    emu::KeyPress key;
    const char* sent;
    QString echoed;
};

class EmulatorTyping : public testing::TestWithParam<Typing>
{};

TEST_P(EmulatorTyping, SendsAndShows)
{
    const Typing& c = GetParam();
    EmulatorBench bench;
    bench.Connect();
    if (*c.setting != 0)
        bench.control.Settings().Set(QString::fromLatin1(c.setting), c.value);
    bench.control.TypeKey(c.key);
    EXPECT_EQ(bench.Host().TakeSent(), c.sent);
    EXPECT_EQ(bench.RowText(0), c.echoed);
}

const emu::KeyPress kLetter{emu::Key::Text, 0, "a"};

INSTANTIATE_TEST_SUITE_P(
    All, EmulatorTyping,
    testing::Values(Typing{"HostEchoes", "", 0, kLetter, "a", {}},
                    Typing{"HalfDuplex", "Duplex", 1, kLetter, "a", u"a"_s},
                    Typing{"Local", "Duplex", 2, kLetter, "", u"a"_s},
                    Typing{"ControlC", "", 0, {emu::Key::Text, emu::Modifier::Control, "c"}, "\x03", {}},
                    Typing{"BackspaceAsDel", "BkspSendsDel", -1, {emu::Key::Backspace, 0, {}}, "\x7f", {}},
                    Typing{"AppCursor", "AnsiAppCursor", -1, {emu::Key::Up, 0, {}}, "\x1bOA", {}}),
    [](const auto& test) { return test.param.name; });

TEST(EmulatorLine, AHostThatNeverOffersEchoIsEchoedHere)
{
    EmulatorBench bench;
    bench.control.SetOnLine(true);
    bench.Host().Connect();
    bench.control.TypeKey(kLetter);
    EXPECT_EQ(bench.RowText(0), u"a"_s);
    bench.Host().RemoteEcho(true);
    bench.control.TypeKey(kLetter);
    EXPECT_EQ(bench.RowText(0), u"a"_s);
}

TEST(EmulatorLine, KeysWithoutALineAreRefusedWithASign)
{
    EmulatorBench bench;
    int refused = 0;
    QObject::connect(&bench.control, &ctlEmulator::InputRefused, [&] { ++refused; });
    bench.control.TypeKey(kLetter);
    bench.clipboard.standard = u"text"_s;
    bench.control.Paste();
    EXPECT_EQ(FailureNumber([&] { bench.control.WriteText(u"x"_s); }), int(ErrorNumber::DeviceUnavailable));
    EXPECT_EQ(refused, 2);
    EXPECT_EQ(bench.ask.beeps, 2);
    bench.Connect();
    bench.control.SetLockKeyboard(true);
    bench.control.TypeKey(kLetter);
    EXPECT_EQ(refused, 3);
    EXPECT_EQ(bench.Host().sent, "");
}

TEST(EmulatorLine, FunctionKeysWithATextSendItOrRunIt)
{
    EmulatorBench bench;
    bench.Connect();
    QStringList scripts;
    QObject::connect(&bench.control, &ctlEmulator::ExecScript, [&](const QString& script) { scripts << script; });
    bench.control.Settings().SetFKeys(112, u"ls\r"_s);
    bench.control.Settings().SetFKeys(2009, u"[Beep]"_s);
    const emu::KeyPress f1{emu::Key::F1, 0, {}};
    bench.control.TypeKey(f1, 112);
    EXPECT_EQ(bench.Host().TakeSent(), "ls\r");
    bench.control.TypeKey({emu::Key::Tab, emu::Modifier::Control, {}}, 2009);
    EXPECT_EQ(scripts, (QStringList{u"[Beep]"_s}));
    EXPECT_EQ(bench.Host().TakeSent(), "");
    bench.control.SetCapsLock(true);
    bench.control.TypeKey({emu::Key::Text, emu::Modifier::Shift, "Ä"});
    bench.control.TypeKey(kLetter);
    EXPECT_EQ(bench.Host().TakeSent(), "äA");
}

TEST(EmulatorLine, TheRecorderIsToldWhatWasTypedAndReceived)
{
    EmulatorBench bench;
    bench.Connect();
    QStringList heard;
    QObject::connect(&bench.control, &ctlEmulator::RecordText, [&](const QString& text) { heard << u"<"_s + text; });
    QObject::connect(&bench.control, &ctlEmulator::RecordKey,
                     [&](const QString& text, int code) { heard << u">%1,%2"_s.arg(text).arg(code); });
    bench.HostSays("not recorded");
    bench.control.SetRecordingText(true);
    bench.control.SetRecordingKeys(true);
    bench.HostSays("gr\xc3");
    bench.HostSays("\xbc\xc3\x9f");
    bench.control.TypeKey(kLetter, 65);
    EXPECT_EQ(heard, (QStringList{u"<gr"_s, u"<üß"_s, u">a,65"_s}));
}

// --- paste

struct PasteCase
{
    const char* name;
    QString text;
    Cause cause;
    bool asks;
    QString inQuestion;
};

class EmulatorPaste : public testing::TestWithParam<PasteCase>
{};

TEST_P(EmulatorPaste, AsksWhenItShould)
{
    const PasteCase& c = GetParam();
    EmulatorBench bench;
    bench.Connect();
    bench.clipboard.standard = c.text;
    bench.ask.answers = {MsgResult::Cancel, MsgResult::Ok};
    bench.control.Paste({}, c.cause);
    ASSERT_EQ(bench.ask.boxes.size(), c.asks ? 1U : 0U);
    EXPECT_EQ(bench.Host().TakeSent().empty(), c.asks);
    if (!c.asks)
        return;
    EXPECT_TRUE(bench.ask.boxes[0].text.contains(c.inQuestion)) << bench.ask.boxes[0].text.toStdString();
    bench.control.Paste({}, c.cause);
    EXPECT_FALSE(bench.Host().TakeSent().empty());
}

INSTANTIATE_TEST_SUITE_P(
    All, EmulatorPaste,
    testing::Values(PasteCase{"PlainText", u"ls -l"_s, Cause::User, false, {}},
                    PasteCase{"TwoLines", u"rm x\r\nls"_s, Cause::User, true, u"Paste 2 lines"_s},
                    PasteCase{"OneLineWithItsEnd", u"rm x\n"_s, Cause::User, true, u"with its line end"_s},
                    PasteCase{"LeadingLineEnd", u"\nrm x"_s, Cause::User, true, u"Paste 2 lines"_s},
                    PasteCase{"ControlCharacter", u"a\x1b[201~b"_s, Cause::User, true, u"a␛[201~b"_s},
                    PasteCase{"ManyLines", u"x\n"_s.repeated(40), Cause::User, true, u"... and 32 more"_s},
                    PasteCase{"ByAScript", u"a\nb\n"_s, Cause::Script, false, {}}),
    [](const auto& test) { return test.param.name; });

TEST(EmulatorLine, ALongPasteKeepsThePaceOfTheLineAndCanBeStopped)
{
    EmulatorBench bench;
    bench.Connect();
    bench.Host().held = true;
    bench.texts.files[u"/big"_s] = QString(100'000, u'x');
    bench.control.Paste(u"/big"_s, Cause::Script);
    const size_t first = bench.Host().sent.size();
    EXPECT_GT(first, 0U);
    EXPECT_LT(first, 50'000U);
    bench.Host().Drain();
    EXPECT_GT(bench.Host().sent.size(), first);
    while (bench.Host().unsent > 0)
        bench.Host().Drain();
    EXPECT_EQ(bench.Host().TakeSent(), std::string(100'000, 'x'));
    EXPECT_EQ(bench.control.BytesOut(), 100'000);

    bench.HostSays("\x1b[?2004h");
    bench.control.Paste(u"/big"_s, Cause::Script);
    bench.control.Abort();
    const std::string sent = bench.Host().TakeSent();
    EXPECT_TRUE(sent.starts_with("\x1b[200~xxx"));
    EXPECT_TRUE(sent.ends_with("xxx\x1b[201~"));
    EXPECT_LT(sent.size(), 50'000U);
    bench.Host().Drain();
    EXPECT_EQ(bench.Host().sent, "");
    EXPECT_EQ(FailureNumber([&] { bench.control.Paste(u"/gone"_s); }), int(ErrorNumber::FileNotFound));
}

TEST(EmulatorLine, TheSessionMayGoWhileThePasteQuestionIsUp)
{
    struct EndingQuestions : FakeQuestions
    {
        int MsgBox(const MsgBoxRequest&) override
        {
            line->Drop();
            return MsgResult::Ok;
        }
        FakeLine* line = nullptr;
    } ask;
    EmulatorBench bench;
    ctlEmulator control(bench.Ports(ask));
    control.Settings().Set(u"Device"_s, int(Device::Telnet));
    control.SetOnLine(true);
    bench.Host().Connect();
    ask.line = bench.lines.current;
    bench.clipboard.standard = u"a\nb"_s;
    control.Paste();
    EXPECT_FALSE(control.OnLine());
    EXPECT_EQ(ask.beeps, 1);
}

} // namespace

} // namespace kestrune
