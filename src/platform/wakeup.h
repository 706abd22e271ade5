#pragma once

// For a thread that waits for a socket and has to be woken by another thread.

#include <QtGlobal>

#include <array>

namespace kestrune {

class WakeUp
{
public:
    WakeUp(); // raises Failure when the system gives no descriptor
    ~WakeUp();
    WakeUp(const WakeUp&) = delete;
    WakeUp& operator=(const WakeUp&) = delete;

    void Wake() noexcept;  // from any thread; many are one
    void Clear() noexcept; // by the thread that waited
    // Readable from Wake to Clear; for waits of other libraries.
    int Descriptor() const { return ends_[0]; }

    enum class Waited
    {
        Woken,
        Ready,  // the socket can be read, or written where that was asked for
        HungUp, // the far end has gone
        Nothing // the time is over
    };
    // milliseconds: -1 without end. A socket of -1 is not looked at.
    Waited Wait(qintptr socket, bool forReading, bool forWriting, int milliseconds = -1) const noexcept;

private:
    std::array<int, 2> ends_{-1, -1};
};

} // namespace kestrune
