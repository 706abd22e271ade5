#pragma once

// The Waiter of the running program: a local event loop. Waits that overlap end in the reverse order of their
// beginning, as calls do.

#include <ports/waiter.h>

namespace kestrune {

class EventWaiter : public Waiter
{
public:
    std::shared_ptr<Wait> Begin() override;
};

} // namespace kestrune
