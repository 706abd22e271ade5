#pragma once

// Device 5: a shell on an SSH host. This side dials, keeps the time and speaks to its listener; the protocol is
// spoken by a conversation on a thread of its own (sshconversation.h).

#include "sshmailbox.h"
#include <comm/deviceline.h>

#include <comm/tcpconnector.h>

#include <memory>

namespace kestrune::comm {

class SshLine final : public DeviceLine, private SshNotices, private TcpConnectorEvents
{
    Q_OBJECT

public:
    static constexpr quint16 DefaultPort = 22;

    SshLine(const LineOptions& options, LineListener& listener, Clock& clock);
    ~SshLine() override;

    void Send(std::string_view bytes) override;
    qsizetype Unsent() const override { return mail_ ? mail_->Unsent() : 0; }
    void Resize(const TerminalSize& size) override;
    void Break(int milliseconds) override;

private:
    void Begin() override;
    void LetGo() override;
    void TakeWaiting() override;
    void SshDial(const QString& host, quint16 port) override;
    void SshState(LineState state, const QString& text, const QString& host) override;
    void SshDeviceStatus(const QString& text) override;
    void SshAsks(const LineQuestion& question) override;
    void SshOpened(const QString& text) override;

    void TcpStep(LineState state, const QString& text) override { EnterState(state, text); }
    void TcpConnected(std::unique_ptr<QTcpSocket> socket) override;
    void TcpFailed(quint16 number, const QString& text) override { Fail(number, text); }
    void TcpWantsProxyLogin(const QString& proxy, bool again) override;

    void Knocked();
    std::chrono::seconds TimeLimit() const;
    void ArmConnectLimit();
    void ArmKeepAlive();
    void TakeEnding();

    std::unique_ptr<TcpConnector> connector_; // until there is a socket, which the conversation gets
    QString host_;
    std::shared_ptr<SshMailbox> mail_; // shared with the conversation
    std::unique_ptr<Clock::Timer> connectLimit_;
    std::unique_ptr<Clock::Timer> keepAlive_;
};

} // namespace kestrune::comm
