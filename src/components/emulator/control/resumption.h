#pragma once

// A lost session on its way back: what the line left behind, the screen as it was, and the tries that are left. While a
// new connection is made, its login is shown on a screen of its own; the session's screen comes back with the session.

#include <emulator/engine/terminal.h>
#include <ports/clock.h>
#include <ports/line.h>

#include <functional>
#include <memory>
#include <string>
#include <utility>

namespace kestrune {

class EmulatorSettings;

class Resumption
{
public:
    bool IsPossible() const { return ticket_ != nullptr; }
    bool IsUnderWay() const { return held_ != nullptr; }

    // What the lost line leaves; null forgets.
    void Keep(std::shared_ptr<LineResume> ticket) { ticket_ = std::move(ticket); }
    std::shared_ptr<LineResume> Take() { return std::move(ticket_); }

    // --- the tries
    void Begin(const EmulatorSettings& settings);
    void Stop();
    bool HasTry() const { return tries_ > 0; }
    void NextTry(Clock& clock, std::function<void()> run); // at once for the first, later after a pause
    int Number() const { return number_; }

    // --- the screen
    void Hold(std::unique_ptr<emu::Terminal> screen);
    void Received(std::string_view bytes); // from the login, in case it becomes the session's
    std::unique_ptr<emu::Terminal> GiveBack() { return std::move(held_); }
    std::string TakeLogin() { return std::exchange(login_, {}); }

private:
    std::shared_ptr<LineResume> ticket_;
    std::unique_ptr<emu::Terminal> held_;
    std::string login_;
    int tries_ = 0;
    int number_ = 0;
    Clock::Duration pause_{0};
    std::unique_ptr<Clock::Timer> timer_;
};

} // namespace kestrune
