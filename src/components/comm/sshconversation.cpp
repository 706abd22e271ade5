#include "sshconversation.h"

#include "sshcontact.h"
#include "sshlogin.h"
#include "sshshell.h"
#include "sshtrust.h"

#include <platform/processors.h>

#include <QCoreApplication>

#include <string>
#include <thread>

namespace kestrune::comm {

namespace {

using namespace Qt::StringLiterals;

struct ConversationText
{
    Q_DECLARE_TR_FUNCTIONS(SshLine)
};

SshTarget TargetOf(const LineOptions& options)
{
    SshTarget target = SshTarget::From(options.hostName);
    if (!options.hostPort.trimmed().isEmpty())
        target.port = options.hostPort.trimmed();
    if (target.user.isEmpty())
        target.user = QString::fromUtf8(options.userName);
    return target;
}

void State(SshContact& contact, LineState state, const QString& text)
{
    contact.Mail().Tell([=](SshNotices& line) { line.SshState(state, text); });
}

int Dial(SshContact& contact)
{
    contact.Mail().Tell([host = contact.Host(), port = static_cast<quint16>(contact.Port())](SshNotices& line) {
        line.SshDial(host, port);
    });
    const int socket = contact.Mail().AwaitSocket();
    if (socket < 0)
        throw SshFailure(SshEnding{});
    return socket;
}

// What the host wants to be read before the login (RFC 4252 5.4), without its controls.
void ShowBanner(SshContact& contact)
{
    if (char* banner = ssh_get_issue_banner(contact.Session())) {
        const QString words = HostWords(SshText(banner).get());
        if (!words.isEmpty())
            contact.Mail().Received(QString(words).replace(u"\n"_s, u"\r\n"_s).toStdString() + "\r\n");
    }
}

SshEnding Converse(const LineOptions& options, SshMailbox& mail)
{
    SshContact contact(mail, options, TargetOf(options));
    mail.Tell([text = ConversationText::tr("SSH %1").arg(contact.Address())](SshNotices& line) {
        line.SshDeviceStatus(text);
    });
    const int socket = Dial(contact); // owned by contact from here on
    State(contact, LineState::Authenticating, ConversationText::tr("Agreeing with %1").arg(contact.Host()));
    contact.Connect(socket);
    CheckHostKey(contact);
    State(contact, LineState::Authenticating, ConversationText::tr("Logging in to %1").arg(contact.Host()));
    LogIn(contact);
    ShowBanner(contact);
    SshShell shell(contact);
    shell.Open();
    mail.Tell([text = ConversationText::tr("Connected to %1").arg(contact.Host())](SshNotices& line) {
        line.SshOpened(text);
    });
    return shell.Run();
}

} // namespace

void StartSshConversation(const LineOptions& options, std::shared_ptr<SshMailbox> mail)
{
    // Nobody waits for it: a name server, an agent or a key may hold it up, and its line may be gone by then.
    std::thread([options, mail = std::move(mail)] {
        GiveBackProcessors();
        try {
            mail->End(Converse(options, *mail));
        } catch (const SshFailure& failure) {
            mail->End(failure.why);
        } catch (const std::exception& error) {
            mail->End({.number = LineErrorNumber::NoBufferSpace, .text = QString::fromLocal8Bit(error.what())});
        }
    }).detach();
}

} // namespace kestrune::comm
