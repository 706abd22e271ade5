#include "sshline.h"

#include "hostaddress.h"
#include "sshconversation.h"
#include <comm/sshforwardlist.h>
#include <comm/sshtarget.h>

#include <platform/sockets.h>

#include <algorithm>
#include <utility>

namespace kestrune::comm {

namespace {

constexpr int DefaultSshTimeout = 30; // seconds
// One wake-up takes at most so much, which the engine parses in about 3 ms; the window is drawn in between.
constexpr qsizetype MostSshAtOnce = qsizetype{256} * 1024;
constexpr qsizetype SshReadPiece = qsizetype{64} * 1024;

} // namespace

SshLine::SshLine(const LineOptions& options, LineListener& listener, Clock& clock)
    : DeviceLine(options, listener, clock)
{}

SshLine::~SshLine() { SshLine::LetGo(); }

void SshLine::Begin()
{
    const SshTarget target = SshTarget::From(Options().hostName);
    const QString port = Options().hostPort.trimmed().isEmpty() ? target.port : Options().hostPort;
    const HostAddress address = HostAddress::From(target.host, port, DefaultPort, Options().tcpIdn);
    if (!address.error.isEmpty()) {
        Fail(LineErrorNumber::InvalidArgument, address.error);
        return;
    }
    if (const QString wrong = SshForwardList::From(Options().ssh.forwards).wrong; !wrong.isEmpty()) {
        Fail(LineErrorNumber::InvalidArgument,
             tr("Unable to connect: the session's forwarded port \"%1\" is not like L8080:host:80, R2222:host:22 or "
                "D1080.")
                 .arg(wrong));
        return;
    }
    mail_ = std::make_shared<SshMailbox>(*this, [this] { Knocked(); });
    StartSshConversation(Options(), mail_);
}

void SshLine::LetGo()
{
    connectLimit_.reset();
    keepAlive_.reset();
    if (connector_)
        connector_->Cancel();
    if (mail_)
        mail_->Cancel();
}

// --- what the conversation says

void SshLine::Knocked()
{
    for (const SshMailbox::Notice& notice : mail_->TakeNotices())
        if (!HasEnded())
            notice(*this);
    TakeWaiting();
    if (!HasEnded() && mail_->TakeDrained())
        Drained();
}

void SshLine::SshDial(const QString& host, quint16 port)
{
    host_ = host;
    connector_ = std::make_unique<TcpConnector>(
        TcpTarget{.host = host_, .port = port, .limit = TimeLimit(), .proxy = Options().proxy},
        static_cast<TcpConnectorEvents&>(*this), Time());
    connector_->Start();
}

void SshLine::TcpWantsProxyLogin(const QString& proxy, bool again)
{
    AskProxyLogin(proxy, host_, again,
                  [this](const QString& user, Secret password) { connector_->Retry(user, std::move(password)); });
}

void SshLine::TcpConnected(std::unique_ptr<QTcpSocket> socket)
{
    const qintptr descriptor = socket->socketDescriptor();
    if (Options().tcpNoDelay || Options().ssh.noDelay)
        socket->setSocketOption(QAbstractSocket::LowDelayOption, 1);
    if (Options().keepaliveInterval > 0) {
        SetTcpKeepalive(descriptor, Options().keepaliveInterval);
        SetTcpPatience(descriptor, KeepalivesUnanswered * Options().keepaliveInterval);
    }
    const int copy = DuplicateSocket(descriptor);
    socket->abort();                 // closes this descriptor only
    socket.release()->deleteLater(); // it is telling us this
    ArmConnectLimit();
    if (copy < 0)
        Fail(LineErrorNumber::NoBufferSpace, tr("The system has no room for another connection."));
    else
        mail_->GiveSocket(copy);
}

// Each step on the way has the time that the session gives to a connection.
void SshLine::SshState(LineState state, const QString& text, const QString& host)
{
    host_ = host;
    ArmConnectLimit();
    EnterState(state, text);
}

void SshLine::SshDeviceStatus(const QString& text) { Listener().LineDeviceStatus(text); }

void SshLine::SshOpened(const QString& text)
{
    connectLimit_.reset();
    ArmKeepAlive();
    BecomeOpen(text);
}

void SshLine::SshAsks(const LineQuestion& question)
{
    connectLimit_.reset(); // the user may take any time
    Ask(question, [this](LineAnswer answer) {
        ArmConnectLimit();
        mail_->GiveAnswer(std::move(answer));
    });
}

void SshLine::TakeWaiting()
{
    if (HasEnded() || !mail_)
        return;
    qsizetype taken = 0;
    while (!HasEnded() && Receiving() && taken < MostSshAtOnce) {
        const QByteArray piece = mail_->TakeReceived(SshReadPiece);
        if (piece.isEmpty())
            break;
        taken += piece.size();
        Listener().LineReceived({piece.constData(), static_cast<std::size_t>(piece.size())});
    }
    if (taken >= MostSshAtOnce)
        Post([this] { TakeWaiting(); });
    else if (!HasEnded())
        TakeEnding();
}

void SshLine::TakeEnding()
{
    const auto ending = mail_->TakeEnding();
    if (!ending)
        return;
    const bool told = ending->exitCode || ending->signalNumber != 0;
    const auto tellProgram = [this, ending] {
        Listener().LineProgramEnded(ending->exitCode.value_or(0), ending->signalNumber);
    };
    End({.errorWord = ending->number == 0 ? 0 : LineErrorWord(Device::Ssh, ending->number),
         .error = ending->text,
         .stateText = ending->text,
         .before = told ? std::function<void()>(tellProgram) : nullptr});
}

// --- time

std::chrono::seconds SshLine::TimeLimit() const
{
    return std::chrono::seconds(Options().connectTimeout > 0 ? Options().connectTimeout : DefaultSshTimeout);
}

void SshLine::ArmConnectLimit()
{
    if (IsOpen())
        return;
    connectLimit_ = Time().After(TimeLimit(), [this] {
        Fail(LineErrorNumber::TimedOut, tr("Unable to connect to %1: the host does not answer").arg(host_));
    });
}

void SshLine::ArmKeepAlive()
{
    if (Options().ssh.keepAlive <= 0)
        return;
    keepAlive_ = Time().After(std::chrono::seconds(Options().ssh.keepAlive), [this] {
        mail_->KeepAlive();
        ArmKeepAlive();
    });
}

// --- to the host

void SshLine::Send(std::string_view bytes)
{
    if (IsOpen() && !bytes.empty() && HasRoomFor(static_cast<qsizetype>(bytes.size())))
        mail_->Queue(bytes);
}

void SshLine::Resize(const TerminalSize& size)
{
    if (!HasEnded() && mail_)
        mail_->Resize(size);
}

void SshLine::Break(int milliseconds)
{
    if (!IsOpen())
        return;
    if (const int character = Options().ssh.breakCharacter; character != 0)
        Send(std::string(1, static_cast<char>(character)));
    else
        mail_->Break(milliseconds);
}

} // namespace kestrune::comm
