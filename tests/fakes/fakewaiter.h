#pragma once

// A wait in which the test's steps happen, one after the other; then time passes until the wait ends. A wait that
// nothing ends is a program that is told to stop.

#include "fakeclock.h"
#include <ports/waiter.h>

#include <deque>
#include <utility>

namespace kestrune {

class FakeWaiter : public Waiter
{
public:
    explicit FakeWaiter(FakeClock& clock) : clock_(clock) {}

    std::shared_ptr<Wait> Begin() override { return std::make_shared<Steps>(*this); }

    std::deque<std::function<void()>> during;

private:
    struct Steps : Wait
    {
        explicit Steps(FakeWaiter& w) : waiter(w) {}
        void Run() override
        {
            while (!ended && !waiter.during.empty()) {
                const auto step = std::move(waiter.during.front());
                waiter.during.pop_front();
                step();
            }
            constexpr int longestWait = 40000; // seconds
            for (int second = 0; !ended && second < longestWait; ++second)
                waiter.clock_.Advance(std::chrono::seconds(1));
        }
        void End() override { ended = true; }
        FakeWaiter& waiter;
        bool ended = false;
    };

    FakeClock& clock_;
};

} // namespace kestrune
