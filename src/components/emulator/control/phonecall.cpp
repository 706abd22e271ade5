#include "phonecall.h"

#include <utility>

namespace kestrune {

void PhoneCall::LineOpens(bool overModem)
{
    overModem_ = overModem;
    status_ = DialStatus::NoCall;
}

void PhoneCall::LineClosed()
{
    status_ = DialStatus::NoCall;
    wanted_.reset();
    Settle();
}

bool PhoneCall::Take(DialStatus status)
{
    const DialStatus before = std::exchange(status_, status);
    if (!IsTrying())
        Settle();
    return before == DialStatus::Connected && status == DialStatus::NoCarrier;
}

bool PhoneCall::Wait(Waiter& waiter)
{
    Settle(); // a newer call takes over
    const auto stands = std::make_shared<bool>(false);
    const std::shared_ptr<Waiter::Wait> wait = waiter.Begin();
    stands_ = stands;
    wait_ = wait;
    wait->Run();
    return *stands;
}

void PhoneCall::Settle()
{
    if (const auto stands = std::exchange(stands_, nullptr))
        *stands = status_ == DialStatus::Connected;
    if (const auto wait = std::exchange(wait_, nullptr))
        wait->End();
}

} // namespace kestrune
