#include <secrets/desktopsecrets.h>

#include "passwordstore.h"

#include <QAbstractEventDispatcher>
#include <QFileInfo>

#include <utility>

namespace kestrune {

using namespace Qt::StringLiterals;

namespace {

// The library's answers come through GLib's main loop, which is the toolkit's own on every desktop.
bool LoopIsOfGLib()
{
    const QAbstractEventDispatcher* dispatcher = QAbstractEventDispatcher::instance();
    return dispatcher != nullptr && dispatcher->inherits("QEventDispatcherGlib");
}

// Where GLib looks for one, too; after that it would start one of its own, that no store is on.
bool HasSessionBus()
{
    return !qgetenv("DBUS_SESSION_BUS_ADDRESS").isEmpty() ||
           QFileInfo::exists(qEnvironmentVariable("XDG_RUNTIME_DIR") + u"/bus"_s);
}

} // namespace

DesktopSecrets::DesktopSecrets() = default;
DesktopSecrets::~DesktopSecrets() = default;

void DesktopSecrets::WithStore(std::function<void(PasswordStore*)> then)
{
    if (!store_) {
        if (LoopIsOfGLib() && HasSessionBus())
            store_ = PasswordStore::OnSessionBus();
        else
            PasswordStore::SayThereIsNone(u"there is no session bus"_s);
    }
    if (store_)
        store_->WhenOpen([this, then = std::move(then)](bool open) { then(open ? store_.get() : nullptr); });
    else
        QMetaObject::invokeMethod(
            &life_, [then = std::move(then)] { then(nullptr); }, Qt::QueuedConnection);
}

void DesktopSecrets::Find(const QString& place, std::function<void(Found)> then)
{
    WithStore([place, then = std::move(then)](PasswordStore* store) {
        if (store)
            store->Find(place, then);
        else
            then({});
    });
}

void DesktopSecrets::Keep(const QString& place, const QString& label, Secret secret)
{
    auto kept = std::make_shared<Secret>(std::move(secret)); // continuations are copied, secrets are not
    WithStore([place, label, kept](PasswordStore* store) {
        if (store)
            store->Keep(place, label, *kept);
    });
}

void DesktopSecrets::Forget(const QString& place)
{
    WithStore([place](PasswordStore* store) {
        if (store)
            store->Forget(place);
    });
}

} // namespace kestrune
