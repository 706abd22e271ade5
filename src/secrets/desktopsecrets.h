#pragma once

// The desktop's password store (the Secret Service API of freedesktop.org, as libsecret speaks it) as a keeper of
// passwords. They cross the bus encrypted; a store that does not take them so gets none. Bus and store are looked for
// when the first password is needed, not at the start. Without them nothing can be kept: Find says so, and the log why.

#include <ports/secretkeeper.h>

#include <QObject>

#include <functional>
#include <memory>

namespace kestrune {

class PasswordStore;

class DesktopSecrets final : public SecretKeeper
{
public:
    DesktopSecrets();
    ~DesktopSecrets() override; // what is under way is forgotten

    void Find(const QString& place, std::function<void(Found)> then) override;
    void Keep(const QString& place, const QString& label, Secret secret) override;
    void Forget(const QString& place) override;

private:
    // Null, told from the event loop: there is no store.
    void WithStore(std::function<void(PasswordStore*)> then);

    std::unique_ptr<PasswordStore> store_; // once there is a bus
    QObject life_;
};

} // namespace kestrune
