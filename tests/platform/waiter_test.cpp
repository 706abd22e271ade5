// Waiting in a call on the real event loop.

#include <platform/eventclock.h>
#include <platform/eventwaiter.h>

#include <gtest/gtest.h>

#include <vector>

namespace kestrune {

namespace {

TEST(EventWaiter, LetsWorkRunUntilTheEndAndNoLonger)
{
    EventClock clock;
    EventWaiter waiter;
    std::vector<int> ran;
    const auto outer = waiter.Begin();
    clock.Post([&] {
        ran.push_back(1);
        const auto inner = waiter.Begin();
        clock.Post([&, inner] {
            ran.push_back(2);
            outer->End(); // holds once the inner wait has ended too
            inner->End();
        });
        inner->Run();
        ran.push_back(3);
    });
    outer->Run();
    EXPECT_EQ(ran, (std::vector{1, 2, 3}));
}

TEST(EventWaiter, AWaitThatHasEndedBeforeItRunsReturnsAtOnce)
{
    EventWaiter waiter;
    const auto wait = waiter.Begin();
    wait->End();
    wait->Run();
    SUCCEED(); // a wait that went on would never come here
}

} // namespace

} // namespace kestrune
