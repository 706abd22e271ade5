#include "sshforwards.h"

#include <libssh/server.h>

#include <QCoreApplication>

#include <algorithm>
#include <poll.h>
#include <string>

namespace kestrune::comm {

namespace {

struct ForwardText
{
    Q_DECLARE_TR_FUNCTIONS(SshLine)
};

// At once, of all forwards together: whoever calls after them waits. Descriptors are not without number.
constexpr std::size_t MostForwarded = 200;

} // namespace

SshForwards::SshForwards(SshContact& contact, ssh_event event)
    : contact_(contact), event_(event), wanted_(SshForwardList::From(contact.Options().ssh.forwards).forwards)
{
    callbacks_.userdata = this;
    if (contact_.Options().ssh.forwardAgent)
        callbacks_.channel_open_request_auth_agent_function = &SshForwards::OpenAgent;
    ssh_callbacks_init(&callbacks_);
    ssh_set_callbacks(contact_.Session(), &callbacks_);
    ssh_set_message_callback(contact_.Session(), &SshForwards::HostAsks, this);
}

SshForwards::~SshForwards()
{
    ssh_set_callbacks(contact_.Session(), nullptr);
    contact_.DenyRequests();
}

void SshForwards::Tell(const SshForward& forward, const QString& why)
{
    const QString text = forward.kind == SshForward::Kind::Remote
                             ? ForwardText::tr("[The host does not forward its port %1: %2]\r\n")
                             : ForwardText::tr("[Port %1 is not forwarded: %2]\r\n");
    contact_.Mail().Received(text.arg(forward.port).arg(why).toStdString());
}

void SshForwards::Open()
{
    for (const SshForward& forward : wanted_)
        (this->*(forward.kind == SshForward::Kind::Remote ? &SshForwards::ListenThere : &SshForwards::ListenHere))(
            forward);
}

void SshForwards::ListenHere(const SshForward& forward)
{
    ListenResult result = ListenAt(forward.address.toUtf8(), forward.port);
    for (const int socket : result.sockets)
        listeners_.push_back({forward, OwnedSocket(socket), {event_, socket}});
    if (result.sockets.empty())
        Tell(forward, result.error);
}

// The name is looked up now: later it would hold the session up.
void SshForwards::ListenThere(const SshForward& forward)
{
    // RFC 4254 7.1: "localhost" is the loopback of all families, an empty address means every address.
    const QByteArray address = forward.address.isEmpty()                   ? "localhost"
                               : forward.address == QLatin1StringView("*") ? ""
                                                                           : forward.address.toUtf8();
    Remote remote{forward, AddressesOf(forward.host.toUtf8(), forward.hostPort)};
    std::ranges::reverse(remote.addresses);
    if (remote.addresses.empty()) {
        Tell(forward, ForwardText::tr("there is no host %1").arg(forward.host));
        return;
    }
    const int result = contact_.Until(
        [&] { return ssh_channel_listen_forward(contact_.Session(), address.constData(), forward.port, nullptr); });
    if (result == SSH_OK)
        remotes_.push_back(std::move(remote));
    else
        Tell(forward, ForwardText::tr("it refuses"));
}

bool SshForwards::IsFull() const { return callers_.size() + dialed_.size() + pipes_.size() >= MostForwarded; }

// --- programs here, to the host

void SshForwards::Accept(Listener& listener)
{
    while (!IsFull()) {
        const int socket = AcceptFrom(listener.socket.Number());
        if (socket < 0)
            break;
        const SshForward& forward = listener.forward;
        const bool dynamic = forward.kind == SshForward::Kind::Dynamic;
        callers_.push_back({.socket = OwnedSocket(socket),
                            .watch = {event_, socket},
                            .socks = dynamic ? std::optional(SocksServer()) : std::nullopt,
                            .host = forward.host.toUtf8(),
                            .port = forward.hostPort});
    }
    listener.watch.For(IsFull() ? short{0} : short{POLLIN});
}

// Byte by byte: what comes after the request belongs to the connection.
SshForwards::Step SshForwards::HearSocks(Caller& caller)
{
    for (;;) {
        QByteArray byte;
        switch (ReceiveFrom(caller.socket.Number(), byte, 1)) {
        case SocketOutcome::Later:
            caller.watch.For(POLLIN);
            return Step::Waits;
        case SocketOutcome::Ended:
        case SocketOutcome::Failed:
            return Step::Failed;
        case SocketOutcome::Done:
            break;
        }
        const auto progress = caller.socks->Take(byte[0]);
        QByteArray answer = QByteArray::fromStdString(caller.socks->Answer());
        if (!answer.isEmpty())
            SendTo(caller.socket.Number(), answer); // a few bytes, into an empty buffer
        if (progress == SocksServer::Progress::Refused)
            return Step::Failed;
        if (progress == SocksServer::Progress::Wants) {
            caller.host = QByteArray::fromStdString(caller.socks->Host());
            caller.port = caller.socks->Port();
            caller.watch.For(0);
            return Step::Done;
        }
    }
}

SshForwards::Step SshForwards::Advance(Caller& caller)
{
    if (!caller.channel) {
        if (caller.socks)
            if (const Step heard = HearSocks(caller); heard != Step::Done)
                return heard;
        caller.channel.reset(ssh_channel_new(contact_.Session()));
    }
    const int result = caller.channel ? ssh_channel_open_forward(caller.channel.get(), caller.host.constData(),
                                                                 caller.port, "127.0.0.1", 0)
                                      : SSH_ERROR;
    if (result == SSH_AGAIN)
        return Step::Waits;
    if (caller.socks) {
        QByteArray outcome = QByteArray::fromStdString(caller.socks->Outcome(result == SSH_OK));
        SendTo(caller.socket.Number(), outcome);
    }
    if (result != SSH_OK)
        return Step::Failed;
    pipes_.emplace_back(event_, std::move(caller.channel), std::move(caller.socket));
    return Step::Done;
}

// --- the host's side, to programs here

// In the middle of a call of the library. 1: denied.
int SshForwards::HostAsks(ssh_session, ssh_message message, void* self)
{
    auto& forwards = *static_cast<SshForwards*>(self);
    if (ssh_message_type(message) != SSH_REQUEST_CHANNEL_OPEN ||
        ssh_message_subtype(message) != SSH_CHANNEL_FORWARDED_TCPIP || forwards.IsFull())
        return 1;
    const int port = ssh_message_channel_request_open_destination_port(message);
    const auto remote =
        std::ranges::find_if(forwards.remotes_, [port](const Remote& row) { return row.forward.port == port; });
    if (remote == forwards.remotes_.end())
        return 1;
    SshChannelHandle channel(ssh_message_channel_request_open_reply_accept(message));
    if (channel)
        forwards.dialed_.push_back({.channel = std::move(channel), .addresses = remote->addresses});
    return 0;
}

SshForwards::Step SshForwards::Advance(Dialed& dialed)
{
    for (;;) {
        const SocketOutcome outcome = dialed.socket ? ConnectionOf(dialed.socket.Number()) : SocketOutcome::Failed;
        if (outcome == SocketOutcome::Later) {
            dialed.watch->For(POLLOUT);
            return Step::Waits;
        }
        dialed.watch.reset();
        if (outcome == SocketOutcome::Done) {
            pipes_.emplace_back(event_, std::move(dialed.channel), std::move(dialed.socket));
            return Step::Done;
        }
        if (dialed.addresses.empty())
            return Step::Failed;
        dialed.socket = OwnedSocket(BeginConnect(dialed.addresses.back()));
        dialed.addresses.pop_back();
        if (dialed.socket)
            dialed.watch.emplace(event_, dialed.socket.Number());
    }
}

// The host asks for the agent of this side, in the middle of a call of the library, which answers for us.
ssh_channel SshForwards::OpenAgent(ssh_session session, void* self)
{
    auto& forwards = *static_cast<SshForwards*>(self);
    OwnedSocket agent(ConnectToLocalSocket(qgetenv("SSH_AUTH_SOCK")));
    if (!agent || forwards.IsFull())
        return nullptr;
    SshChannelHandle channel(ssh_channel_new(session));
    if (!channel)
        return nullptr;
    ssh_channel raw = channel.get();
    forwards.pipes_.emplace_back(forwards.event_, std::move(channel), std::move(agent));
    return raw;
}

// --- all of it

bool SshForwards::Move()
{
    for (Listener& listener : listeners_)
        Accept(listener);
    const auto advance = [this](auto& waiting) {
        std::erase_if(waiting, [this](auto& entry) { return Advance(entry) != Step::Waits; });
    };
    advance(callers_);
    advance(dialed_);
    bool more = false;
    std::erase_if(pipes_, [&](SshPipe& pipe) {
        const auto progress = pipe.Move();
        more |= progress == SshPipe::Progress::More;
        return progress == SshPipe::Progress::Over;
    });
    return more;
}

} // namespace kestrune::comm
