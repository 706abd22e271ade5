// The serial device on pseudo-terminals. What those have not got (modem lines, seven bits, parity) is a fake port's.

#include "cable.h"
#include "linerig.h"

#include <comm/serialline.h>
#include <fakes/fakeclock.h>

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <fcntl.h>
#include <termios.h>
#include <unistd.h>

namespace kestrune {

namespace {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

LineOptions SerialTo(const QString& path)
{
    LineOptions options;
    options.device = Device::SerialPort;
    options.hostName = path;
    return options;
}

TEST(SerialLine, CarriesEveryByteBothWays)
{
    Cable cable;
    LineRig rig(SerialTo(cable.Path()));
    ASSERT_TRUE(rig.Opened().UntilOpen());
    EXPECT_EQ(rig.deviceStatus, cable.Path().section(u'/', -1) + u" 9600 8N1"_s);
    QByteArray all;
    for (int i = 0; i < 256; ++i)
        all += static_cast<char>(i);
    rig.Type(all);
    EXPECT_TRUE(cable.Hears(all));
    cable.Says(all);
    EXPECT_TRUE(rig.UntilReceived(all));
    EXPECT_TRUE(rig.Until([&] { return rig.drained > 0; }));
    rig.line->Break(10);

    rig.line->SetReceiving(false);
    cable.Says("later");
    rig.line->SetReceiving(true);
    EXPECT_TRUE(rig.UntilReceived("later"));
    rig.line->Close();
    ASSERT_TRUE(rig.UntilClosed());
    EXPECT_EQ(rig.errors, QStringList());
}

TEST(SerialLine, SetsSpeedStopBitsAndHandshake)
{
    struct Case
    {
        unsigned baud;
        int stopBits, handshake;
        tcflag_t input, control;
    };
    for (const Case& c : {Case{300, 1, 0, 0, 0}, Case{115200, 2, 1, IXON, CSTOPB}, Case{38400, 1, 2, 0, CRTSCTS},
                          Case{14400, 1, 3, 0, 0}, Case{19200, 1, 4, IXON | IXOFF, 0}}) {
        const Cable cable;
        LineOptions options = SerialTo(cable.Path());
        options.serial.baud = static_cast<int>(c.baud);
        options.serial.stopBits = c.stopBits;
        options.serial.handshake = c.handshake;
        LineRig rig(options);
        ASSERT_TRUE(rig.Opened().UntilOpen());
        const termios settings = cable.Settings();
        EXPECT_EQ(cable.Speed(), c.baud);
        EXPECT_EQ(settings.c_iflag & (IXON | IXOFF), c.input);
        EXPECT_EQ(settings.c_cflag & (CSTOPB | CRTSCTS), c.control);
    }
}

TEST(SerialLine, SaysWhyAPortCannotBeHad)
{
    const Cable taken, seven;
    LineRig owner(SerialTo(taken.Path()));
    ASSERT_TRUE(owner.Opened().UntilOpen());
    LineOptions sevenBits = SerialTo(seven.Path()); // which a pseudo-terminal cannot
    sevenBits.serial.dataBits = 7;
    sevenBits.serial.parity = 2;
    LineOptions nothing = SerialTo({});
    struct Case
    {
        LineOptions options;
        quint32 word;
        QString text;
    };
    for (const Case& c : {
             Case{SerialTo(taken.Path()), 0x1271D,
                  u"Unable to open %1: another program is using it"_s.arg(taken.Path())},
             Case{SerialTo(u"/dev/no-such-port"_s), 0x10002,
                  u"Unable to open /dev/no-such-port: there is no such port"_s},
             Case{SerialTo(u"/dev/null"_s), 0x12726, u"Unable to open /dev/null: it is not a serial port"_s},
             Case{sevenBits, 0x12726, u"Unable to open %1: it cannot be set to 9600 7E1"_s.arg(seven.Path())},
             Case{nothing, 0x12726, u"Unable to connect: the session names no serial port."_s},
         }) {
        LineRig rig(c.options);
        ASSERT_TRUE(rig.Opened().UntilClosed());
        EXPECT_EQ(rig.errors, QStringList(c.text));
        EXPECT_EQ(rig.errorWord, c.word);
    }
}

TEST(SerialLine, WaitsForAPortThatWasPulledOut)
{
    const QTemporaryDir folder;
    const QString stable = folder.filePath(u"by-id"_s); // as the system's links in /dev/serial/by-id
    auto first = std::make_unique<Cable>();
    ASSERT_TRUE(QFile::link(first->Path(), stable));
    FakeClock clock;
    LineRig rig(SerialTo(stable), clock);
    ASSERT_TRUE(rig.Opened().UntilOpen());
    ASSERT_TRUE(QFile::remove(stable));
    first.reset();
    ASSERT_TRUE(rig.Until([&] { return rig.states.back() == LineState::Connecting; }));
    EXPECT_EQ(rig.stateText, stable + u" is gone; waiting for it to come back"_s);
    EXPECT_EQ(rig.closed, 0);
    rig.Type("lost");
    rig.line->Break(1);
    clock.Advance(5s);
    EXPECT_EQ(rig.states.back(), LineState::Connecting);

    Cable second;
    ASSERT_TRUE(QFile::link(second.Path(), stable));
    clock.Advance(1s);
    EXPECT_EQ(rig.states.back(), LineState::Connected);
    rig.Type("again");
    EXPECT_TRUE(second.Hears("again"));
}

// A port with modem lines, on a cable that has none.
class LinedPort : public SerialPort
{
public:
    struct State
    {
        ModemLines lines;
        bool broken = false, ready = true;
        SerialFrame frame;
    };
    LinedPort(const std::string& path, State& state)
        : descriptor_(::open(path.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK)), state_(state)
    {
        termios raw{};
        ::cfmakeraw(&raw);
        EXPECT_EQ(::tcsetattr(descriptor_, TCSANOW, &raw), 0);
    }
    ~LinedPort() override { ::close(descriptor_); }
    int Descriptor() const override { return descriptor_; }
    std::optional<ModemLines> Lines() const override { return state_.lines; }
    void SetBreak(bool on) override { state_.broken = on; }
    void SetTerminalReady(bool on) override { state_.ready = on; }
    bool SetSpeed(int) override { return true; }

private:
    int descriptor_;
    State& state_;
};

TEST(SerialLine, ShowsAndObeysModemLines)
{
    Cable cable;
    LinedPort::State state;
    FakeClock clock;
    LineOptions options = SerialTo(cable.Path());
    options.serial = {.baud = 300, .dataBits = 7, .stopBits = 2, .parity = 3, .handshake = 3};
    LineRig rig(options, clock);
    rig.line = std::make_unique<comm::SerialLine>(options, rig, clock,
                                                  [&state](const std::string& path, const SerialFrame& frame, int&) {
                                                      state.frame = frame;
                                                      return std::make_unique<LinedPort>(path, state);
                                                  });
    ASSERT_TRUE(rig.Opened().UntilOpen());
    EXPECT_EQ(state.frame.parity, SerialParity::Mark);
    const QString name = cable.Path().section(u'/', -1);
    EXPECT_EQ(rig.deviceStatus, name + u" 300 7M2"_s);
    rig.Type("held until the far side is ready");
    clock.Advance(1s);
    EXPECT_EQ(rig.line->Unsent(), 32);
    state.lines = {.clearToSend = true, .dataSetReady = true, .carrier = true};
    clock.Advance(250ms);
    EXPECT_EQ(rig.deviceStatus, name + u" 300 7M2 CTS DSR DCD"_s);
    EXPECT_TRUE(cable.Hears("held until"));

    rig.line->SetReceiving(false);
    cable.Says("x");
    EXPECT_TRUE(rig.Until([&] { return !state.ready; })) << "the far side is asked to wait";
    rig.line->SetReceiving(true);
    EXPECT_TRUE(rig.UntilReceived("x"));
    EXPECT_TRUE(state.ready);

    rig.line->Break(250);
    EXPECT_TRUE(state.broken);
    clock.Advance(250ms);
    EXPECT_FALSE(state.broken);
}

} // namespace

} // namespace kestrune
