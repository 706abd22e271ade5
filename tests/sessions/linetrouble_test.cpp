// What comes up when a line fails, ends or asks, and what the panels' buttons do.

#include "bench.h"

#include <ports/line.h>

namespace kestrune {
namespace {

using namespace Qt::StringLiterals;

constexpr quint32 Refused = 0x5274D, Reset = 0x52746, NotConnected = 0x52749, General = 0x130001;
const QString Ended = u"The connection to the host has been terminated."_s;

struct TroubleBench : SessionBench
{
    explicit TroubleBench(Device device = Device::Telnet)
    {
        lines.devices = {device};
        session = sessions.Add(Write(u"a.orcf"_s, "[Kestrune]\nTermType=8\nHostName=host.example\nDevice=" +
                                                      QByteArray::number(int(device)) + '\n'));
        window = &Window(*session);
        clock.RunPosted();
        session->SetAutoClose(false);
        session->SetShowErrs(false);
        session->SetChanged(false);
    }
    FakeLinePanels& Panels() const { return window->panels; }
    void Lose(quint32 word) // 0: the host just closes
    {
        lines.Current().Connect();
        if (word != 0)
            lines.Current().Fail(word, u"Failed"_s);
        else
            lines.Current().Drop();
    }

    std::shared_ptr<clsSession> session;
    FakeSessionWindow* window = nullptr;
};

struct LossCase
{
    const char* what;
    Device device;
    bool showErrs, autoClose;
    quint32 word;
    QString panel; // empty: none
    bool canResume, box, ends;
};

TEST(LineTrouble, LossIsToldByAPanelAndTheSessionStays)
{
    const LossCase cases[] = {
        {"host closed", Device::Telnet, false, false, 0, Ended, false, false, false},
        {"refused", Device::Ssh, false, false, Refused, u"Failed"_s, false, false, false},
        {"reset: the disconnect speaks for it", Device::Ssh, true, false, Reset, Ended, false, false, false},
        {"can be resumed", Device::Ssh, false, true, Refused | LineErrorCanResume, u"Failed"_s, true, false, false},
        {"general error", Device::Ssh, false, false, General, Ended, false, true, false},
        {"general error, can be resumed", Device::Ssh, false, false, General | LineErrorCanResume, u"Failed"_s, true,
         false, false},
        {"closes by itself", Device::Ssh, false, true, 0, {}, false, false, true},
        {"a program here that ended", Device::Extension, true, false, 0, {}, false, false, false},
        {"a program here that failed", Device::Extension, false, false, 0x60002, u"Failed"_s, false, false, false},
    };
    for (const LossCase& row : cases) {
        SCOPED_TRACE(row.what);
        TroubleBench bench(row.device);
        bench.session->SetShowErrs(row.showErrs);
        bench.session->SetAutoClose(row.autoClose);
        bench.session->SetChanged(false);
        bench.Lose(row.word);
        EXPECT_FALSE(bench.session->Terminated()) << "not from inside the line's notice";
        bench.clock.RunPosted();
        EXPECT_EQ(bench.session->Terminated(), row.ends);
        EXPECT_EQ(bench.Panels().shown, row.panel.isEmpty() ? LinePanel::None : LinePanel::Reconnect);
        EXPECT_EQ(bench.Panels().text, row.panel);
        EXPECT_EQ(bench.Panels().canResume, row.canResume);
        EXPECT_EQ(bench.Panels().focused > 0, !row.panel.isEmpty());
        ASSERT_EQ(bench.ask.boxes.size(), row.box ? 1U : 0U);
        if (row.box) {
            EXPECT_EQ(bench.ask.boxes[0].text, u"Failed"_s);
            EXPECT_EQ(bench.ask.boxes[0].title, u"Kestrune"_s);
            EXPECT_FALSE(bench.ask.boxes[0].info.isEmpty());
        }
    }
}

TEST(LineTrouble, ErrorsThatDoNotEndTheLineAreToldWhereTheyAreWanted)
{
    for (const bool showErrs : {false, true}) {
        TroubleBench bench;
        bench.session->SetShowErrs(showErrs);
        quint32 word = Refused;
        emit bench.window->emulator->CommError(&word, u"Hm"_s, false);
        EXPECT_EQ(word, 0U);
        EXPECT_EQ(bench.Panels().shown, showErrs ? LinePanel::Reconnect : LinePanel::None);
    }
}

TEST(LineTrouble, APanelThatIsUpKeepsItsStory)
{
    TroubleBench bench(Device::Ssh);
    bench.Lose(Refused);
    quint32 word = NotConnected;
    emit bench.window->emulator->CommError(&word, u"Socket is not connected"_s, true);
    EXPECT_EQ(word, 0U);
    emit bench.window->emulator->Disconnect();
    EXPECT_EQ(bench.Panels().text, u"Failed"_s);
}

TEST(LineTrouble, AutoCloseOfAChangedSessionStillAsksToSave)
{
    TroubleBench bench;
    bench.session->SetAutoClose(true); // and so it is changed
    bench.ask.answers = {MsgResult::Cancel};
    bench.Lose(0);
    bench.clock.RunPosted();
    EXPECT_FALSE(bench.session->Terminated());
    EXPECT_EQ(bench.ask.boxes.size(), 1U);
}

TEST(LineTrouble, ButtonsOfTheReconnectPanel)
{
    TroubleBench bench(Device::Ssh);
    const auto press = [&](LineButton button) {
        bench.window->logic->PanelPressed(button);
        bench.clock.RunPosted();
    };
    bench.Lose(Refused);
    press(LineButton::Info);
    EXPECT_TRUE(bench.Panels().help.contains(u"no service answers"_s));
    press(LineButton::CancelReconnect);
    EXPECT_EQ(bench.Panels().shown, LinePanel::None);
    EXPECT_FALSE(bench.session->Emulator().OnLine());
    bench.Panels().help.clear();
    press(LineButton::Info);
    EXPECT_EQ(bench.Panels().help, QString()) << "the error has been dealt with";

    press(LineButton::Reconnect);
    EXPECT_TRUE(bench.session->Emulator().OnLine());
    bench.Lose(0);
    EXPECT_EQ(bench.Panels().shown, LinePanel::Reconnect);
    bench.session->ResetComm(); // by a script
    bench.lines.Current().Connect();
    EXPECT_EQ(bench.Panels().shown, LinePanel::None);

    bench.lines.Current().Drop();
    press(LineButton::CloseSession);
    EXPECT_EQ(bench.commands.actions, QStringList{u"[#104]"_s});
}

TEST(LineTrouble, InfoAdvisesForTheDeviceThatFailed)
{
    struct Case
    {
        Device device;
        quint32 word;
        QString advice;
    };
    for (const Case& c :
         {Case{Device::Extension, 0x60002, u"name of the program"_s},
          Case{Device::SerialPort, 0x10002, u"plugged in"_s}, Case{Device::Modem, 0x4271D, u"dialout"_s},
          Case{Device::Modem, 0x4274C, u"modem switched on"_s}, Case{Device::Ssh, 0x5274C, u"firewall"_s},
          Case{Device::SslTelnet, 0x70002, u"certificate"_s}, Case{Device::Ssh, 0x5FFFF, u"no advice"_s}}) {
        TroubleBench bench(c.device);
        bench.Lose(c.word);
        bench.window->logic->PanelPressed(LineButton::Info);
        EXPECT_TRUE(bench.Panels().help.contains(c.advice)) << bench.Panels().help.toStdString();
    }
}

TEST(LineTrouble, AHostKeyQuestionTakesTheFocusBehindOtherProgramsToo)
{
    TroubleBench bench(Device::Ssh);
    bench.foreground = false;
    bench.lines.Current().Ask({.id = 1, .kind = LineQuestion::Kind::UnknownHost, .title = {}, .text = u"Is it?"_s});
    EXPECT_EQ(bench.Panels().focused, 1);
}

TEST(LineTrouble, HostKeyQuestionAndItsThreeAnswers)
{
    struct Case
    {
        LineButton button;
        LineAnswer::Choice choice;
    };
    for (const Case& c : {Case{LineButton::ConfirmCancel, LineAnswer::Choice::Cancel},
                          Case{LineButton::ConfirmContinue, LineAnswer::Choice::Continue},
                          Case{LineButton::ConfirmUpdate, LineAnswer::Choice::Update}}) {
        TroubleBench bench(Device::Ssh);
        bench.Lose(Refused);
        bench.session->ResetComm(); // under the panel
        FakeLine& line = bench.lines.Current();
        line.Ask({.id = 1, .kind = LineQuestion::Kind::ChangedHost, .title = {}, .text = u"Is it?"_s});
        EXPECT_EQ(bench.Panels().shown, LinePanel::Confirm) << "it takes the place of the other one";
        EXPECT_TRUE(bench.Panels().text.startsWith(u"Is it?"_s));
        EXPECT_TRUE(bench.Panels().text.contains(u"Press Update to"_s)) << bench.Panels().text.toStdString();
        EXPECT_TRUE(bench.Panels().text.contains(u", Continue to"_s)) << bench.Panels().text.toStdString();
        bench.window->logic->PanelPressed(c.button);
        EXPECT_EQ(bench.Panels().shown, LinePanel::None);
        ASSERT_EQ(line.answers.size(), 1U);
        EXPECT_EQ(line.answers[0].choice, c.choice);
    }
}

TEST(LineTrouble, SecretsGoToTheLineAndThePanelGoesWithIt)
{
    TroubleBench bench(Device::Ssh);
    FakeLine& line = bench.lines.Current();
    const LineQuestion question{
        .id = 1, .kind = LineQuestion::Kind::Secrets, .title = u"Login"_s, .text = u"Say"_s, .fields = {{}}};
    line.Ask(question);
    EXPECT_EQ(bench.Panels().shown, LinePanel::Secrets);
    EXPECT_EQ(bench.Panels().focused, 1);
    std::vector<Secret> values;
    values.emplace_back("pw");
    bench.window->logic->SecretsTyped(std::move(values), false);
    EXPECT_EQ(bench.Panels().shown, LinePanel::None);
    ASSERT_EQ(line.answers.size(), 1U);
    EXPECT_EQ(line.answers[0].values.at(0).Utf8(), "pw");

    line.Ask(question);
    bench.window->logic->PanelPressed(LineButton::CancelSecrets);
    EXPECT_EQ(line.answers.at(1).choice, LineAnswer::Choice::Cancel);

    line.Ask(question);
    line.Drop(); // the host has no patience
    EXPECT_EQ(bench.Panels().shown, LinePanel::Reconnect);
}

struct KeepingBench : TroubleBench
{
    KeepingBench() : TroubleBench(Device::Ssh) {}

    LineQuestion Question(quint32 id, bool again = false, const QString& place = u"password ssh ann@host"_s) const
    {
        return {.id = id,
                .kind = LineQuestion::Kind::Secrets,
                .title = u"SSH login to ann@host"_s,
                .text = u"Say"_s,
                .fields = {{.label = u"Password:"_s, .mayBeRemembered = true}},
                .place = place,
                .again = again};
    }
    void HostAsks(const LineQuestion& question)
    {
        lines.Current().Ask(question);
        clock.RunPosted();
    }
    void Type(const char* text, bool keep)
    {
        std::vector<Secret> values;
        values.emplace_back(text);
        window->logic->SecretsTyped(std::move(values), keep);
    }
    std::string Answered() { return std::string(lines.Current().answers.back().values.at(0).Utf8()); }
};

TEST(KeptSecrets, AreOfferedOnlyWhereTheyCanBeKept)
{
    KeepingBench bench;
    bench.HostAsks(bench.Question(1));
    EXPECT_EQ(bench.Panels().shown, LinePanel::Secrets);
    EXPECT_FALSE(bench.Panels().offersKeeping);
    bench.Type("pw", false);
    bench.keeper.isThere = true;
    bench.HostAsks(bench.Question(2));
    EXPECT_TRUE(bench.Panels().offersKeeping);
    bench.Type("pw", false);
    bench.HostAsks(bench.Question(3, false, {})); // a code of the moment
    EXPECT_FALSE(bench.Panels().offersKeeping);
}

TEST(KeptSecrets, AreKeptWhenTheHostHasTakenThemAndAnswerTheNextTime)
{
    KeepingBench bench;
    bench.keeper.isThere = true;
    bench.HostAsks(bench.Question(1));
    bench.Type("wrong", true);
    bench.HostAsks(bench.Question(2, true));
    bench.Type("right", true);
    EXPECT_TRUE(bench.keeper.kept.empty()) << "nobody knows yet whether it is right";
    bench.lines.Current().Connect();
    EXPECT_EQ(bench.keeper.kept, (std::map<QString, std::string>{{u"password ssh ann@host"_s, "right"}}));
    EXPECT_EQ(bench.keeper.lastLabel, u"SSH login to ann@host"_s);

    KeepingBench next;
    next.keeper.isThere = true;
    next.keeper.kept = bench.keeper.kept;
    next.HostAsks(next.Question(1));
    EXPECT_EQ(next.Panels().shown, LinePanel::None);
    EXPECT_EQ(next.Answered(), "right");
    next.HostAsks(next.Question(2, true)); // it is another one now
    EXPECT_EQ(next.Panels().shown, LinePanel::Secrets);
    EXPECT_TRUE(next.keeper.kept.empty()) << "it would be refused every time";
    next.Type("new", false);
    next.lines.Current().Connect();
    EXPECT_TRUE(next.keeper.kept.empty()) << "the user did not want it";
}

TEST(KeptSecrets, OfALostLineAreNotKeptAndDoNotAnswer)
{
    KeepingBench bench;
    bench.keeper.isThere = true;
    bench.HostAsks(bench.Question(1));
    bench.Type("pw", true);
    bench.lines.Current().Ask(bench.Question(2, true));
    bench.lines.Current().Drop();
    bench.clock.RunPosted();
    EXPECT_EQ(bench.Panels().shown, LinePanel::Reconnect) << "an answer that came too late shows nothing";
    EXPECT_TRUE(bench.keeper.kept.empty());
}

} // namespace
} // namespace kestrune
