#include "telnetline.h"

#include "hostaddress.h"
#include "socketreason.h"

#include <platform/sockets.h>

#include <algorithm>
#include <array>
#include <utility>

namespace kestrune::comm {

namespace {

constexpr int DefaultConnectTimeout = 30; // seconds
// What the socket may hold unread, and so what one wake-up takes at most: the engine parses it in about 3 ms,
// and the window is drawn between wake-ups.
constexpr qint64 ReadAhead = qint64{256} * 1024;
constexpr qint64 ReadPiece = qint64{64} * 1024;

// What a host that does not know a terminal's own name is told next: each of these types can do what those
// after it can.
std::vector<std::string> TerminalNames(const QString& name)
{
    static constexpr std::array<std::string_view, 4> family{"vt420", "vt320", "vt220", "vt100"};
    const std::string own = name.isEmpty() ? "UNKNOWN" : name.toStdString();
    const auto known = std::ranges::find(family, own);
    if (known == family.end())
        return {own};
    return {known, family.end()};
}

TelnetSettings SettingsFor(const LineOptions& options)
{
    TelnetSettings settings;
    settings.terminalNames = TerminalNames(options.terminalName);
    settings.cols = options.size.cols;
    settings.rows = options.size.rows;
    settings.binary = options.telnet.binary;
    settings.localEcho = options.telnet.localEcho;
    // A name with a dash in front would be an option to the login program of a careless host.
    if (!options.userName.startsWith('-'))
        settings.userName = options.userName.toStdString();
    return settings;
}

struct NetworkDevice
{
    Device device;
    quint16 defaultPort; // 0: the session has to name one
    const char* status;
};

constexpr std::array NetworkDevices{
    NetworkDevice{Device::PicLan, 0, QT_TRANSLATE_NOOP("kestrune::comm::TelnetLine", "PicLan %1:%2")},
    NetworkDevice{Device::Telnet, 23, QT_TRANSLATE_NOOP("kestrune::comm::TelnetLine", "Telnet %1:%2")},
    NetworkDevice{Device::SslTelnet, 992, QT_TRANSLATE_NOOP("kestrune::comm::TelnetLine", "SSL/Telnet %1:%2")},
};

const NetworkDevice& NetworkDeviceOf(Device device)
{
    const auto row = std::ranges::find(NetworkDevices, device, &NetworkDevice::device);
    return row == NetworkDevices.end() ? NetworkDevices[1] : *row;
}

} // namespace

TelnetLine::TelnetLine(const LineOptions& options, LineListener& listener, Clock& clock)
    : DeviceLine(options, listener, clock), telnet_(SettingsFor(options), *this)
{}

// The socket speaks once more while it goes; by then there is nobody to tell.
TelnetLine::~TelnetLine()
{
    if (socket_)
        socket_->disconnect(this);
}

std::chrono::seconds TelnetLine::TimeLimit() const
{
    return std::chrono::seconds(Options().connectTimeout > 0 ? Options().connectTimeout : DefaultConnectTimeout);
}

bool TelnetLine::IsRaw() const { return Options().telnet.bypass || Options().device == Device::PicLan; }

void TelnetLine::Begin()
{
    const NetworkDevice& device = NetworkDeviceOf(Options().device);
    const HostAddress address =
        HostAddress::From(Options().hostName, Options().hostPort, device.defaultPort, Options().tcpIdn);
    if (!address.error.isEmpty()) {
        Fail(LineErrorNumber::InvalidArgument, address.error);
        return;
    }
    host_ = address.host;
    port_ = address.port;
    Listener().LineDeviceStatus(tr(device.status).arg(host_).arg(port_));
    if (HasEnded())
        return;
    TcpCalls calls;
    if (Options().device == Device::SslTelnet)
        calls.makeSocket = [] { return std::make_unique<QSslSocket>(); };
    connector_ = std::make_unique<TcpConnector>(
        TcpTarget{.host = host_, .port = port_, .limit = TimeLimit(), .proxy = Options().proxy},
        static_cast<TcpConnectorEvents&>(*this), Time(), std::move(calls));
    connector_->Start();
}

void TelnetLine::TcpWantsProxyLogin(const QString& proxy, bool again)
{
    AskProxyLogin(proxy, host_, again,
                  [this](const QString& user, Secret password) { connector_->Retry(user, std::move(password)); });
}

void TelnetLine::TcpConnected(std::unique_ptr<QTcpSocket> socket)
{
    socket_ = std::move(socket);
    socket_->setReadBufferSize(ReadAhead);
    KeepUrgentInline(socket_->socketDescriptor());
    if (Options().tcpNoDelay)
        socket_->setSocketOption(QAbstractSocket::LowDelayOption, 1);
    if (Options().device == Device::SslTelnet)
        MakeSecure();
    else
        StartTalking();
}

void TelnetLine::MakeSecure()
{
    EnterState(LineState::Authenticating, tr("Securing %1").arg(host_));
    if (HasEnded())
        return;
    tls_ = std::make_unique<TlsHandshake>(static_cast<QSslSocket&>(*socket_),
                                          TlsHandshake::Peer{.host = host_, .port = port_, .limit = TimeLimit()},
                                          Options().tls, static_cast<TlsEvents&>(*this), Time());
    tls_->Start();
}

void TelnetLine::TlsAsks(const LineQuestion& question, std::function<void(LineAnswer)> then)
{
    Ask(question, std::move(then));
}

void TelnetLine::StartTalking()
{
    connect(socket_.get(), &QAbstractSocket::errorOccurred, this, &TelnetLine::SocketFailed);
    connect(socket_.get(), &QIODevice::readyRead, this, &TelnetLine::TakeWaiting);
    connect(socket_.get(), &QIODevice::bytesWritten, this, &TelnetLine::SocketWrote);
    if (tls_)
        connect(static_cast<QSslSocket*>(socket_.get()), &QSslSocket::encryptedBytesWritten, this,
                &TelnetLine::SocketWrote);
    SetKeepalive();
    BecomeOpen(tr("Connected to %1").arg(host_));
    // On other ports there may be something that is no telnet server; there the host speaks first.
    if (IsOpen() && !IsRaw() && port_ == NetworkDeviceOf(Options().device).defaultPort)
        telnet_.Start();
}

void TelnetLine::SetKeepalive()
{
    if (Options().keepaliveInterval <= 0)
        return;
    SetTcpPatience(socket_->socketDescriptor(), KeepalivesUnanswered * Options().keepaliveInterval);
    if (Options().telnet.keepaliveIsNop && !IsRaw())
        ArmKeepalive();
    else if (!SetTcpKeepalive(socket_->socketDescriptor(), Options().keepaliveInterval))
        Listener().LineError(LineErrorWord(Options().device, LineErrorNumber::InvalidArgument),
                             tr("The system refused to keep the connection to %1 alive every %n second(s).", nullptr,
                                Options().keepaliveInterval)
                                 .arg(host_),
                             false);
}

void TelnetLine::ArmKeepalive()
{
    keepalive_ = Time().After(std::chrono::seconds(Options().keepaliveInterval), [this] {
        telnet_.SendNop();
        ArmKeepalive();
    });
}

void TelnetLine::SocketFailed(QAbstractSocket::SocketError error)
{
    if (HasEnded())
        return;
    if (tls_ && !tls_->Refusal().isEmpty()) {
        Fail(LineErrorNumber::AccessDenied,
             tr("The host %1 has ended the secure connection: %2").arg(host_, tls_->Refusal()));
        return;
    }
    if (IsOpen() && error == QAbstractSocket::RemoteHostClosedError) {
        hostHasClosed_ = true;
        Post([this] { TakeWaiting(); }); // the socket is still in the middle of closing
        return;
    }
    const SocketReason reason = SocketReason::Of(error, socket_->errorString());
    Fail(reason.number, tr("The connection to %1 was lost: %2").arg(host_, reason.words));
}

void TelnetLine::LetGo()
{
    keepalive_.reset();
    if (connector_)
        connector_->Cancel();
    if (tls_)
        tls_->Stop();
    if (!socket_)
        return;
    socket_->flush(); // what was typed last still goes out
    socket_->abort();
}

// --- from the host

void TelnetLine::TakeWaiting()
{
    if (IsOpen() && Receiving() && !held_.isEmpty()) {
        const QByteArray held = std::exchange(held_, {});
        Listener().LineReceived({held.constData(), static_cast<std::size_t>(held.size())});
    }
    if (IsUrgent())
        telnet_.BeginSynch();
    while (IsOpen() && Receiving() && socket_->bytesAvailable() > 0) {
        const QByteArray piece = socket_->read(ReadPiece);
        const std::string_view bytes(piece.constData(), static_cast<std::size_t>(piece.size()));
        if (IsRaw())
            Listener().LineReceived(bytes);
        else
            telnet_.Receive(bytes);
    }
    if (!IsUrgent() && IsOpen() && socket_->bytesAvailable() == 0)
        telnet_.EndSynch();
    if (IsOpen() && hostHasClosed_ && held_.isEmpty() && socket_->bytesAvailable() == 0)
        End({.stateText = tr("The host %1 has closed the connection.").arg(host_)});
}

// There is no urgent byte in a secure stream.
bool TelnetLine::IsUrgent() const
{
    return IsOpen() && !IsRaw() && !tls_ && HasUrgentAhead(socket_->socketDescriptor());
}

qsizetype TelnetLine::Unsent() const
{
    if (!socket_)
        return 0;
    return socket_->bytesToWrite() + (tls_ ? static_cast<QSslSocket&>(*socket_).encryptedBytesToWrite() : 0);
}

void TelnetLine::TelnetData(std::string_view bytes)
{
    if (!IsOpen())
        return; // closed by the listener in the middle of a piece
    if (Receiving())
        Listener().LineReceived(bytes);
    else
        held_.append(bytes.data(), static_cast<qsizetype>(bytes.size()));
}

void TelnetLine::TelnetRemoteEcho(bool remote) { Listener().LineRemoteEcho(remote); }

// --- to the host

void TelnetLine::Send(std::string_view bytes)
{
    if (!IsOpen() || bytes.empty() || !HasRoomFor(static_cast<qsizetype>(bytes.size())))
        return;
    if (IsRaw())
        TelnetOutput(bytes);
    else
        telnet_.Send(bytes);
}

// Answers of the protocol count too: a host that asks without end and reads nothing gets no more of them.
void TelnetLine::TelnetOutput(std::string_view wire)
{
    if (IsOpen() && Unsent() < 2 * MaxUnsent)
        socket_->write(wire.data(), static_cast<qint64>(wire.size()));
}

void TelnetLine::SocketWrote()
{
    if (IsOpen() && Unsent() == 0)
        Drained();
}

void TelnetLine::Resize(const TerminalSize& size) { telnet_.Resize(size.cols, size.rows); }

void TelnetLine::Break(int)
{
    if (IsOpen() && !IsRaw())
        telnet_.SendBreak(Options().telnet.alternateBreak ? TelnetBreak::InterruptProcess : TelnetBreak::Break);
}

} // namespace kestrune::comm
