#pragma once

// The system's wish that the program ends: a service manager, a log-out without a desktop's session manager, `kill`,
// Ctrl+C in the window that it was started from (SIGTERM, SIGHUP, SIGINT). One object at a time.

#include <platform/wakeup.h>

#include <QSocketNotifier>

#include <functional>

namespace kestrune {

class EndRequests
{
public:
    // asked: called from the event loop, once. A second wish of the same kind takes the program down at once, as for
    // any program: the user may be in a hurry.
    explicit EndRequests(std::function<void()> asked);
    ~EndRequests(); // the signals have their first meaning again
    EndRequests(const EndRequests&) = delete;
    EndRequests& operator=(const EndRequests&) = delete;

private:
    WakeUp wake_;
    QSocketNotifier notifier_;
};

} // namespace kestrune
