#include <sessions/sessionmark.h>

#include <emulator/control/ctlemulator.h>

#include <utility>

namespace kestrune {

SessionMark::SessionMark(ctlEmulator& emulator) : emulator_(emulator)
{
    connect(&emulator, &ctlEmulator::ConnectionStatus, this, [this, was = false](qint16 status, QString*) mutable {
        const bool is = status == qint16(LineState::Connected);
        const bool closed = status == qint16(LineState::Closed);
        if (is || !closed)
            lost_ = false; // stands, or is on the way
        else if (was)
            lost_ = true;
        was = is || (was && !closed);
        Tell();
    });
    connect(&emulator, &ctlEmulator::ScreenChanged, this, [this] {
        const int bytes = emulator_.BytesIn();
        if (std::exchange(seenBytes_, bytes) == bytes || watched_)
            return;
        activity_ = true;
        Tell();
    });
    connect(&emulator, &ctlEmulator::Bell, this, [this] {
        bell_ = !watched_;
        Tell();
    });
}

SessionMark::State SessionMark::Now() const
{
    if (lost_)
        return State::Lost;
    if (bell_)
        return State::Bell;
    if (activity_)
        return State::Activity;
    return emulator_.Connected() ? State::Connected : State::Offline;
}

void SessionMark::SetWatched(bool on)
{
    watched_ = on;
    if (on)
        activity_ = bell_ = false;
    Tell();
}

void SessionMark::Tell()
{
    const State now = Now();
    if (std::exchange(told_, now) != now)
        emit Changed();
}

} // namespace kestrune
