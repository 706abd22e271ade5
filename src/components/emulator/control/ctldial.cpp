// Calls over a modem.

#include "ctlemulator.h"

#include "phonecall.h"

#include <dispatch/failure.h>

#include <QPointer>

namespace kestrune {

using namespace Qt::StringLiterals;

namespace {

constexpr int kCallTrue = -1; // as the automation surface has it

} // namespace

int ctlEmulator::DialStatus() const { return int(call_->Status()); }
bool ctlEmulator::Connected() const { return IsLineUp() && !call_->IsMissing(); }

int ctlEmulator::Dial(const QString& phoneNumber, int wait)
{
    if (Device(settings_.Integer(Setting("Device"))) != Device::Modem)
        throw Failure(ErrorNumber::InvalidCall, tr("Only a session over a modem can dial."), u"ctlEmulator"_s);
    if (shutDown_)
        return 0;
    if (IsLineUp()) {
        if (!line_ || !line_->Dial(phoneNumber))
            return 0;
    } else { // once the modem is ready
        call_->Ask(phoneNumber);
        SetOnLine(true);
    }
    return wait == 0 || call_->Wait(ports_.waiter) ? kCallTrue : 0;
}

int ctlEmulator::HangUp(int wait)
{
    if (Device(settings_.Integer(Setting("Device"))) != Device::Modem) {
        const bool open = OnLine();
        SetOnLine(false);
        return open ? kCallTrue : 0;
    }
    call_->TakeWanted();
    if (!line_ || !line_->HangUp())
        return 0;
    return wait == 0 || call_->IsOver() || !call_->Wait(ports_.waiter) ? kCallTrue : 0;
}

void ctlEmulator::AbortDialing()
{
    if (call_->IsTrying() && line_)
        line_->HangUp();
    call_->TakeWanted();
    call_->Settle();
}

void ctlEmulator::DialWanted()
{
    ports_.clock.Post([self = QPointer(this)] {
        if (!self || self->shutDown_ || !self->IsLineUp() || !self->line_)
            return;
        const auto number = self->call_->TakeWanted();
        if (number && !self->line_->Dial(*number)) {
            self->Notice(tr("\"%1\" cannot be dialled.").arg(*number));
            self->call_->Settle();
        }
    });
}

void ctlEmulator::CallChanged(enum DialStatus status)
{
    if (shutDown_ || !call_->Take(status))
        return;
    Notice(tr("The call has ended"));
    emit Disconnect();
}

} // namespace kestrune
