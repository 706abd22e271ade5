#pragma once

// Device 4: a modem on a serial port. The line is open when the modem is set up: commands can then be typed, calls
// made and taken. A call's end does not end the line. While a number is being dialled any key stops it. A modem that
// is pulled out is waited for, and set up again when it is back.

#include <comm/deviceline.h>
#include <comm/modemcatalog.h>
#include <comm/modemdialogue.h>
#include <comm/serialline.h>

#include <memory>

namespace kestrune::comm {

class ModemLine final : public DeviceLine, private LineListener, private ModemEvents
{
    Q_OBJECT

public:
    ModemLine(const LineOptions& options, LineListener& listener, Clock& clock,
              SerialLine::PortOpener open = OpenSerialPort);
    ~ModemLine() override;

    void SetReceiving(bool on) override;
    void Send(std::string_view bytes) override;
    qsizetype Unsent() const override { return port_ ? port_->Unsent() : 0; }
    void Resize(const TerminalSize&) override {} // no modem can tell
    void Break(int milliseconds) override;
    bool Dial(const QString& number) override;
    bool HangUp() override;

private:
    void Begin() override;
    void LetGo() override;
    void TakeWaiting() override {} // the port has been told

    // --- of the port
    void LineReceived(std::string_view bytes) override;
    void LineStateChanged(LineState state, const QString& text) override;
    void LineDeviceStatus(const QString& text) override;
    void LineError(quint32 errorWord, const QString& description, bool fatal) override;
    void LineClosed() override;
    void LineProgramEnded(int, int) override {}
    void LineRemoteEcho(bool) override {}
    void LineAsks(const LineQuestion&) override {}
    void LineDrained() override;

    // --- of the modem
    void ModemOutput(std::string_view bytes) override;
    void ModemTerminalReady(bool on) override;
    void ModemSpeed(int bitsPerSecond) override;
    void ModemIsReady() override;
    void ModemIsSilent() override;
    void ModemCallChanged(ModemCall call, const std::string& said) override;

    void SetUpModem();
    void Schedule();
    void TellReady();

    DialLocation location_;
    std::optional<Modem> modem_;
    SerialLine::PortOpener open_;
    std::unique_ptr<SerialLine> port_;
    std::unique_ptr<ModemDialogue> dialogue_; // null while there is no port
    std::unique_ptr<Clock::Timer> timer_;
    QString number_; // as it is dialled
};

} // namespace kestrune::comm
