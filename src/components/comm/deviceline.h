#pragma once

// What all lines have in common: their life. A line is fresh, then on its way, then open, then ended; its
// notices come in that order, the last three from the event loop, so that a listener may drop the line then.

#include <ports/clock.h>
#include <ports/line.h>

#include <QObject>

#include <functional>

namespace kestrune::comm {

constexpr int KeepalivesUnanswered = 5; // then the host is given up

class DeviceLine : public QObject, public Line
{
    Q_OBJECT

public:
    DeviceLine(LineOptions options, LineListener& listener, Clock& clock);

    void Open() final;
    void Close() final;
    bool IsOpen() const final { return phase_ == Phase::Open; }
    void SetReceiving(bool on) override;
    void Answer(LineAnswer answer) override;

protected:
    struct Ending
    {
        quint32 errorWord = 0; // 0: no error
        QString error{};
        QString stateText{};
        std::function<void()> before{}; // told first
    };

    virtual void Begin() = 0;       // starts to connect; every failure goes through Fail
    virtual void LetGo() = 0;       // ends timers, sockets, programs; nothing may be received after it
    virtual void TakeWaiting() = 0; // receiving is on again: take what has been waiting

    void EnterState(LineState state, const QString& text);
    void BecomeOpen(const QString& text);
    void Fail(quint16 number, const QString& text);
    void End(Ending ending);
    // Asks the user; then gets the answer, unless the line ends first. The last thing that its caller does: the
    // answer may be there before Ask returns. One question at a time.
    void Ask(LineQuestion question, std::function<void(LineAnswer)> then);
    // What is in front of the host wants to know who asks. Asks the user and tries again with what was typed; the line
    // ends, and says so, when there is nobody to ask, or when it was refused too often.
    void AskProxyLogin(const QString& proxy, const QString& host, bool again,
                       std::function<void(const QString& user, Secret password)> retry);
    void Post(std::function<void()> run); // dropped when the line goes first

    bool HasEnded() const { return phase_ == Phase::Ended; }
    bool Receiving() const { return receiving_; }
    const LineOptions& Options() const { return options_; }
    LineListener& Listener() { return listener_; }
    Clock& Time() { return clock_; }
    // True: so much more may be queued. Else the listener is told, once until the queue has drained.
    bool HasRoomFor(qsizetype bytes);
    void Drained();

private:
    enum class Phase
    {
        Fresh,
        Opening,
        Open,
        Ended
    };

    LineOptions options_;
    LineListener& listener_;
    Clock& clock_;
    Phase phase_ = Phase::Fresh;
    bool receiving_ = true;
    bool overflowTold_ = false;
    quint32 questions_ = 0; // asked so far; the last one's id
    int proxyLogins_ = 0;   // asked for so far
    std::function<void(LineAnswer)> answered_;
};

} // namespace kestrune::comm
