#pragma once

// Whether the user has chosen dark colours for the whole desktop, as its portal tells (org.freedesktop.appearance,
// color-scheme). A portal that runs is asked at once, so that no window is first shown in the wrong colours; one that
// has to be started or is slow is told of from the event loop, like every later choice. Without a bus or a portal
// nothing is ever told.

#include <QDBusConnection>
#include <QDBusVariant>
#include <QObject>

#include <functional>

namespace kestrune {

class DarkChoice : public QObject
{
    Q_OBJECT

public:
    explicit DarkChoice(const QDBusConnection& bus, std::function<void(bool dark)> chosen);

private slots:
    void SettingChanged(const QString& group, const QString& key, const QDBusVariant& value);

private:
    void Tell(const QVariant& value);

    std::function<void(bool)> chosen_;
};

} // namespace kestrune
