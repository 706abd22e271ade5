#pragma once

// How much a host may have this side send by asking: enough for any program that asks what it needs to know, and a
// bound for one that asks without end, or asks and does not read.

#include <ports/clock.h>

#include <cstddef>

namespace kestrune {

class ReplyBudget
{
public:
    static constexpr size_t BytesPerSecond = size_t{64} * 1024; // and as much at once after a quiet second
    static constexpr size_t MostUnsent = size_t{256} * 1024;    // already waiting for the line

    // Whether an answer of so many bytes may go out now. One that may not is left out whole.
    bool Take(size_t bytes, size_t unsent, Clock::Duration now)
    {
        const auto passed = size_t((now - filledAt_).count());
        constexpr size_t second = 1000;
        left_ = passed >= second ? BytesPerSecond : left_ + BytesPerSecond * passed / second;
        left_ = left_ > BytesPerSecond ? BytesPerSecond : left_;
        filledAt_ = now;
        if (bytes > left_ || unsent + bytes > MostUnsent)
            return false;
        left_ -= bytes;
        return true;
    }

private:
    size_t left_ = BytesPerSecond;
    Clock::Duration filledAt_{};
};

} // namespace kestrune
