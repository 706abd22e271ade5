#include "sshjump.h"

#include <platform/processors.h>

#include <QCoreApplication>

#include <exception>
#include <poll.h>

namespace kestrune::comm {

namespace {

struct JumpText
{
    Q_DECLARE_TR_FUNCTIONS(SshLine)
};

} // namespace

SshJump::SshJump(std::unique_ptr<SshJump> before, std::unique_ptr<SshContact> contact, const QString& host, int port)
    : before_(std::move(before)), contact_(std::move(contact)), channel_(ssh_channel_new(contact_->Session()))
{
    const auto ends = SocketPair();
    if (!ends || !channel_)
        contact_->Fail(LineErrorNumber::NoBufferSpace, JumpText::tr("The system has no room for another connection."));
    near_ = OwnedSocket((*ends)[0]);
    far_ = OwnedSocket((*ends)[1]);
    const int opened = contact_->Until(
        [&] { return ssh_channel_open_forward(channel_.get(), host.toUtf8().constData(), port, "127.0.0.1", 0); });
    if (opened != SSH_OK) {
        if (contact_->IsLost())
            contact_->FailAsLost();
        contact_->Fail(LineErrorNumber::HostUnreachable,
                       JumpText::tr("Unable to connect to %1 port %2: the host %3 on the way does not lead there (%4).")
                           .arg(host)
                           .arg(port)
                           .arg(contact_->Host(), contact_->Reason()));
    }
    thread_ = std::thread([this] { Pump(); });
}

SshJump::~SshJump()
{
    leaving_ = true;
    wake_.Wake();
    if (thread_.joinable())
        thread_.join();
}

void SshJump::Pump()
{
    GiveBackProcessors();
    try {
        const SshEventHandle event(ssh_event_new());
        ssh_event_add_session(event.get(), contact_->Session());
        {
            SshWatch woken(event.get(), wake_.Descriptor());
            woken.For(POLLIN);
            SshPipe pipe(event.get(), std::move(channel_), std::move(far_));
            while (!leaving_ && !contact_->IsLost()) {
                const quint64 heard = contact_->Heard();
                const auto progress = pipe.Move();
                if (progress == SshPipe::Progress::Over)
                    break;
                if (progress == SshPipe::Progress::Idle && contact_->Heard() == heard && !leaving_)
                    ssh_event_dopoll(event.get(), -1);
            }
        }
        ssh_event_remove_session(event.get(), contact_->Session());
    } catch (const std::exception&) {
        // No memory. The pipe has gone, and who waits behind it sees its end.
    }
}

} // namespace kestrune::comm
