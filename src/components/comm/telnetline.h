#pragma once

// Device 3: a TCP connection that speaks telnet, or nothing at all (bypass).

#include "deviceline.h"

#include <comm/telnet.h>

#include <QByteArray>
#include <QTcpSocket>

#include <memory>

namespace kestrune::comm {

class TelnetLine final : public DeviceLine, private TelnetEvents
{
    Q_OBJECT

public:
    static constexpr quint16 DefaultPort = 23;

    TelnetLine(const LineOptions& options, LineListener& listener, Clock& clock);
    ~TelnetLine() override;

    void Send(std::string_view bytes) override;
    qsizetype Unsent() const override { return socket_.bytesToWrite(); }
    void Resize(const TerminalSize& size) override;
    void Break(int milliseconds) override; // the length is the host's affair; nothing in bypass

private:
    void Begin() override;
    void LetGo() override;
    void TakeWaiting() override;
    void TelnetData(std::string_view bytes) override;
    void TelnetOutput(std::string_view wire) override;
    void TelnetRemoteEcho(bool remote) override;

    void HostFound();
    void SocketConnected();
    void SocketFailed(QAbstractSocket::SocketError error);
    void SocketWrote();
    void ArmKeepalive();
    void SetKeepalive();

    QTcpSocket socket_;
    Telnet telnet_;
    QString host_;
    quint16 port_ = 0;
    bool hostHasClosed_ = false;
    QByteArray held_; // decoded, but receiving was switched off in the middle
    std::unique_ptr<Clock::Timer> connectLimit_;
    std::unique_ptr<Clock::Timer> keepalive_;
};

} // namespace kestrune::comm
