// The modem device on a pseudo-terminal with a modem behind it that a script plays.

#include "cable.h"
#include "linerig.h"

#include <comm/modemline.h>
#include <fakes/fakeclock.h>

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace kestrune {

namespace {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

// Echoes commands and answers them as told, an unknown one with OK.
class ScriptedModem
{
public:
    Cable cable;
    std::map<QByteArray, QByteArray> answers; // to a command; "": none at all
    bool online = false;
    QByteArray data; // what came while it was online

    void Work()
    {
        QByteArray& heard = cable.Heard();
        if (online) {
            data += std::exchange(heard, {});
            if (!data.endsWith("+++"))
                return;
            online = false;
            cable.Says("\r\nOK\r\n");
        }
        for (auto end = heard.indexOf('\r'); end >= 0 && !online; end = heard.indexOf('\r')) {
            const QByteArray command = heard.left(end);
            heard.remove(0, end + 1);
            commands += command;
            const auto row = answers.find(command);
            const QByteArray answer = row == answers.end() ? "OK" : row->second;
            cable.Says(command + '\r');
            if (!answer.isEmpty())
                cable.Says("\r\n" + answer + "\r\n");
            online = answer.startsWith("CONNECT");
        }
    }
    QByteArrayList commands;
};

class ModemLineTest : public testing::Test
{
protected:
    LineOptions Options(const QString& name = {}) const
    {
        LineOptions options;
        options.device = Device::Modem;
        options.hostName = name;
        options.connectTimeout = 5;
        options.modem.userFolder = folder_.path();
        return options;
    }
    void Write(const QString& name, const QByteArray& text) const
    {
        QFile file(folder_.filePath(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly) && file.write(text) == text.size());
    }
    // Fast in its own time: the clock moves a little whenever nothing else happens.
    bool Until(LineRig& rig, const std::function<bool()>& happened)
    {
        return rig.Until([&] {
            modem.Work();
            clock.Advance(50ms);
            return happened();
        });
    }
    std::unique_ptr<LineRig> Ready(const LineOptions& options)
    {
        auto rig = std::make_unique<LineRig>(options, clock, folder_.path());
        rig->line->Open();
        EXPECT_TRUE(Until(*rig, [&] { return rig->line->IsOpen(); }));
        return rig;
    }

    const QTemporaryDir folder_;
    FakeClock clock;
    ScriptedModem modem;
};

TEST_F(ModemLineTest, DialsTalksAndHangsUpByEscape)
{
    Write(u"dialing.ini"_s, "[Location]\nCountryCode=1\nAreaCode=212\nOutsideLine=9,\n");
    modem.answers["ATDT9,5550100"] = "CONNECT 4800";
    const auto rig = Ready(Options(modem.cable.Path()));
    EXPECT_EQ(rig->stateText, u"Standard modem is ready"_s);
    EXPECT_EQ(rig->states.back(), LineState::Connected);
    EXPECT_FALSE(rig->line->Dial(u"( )"_s));
    ASSERT_TRUE(rig->line->Dial(u"555-0100"_s));
    EXPECT_EQ(rig->stateText, u"Dialing 9, 5550100"_s);
    ASSERT_TRUE(Until(*rig, [&] { return rig->dials.back() == DialStatus::Connected; }));
    EXPECT_EQ(rig->stateText, u"Call connected CONNECT 4800"_s);
    EXPECT_EQ(modem.cable.Speed(), 4800U) << "the port follows what CONNECT says";

    rig->Type("hello");
    modem.cable.Says("login: ");
    EXPECT_TRUE(Until(*rig, [&] { return modem.data == "hello" && rig->received.contains("login: "); }));
    ASSERT_TRUE(rig->line->HangUp());
    rig->Type("into the silence");
    ASSERT_TRUE(Until(*rig, [&] { return rig->dials.back() == DialStatus::NoCall; }));
    EXPECT_EQ(modem.data, "hello+++");
    EXPECT_EQ(modem.commands, QByteArrayList({"ATZ", "ATE1V1Q0S0=0", "ATDT9,5550100", "ATH"}));
    EXPECT_EQ(modem.cable.Speed(), 9600U);
    EXPECT_FALSE(rig->line->HangUp());
    EXPECT_TRUE(rig->line->IsOpen()) << "another call can be made";
    EXPECT_EQ(rig->errors, QStringList());
}

TEST_F(ModemLineTest, SaysWhatHasBecomeOfACall)
{
    struct Case
    {
        QByteArray answer;
        DialStatus status;
        QString text;
    };
    const auto rig = Ready(Options(modem.cable.Path()));
    for (const Case& c :
         {Case{"BUSY", DialStatus::Busy, u"5 is busy"_s}, Case{"NO CARRIER", DialStatus::NoCarrier, u"No carrier"_s},
          Case{"NO DIALTONE", DialStatus::NoDialTone, u"No dial tone"_s},
          Case{"NO ANSWER", DialStatus::NoAnswer, u"5 does not answer"_s},
          Case{"ERROR", DialStatus::Failed, u"The modem refuses to dial"_s},
          Case{"", DialStatus::NoAnswer, u"5 does not answer"_s}}) {
        modem.answers["ATDT5"] = c.answer;
        ASSERT_TRUE(rig->line->Dial(u"5"_s));
        ASSERT_TRUE(Until(*rig, [&] { return rig->dials.back() != DialStatus::Dialing; }));
        EXPECT_EQ(rig->dials.back(), c.status) << c.answer.toStdString();
        EXPECT_EQ(rig->stateText, c.text);
    }
    modem.answers["ATDT5"] = "";
    ASSERT_TRUE(rig->line->Dial(u"5"_s));
    rig->Type("x"); // any key stops it
    ASSERT_TRUE(Until(*rig, [&] { return rig->dials.back() == DialStatus::NoCall; }));
    EXPECT_EQ(rig->errors, QStringList());
}

TEST_F(ModemLineTest, AnswersCallsAndNoticesTheirEnd)
{
    LineOptions options = Options(modem.cable.Path());
    options.modem.autoAnswer = true;
    options.modem.lockBaudRate = true;
    modem.answers["ATA"] = "CONNECT 1200";
    const auto rig = Ready(options);
    modem.cable.Says("\r\nRING\r\n");
    ASSERT_TRUE(Until(*rig, [&] { return !rig->dials.empty() && rig->dials.back() == DialStatus::Connected; }));
    EXPECT_EQ(modem.cable.Speed(), 9600U) << "locked";
    modem.online = false;
    modem.cable.Says("\r\nNO CARRIER\r\n");
    ASSERT_TRUE(Until(*rig, [&] { return rig->dials.back() == DialStatus::NoCarrier; }));
    EXPECT_TRUE(rig->line->IsOpen());
}

TEST_F(ModemLineTest, SaysWhyThereIsNoModem)
{
    modem.answers["ATZ"] = "";
    struct Case
    {
        LineOptions options;
        quint32 word;
        QString text;
    };
    for (const Case& c :
         {Case{Options(u"No such modem"_s), 0x42726, u"Unable to connect: there is no modem \"No such modem\"."_s},
          Case{Options(), 0x42726, u"Unable to connect: the session names no serial port."_s},
          Case{Options(u"/dev/no-such-port"_s), 0x40002, u"Unable to open /dev/no-such-port: there is no such port"_s},
          Case{Options(modem.cable.Path()), 0x4274C,
               u"Unable to connect: the modem at %1 does not answer."_s.arg(modem.cable.Path())}}) {
        LineRig rig(c.options, clock, folder_.path());
        rig.line->Open();
        ASSERT_TRUE(Until(rig, [&] { return rig.closed > 0; }));
        EXPECT_EQ(rig.errors, QStringList(c.text));
        EXPECT_EQ(rig.errorWord, c.word);
        EXPECT_EQ(rig.states.back(), LineState::Closed);
    }
}

TEST_F(ModemLineTest, MayBeClosedInAnyOfItsNotices)
{
    modem.answers["ATDT5"] = "BUSY";
    for (const DialStatus when : {DialStatus::Dialing, DialStatus::Busy}) {
        const auto rig = Ready(Options(modem.cable.Path()));
        rig->dropWhenClosed = true;
        rig->onDial = [&](DialStatus status) {
            if (status == when)
                rig->line->Close();
        };
        rig->line->Dial(u"5"_s);
        ASSERT_TRUE(Until(*rig, [&] { return rig->closed > 0; }));
        EXPECT_EQ(rig->dials.back(), when);
        EXPECT_EQ(rig->closed, 1);
        clock.Advance(10s);
    }
}

TEST_F(ModemLineTest, IsSetUpAgainWhenItWasPulledOut)
{
    const QString stable = folder_.filePath(u"by-id"_s);
    auto first = std::make_unique<ScriptedModem>();
    ASSERT_TRUE(QFile::link(first->cable.Path(), stable));
    first->answers["ATDT5"] = "CONNECT";
    LineRig rig(Options(stable), clock, folder_.path());
    rig.line->Open();
    const auto until = [&](ScriptedModem& with, const std::function<bool()>& happened) {
        return rig.Until([&] {
            with.Work();
            clock.Advance(50ms);
            return happened();
        });
    };
    ASSERT_TRUE(until(*first, [&] { return rig.line->IsOpen(); }));
    ASSERT_TRUE(rig.line->Dial(u"5"_s));
    ASSERT_TRUE(until(*first, [&] { return rig.dials.back() == DialStatus::Connected; }));
    ASSERT_TRUE(QFile::remove(stable));
    first.reset();
    ASSERT_TRUE(until(modem, [&] { return rig.dials.back() == DialStatus::NoCarrier; }));
    EXPECT_FALSE(rig.line->Dial(u"5"_s));
    ASSERT_TRUE(QFile::link(modem.cable.Path(), stable));
    ASSERT_TRUE(until(modem, [&] { return rig.stateText == u"Standard modem is ready"_s; }));
    EXPECT_EQ(modem.commands.size(), 2);
}

TEST_F(ModemLineTest, ReadsModemsAsData)
{
    const QTemporaryDir program;
    {
        QFile file(program.filePath(u"modems.ini"_s));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("[First]\nDial=ATD\n[Second]\nBaud=nonsense\nRings=0\n");
    }
    Write(u"modems.ini"_s, "[second]\nSetUp=ATZ | ATV0\nBusy=BUSY|7\nBaud=57600\nPort=33\nHandshake=2\nRedials=3\n"
                           "[Third]\nPort=/dev/serial/by-id/x\nHangUpByLine=false\n");
    const comm::ModemCatalog catalog(program.path(), folder_.path());
    EXPECT_EQ(catalog.Names(), QStringList({u"First"_s, u"Second"_s, u"Third"_s}));
    EXPECT_EQ(catalog.Location(), comm::DialLocation());
    EXPECT_EQ(comm::ModemCatalog({}, {}).Names(), QStringList(u"Standard modem"_s));

    LineOptions options = Options(u"SECOND"_s);
    options.serial.port = 34;
    options.serial.baud = 300;
    const auto second = catalog.Find(options);
    ASSERT_TRUE(second);
    EXPECT_EQ(second->port, u"/dev/ttyUSB0"_s);
    EXPECT_EQ(second->serial.baud, 57600);
    EXPECT_EQ(second->serial.handshake, 2);
    EXPECT_EQ(second->definition.setUp, (std::vector<std::string>{"ATZ", "ATV0"}));
    EXPECT_EQ(second->definition.redials, 3);
    EXPECT_EQ(std::ranges::count(second->definition.words, comm::ModemResult::Busy, &comm::ModemWord::result), 2);
    options.modem.overrideConfig = true;
    EXPECT_EQ(catalog.Find(options)->port, u"/dev/ttyUSB1"_s);
    EXPECT_EQ(catalog.Find(options)->serial.baud, 300);

    options = Options(u"First"_s);
    options.serial.port = 1;
    EXPECT_EQ(catalog.Find(options)->port, u"/dev/ttyS0"_s) << "the session's own";
    EXPECT_EQ(catalog.Find(options)->definition.dial, "ATD");
    EXPECT_EQ(catalog.Find(Options(u"third"_s))->port, u"/dev/serial/by-id/x"_s);
    EXPECT_FALSE(catalog.Find(Options(u"third"_s))->definition.hangUpByLine);
}

} // namespace

} // namespace kestrune
