#include <desktop/darkchoice.h>

#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusReply>

namespace kestrune {

using namespace Qt::StringLiterals;

namespace {

const QString kService = u"org.freedesktop.portal.Desktop"_s;
const QString kPath = u"/org/freedesktop/portal/desktop"_s;
const QString kInterface = u"org.freedesktop.portal.Settings"_s;
const QString kGroup = u"org.freedesktop.appearance"_s;
const QString kKey = u"color-scheme"_s;
constexpr uint kPrefersDark = 1; // 0: no choice, 2: light
constexpr int kPatience = 100;   // milliseconds; it takes one or two

} // namespace

DarkChoice::DarkChoice(const QDBusConnection& bus, std::function<void(bool)> chosen) : chosen_(std::move(chosen))
{
    qRegisterMetaType<QDBusVariant>("QDBusVariant"); // the slot's arguments are looked up by name
    QDBusConnection on(bus);
    on.connect(kService, kPath, kInterface, u"SettingChanged"_s, this,
               SLOT(SettingChanged(QString, QString, QDBusVariant)));
    QDBusMessage call = QDBusMessage::createMethodCall(kService, kPath, kInterface, u"Read"_s);
    call << kGroup << kKey;
    if (on.isConnected()) {
        call.setAutoStartService(false); // one that has to be started is not waited for
        const QDBusReply<QDBusVariant> reply = on.call(call, QDBus::Block, kPatience);
        if (reply.isValid()) {
            Tell(reply.value().variant());
            return;
        }
        call.setAutoStartService(true);
    }
    auto* answer = new QDBusPendingCallWatcher(on.asyncCall(call), this);
    connect(answer, &QDBusPendingCallWatcher::finished, this, [this, answer] {
        const QDBusPendingReply<QDBusVariant> reply = *answer;
        if (!reply.isError())
            Tell(reply.value().variant());
        answer->deleteLater();
    });
}

void DarkChoice::SettingChanged(const QString& group, const QString& key, const QDBusVariant& value)
{
    if (group == kGroup && key == kKey)
        Tell(value.variant());
}

// Read wraps its answer once more than the notice does.
void DarkChoice::Tell(const QVariant& value)
{
    const QVariant inner = value.canConvert<QDBusVariant>() ? value.value<QDBusVariant>().variant() : value;
    bool isNumber = false;
    const uint choice = inner.toUInt(&isNumber);
    if (isNumber)
        chosen_(choice == kPrefersDark);
}

} // namespace kestrune
