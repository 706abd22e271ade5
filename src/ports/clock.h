#pragma once

#include <chrono>
#include <functional>
#include <memory>

namespace kestrune {

// Time as a thing passed in: tests move it, the program uses the event loop's.
class Clock
{
public:
    using Duration = std::chrono::milliseconds;

    class Timer // one shot; destroying it cancels
    {
    public:
        virtual ~Timer() = default;
    };

    virtual ~Clock() = default;
    virtual Duration Now() const = 0; // since some fixed moment, never backwards
    virtual std::unique_ptr<Timer> After(Duration delay, std::function<void()> run) = 0;
    // Runs from the event loop, after the present call has returned: the message that is posted, never sent.
    virtual void Post(std::function<void()> run) = 0;
};

} // namespace kestrune
