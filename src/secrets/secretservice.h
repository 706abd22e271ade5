#pragma once

// The calls of the Secret Service API, each with a continuation. A failed call is told as an empty answer.

#include <ports/secret.h>

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QHash>
#include <QList>
#include <QObject>
#include <QVariant>

#include <functional>
#include <memory>
#include <optional>

namespace kestrune {

class SecretService : public QObject
{
    Q_OBJECT

public:
    using Paths = QList<QDBusObjectPath>;
    using Done = std::function<void(bool)>;

    explicit SecretService(const QDBusConnection& bus);

    void OpenSession(Done then); // once; false: there is no service
    void Search(const QString& place, std::function<void(std::optional<Paths> unlocked, Paths locked)> then);
    void Unlock(const QDBusObjectPath& object, Done then); // may ask the user
    void Read(const QDBusObjectPath& item, std::function<void(std::optional<Secret>)> then);
    void DefaultCollection(std::function<void(const QDBusObjectPath&)> then); // empty: none
    void Create(const QDBusObjectPath& collection, const QString& place, const QString& label, Secret secret,
                Done then);
    void Delete(const QDBusObjectPath& item);

private slots:
    void Completed(const QDBusMessage& message); // of a prompt

private:
    using Reply = std::function<void(const QDBusMessage&)>;
    void Call(const QString& path, const QString& interface, const QString& method, const QVariantList& arguments,
              int limit, Reply then);
    void RunPrompt(const QDBusObjectPath& prompt, const Done& then);

    QDBusConnection bus_;
    QString session_;
    QHash<QString, Done> prompts_; // that stand, by their paths
};

} // namespace kestrune
