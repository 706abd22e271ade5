#pragma once

// Where passwords are kept that the user wants kept: the desktop's own safe, never a file of ours. Everything is
// asked and answered from the event loop; the safe may ask the user to open it meanwhile.

#include <ports/secret.h>

#include <QString>

#include <functional>
#include <optional>

namespace kestrune {

class SecretKeeper
{
public:
    struct Found
    {
        bool canKeep = false; // there is a safe at all
        std::optional<Secret> secret{};
    };

    virtual ~SecretKeeper() = default;
    // place: what the secret is for, the same each time ("password ssh ann@host").
    virtual void Find(const QString& place, std::function<void(Found)> then) = 0;
    // In place of what is kept there. label: what the user sees in the desktop's own list. A safe that does not take
    // it says so in its log.
    virtual void Keep(const QString& place, const QString& label, Secret secret) = 0;
    virtual void Forget(const QString& place) = 0;
};

} // namespace kestrune
