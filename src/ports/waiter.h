#pragma once

// Waiting inside a call. A program's call that must give its answer when it returns (a script waits for the host)
// lets the window live meanwhile. This is the only place that runs the event loop inside itself; whoever was waited
// for may be gone afterwards.

#include <memory>

namespace kestrune {

class Waiter
{
public:
    class Wait
    {
    public:
        virtual ~Wait() = default;
        virtual void Run() = 0; // until End was called, at once if it was called before, or the program ends
        virtual void End() = 0; // from anywhere on the user-interface thread; harmless after Run has returned
    };

    virtual ~Waiter() = default;
    virtual std::shared_ptr<Wait> Begin() = 0;
};

} // namespace kestrune
