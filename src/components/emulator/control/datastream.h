#pragma once

// What programs read of the host's data: text that is kept for them, and the one wait for it that can be pending.
// Nothing here blocks: the answer comes through a continuation, from inside Arrived or Cancel or from the clock.

#include <ports/clock.h>

#include <QString>
#include <QStringList>

#include <functional>
#include <optional>

namespace kestrune {

class DataStream
{
public:
    static constexpr qsizetype MaxKept = qsizetype{64} * 1024; // characters; of more, the newest are kept

    enum class Reading
    {
        Length,
        Line
    };
    struct Outcome
    {
        QString text;   // of a read
        int target = 0; // of a wait for texts: 1 is the first; 0: none came
    };
    using Done = std::function<void(const Outcome&)>;

    explicit DataStream(Clock& clock) : clock_(clock) {}

    void SetMode(int mode); // see ctlEmulator::SetInputMode
    int Mode() const { return mode_; }
    bool Listens() const { return mode_ != 0 || wait_; } // otherwise Arrived need not be called
    bool HidesFromScreen() const { return mode_ == 2; }
    bool RefusesTyping() const { return mode_ != 0 && wait_; }
    bool IsWaiting() const { return wait_.has_value(); }

    bool Arrived(const QString& text); // true: something is kept that no wait has taken

    // A time-out in seconds; 0: what is there at once, below 0: none. Both end with what there is when time is up.
    // There must be no other wait.
    void Read(Reading reading, qsizetype length, int timeout, Done done);
    void WaitFor(Qt::CaseSensitivity compare, const QStringList& targets, int timeout, Done done);
    void Cancel(); // as if time were up

private:
    using Attempt = std::function<std::optional<Outcome>()>;
    struct Wait
    {
        Attempt whole;
        std::function<Outcome()> timeUp;
        Done done;
        std::unique_ptr<Clock::Timer> timer;
    };

    void Begin(int timeout, Wait wait);
    void Try();
    void Finish(const Outcome& outcome);
    std::optional<Outcome> TakeLine(qsizetype length);
    std::optional<Outcome> TakeTarget(Qt::CaseSensitivity compare, const QStringList& targets);
    Outcome Take(qsizetype length);

    Clock& clock_;
    int mode_ = 0;
    QString kept_;
    qsizetype searched_ = 0;       // up to here no target ends
    bool lineFeedMayCome_ = false; // a line was taken that ended with CR
    std::optional<Wait> wait_;
};

} // namespace kestrune
