#pragma once

// The one way in which every network device gets its TCP connection: the name is looked up off the thread, the
// addresses of both families are tried as RFC 8305 asks, and a proxy is talked through. It never blocks; taking the
// connector away cancels everything. What it hands over has not read a byte of the host's, so that a user of the
// bare descriptor finds them all there.
//
//     TcpConnector connector({.host = u"host"_s, .port = 22, .limit = 30s}, *this, clock);
//     connector.Start();                         // later: TcpConnected with the socket, or TcpFailed

#include <comm/proxyhandshake.h>
#include <ports/clock.h>
#include <ports/line.h>

#include <QHostAddress>
#include <QHostInfo>
#include <QList>
#include <QObject>
#include <QTcpSocket>

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace kestrune::comm {

struct TcpTarget
{
    QString host; // a checked name or address (HostAddress)
    quint16 port = 0;
    std::chrono::seconds limit{30}; // for all of it, but not for the time that a question stands
    LineOptions::Proxy proxy{};
};

// The listener may destroy the connector in none of these; it may call Cancel in all.
class TcpConnectorEvents
{
public:
    virtual ~TcpConnectorEvents() = default;
    virtual void TcpStep(LineState state, const QString& text) = 0; // Resolving, Connecting
    // Inside a signal of the socket's: whoever does not keep it deletes it later.
    virtual void TcpConnected(std::unique_ptr<QTcpSocket> socket) = 0;
    virtual void TcpFailed(quint16 number, const QString& text) = 0;
    // The proxy wants to know who asks: answered by Retry, or by Cancel. again: it refused what it was told.
    virtual void TcpWantsProxyLogin(const QString& proxy, bool again) = 0;
};

// The system's calls.
struct TcpCalls
{
    TcpCalls();

    std::function<std::unique_ptr<QTcpSocket>()> makeSocket;
    // The number by which the lookup is cancelled, -1 when it is over; then `found` is told nothing.
    std::function<int(const QString& name, QObject* context, std::function<void(const QHostInfo&)> found)> lookUp;
};

class TcpConnector : public QObject
{
    Q_OBJECT

public:
    TcpConnector(TcpTarget target, TcpConnectorEvents& events, Clock& clock, TcpCalls calls = {});
    ~TcpConnector() override;

    void Start();
    void Retry(const QString& proxyUser, Secret proxyPassword);
    void Cancel();

    // The order in which addresses are tried: families in turn, beginning with that of the first, which the
    // system prefers; of a host with very many only the first ones.
    static std::vector<QHostAddress> Order(const QList<QHostAddress>& found);

private:
    bool HasProxy() const { return target_.proxy.kind != 0; }
    const QString& NearHost() const { return HasProxy() ? target_.proxy.host : target_.host; }
    void LookUp();
    void StartAttempts();
    void TryNext();
    void Try(const QHostAddress& address);
    void AttemptFailed(QTcpSocket* socket, QAbstractSocket::SocketError error);
    void AttemptConnected(QTcpSocket* socket);
    void GreetProxy();
    void ProxySpeaks();
    void ProxyRefuses();
    void ProxyWantsLogin();
    void StartLimit();
    void FailNear(quint16 number, const QString& reason);
    void Fail(quint16 number, const QString& reason);
    void Discard(std::unique_ptr<QTcpSocket> socket);

    TcpTarget target_;
    TcpConnectorEvents& events_;
    Clock& clock_;
    TcpCalls calls_;
    std::optional<int> lookup_;
    std::vector<QHostAddress> addresses_;
    std::size_t next_ = 0; // of addresses_
    quint16 failure_ = 0;  // of the attempts, the most telling one
    QString failureWords_;
    std::vector<std::unique_ptr<QTcpSocket>> attempts_;
    std::vector<std::unique_ptr<QTcpSocket>> discarded_; // perhaps in the middle of a signal
    std::unique_ptr<QTcpSocket> socket_;                 // to the proxy, while it is talked to
    std::optional<ProxyHandshake> handshake_;
    Secret password_;
    bool hasPassword_ = false;
    std::unique_ptr<Clock::Timer> limit_;
    std::unique_ptr<Clock::Timer> stagger_;
};

} // namespace kestrune::comm
