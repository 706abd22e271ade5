#pragma once

// The desktop's secret service (org.freedesktop.secrets, the Secret Service API of freedesktop.org) as a keeper of
// passwords. The bus is looked for when the first one is needed, not at the start. Without a bus or a service nothing
// can be kept, and Find says so.

#include <ports/secretkeeper.h>

#include <QDBusConnection>

#include <functional>
#include <memory>

namespace kestrune {

class DesktopSecrets final : public SecretKeeper
{
public:
    using Bus = std::function<QDBusConnection()>;
    explicit DesktopSecrets(Bus bus = &QDBusConnection::sessionBus);
    ~DesktopSecrets() override; // what is under way is forgotten

    void Find(const QString& place, std::function<void(Found)> then) override;
    void Keep(const QString& place, const QString& label, Secret secret) override;
    void Forget(const QString& place) override;

private:
    class Service;
    Service& Open();

    Bus bus_;
    std::unique_ptr<Service> service_;
};

} // namespace kestrune
