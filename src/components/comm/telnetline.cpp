#include "telnetline.h"

#include "hostaddress.h"

#include <platform/sockets.h>

#include <QNetworkProxy>

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

struct SocketReason
{
    QAbstractSocket::SocketError error;
    quint16 number;
    const char* words;
};

constexpr std::array SocketReasons{
    SocketReason{QAbstractSocket::ConnectionRefusedError, LineErrorNumber::ConnectionRefused,
                 QT_TRANSLATE_NOOP("kestrune::comm::TelnetLine", "connection refused")},
    SocketReason{QAbstractSocket::HostNotFoundError, LineErrorNumber::HostNotFound,
                 QT_TRANSLATE_NOOP("kestrune::comm::TelnetLine", "no host of this name was found")},
    SocketReason{QAbstractSocket::SocketTimeoutError, LineErrorNumber::TimedOut,
                 QT_TRANSLATE_NOOP("kestrune::comm::TelnetLine", "the host does not answer")},
    SocketReason{QAbstractSocket::SocketAccessError, LineErrorNumber::AccessDenied,
                 QT_TRANSLATE_NOOP("kestrune::comm::TelnetLine", "access denied")},
    SocketReason{QAbstractSocket::SocketResourceError, LineErrorNumber::NoBufferSpace,
                 QT_TRANSLATE_NOOP("kestrune::comm::TelnetLine", "the system has no room for another connection")},
    SocketReason{QAbstractSocket::RemoteHostClosedError, LineErrorNumber::ConnectionReset,
                 QT_TRANSLATE_NOOP("kestrune::comm::TelnetLine", "the host has closed the connection")},
};

} // namespace

TelnetLine::TelnetLine(const LineOptions& options, LineListener& listener, Clock& clock)
    : DeviceLine(options, listener, clock), telnet_(SettingsFor(options), *this)
{
    socket_.setProxy(QNetworkProxy::NoProxy);
    socket_.setReadBufferSize(ReadAhead);
    connect(&socket_, &QAbstractSocket::hostFound, this, &TelnetLine::HostFound);
    connect(&socket_, &QAbstractSocket::connected, this, &TelnetLine::SocketConnected);
    connect(&socket_, &QAbstractSocket::errorOccurred, this, &TelnetLine::SocketFailed);
    connect(&socket_, &QIODevice::readyRead, this, &TelnetLine::TakeWaiting);
    connect(&socket_, &QIODevice::bytesWritten, this, &TelnetLine::SocketWrote);
}

// The socket speaks once more while it goes; by then there is nobody to tell.
TelnetLine::~TelnetLine() { socket_.disconnect(this); }

void TelnetLine::Begin()
{
    const HostAddress address =
        HostAddress::From(Options().hostName, Options().hostPort, DefaultPort, Options().tcpIdn);
    if (!address.error.isEmpty()) {
        Fail(LineErrorNumber::InvalidArgument, address.error);
        return;
    }
    host_ = address.host;
    port_ = address.port;
    const int seconds = Options().connectTimeout > 0 ? Options().connectTimeout : DefaultConnectTimeout;
    connectLimit_ =
        Time().After(std::chrono::seconds(seconds), [this] { SocketFailed(QAbstractSocket::SocketTimeoutError); });
    Listener().LineDeviceStatus(tr("Telnet %1:%2").arg(host_).arg(port_));
    EnterState(LineState::Resolving, tr("Looking up %1").arg(host_));
    if (!HasEnded())
        socket_.connectToHost(host_, port_);
}

void TelnetLine::HostFound()
{
    if (!HasEnded())
        EnterState(LineState::Connecting, tr("Connecting to %1").arg(host_));
}

void TelnetLine::SocketConnected()
{
    if (HasEnded())
        return;
    connectLimit_.reset();
    SetKeepalive();
    if (Options().tcpNoDelay)
        socket_.setSocketOption(QAbstractSocket::LowDelayOption, 1);
    BecomeOpen(tr("Connected to %1").arg(host_));
    // On other ports there may be something that is no telnet server; there the host speaks first.
    if (IsOpen() && port_ == DefaultPort && !Options().telnet.bypass)
        telnet_.Start();
}

void TelnetLine::SetKeepalive()
{
    if (Options().keepaliveInterval <= 0)
        return;
    if (Options().telnet.keepaliveIsNop && !Options().telnet.bypass)
        ArmKeepalive();
    else if (!SetTcpKeepalive(socket_.socketDescriptor(), Options().keepaliveInterval))
        Listener().LineError(LineErrorWord(Device::Telnet, LineErrorNumber::InvalidArgument),
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
    if (IsOpen() && error == QAbstractSocket::RemoteHostClosedError) {
        hostHasClosed_ = true;
        Post([this] { TakeWaiting(); }); // the socket is still in the middle of closing
        return;
    }
    const auto known = std::ranges::find(SocketReasons, error, &SocketReason::error);
    const bool isKnown = known != SocketReasons.end();
    const QString reason = isKnown ? tr(known->words) : socket_.errorString();
    const QString text = IsOpen() ? tr("The connection to %1 was lost: %2").arg(host_, reason)
                                  : tr("Unable to connect to %1 port %2: %3").arg(host_).arg(port_).arg(reason);
    Fail(isKnown ? known->number : LineErrorNumber::NetworkUnreachable, text);
}

void TelnetLine::LetGo()
{
    connectLimit_.reset();
    keepalive_.reset();
    socket_.flush(); // what was typed last still goes out
    socket_.abort();
}

// --- from the host

void TelnetLine::TakeWaiting()
{
    if (IsOpen() && Receiving() && !held_.isEmpty()) {
        const QByteArray held = std::exchange(held_, {});
        Listener().LineReceived({held.constData(), static_cast<std::size_t>(held.size())});
    }
    while (IsOpen() && Receiving() && socket_.bytesAvailable() > 0) {
        const QByteArray piece = socket_.read(ReadPiece);
        const std::string_view bytes(piece.constData(), static_cast<std::size_t>(piece.size()));
        if (Options().telnet.bypass)
            Listener().LineReceived(bytes);
        else
            telnet_.Receive(bytes);
    }
    if (IsOpen() && hostHasClosed_ && held_.isEmpty() && socket_.bytesAvailable() == 0)
        End({.stateText = tr("The host %1 has closed the connection.").arg(host_)});
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
    if (Options().telnet.bypass)
        TelnetOutput(bytes);
    else
        telnet_.Send(bytes);
}

// Answers of the protocol count too: a host that asks without end and reads nothing gets no more of them.
void TelnetLine::TelnetOutput(std::string_view wire)
{
    if (IsOpen() && Unsent() < 2 * MaxUnsent)
        socket_.write(wire.data(), static_cast<qint64>(wire.size()));
}

void TelnetLine::SocketWrote()
{
    if (IsOpen() && Unsent() == 0)
        Drained();
}

void TelnetLine::Resize(const TerminalSize& size) { telnet_.Resize(size.cols, size.rows); }

void TelnetLine::Break(int)
{
    if (IsOpen() && !Options().telnet.bypass)
        telnet_.SendBreak(Options().telnet.alternateBreak ? TelnetBreak::InterruptProcess : TelnetBreak::Break);
}

} // namespace kestrune::comm
