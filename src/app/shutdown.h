#pragma once

// The last steps of the process, outside the main window's own unload and able to wait: a script may still run, a
// form may refuse to go. There is no way back from here.

#include <ports/clock.h>

#include <functional>
#include <memory>

namespace kestrune {

class Kestrune;

class frmShutdown
{
public:
    struct Parts
    {
        Clock& clock;
        std::function<Kestrune*()> application; // null: none any more
        std::function<bool()> unloadForms;      // every other form; false: some are still there
        std::function<void()> clearCommon;      // what other programs have stored here; may be empty
        std::function<void()> release;          // the application object; the process ends
    };
    static constexpr std::chrono::milliseconds Interval{100};

    explicit frmShutdown(Parts parts) : parts_(std::move(parts)) {}
    void Shutdown(); // again every 100 ms until all is done

private:
    Parts parts_;
    bool guard_ = false;
    std::unique_ptr<Clock::Timer> shutdownTimer_;
};

} // namespace kestrune
