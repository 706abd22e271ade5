#include "sshconversation.h"

#include "sshapproach.h"
#include "sshcontact.h"
#include "sshlogin.h"
#include "sshshell.h"
#include "sshtrust.h"

#include <platform/processors.h>

#include <QCoreApplication>

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <functional>
#include <list>
#include <mutex>
#include <string>
#include <system_error>
#include <thread>
#include <utility>

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

void State(SshContact& contact, const QString& text)
{
    contact.Mail().Tell(
        [text, host = contact.Host()](SshNotices& line) { line.SshState(LineState::Authenticating, text, host); });
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

// From the connected socket to the host's permission.
void Enter(SshContact& contact, int socket)
{
    State(contact, ConversationText::tr("Agreeing with %1").arg(contact.Host()));
    contact.Connect(socket);
    CheckHostKey(contact);
    State(contact, ConversationText::tr("Logging in to %1").arg(contact.Host()));
    LogIn(contact);
    ShowBanner(contact);
}

SshEnding Converse(const LineOptions& options, SshMailbox& mail)
{
    SshApproach approach(options, mail, &Enter); // goes after what is reached by it
    SshContact contact(mail, options, TargetOf(options));
    mail.Tell([text = ConversationText::tr("SSH %1").arg(contact.Address())](SshNotices& line) {
        line.SshDeviceStatus(text);
    });
    Enter(contact, approach.To(contact));
    SshShell shell(contact);
    shell.Open();
    mail.Tell([text = ConversationText::tr("Connected to %1").arg(contact.Host())](SshNotices& line) {
        line.SshOpened(text);
    });
    return shell.Run();
}

// The threads of all conversations. A line never waits for its own: a key or an agent may hold it up, and the window
// must not stand still for that. But none may outlive the application: after main, the libraries that it works with are
// taken down under its feet.
class SshThreads
{
public:
    static SshThreads& Instance()
    {
        static SshThreads& threads = *new SshThreads; // never taken down: a stuck thread may come back to it
        return threads;
    }

    void Start(std::function<void()> conversation)
    {
        const std::lock_guard held(lock_);
        JoinEnded();
        if (!std::exchange(awaited_, true))
            qAddPostRoutine([] { Instance().AwaitEnds(); });
        const auto entry = threads_.emplace(threads_.end());
        try {
            entry->thread = std::thread([this, entry, conversation = std::move(conversation)]() mutable {
                conversation();
                conversation = nullptr; // with all that it holds
                const std::lock_guard leaving(lock_);
                entry->done = true;
                ended_.notify_all();
            });
        } catch (...) { // the system has no room for it
            threads_.erase(entry);
            throw;
        }
    }

private:
    struct Entry
    {
        std::thread thread;
        bool done = false;
    };

    // All are cancelled by now. One that still runs after this hangs in a system call, for an agent that is stuck.
    void AwaitEnds()
    {
        constexpr std::chrono::seconds LongestFarewell{3};
        std::unique_lock held(lock_);
        ended_.wait_for(held, LongestFarewell, [this] { return std::ranges::all_of(threads_, &Entry::done); });
        JoinEnded();
        awaited_ = false;
    }

    void JoinEnded() // with the lock held; what is done has let go of it, and ends at once
    {
        threads_.remove_if([](Entry& entry) {
            if (entry.done)
                entry.thread.join();
            return entry.done;
        });
    }

    std::mutex lock_;
    std::condition_variable ended_;
    std::list<Entry> threads_;
    bool awaited_ = false; // at the application's end
};

} // namespace

void StartSshConversation(const LineOptions& options, const std::shared_ptr<SshMailbox>& mail)
{
    const auto endOver = [mail](const std::exception& error) {
        mail->End({.number = LineErrorNumber::NoBufferSpace, .text = QString::fromLocal8Bit(error.what())});
    };
    try {
        SshThreads::Instance().Start([options, mail, endOver] {
            GiveBackProcessors();
            try {
                mail->End(Converse(options, *mail));
            } catch (const SshFailure& failure) {
                mail->End(failure.why);
            } catch (const std::exception& error) {
                endOver(error);
            }
        });
    } catch (const std::system_error& error) {
        endOver(error);
    }
}

} // namespace kestrune::comm
