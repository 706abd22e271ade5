#pragma once

// What passes between an SSH line on the user-interface thread and its conversation with the host, which has a
// thread of its own: name servers, agents and key files with slow passphrases may take their time there. Either
// side may go first; nothing reaches the other then. All calls are safe from their side's thread.

#include <platform/wakeup.h>
#include <ports/line.h>

#include <QByteArray>
#include <QObject>

#include <atomic>
#include <deque>
#include <functional>
#include <mutex>
#include <optional>
#include <vector>

namespace kestrune::comm {

// How the conversation ended.
struct SshEnding
{
    quint16 number = 0; // LineErrorNumber; 0: as it should
    QString text;
    std::optional<int> exitCode{};
    int signalNumber = 0;
};

// What the conversation tells its line, one after the other, on the user-interface thread.
class SshNotices
{
public:
    virtual ~SshNotices() = default;
    virtual void SshDial(const QString& host, quint16 port) = 0; // a socket is needed: GiveSocket
    virtual void SshState(LineState state, const QString& text, const QString& host) = 0; // host: who is waited for
    virtual void SshDeviceStatus(const QString& text) = 0;
    virtual void SshAsks(const LineQuestion& question) = 0; // GiveAnswer
    virtual void SshOpened(const QString& text) = 0;
};

class SshMailbox
{
public:
    using Notice = std::function<void(SshNotices&)>;
    static constexpr qsizetype MostReceived = qsizetype{256} * 1024; // what waits for the screen

    // --- the line's side
    // knock is posted to the line whenever there is something new for it.
    SshMailbox(QObject& line, std::function<void()> knock) : line_(&line), knock_(std::move(knock)) {}
    ~SshMailbox();

    void Cancel();               // the conversation ends as soon as it can, and tells nothing more
    void GiveSocket(int socket); // owned from now on
    void GiveAnswer(LineAnswer answer);
    void Queue(std::string_view bytes);
    qsizetype Unsent() const { return unsent_; }
    void Resize(const TerminalSize& size);
    void Break(int milliseconds);
    void KeepAlive();

    std::deque<Notice> TakeNotices();
    QByteArray TakeReceived(qsizetype most);
    bool TakeDrained() { return drained_.exchange(false); } // the queue has become empty since the last call
    std::optional<SshEnding> TakeEnding();                  // nothing while bytes wait in front of it

    // --- the conversation's side
    struct Orders
    {
        std::optional<TerminalSize> size{};
        std::vector<int> breaks{}; // milliseconds
        bool keepAlive = false;
    };
    void Tell(Notice notice);
    void Received(std::string_view bytes);
    qsizetype Room() const; // how much more may be received
    Orders TakeOrders();
    QByteArray TakeQueued();           // it stays counted as unsent
    void Sent(qsizetype bytes);        // so much of it has gone
    void End(const SshEnding& ending); // the last thing
    bool IsCancelled() const { return cancelled_; }
    // -1 and nothing: cancelled, or the far end of the watched socket has gone.
    int AwaitSocket();
    std::optional<LineAnswer> AwaitAnswer(qintptr watched);
    // False: cancelled.
    bool AwaitHost(qintptr socket, bool forWriting);
    WakeUp& Waker() { return wake_; }

private:
    void Knock(); // with the lock held

    mutable std::mutex lock_;
    QObject* line_; // null: it has gone
    std::function<void()> knock_;
    bool knocked_ = false;
    std::deque<Notice> notices_;
    QByteArray received_;
    QByteArray queued_;
    Orders orders_;
    std::optional<SshEnding> ending_;
    std::optional<int> socket_;
    std::optional<LineAnswer> answer_;
    std::atomic<qsizetype> unsent_{0};
    std::atomic<bool> drained_{false};
    std::atomic<bool> cancelled_{false};
    WakeUp wake_;
};

} // namespace kestrune::comm
