#include "secretservice.h"

#include <QDBusArgument>
#include <QDBusMetaType>
#include <QDBusPendingCallWatcher>
#include <QDBusVariant>
#include <QHash>
#include <QMap>

#include <utility>

namespace kestrune {

using namespace Qt::StringLiterals;

namespace {

constexpr auto kServiceName = "org.freedesktop.secrets"_L1;
constexpr auto kServicePath = "/org/freedesktop/secrets"_L1;
constexpr auto kServiceInterface = "org.freedesktop.Secret.Service"_L1;
constexpr auto kCollectionInterface = "org.freedesktop.Secret.Collection"_L1;
constexpr auto kItemInterface = "org.freedesktop.Secret.Item"_L1;
constexpr auto kPromptInterface = "org.freedesktop.Secret.Prompt"_L1;

// Milliseconds. A service that does not answer must not keep the user from typing; where it asks the user itself,
// that takes as long as it takes, but not inside a call.
constexpr int AnswerLimit = 3000;
constexpr int WriteLimit = 25000;

using Attributes = QMap<QString, QString>;

// The API's Secret: (oayays).
struct SealedSecret
{
    QDBusObjectPath session;
    QByteArray parameters; // none: the session is a plain one
    QByteArray value;
    QString contentType;
};

QDBusArgument& operator<<(QDBusArgument& to, const SealedSecret& secret)
{
    to.beginStructure();
    to << secret.session << secret.parameters << secret.value << secret.contentType;
    to.endStructure();
    return to;
}

const QDBusArgument& operator>>(const QDBusArgument& from, SealedSecret& secret)
{
    from.beginStructure();
    from >> secret.session >> secret.parameters >> secret.value >> secret.contentType;
    from.endStructure();
    return from;
}

Attributes AttributesOf(const QString& place) { return {{u"application"_s, u"kestrune"_s}, {u"place"_s, place}}; }

bool IsPrompt(const QDBusObjectPath& path) { return path.path().size() > 1; } // "/": none is needed

bool Answered(const QDBusMessage& message, qsizetype values)
{
    return message.type() == QDBusMessage::ReplyMessage && message.arguments().size() >= values;
}

template <typename T>
T Value(const QDBusMessage& message, qsizetype at)
{
    return qdbus_cast<T>(message.arguments().at(at));
}

} // namespace

SecretService::SecretService(const QDBusConnection& bus) : bus_(bus)
{
    qDBusRegisterMetaType<SealedSecret>();
    qDBusRegisterMetaType<Attributes>();
}

void SecretService::Call(const QString& path, const QString& interface, const QString& method,
                         const QVariantList& arguments, int limit, Reply then)
{
    QDBusMessage message = QDBusMessage::createMethodCall(kServiceName, path, interface, method);
    message.setArguments(arguments);
    auto* watcher = new QDBusPendingCallWatcher(bus_.asyncCall(message, limit), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [watcher, then = std::move(then)] {
        watcher->deleteLater();
        then(watcher->reply());
    });
}

// A plain session: what passes does so on the user's own bus, which every program of theirs that could listen there
// could also ask.
void SecretService::OpenSession(Done then)
{
    const QVariantList arguments{u"plain"_s, QVariant::fromValue(QDBusVariant(QString()))};
    Call(kServicePath, kServiceInterface, u"OpenSession"_s, arguments, AnswerLimit,
         [this, then = std::move(then)](const QDBusMessage& reply) {
             if (Answered(reply, 2))
                 session_ = Value<QDBusObjectPath>(reply, 1).path();
             then(!session_.isEmpty());
         });
}

void SecretService::Search(const QString& place, std::function<void(std::optional<Paths>, Paths)> then)
{
    Call(kServicePath, kServiceInterface, u"SearchItems"_s, {QVariant::fromValue(AttributesOf(place))}, AnswerLimit,
         [then = std::move(then)](const QDBusMessage& reply) {
             if (Answered(reply, 2))
                 then(Value<Paths>(reply, 0), Value<Paths>(reply, 1));
             else
                 then(std::nullopt, {});
         });
}

void SecretService::Unlock(const QDBusObjectPath& object, Done then)
{
    Call(kServicePath, kServiceInterface, u"Unlock"_s, {QVariant::fromValue(Paths{object})}, AnswerLimit,
         [this, then = std::move(then)](const QDBusMessage& reply) {
             if (!Answered(reply, 2))
                 then(false);
             else if (const auto prompt = Value<QDBusObjectPath>(reply, 1); IsPrompt(prompt))
                 RunPrompt(prompt, then);
             else
                 then(!Value<Paths>(reply, 0).isEmpty());
         });
}

void SecretService::RunPrompt(const QDBusObjectPath& prompt, const Done& then)
{
    prompts_.insert(prompt.path(), then);
    bus_.connect(kServiceName, prompt.path(), kPromptInterface, u"Completed"_s, this, SLOT(Completed(QDBusMessage)));
    Call(prompt.path(), kPromptInterface, u"Prompt"_s, {QString()}, AnswerLimit,
         [this, path = prompt.path()](const QDBusMessage& reply) {
             const Done waiting = Answered(reply, 0) ? nullptr : prompts_.take(path);
             if (waiting)
                 waiting(false);
         });
}

// Dismissed or not, and what came of it.
void SecretService::Completed(const QDBusMessage& message)
{
    if (const Done waiting = prompts_.take(message.path()))
        waiting(!message.arguments().value(0, true).toBool());
}

void SecretService::Read(const QDBusObjectPath& item, std::function<void(std::optional<Secret>)> then)
{
    const QVariantList arguments{QVariant::fromValue(Paths{item}), QVariant::fromValue(QDBusObjectPath(session_))};
    Call(kServicePath, kServiceInterface, u"GetSecrets"_s, arguments, AnswerLimit,
         [then = std::move(then)](const QDBusMessage& reply) {
             std::optional<Secret> secret;
             if (Answered(reply, 1)) {
                 const auto values = Value<QMap<QDBusObjectPath, SealedSecret>>(reply, 0);
                 if (!values.isEmpty()) {
                     const QByteArray& value = values.first().value;
                     secret.emplace(std::string_view(value.constData(), static_cast<std::size_t>(value.size())));
                 }
             }
             then(std::move(secret));
         });
}

void SecretService::DefaultCollection(std::function<void(const QDBusObjectPath&)> then)
{
    Call(kServicePath, kServiceInterface, u"ReadAlias"_s, {u"default"_s}, AnswerLimit,
         [then = std::move(then)](const QDBusMessage& reply) {
             const auto path = Answered(reply, 1) ? Value<QDBusObjectPath>(reply, 0) : QDBusObjectPath();
             then(IsPrompt(path) ? path : QDBusObjectPath());
         });
}

void SecretService::Create(const QDBusObjectPath& collection, const QString& place, const QString& label, Secret secret,
                           Done then)
{
    const QVariantMap properties{
        {QString(kItemInterface) + u".Label"_s, label},
        {QString(kItemInterface) + u".Attributes"_s, QVariant::fromValue(AttributesOf(place))},
    };
    const std::string_view utf8 = secret.Utf8();
    SealedSecret sealed{.session = QDBusObjectPath(session_),
                        .parameters = {},
                        .value = QByteArray(utf8.data(), static_cast<qsizetype>(utf8.size())),
                        .contentType = u"text/plain; charset=utf8"_s};
    Call(collection.path(), kCollectionInterface, u"CreateItem"_s, {properties, QVariant::fromValue(sealed), true},
         WriteLimit, [this, then = std::move(then)](const QDBusMessage& reply) {
             if (!Answered(reply, 2))
                 then(false);
             else if (const auto prompt = Value<QDBusObjectPath>(reply, 1); IsPrompt(prompt))
                 RunPrompt(prompt, then);
             else
                 then(true);
         });
    Secret::Wipe(sealed.value.data(), static_cast<std::size_t>(sealed.value.size()));
}

void SecretService::Delete(const QDBusObjectPath& item)
{
    Call(item.path(), kItemInterface, u"Delete"_s, {}, WriteLimit, [this](const QDBusMessage& reply) {
        if (!Answered(reply, 1))
            return;
        if (const auto prompt = Value<QDBusObjectPath>(reply, 0); IsPrompt(prompt))
            RunPrompt(prompt, [](bool) {});
    });
}

} // namespace kestrune
