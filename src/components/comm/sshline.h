#pragma once

// Device 5: a shell on an SSH host. This side dials, keeps the time and speaks to its listener; the protocol is
// spoken by a conversation on a thread of its own (sshconversation.h).

#include "deviceline.h"
#include "sshmailbox.h"

#include <QTcpSocket>

#include <memory>

namespace kestrune::comm {

class SshLine final : public DeviceLine, private SshNotices
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
    void Answer(LineAnswer answer) override;

private:
    void Begin() override;
    void LetGo() override;
    void TakeWaiting() override;
    void SshDial(const QString& host, quint16 port) override;
    void SshState(LineState state, const QString& text) override;
    void SshDeviceStatus(const QString& text) override;
    void SshAsks(const LineQuestion& question) override;
    void SshOpened(const QString& text) override;

    void Knocked();
    void SocketConnected();
    void SocketFailed(QAbstractSocket::SocketError error);
    void ArmConnectLimit();
    void ArmKeepAlive();
    void TakeEnding();

    QTcpSocket socket_; // until it is connected; the conversation has a copy then
    QString host_;
    quint16 port_ = 0;
    std::shared_ptr<SshMailbox> mail_; // shared with the conversation
    quint32 standingQuestion_ = 0;     // 0: none
    std::unique_ptr<Clock::Timer> connectLimit_;
    std::unique_ptr<Clock::Timer> keepAlive_;
};

} // namespace kestrune::comm
