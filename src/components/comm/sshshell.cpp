#include "sshshell.h"

#include <libssh/server.h>

#include <QCoreApplication>

#include <algorithm>
#include <array>
#include <csignal>
#include <poll.h>
#include <string_view>

namespace kestrune::comm {

namespace {

struct ShellText
{
    Q_DECLARE_TR_FUNCTIONS(SshLine)
};

constexpr int MostSilences = 3;
constexpr qsizetype ShellReadPiece = qsizetype{32} * 1024;

// RFC 4254 6.10 has names where other programs have numbers.
struct SignalName
{
    std::string_view name;
    int number;
};
constexpr std::array SignalNames{SignalName{"ABRT", SIGABRT}, SignalName{"ALRM", SIGALRM}, SignalName{"FPE", SIGFPE},
                                 SignalName{"HUP", SIGHUP},   SignalName{"ILL", SIGILL},   SignalName{"INT", SIGINT},
                                 SignalName{"KILL", SIGKILL}, SignalName{"PIPE", SIGPIPE}, SignalName{"QUIT", SIGQUIT},
                                 SignalName{"SEGV", SIGSEGV}, SignalName{"TERM", SIGTERM}, SignalName{"USR1", SIGUSR1},
                                 SignalName{"USR2", SIGUSR2}};

int SignalNumber(std::string_view name)
{
    const auto row = std::ranges::find(SignalNames, name, &SignalName::name);
    return row == SignalNames.end() ? SIGKILL : row->number;
}

} // namespace

SshShell::SshShell(SshContact& contact)
    : contact_(contact), event_(ssh_event_new()), channel_(ssh_channel_new(contact.Session()))
{
    if (!event_ || !channel_)
        contact_.Fail(LineErrorNumber::NoBufferSpace, ShellText::tr("The system has no room for another connection."));
    callbacks_.userdata = this;
    callbacks_.channel_exit_status_function = [](ssh_session, ssh_channel, int status, void* self) {
        static_cast<SshShell*>(self)->exitCode_ = status;
    };
    callbacks_.channel_exit_signal_function = [](ssh_session, ssh_channel, const char* name, int, const char*,
                                                 const char*, void* self) {
        static_cast<SshShell*>(self)->signalNumber_ = SignalNumber(name);
    };
    callbacks_.channel_close_function = [](ssh_session, ssh_channel, void* self) {
        static_cast<SshShell*>(self)->closed_ = true;
    };
    ssh_callbacks_init(&callbacks_);
    // Before the request: a short program's exit status may come with the answer to it.
    ssh_set_channel_callbacks(channel_.get(), &callbacks_);
}

SshShell::~SshShell()
{
    forwards_.reset();
    ssh_event_remove_fd(event_.get(), contact_.Mail().Waker().Descriptor());
    ssh_event_remove_session(event_.get(), Session());
    ssh_remove_channel_callbacks(channel_.get(), &callbacks_);
}

void SshShell::Refuse(const QString& what)
{
    if (contact_.IsLost())
        contact_.FailAsLost();
    contact_.Fail(LineErrorNumber::AccessDenied,
                  ShellText::tr("The host %1 refuses %2: %3").arg(contact_.Host(), what, contact_.Reason()));
}

// The host's programs are told the character set that they are shown in, where the host lets that in.
void SshShell::SetEnvironment()
{
    const QByteArray language = qgetenv("LANG");
    const bool isUtf8 = language.toUpper().contains("UTF-8") || language.toUpper().contains("UTF8");
    if (contact_.Options().utf8 && isUtf8)
        contact_.Until([&] { return ssh_channel_request_env(channel_.get(), "LANG", language.constData()); });
}

void SshShell::Open()
{
    const LineOptions& options = contact_.Options();
    const QByteArray terminal = options.terminalName.isEmpty() ? "dumb" : options.terminalName.toUtf8();
    if (contact_.Until([this] { return ssh_channel_open_session(channel_.get()); }) != SSH_OK)
        Refuse(ShellText::tr("a session"));
    SetEnvironment();
    const int terminalResult = contact_.Until([&] {
        return ssh_channel_request_pty_size(channel_.get(), terminal.constData(), options.size.cols, options.size.rows);
    });
    if (terminalResult != SSH_OK)
        Refuse(ShellText::tr("a terminal"));
    forwards_.emplace(contact_, event_.get());
    forwards_->Open();
    if (options.ssh.forwardAgent)
        contact_.Until([this] { return ssh_channel_request_auth_agent(channel_.get()); });
    if (contact_.Until([this] { return ssh_channel_request_shell(channel_.get()); }) != SSH_OK)
        Refuse(ShellText::tr("a shell"));
}

// --- while it runs

void SshShell::Obey()
{
    SshMailbox::Orders orders = contact_.Mail().TakeOrders();
    if (orders.size)
        ssh_channel_change_pty_size(channel_.get(), orders.size->cols, orders.size->rows);
    for (const int milliseconds : orders.breaks)
        ssh_channel_request_send_break(channel_.get(), static_cast<uint32_t>(milliseconds));
    if (orders.keepAlive)
        KeepAlive();
}

// The host owes an answer to each, and when a network has swallowed the connection nothing else tells.
void SshShell::KeepAlive()
{
    silences_ = contact_.Heard() == heardBefore_ ? silences_ + 1 : 0;
    if (silences_ == MostSilences)
        contact_.Fail(
            LineErrorNumber::TimedOut,
            ShellText::tr("The connection to %1 was lost: the host does not answer any more.").arg(contact_.Host()));
    heardBefore_ = contact_.Heard();
    const quint64 said = contact_.Said();
    ssh_send_keepalive(Session());
    if (contact_.Said() == said) // it has only taken the answer to the last one
        ssh_send_keepalive(Session());
}

void SshShell::Send()
{
    for (;;) {
        if (sent_ == sending_.size()) {
            sending_ = contact_.Mail().TakeQueued();
            sent_ = 0;
        }
        if (sending_.isEmpty())
            return;
        const int written = ssh_channel_write(channel_.get(), sending_.constData() + sent_,
                                              static_cast<uint32_t>(sending_.size() - sent_));
        if (written <= 0)
            return; // the host's window is full; it goes on when the host has opened it
        sent_ += written;
        contact_.Mail().Sent(written);
    }
}

bool SshShell::Receive(bool fromErrors)
{
    std::array<char, ShellReadPiece> piece; // NOLINT(cppcoreguidelines-pro-type-member-init): filled by the read
    const qsizetype room = std::min(ShellReadPiece, contact_.Mail().Room());
    if (room == 0)
        return false;
    const int count =
        ssh_channel_read_nonblocking(channel_.get(), piece.data(), static_cast<uint32_t>(room), fromErrors ? 1 : 0);
    if (count <= 0)
        return false;
    contact_.Mail().Received({piece.data(), static_cast<std::size_t>(count)});
    return true;
}

bool SshShell::IsOver() const { return closed_ || contact_.IsLost(); }

SshEnding SshShell::Run()
{
    SshMailbox& mail = contact_.Mail();
    ssh_event_add_session(event_.get(), Session());
    ssh_event_add_fd(
        event_.get(), mail.Waker().Descriptor(), POLLIN, [](socket_t, int, void*) { return SSH_OK; }, nullptr);
    for (;;) {
        // Here and not when the wake-up is seen: reading and writing look at all that the event waits for too, and
        // what was typed since Send would lie there until the next key.
        mail.Waker().Clear();
        const quint64 heard = contact_.Heard();
        Obey();
        Send();
        // Asked before the reading: the look at errors, too, takes in what has come, the end and what was said last.
        const bool isOver = IsOver();
        while (Receive(false) || Receive(true)) {
        }
        if (mail.IsCancelled())
            throw SshFailure(SshEnding{});
        const bool more = forwards_->Move();
        const bool allRead = mail.Room() > 0;
        const bool hasEnded = closed_ || exitCode_ || signalNumber_ != 0; // some hosts tell the end and hang up
        if (allRead && isOver && !hasEnded)
            contact_.FailAsLost();
        if (allRead && isOver)
            return {.number = 0,
                    .text = ShellText::tr("The host %1 has closed the connection.").arg(contact_.Host()),
                    .exitCode = exitCode_,
                    .signalNumber = signalNumber_};
        if (!more && contact_.Heard() == heard && IsOver() == isOver)
            ssh_event_dopoll(event_.get(), -1);
    }
}

} // namespace kestrune::comm
