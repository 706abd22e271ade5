#pragma once

// A clock that a test moves. Timers and posted work run in due order from Advance() and RunPosted().

#include <ports/clock.h>

#include <list>
#include <utility>
#include <vector>

namespace kestrune {

class FakeClock : public Clock
{
public:
    Duration Now() const override { return now_; }

    std::unique_ptr<Timer> After(Duration delay, std::function<void()> run) override
    {
        auto shot = std::make_shared<Shot>(Shot{now_ + delay, std::move(run)});
        shots_.push_back(shot);
        return std::make_unique<Handle>(shot);
    }

    void Post(std::function<void()> run) override { posted_.push_back(std::move(run)); }

    void RunPosted()
    {
        while (!posted_.empty()) {
            auto run = std::move(posted_.front());
            posted_.pop_front();
            run();
        }
    }

    void Advance(Duration by)
    {
        const Duration end = now_ + by;
        RunPosted();
        while (auto next = Due(end)) {
            now_ = next->at;
            auto run = std::exchange(next->run, nullptr);
            run();
            RunPosted();
        }
        now_ = end;
    }

private:
    struct Shot
    {
        Duration at;
        std::function<void()> run; // empty: cancelled or done
    };
    struct Handle : Timer
    {
        explicit Handle(std::shared_ptr<Shot> s) : shot(std::move(s)) {}
        ~Handle() override { shot->run = nullptr; }
        std::shared_ptr<Shot> shot;
    };

    std::shared_ptr<Shot> Due(Duration end)
    {
        std::shared_ptr<Shot> best;
        std::erase_if(shots_, [](const auto& s) { return !s->run; });
        for (const auto& s : shots_)
            if (s->at <= end && (!best || s->at < best->at))
                best = s;
        return best;
    }

    Duration now_{0};
    std::vector<std::shared_ptr<Shot>> shots_;
    std::list<std::function<void()>> posted_;
};

} // namespace kestrune
