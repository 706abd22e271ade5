#pragma once

// The Clock of the running program: the event loop of the thread that made it.

#include <ports/clock.h>

#include <QObject>

namespace kestrune {

class EventClock : public Clock
{
public:
    Duration Now() const override;
    std::unique_ptr<Timer> After(Duration delay, std::function<void()> run) override;
    void Post(std::function<void()> run) override; // dropped when the clock goes first

private:
    QObject context_;
};

} // namespace kestrune
