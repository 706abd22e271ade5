#include "eventclock.h"

#include <QMetaObject>
#include <QTimer>

#include <utility>

namespace kestrune {

namespace {

class EventTimer : public Clock::Timer
{
public:
    EventTimer(Clock::Duration delay, std::function<void()> run) : run_(std::move(run))
    {
        timer_.setSingleShot(true);
        timer_.setTimerType(Qt::PreciseTimer);
        QObject::connect(&timer_, &QTimer::timeout, &timer_, [this] {
            const auto once = std::exchange(run_, nullptr); // it may destroy this timer
            once();
        });
        timer_.start(delay);
    }

private:
    std::function<void()> run_;
    QTimer timer_;
};

} // namespace

Clock::Duration EventClock::Now() const
{
    return std::chrono::duration_cast<Duration>(std::chrono::steady_clock::now().time_since_epoch());
}

std::unique_ptr<Clock::Timer> EventClock::After(Duration delay, std::function<void()> run)
{
    return std::make_unique<EventTimer>(delay, std::move(run));
}

void EventClock::Post(std::function<void()> run)
{
    QMetaObject::invokeMethod(&context_, std::move(run), Qt::QueuedConnection);
}

} // namespace kestrune
