#pragma once

// Devices 2, 3 and 7: a TCP connection that speaks telnet, or nothing at all (bypass). SSL/telnet (7) is secure before
// the first word of either, as telnet has no way to become it later that is in use. PicLan (2) is always the
// latter: of what its servers say to each other nothing is public, so it is the bare bytes on the port that the
// session names.

#include "tlshandshake.h"
#include <comm/deviceline.h>

#include <comm/tcpconnector.h>
#include <comm/telnet.h>

#include <QByteArray>
#include <QTcpSocket>

#include <memory>

namespace kestrune::comm {

class TelnetLine final : public DeviceLine, private TelnetEvents, private TcpConnectorEvents, private TlsEvents
{
    Q_OBJECT

public:
    TelnetLine(const LineOptions& options, LineListener& listener, Clock& clock);
    ~TelnetLine() override;

    void Send(std::string_view bytes) override;
    qsizetype Unsent() const override;
    void Resize(const TerminalSize& size) override;
    void Break(int milliseconds) override; // the length is the host's affair; nothing in bypass

private:
    void Begin() override;
    void LetGo() override;
    void TakeWaiting() override;
    void TelnetData(std::string_view bytes) override;
    void TelnetOutput(std::string_view wire) override;
    void TelnetRemoteEcho(bool remote) override;

    void TcpStep(LineState state, const QString& text) override { EnterState(state, text); }
    void TcpConnected(std::unique_ptr<QTcpSocket> socket) override;
    void TcpFailed(quint16 number, const QString& text) override { Fail(number, text); }
    void TcpWantsProxyLogin(const QString& proxy, bool again) override;

    void TlsReady() override { StartTalking(); }
    void TlsFailed(quint16 number, const QString& text) override { Fail(number, text); }
    void TlsAsks(const LineQuestion& question, std::function<void(LineAnswer)> then) override;
    void TlsCancelled() override { Close(); }

    bool IsRaw() const;
    std::chrono::seconds TimeLimit() const;
    void MakeSecure();
    bool IsUrgent() const;
    void StartTalking();
    void SocketFailed(QAbstractSocket::SocketError error);
    void SocketWrote();
    void ArmKeepalive();
    void SetKeepalive();

    Telnet telnet_;
    QString host_;
    quint16 port_ = 0;
    bool hostHasClosed_ = false;
    QByteArray held_; // decoded, but receiving was switched off in the middle
    std::unique_ptr<TcpConnector> connector_;
    std::unique_ptr<QTcpSocket> socket_;
    std::unique_ptr<TlsHandshake> tls_; // of socket_, which is a QSslSocket then
    std::unique_ptr<Clock::Timer> keepalive_;
};

} // namespace kestrune::comm
