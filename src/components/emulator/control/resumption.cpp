#include "resumption.h"

#include "emulatorsettings.h"

#include <algorithm>

namespace kestrune {

namespace {

constexpr std::size_t kMostLogin = 0x40000; // more is no login; the oldest goes first
constexpr int kInterval = 5;                // seconds
constexpr int kTries = 5;

int Or(int value, int own) { return value < 0 ? own : value; }

} // namespace

void Resumption::Begin(const EmulatorSettings& settings)
{
    tries_ = std::max(1, Or(settings.Integer(Setting("ResumeRetryCount")), kTries));
    number_ = 0;
    pause_ = std::chrono::seconds(Or(settings.Integer(Setting("ResumeReconnectInterval")), kInterval));
}

void Resumption::Stop()
{
    tries_ = 0;
    timer_.reset();
}

void Resumption::NextTry(Clock& clock, std::function<void()> run)
{
    --tries_;
    if (++number_ == 1) {
        timer_.reset();
        run();
        return;
    }
    timer_ = clock.After(pause_, std::move(run));
}

void Resumption::Hold(std::unique_ptr<emu::Terminal> screen)
{
    if (!held_)
        held_ = std::move(screen);
    login_.clear();
}

void Resumption::Received(std::string_view bytes)
{
    login_ += bytes;
    if (login_.size() > kMostLogin)
        login_.erase(0, login_.size() - kMostLogin);
}

} // namespace kestrune
