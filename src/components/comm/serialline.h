#pragma once

// Device 1: a serial port by its number, or by the path that the host name gives (/dev/serial/by-id/...), which
// stays the same wherever an adapter is plugged in. A port that is pulled out is waited for, and used again when it
// is back.

#include <comm/deviceline.h>
#include <platform/serialport.h>

#include <QByteArray>
#include <QSocketNotifier>

#include <functional>
#include <memory>
#include <optional>

namespace kestrune::comm {

class SerialLine final : public DeviceLine
{
    Q_OBJECT

public:
    using PortOpener = std::function<std::unique_ptr<SerialPort>(const std::string&, const SerialFrame&, int&)>;

    SerialLine(const LineOptions& options, LineListener& listener, Clock& clock, PortOpener open = OpenSerialPort);
    ~SerialLine() override;

    void Send(std::string_view bytes) override;
    qsizetype Unsent() const override { return unsent_.size(); }
    void Resize(const TerminalSize&) override {} // a serial line has no way to tell
    void Break(int milliseconds) override;

    // --- for a modem behind the port; without effect while it is pulled out
    void WatchModemLines(std::function<void(const ModemLines&)> told) { linesTold_ = std::move(told); } // of changes
    std::optional<ModemLines> Lines() const { return lines_; } // nothing: the port has none
    void SetTerminalReady(bool on);
    void SetSpeed(int baud); // bits per second; 0: that of the settings

private:
    void Begin() override;
    void LetGo() override;
    void TakeWaiting() override;

    bool OpenPort(int& systemError);
    void ClosePort();
    void PortGone();
    void WaitForReturn();
    void Write();
    void WatchLines();
    bool MaySend() const;
    void TellStatus();
    QString WhyNot(int systemError) const;

    PortOpener open_;
    QString path_;
    SerialFrame frame_;                // as it is now
    std::unique_ptr<SerialPort> port_; // null while it is pulled out
    std::unique_ptr<QSocketNotifier> readable_;
    std::unique_ptr<QSocketNotifier> writable_;
    std::optional<ModemLines> lines_;
    std::function<void(const ModemLines&)> linesTold_;
    QByteArray unsent_;
    std::unique_ptr<Clock::Timer> watch_;
    std::unique_ptr<Clock::Timer> return_;
    std::unique_ptr<Clock::Timer> break_;
};

} // namespace kestrune::comm
