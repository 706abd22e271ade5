// Calls over a modem, as scripts make them.

#include <fakes/emulatorbench.h>
#include <fakes/failures.h>

#include <gtest/gtest.h>

namespace kestrune {

using namespace Qt::StringLiterals;

namespace {

struct ModemSession : EmulatorBench
{
    ModemSession()
    {
        lines.devices.insert(Device::Modem);
        control.Settings().SetValue(Setting("Device"), int(Device::Modem));
        QObject::connect(&control, &ctlEmulator::Disconnect, [this] { ++disconnects; });
    }
    ModemSession& Open()
    {
        control.SetOnLine(true);
        Host().Connect();
        clock.RunPosted();
        return *this;
    }
    int disconnects = 0;
};

TEST(EmulatorDial, TellsTheCallFromTheLine)
{
    ModemSession session;
    session.Open();
    EXPECT_EQ(session.control.State(), LineState::Connected);
    EXPECT_FALSE(session.control.Connected()) << "the modem is there, and no call";
    session.control.WriteText(u"AT\r"_s);
    EXPECT_EQ(session.Host().TakeSent(), "AT\r");

    EXPECT_EQ(session.control.Dial(u"555"_s), -1);
    EXPECT_EQ(session.control.DialStatus(), 1);
    session.Host().Call(DialStatus::Connected);
    EXPECT_TRUE(session.control.Connected());
    session.Host().Call(DialStatus::NoCarrier);
    EXPECT_EQ(session.disconnects, 1);
    EXPECT_EQ(session.RowText(0), u"[The call has ended]"_s);
    EXPECT_TRUE(session.control.OnLine());

    session.Host().Call(DialStatus::Connected);
    EXPECT_EQ(session.control.HangUp(), -1);
    session.Host().Call(DialStatus::NoCall);
    session.Host().dials = false;
    EXPECT_EQ(session.control.HangUp(), 0);
    EXPECT_EQ(session.control.Dial(u"555"_s), 0);
    EXPECT_EQ(session.disconnects, 1);
    session.Host().Drop();
    EXPECT_EQ(session.control.DialStatus(), 0);
}

TEST(EmulatorDial, DialsOnceTheModemIsReady)
{
    ModemSession session;
    EXPECT_EQ(session.control.Dial(u"555"_s), -1);
    EXPECT_TRUE(session.Host().dialled.empty());
    session.Host().Connect();
    session.clock.RunPosted();
    EXPECT_EQ(session.Host().dialled, std::vector<QString>(1, u"555"_s));
    session.Host().Drop();

    EXPECT_EQ(session.control.Dial(u"556"_s), -1);
    session.Host().Fail(0x4274C, u"no modem"_s);
    session.Open();
    EXPECT_TRUE(session.Host().dialled.empty()) << "that wish went with its line";
}

TEST(EmulatorDial, WaitsForTheOutcome)
{
    struct Case
    {
        const char* name;
        std::function<void(ModemSession&)> step;
        int dialed;
    };
    for (const Case& c : {
             Case{"answered", [](ModemSession& s) { s.Host().Call(DialStatus::Connected); }, -1},
             Case{"busy", [](ModemSession& s) { s.Host().Call(DialStatus::Busy); }, 0},
             Case{"the line fails", [](ModemSession& s) { s.Host().Fail(0x4274C, u"gone"_s); }, 0},
             Case{"given up", [](ModemSession& s) { s.control.Abort(); }, 0},
             Case{"the session ends", [](ModemSession& s) { s.control.Shutdown(); }, 0},
         }) {
        ModemSession session;
        session.Open();
        session.waiter.during.emplace_back([&] { c.step(session); });
        EXPECT_EQ(session.control.Dial(u"555"_s, 1), c.dialed) << c.name;
    }
    ModemSession session;
    session.waiter.during.emplace_back([&] { session.Host().Connect(); });
    session.waiter.during.emplace_back([&] { session.clock.RunPosted(); });
    session.waiter.during.emplace_back([&] { session.Host().Call(DialStatus::Connected); });
    EXPECT_EQ(session.control.Dial(u"555"_s, 1), -1) << "opened first";
    session.waiter.during.emplace_back([&] { session.Host().Call(DialStatus::NoCall); });
    EXPECT_EQ(session.control.HangUp(1), -1);
    session.Host().Call(DialStatus::Connected);
    session.waiter.during.emplace_back([&] { session.Host().Call(DialStatus::Connected); });
    EXPECT_EQ(session.control.HangUp(1), 0) << "the modem would not";
}

TEST(EmulatorDial, NeedsAModem)
{
    EmulatorBench bench;
    bench.Connect();
    EXPECT_EQ(FailureNumber([&] { bench.control.Dial(u"555"_s); }), int(ErrorNumber::InvalidCall));
    EXPECT_EQ(bench.control.DialStatus(), 0);
    EXPECT_EQ(bench.control.HangUp(), -1);
    EXPECT_TRUE(bench.Host().closing) << "the connection itself";
    EXPECT_EQ(bench.Host().hangUps, 0);
}

} // namespace

} // namespace kestrune
