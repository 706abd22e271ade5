#pragma once

// A desktop's safe in memory, or a desktop without one. It answers from the event loop, as the real one does.

#include <ports/clock.h>
#include <ports/secretkeeper.h>

#include <map>

namespace kestrune {

class MemoryKeeper : public SecretKeeper
{
public:
    explicit MemoryKeeper(Clock& clock) : clock_(clock) {}

    void Find(const QString& place, std::function<void(Found)> then) override
    {
        clock_.Post([this, place, then = std::move(then)] {
            const auto at = kept.find(place);
            then({.canKeep = isThere,
                  .secret = isThere && at != kept.end() ? std::optional(Secret(at->second)) : std::nullopt});
        });
    }
    void Keep(const QString& place, const QString& label, Secret secret) override
    {
        if (isThere)
            kept[place] = std::string(secret.Utf8());
        lastLabel = label;
    }
    void Forget(const QString& place) override { kept.erase(place); }

    bool isThere = false;
    std::map<QString, std::string> kept;
    QString lastLabel;

private:
    Clock& clock_;
};

} // namespace kestrune
