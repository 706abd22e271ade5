#pragma once

// A long text on its way to the host, at the pace of the line or slower, so that it can be stopped.

#include "pasteform.h"

#include <ports/clock.h>
#include <ports/line.h>

#include <functional>
#include <memory>
#include <string>

namespace kestrune {

class PasteQueue
{
public:
    // ready: a pause is over, and Pump has something to send. Never from inside a call here.
    PasteQueue(Clock& clock, std::function<void()> ready) : clock_(clock), ready_(std::move(ready)) {}

    // bracketed: the form has the marks of a bracketed paste. A second paste follows the first, in its own form.
    void Start(const PasteForm& form, bool bracketed);
    // What the line has room for and the pace allows; returns how many bytes went out. Call again when the line has
    // drained.
    size_t Pump(Line& line);
    size_t Abort(Line* line); // the rest is dropped; a host that waits for the end mark gets it
    bool IsRunning() const { return sent_ < bytes_.size(); }

private:
    bool Paces() const { return pause_.count() > 0 && !lineEnd_.empty(); }
    size_t NextPiece(size_t room) const;

    Clock& clock_;
    std::function<void()> ready_;
    std::string bytes_;
    size_t sent_ = 0;
    bool bracketed_ = false;
    std::string lineEnd_;
    Clock::Duration pause_{0};
    std::unique_ptr<Clock::Timer> pausing_;
};

} // namespace kestrune
