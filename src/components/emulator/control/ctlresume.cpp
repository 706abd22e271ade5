// The way back of a session whose line was lost: see resumption.h.

#include "ctlemulator.h"

#include "heldselection.h"
#include "resumption.h"

#include <utility>

namespace kestrune {

namespace {
constexpr int kByItself = 1;   // ResumeAfterDisconnect
constexpr int kFirstDelay = 2; // seconds
} // namespace

bool ctlEmulator::ResumesByItself() const { return settings_.Integer(Setting("ResumeAfterDisconnect")) == kByItself; }

// True: this failure is not yet for the user; another try comes.
bool ctlEmulator::FailureWaits(quint32 word) const
{
    if ((word & LineErrorCanResume) == 0)
        return false;
    return resumption_->IsUnderWay() ? resumption_->HasTry() : ResumesByItself();
}

void ctlEmulator::Resume()
{
    if (line_)
        return;
    if (!resumption_->IsPossible()) {
        SetOnLine(true);
        return;
    }
    resumption_->Begin(settings_);
    NextResume();
}

void ctlEmulator::NextResume()
{
    resumption_->NextTry(ports_.clock, [this] {
        ShowScreen(std::exchange(terminal_, NewScreen()), true);
        OpenLine(resumption_->Take());
        QString text = tr("Resuming the session, try %1").arg(resumption_->Number());
        emit ConnectionStatus(qint16(LineState::Connecting), &text);
    });
}

// Called when a line has ended. True: the next try is on its way.
bool ctlEmulator::GoesOnResuming()
{
    if (!resumption_->IsPossible())
        return false;
    if (resumption_->IsUnderWay()) {
        if (!resumption_->HasTry())
            return false;
        NextResume();
        return true;
    }
    if (!ResumesByItself())
        return false;
    const int delay = settings_.Integer(Setting("ResumeReconnectDelay"));
    QString text = tr("The connection was lost. Resuming the session");
    emit ConnectionStatus(qint16(LineState::Closed), &text);
    resumeTimer_ = ports_.clock.After(std::chrono::seconds(delay < 0 ? kFirstDelay : delay), [this] { Resume(); });
    return true;
}

void ctlEmulator::StopResuming()
{
    resumeTimer_.reset();
    resumption_->Stop();
    if (resumption_->IsUnderWay())
        ShowScreen(std::exchange(terminal_, resumption_->GiveBack()), false);
}

void ctlEmulator::Resumed(bool sameSession)
{
    if (shutDown_ || !resumption_->IsUnderWay())
        return;
    StopResuming();
    if (sameSession)
        return;
    Notice(tr("The session on the host is gone. This is a new one."));
    // The host has had its answers.
    replaying_ = true;
    terminal_->Receive(resumption_->TakeLogin());
    replaying_ = false;
    AfterChange();
}

// The other screen has just come in place of this one, which is kept when it is the session's.
void ctlEmulator::ShowScreen(std::unique_ptr<emu::Terminal> other, bool keep)
{
    if (keep)
        resumption_->Hold(std::move(other));
    selection_->Clear();
    scrollback_ = 0;
    terminal_->Resize({size_.cols, size_.rows});
    AfterChange();
    emit LookChanged(); // nothing that was drawn holds
}

} // namespace kestrune
