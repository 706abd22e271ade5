#include <comm/tcpconnector.h>

#include "hostaddress.h"
#include "socketreason.h"

#include <platform/sockets.h>

#include <QNetworkProxy>
#include <QUrl>
#include <QtEndian>

#include <algorithm>
#include <array>
#include <utility>

namespace kestrune::comm {

namespace {

constexpr auto AttemptDelay = std::chrono::milliseconds(250); // RFC 8305, 5
constexpr std::size_t MostAddresses = 16;

struct RefusalRow
{
    ProxyHandshake::Refusal why;
    quint16 number;
    const char* words;
};

constexpr std::array RefusalRows{
    RefusalRow{ProxyHandshake::Refusal::NotAProxy, LineErrorNumber::InvalidArgument,
               QT_TRANSLATE_NOOP("kestrune::comm::TcpConnector", "it does not answer as a proxy of this kind")},
    RefusalRow{ProxyHandshake::Refusal::NotAllowed, LineErrorNumber::AccessDenied,
               QT_TRANSLATE_NOOP("kestrune::comm::TcpConnector", "it does not allow this connection")},
    RefusalRow{ProxyHandshake::Refusal::NetworkUnreachable, LineErrorNumber::NetworkUnreachable,
               QT_TRANSLATE_NOOP("kestrune::comm::TcpConnector", "it cannot reach the host's network")},
    RefusalRow{ProxyHandshake::Refusal::HostUnreachable, LineErrorNumber::HostUnreachable,
               QT_TRANSLATE_NOOP("kestrune::comm::TcpConnector", "it cannot reach the host")},
    RefusalRow{ProxyHandshake::Refusal::HostRefused, LineErrorNumber::ConnectionRefused,
               QT_TRANSLATE_NOOP("kestrune::comm::TcpConnector", "the host refused the connection")},
    RefusalRow{ProxyHandshake::Refusal::TimedOut, LineErrorNumber::TimedOut,
               QT_TRANSLATE_NOOP("kestrune::comm::TcpConnector", "the host does not answer it")},
    RefusalRow{ProxyHandshake::Refusal::Other, LineErrorNumber::HostUnreachable,
               QT_TRANSLATE_NOOP("kestrune::comm::TcpConnector", "it could not connect to the host")},
};

// A refusal proves that a host is there, which no other failure does.
bool TellsMore(quint16 number, quint16 than) { return than == 0 || number == LineErrorNumber::ConnectionRefused; }

std::string NetworkBytes(const QHostAddress& address)
{
    if (address.protocol() == QAbstractSocket::IPv4Protocol) {
        std::string bytes(4, '\0');
        qToBigEndian(address.toIPv4Address(), bytes.data());
        return bytes;
    }
    const Q_IPV6ADDR bytes = address.toIPv6Address();
    return {reinterpret_cast<const char*>(bytes.c), sizeof bytes.c};
}

} // namespace

TcpCalls::TcpCalls()
    : makeSocket([] { return std::make_unique<QTcpSocket>(); }),
      lookUp([](const QString& name, QObject* context, std::function<void(const QHostInfo&)> found) {
          return QHostInfo::lookupHost(name, context, std::move(found));
      })
{}

TcpConnector::TcpConnector(TcpTarget target, TcpConnectorEvents& events, Clock& clock, TcpCalls calls)
    : target_(std::move(target)), events_(events), clock_(clock), calls_(std::move(calls))
{}

TcpConnector::~TcpConnector() { Cancel(); }

void TcpConnector::Start()
{
    if (HasProxy()) {
        const HostAddress proxy = HostAddress::From(target_.proxy.host, target_.proxy.port, 0, true);
        if (!proxy.error.isEmpty()) {
            Fail(LineErrorNumber::InvalidArgument, tr("the settings of the proxy name no usable host and port"));
            return;
        }
        target_.proxy.host = proxy.host;
        target_.proxy.port = QString::number(proxy.port);
    }
    StartLimit();
    LookUp();
}

void TcpConnector::StartLimit()
{
    limit_ = clock_.After(target_.limit, [this] {
        const SocketReason late = SocketReason::Of(QAbstractSocket::SocketTimeoutError, {});
        if (handshake_)
            Fail(late.number, tr("the proxy %1 does not answer").arg(target_.proxy.host));
        else
            FailNear(late.number, late.words);
    });
}

void TcpConnector::Cancel()
{
    if (lookup_)
        QHostInfo::abortHostLookup(*std::exchange(lookup_, {}));
    limit_.reset();
    stagger_.reset();
    handshake_.reset();
    for (auto& attempt : std::exchange(attempts_, {}))
        Discard(std::move(attempt));
    Discard(std::move(socket_));
}

void TcpConnector::Discard(std::unique_ptr<QTcpSocket> socket)
{
    if (!socket)
        return;
    socket->disconnect(this);
    socket->abort();
    discarded_.push_back(std::move(socket));
}

void TcpConnector::Fail(quint16 number, const QString& reason)
{
    Cancel();
    events_.TcpFailed(number,
                      tr("Unable to connect to %1 port %2: %3").arg(target_.host).arg(target_.port).arg(reason));
}

// What was looked up and called directly is the host, or the proxy.
void TcpConnector::FailNear(quint16 number, const QString& reason)
{
    Fail(number, HasProxy() ? tr("proxy %1 port %2: %3").arg(target_.proxy.host, target_.proxy.port, reason) : reason);
}

// --- name and addresses

void TcpConnector::LookUp()
{
    events_.TcpStep(LineState::Resolving, tr("Looking up %1").arg(NearHost()));
    if (!limit_)
        return; // cancelled meanwhile
    if (const QHostAddress literal(NearHost()); !literal.isNull()) {
        addresses_ = {literal};
        StartAttempts();
        return;
    }
    lookup_ = calls_.lookUp(NearHost(), this, [this](const QHostInfo& info) {
        lookup_.reset();
        addresses_ = Order(info.addresses());
        if (!addresses_.empty())
            StartAttempts();
        else if (info.error() == QHostInfo::UnknownError)
            FailNear(LineErrorNumber::HostNotFound, info.errorString());
        else
            FailNear(LineErrorNumber::HostNotFound, SocketReason::Of(QAbstractSocket::HostNotFoundError, {}).words);
    });
}

std::vector<QHostAddress> TcpConnector::Order(const QList<QHostAddress>& found)
{
    std::vector<QHostAddress> preferred, others, order;
    for (const QHostAddress& address : found)
        (address.protocol() == found.front().protocol() ? preferred : others).push_back(address);
    for (std::size_t i = 0; i < std::max(preferred.size(), others.size()); ++i)
        for (const auto* family : {&preferred, &others})
            if (i < family->size() && order.size() < MostAddresses)
                order.push_back((*family)[i]);
    return order;
}

void TcpConnector::StartAttempts()
{
    next_ = 0;
    failure_ = 0;
    events_.TcpStep(LineState::Connecting, HasProxy()
                                               ? tr("Connecting to %1 by the proxy %2").arg(target_.host, NearHost())
                                               : tr("Connecting to %1").arg(target_.host));
    if (limit_)
        TryNext();
}

void TcpConnector::TryNext()
{
    stagger_.reset();
    if (next_ < addresses_.size()) {
        if (next_ + 1 < addresses_.size())
            stagger_ = clock_.After(AttemptDelay, [this] { TryNext(); });
        Try(addresses_[next_++]);
    } else if (attempts_.empty()) {
        FailNear(failure_, failureWords_);
    }
}

void TcpConnector::Try(const QHostAddress& address)
{
    QTcpSocket* socket = attempts_.emplace_back(calls_.makeSocket()).get();
    socket->setProxy(QNetworkProxy::NoProxy);
    socket->setReadBufferSize(1); // see ProxySpeaks
    connect(socket, &QAbstractSocket::connected, this, [this, socket] { AttemptConnected(socket); });
    connect(socket, &QAbstractSocket::errorOccurred, this,
            [this, socket](QAbstractSocket::SocketError error) { AttemptFailed(socket, error); });
    const quint16 port = HasProxy() ? target_.proxy.port.toUShort() : target_.port;
    socket->connectToHost(address, port);
}

void TcpConnector::AttemptFailed(QTcpSocket* socket, QAbstractSocket::SocketError error)
{
    const SocketReason reason = SocketReason::Of(error, socket->errorString());
    if (TellsMore(reason.number, failure_)) {
        failure_ = reason.number;
        failureWords_ = reason.words;
    }
    const auto attempt = std::ranges::find(attempts_, socket, &std::unique_ptr<QTcpSocket>::get);
    Discard(std::move(*attempt));
    attempts_.erase(attempt);
    TryNext();
}

void TcpConnector::AttemptConnected(QTcpSocket* socket)
{
    stagger_.reset();
    const auto attempt = std::ranges::find(attempts_, socket, &std::unique_ptr<QTcpSocket>::get);
    socket_ = std::move(*attempt);
    attempts_.erase(attempt);
    for (auto& slower : std::exchange(attempts_, {}))
        Discard(std::move(slower));
    socket_->disconnect(this);
    if (HasProxy()) {
        GreetProxy();
        return;
    }
    limit_.reset();
    events_.TcpConnected(std::move(socket_));
}

// --- the proxy

void TcpConnector::GreetProxy()
{
    ProxyRequest request;
    request.kind = static_cast<ProxyKind>(target_.proxy.kind);
    request.port = target_.port;
    const QHostAddress literal(target_.host);
    request.host = (literal.isNull() ? QString::fromLatin1(QUrl::toAce(target_.host)) : target_.host).toStdString();
    if (!literal.isNull())
        request.address = NetworkBytes(literal);
    request.user = target_.proxy.user.toStdString();
    request.password = password_.Utf8();
    request.hasPassword = hasPassword_;
    handshake_.emplace(std::move(request));

    connect(socket_.get(), &QIODevice::readyRead, this, &TcpConnector::ProxySpeaks);
    connect(socket_.get(), &QAbstractSocket::errorOccurred, this, [this](QAbstractSocket::SocketError error) {
        const bool closed = error == QAbstractSocket::RemoteHostClosedError;
        FailNear(SocketReason::Of(error, {}).number,
                 closed ? tr("it has closed the connection") : socket_->errorString());
    });
    const std::string opening = handshake_->Opening();
    socket_->write(opening.data(), static_cast<qint64>(opening.size()));
}

// The socket reads one byte ahead and no more: the one after the proxy's last is the host's.
void TcpConnector::ProxySpeaks()
{
    char byte = 0;
    while (handshake_ && socket_->read(&byte, 1) == 1) {
        const auto progress = handshake_->Take(byte);
        const std::string answer = handshake_->Answer();
        socket_->write(answer.data(), static_cast<qint64>(answer.size()));
        switch (progress) {
        case ProxyHandshake::Progress::More:
            continue;
        case ProxyHandshake::Progress::Through:
            handshake_.reset();
            limit_.reset();
            socket_->disconnect(this);
            events_.TcpConnected(std::move(socket_));
            return;
        case ProxyHandshake::Progress::WantsPassword:
            ProxyWantsLogin();
            return;
        case ProxyHandshake::Progress::Refused:
            ProxyRefuses();
            return;
        }
    }
}

void TcpConnector::ProxyRefuses()
{
    const auto row = std::ranges::find(RefusalRows, handshake_->Reason(), &RefusalRow::why);
    const QString said = QString::fromStdString(handshake_->StatusLine());
    const QString words = tr(row->words);
    FailNear(row->number, said.isEmpty() ? words : tr("%1 (%2)").arg(words, said));
}

// A new connection carries the next attempt: many proxies close this one now, and all may.
void TcpConnector::ProxyWantsLogin()
{
    const bool again = hasPassword_;
    Cancel();
    events_.TcpWantsProxyLogin(target_.proxy.host, again);
}

void TcpConnector::Retry(const QString& proxyUser, Secret proxyPassword)
{
    target_.proxy.user = proxyUser;
    password_ = std::move(proxyPassword);
    hasPassword_ = true;
    StartLimit();
    StartAttempts();
}

} // namespace kestrune::comm
