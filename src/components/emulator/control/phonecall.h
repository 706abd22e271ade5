#pragma once

// The call of a session over a modem, as the control knows it: its status, a number that waits for the modem to be
// ready, and a program's call that waits for the outcome. Of a line without a modem there is never a call.

#include <ports/line.h>
#include <ports/waiter.h>

#include <QString>

#include <memory>
#include <optional>
#include <utility>

namespace kestrune {

class PhoneCall
{
public:
    ~PhoneCall() { Settle(); }

    void LineOpens(bool overModem); // keeps a number that was asked for
    void LineClosed();
    // True: a call that stood was cut off.
    bool Take(DialStatus status);

    DialStatus Status() const { return status_; }
    bool IsMissing() const { return overModem_ && status_ != DialStatus::Connected; }

    bool IsOver() const // neither a call nor a try to make one
    {
        return status_ != DialStatus::Connected && !IsTrying();
    }
    bool IsTrying() const { return status_ == DialStatus::Dialing || status_ == DialStatus::Answering; }

    void Ask(const QString& number) { wanted_ = number; }
    std::optional<QString> TakeWanted() { return std::exchange(wanted_, std::nullopt); }

    // Runs until the call stands, or there is none, or the line or this object has gone. Result: it stands. This
    // object may be gone when it returns.
    bool Wait(Waiter& waiter);
    void Settle(); // ends the wait

private:
    bool overModem_ = false;
    DialStatus status_ = DialStatus::NoCall;
    std::optional<QString> wanted_;
    std::shared_ptr<Waiter::Wait> wait_;
    std::shared_ptr<bool> stands_; // the wait's result
};

} // namespace kestrune
