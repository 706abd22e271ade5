#include <secrets/desktopsecrets.h>

#include "secretservice.h"

#include <QLoggingCategory>

#include <deque>
#include <utility>

namespace kestrune {

namespace {

Q_LOGGING_CATEGORY(SecretLog, "kestrune.secrets")

} // namespace

// The calls in their order. Each waits until it is known whether there is a service; one that was absent is looked for
// again at the next call, since a desktop may start it late.
class DesktopSecrets::Service
{
public:
    explicit Service(const QDBusConnection& bus) : hasBus_(bus.isConnected()), calls_(bus) {}

    SecretService& Calls() { return calls_; }

    void WhenKnown(std::function<void(bool there)> run)
    {
        waiting_.push_back(std::move(run));
        if (std::exchange(asking_, true))
            return;
        if (there_ || !hasBus_)
            QMetaObject::invokeMethod(
                &calls_, [this] { Known(there_); }, Qt::QueuedConnection);
        else
            calls_.OpenSession([this](bool there) { Known(there); });
    }

private:
    void Known(bool there)
    {
        asking_ = false;
        there_ = there;
        for (const auto& run : std::exchange(waiting_, {}))
            run(there);
    }

    bool hasBus_;
    bool there_ = false;
    bool asking_ = false;
    std::deque<std::function<void(bool)>> waiting_;
    SecretService calls_; // goes first, with all that it would still tell
};

DesktopSecrets::DesktopSecrets(Bus bus) : bus_(std::move(bus)) {}
DesktopSecrets::~DesktopSecrets() = default;

DesktopSecrets::Service& DesktopSecrets::Open()
{
    if (!service_)
        service_ = std::make_unique<Service>(bus_());
    return *service_;
}

void DesktopSecrets::Find(const QString& place, std::function<void(Found)> then)
{
    Service& service = Open();
    SecretService& calls = service.Calls();
    service.WhenKnown([&calls, place, then = std::move(then)](bool there) {
        if (!there) {
            then({});
            return;
        }
        calls.Search(place, [&calls, then](std::optional<SecretService::Paths> unlocked, SecretService::Paths locked) {
            const auto read = [&calls, then](const QDBusObjectPath& item) {
                calls.Read(item, [then](std::optional<Secret> secret) { then({true, std::move(secret)}); });
            };
            if (!unlocked)
                then({});
            else if (!unlocked->isEmpty())
                read(unlocked->first());
            else if (!locked.isEmpty())
                calls.Unlock(locked.first(), [then, read, item = locked.first()](bool open) {
                    if (open)
                        read(item);
                    else
                        then({true, std::nullopt}); // the user did not want that
                });
            else
                then({true, std::nullopt});
        });
    });
}

void DesktopSecrets::Keep(const QString& place, const QString& label, Secret secret)
{
    Service& service = Open();
    SecretService& calls = service.Calls();
    auto kept = std::make_shared<Secret>(std::move(secret)); // continuations are copied, secrets are not
    service.WhenKnown([&calls, place, label, kept](bool there) {
        if (!there)
            return;
        calls.DefaultCollection([&calls, place, label, kept](const QDBusObjectPath& collection) {
            if (collection.path().isEmpty()) {
                qCWarning(SecretLog, "The secret service has no default collection: nothing was kept.");
                return;
            }
            calls.Unlock(collection, [&calls, collection, place, label, kept](bool open) {
                if (open)
                    calls.Create(collection, place, label, std::move(*kept), [](bool done) {
                        if (!done)
                            qCWarning(SecretLog, "The secret service did not keep a password.");
                    });
            });
        });
    });
}

void DesktopSecrets::Forget(const QString& place)
{
    Service& service = Open();
    SecretService& calls = service.Calls();
    service.WhenKnown([&calls, place](bool there) {
        if (there)
            calls.Search(place,
                         [&calls](const std::optional<SecretService::Paths>& unlocked, const SecretService::Paths&) {
                             for (const QDBusObjectPath& item : unlocked.value_or(SecretService::Paths()))
                                 calls.Delete(item);
                         });
    });
}

} // namespace kestrune
