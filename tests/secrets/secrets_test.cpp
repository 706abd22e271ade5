// Passwords in the desktop's password store: the real one, on a bus and in a home folder of the test's own.

#include <fakes/ownbus.h>
#include <secrets/desktopsecrets.h>

#include <gtest/gtest.h>

#include <QDBusMessage>
#include <QDBusVariant>
#include <QDBusVirtualObject>

namespace kestrune {

namespace {

using namespace Qt::StringLiterals;

const QString StoreName = u"org.freedesktop.secrets"_s;
const QString StorePath = u"/org/freedesktop/secrets"_s;
const QString StoreInterface = u"org.freedesktop.Secret.Service"_s;

// The bus that programs of this session find.
class SessionBus : public OwnBus
{
public:
    SessionBus() { qputenv(Name, Address()); }
    ~SessionBus() { qunsetenv(Name); }
    SessionBus(const SessionBus&) = delete;
    SessionBus& operator=(const SessionBus&) = delete;
    static constexpr auto Name = "DBUS_SESSION_BUS_ADDRESS";
};

// The store with a keyring that the password of the user has opened.
class Keyring
{
public:
    explicit Keyring(OwnBus& bus)
        : daemon_(u"gnome-keyring-daemon"_s, {u"--foreground"_s, u"--unlock"_s, u"--components=secrets"_s},
                  bus.Environment())
    {
        daemon_.write("login password");
        daemon_.closeWriteChannel();
        EXPECT_TRUE(Until([&] { return bus.Has(StoreName); })) << daemon_.readAllStandardError().data();
    }

private:
    Child daemon_;
};

// All that passes over the bus, as it is.
class Listener
{
public:
    explicit Listener(OwnBus& bus)
        : monitor_(u"dbus-monitor"_s, {u"--binary"_s, u"--address"_s, QString::fromUtf8(bus.Address())},
                   bus.Environment())
    {
        EXPECT_TRUE(Until([&] { return !Heard().isEmpty(); })) << monitor_.readAllStandardError().data();
    }
    const QByteArray& Heard() { return heard_ += monitor_.readAllStandardOutput(); }
    bool Hears(const QByteArray& bytes)
    {
        return Until([&] { return Heard().contains(bytes); });
    }

private:
    Child monitor_;
    QByteArray heard_;
};

// A store that knows no encryption.
class OpenStore : public QDBusVirtualObject
{
public:
    explicit OpenStore(OwnBus& bus) : connection_(bus.Connection())
    {
        EXPECT_TRUE(connection_.registerVirtualObject(StorePath, this, QDBusConnection::SubPath));
        EXPECT_TRUE(connection_.registerService(StoreName));
    }
    QString introspect(const QString&) const override { return {}; }
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override
    {
        asked += message.member();
        if (message.member() != u"OpenSession"_s)
            return false;
        if (message.arguments().value(0).toString() == u"plain"_s)
            connection.send(message.createReply({QVariant::fromValue(QDBusVariant(QString())),
                                                 QVariant::fromValue(QDBusObjectPath(StorePath + u"/session"_s))}));
        else
            connection.send(message.createErrorReply(QDBusError::NotSupported, u"Plain only"_s));
        return true;
    }
    QStringList asked;

private:
    QDBusConnection connection_;
};

// What is found: the secret, "none", or "no store".
std::string Find(SecretKeeper& keeper, const QString& place)
{
    std::optional<std::string> result;
    keeper.Find(place, [&](SecretKeeper::Found found) {
        result = !found.canKeep ? "no store" : found.secret ? std::string(found.secret->Utf8()) : "none";
    });
    EXPECT_FALSE(result) << "from the event loop";
    EXPECT_TRUE(Until([&] { return result.has_value(); }));
    return result.value_or("nothing said");
}

TEST(DesktopSecrets, KeepsFindsReplacesAndForgets)
{
    SessionBus bus;
    const Keyring keyring(bus);
    DesktopSecrets secrets;
    const QString ann = u"password ssh ann@host"_s;
    const QString bob = u"password ssh bob@host"_s;
    EXPECT_EQ(Find(secrets, ann), "none");
    const std::string password = "gr\xc3\xbc\xc3\x9f\t\"dich\" ";
    secrets.Keep(ann, u"SSH login to ann@host"_s, Secret("old"));
    secrets.Keep(bob, u"SSH login to bob@host"_s, Secret("other"));
    EXPECT_TRUE(Until([&] { return Find(secrets, bob) == "other"; }));
    secrets.Keep(ann, u"SSH login to ann@host"_s, Secret(password));
    EXPECT_TRUE(Until([&] { return Find(secrets, ann) == password; }));
    {
        DesktopSecrets another; // the next run of the program
        EXPECT_EQ(Find(another, ann), password);
    }
    secrets.Forget(ann);
    EXPECT_TRUE(Until([&] { return Find(secrets, ann) == "none"; }));
    EXPECT_EQ(Find(secrets, bob), "other");
}

TEST(DesktopSecrets, SaysThatThereIsNoneAndFindsALateOne)
{
    qunsetenv(SessionBus::Name);
    qunsetenv("XDG_RUNTIME_DIR");
    DesktopSecrets busless;
    busless.Keep(u"a"_s, u"a"_s, Secret("x"));
    EXPECT_EQ(Find(busless, u"a"_s), "no store");
    qputenv(SessionBus::Name, "unix:path=/no/such/bus");
    EXPECT_EQ(Find(busless, u"a"_s), "no store");

    SessionBus bus;
    DesktopSecrets secrets;
    EXPECT_EQ(Find(secrets, u"a"_s), "no store");
    const Keyring keyring(bus);
    EXPECT_EQ(Find(secrets, u"a"_s), "none");
    {
        DesktopSecrets gone;
        gone.Find(u"a"_s, [](SecretKeeper::Found) { ADD_FAILURE() << "told after its end"; });
    }
    QCoreApplication::processEvents();
}

TEST(DesktopSecrets, SurvivesTheStoresEndAndTheBuss)
{
    SessionBus bus;
    auto keyring = std::make_unique<Keyring>(bus);
    DesktopSecrets secrets;
    secrets.Keep(u"a"_s, u"a"_s, Secret("kept"));
    EXPECT_TRUE(Until([&] { return Find(secrets, u"a"_s) == "kept"; }));
    keyring.reset();
    EXPECT_TRUE(Until([&] { return Find(secrets, u"a"_s) == "no store"; }));
    keyring = std::make_unique<Keyring>(bus);
    EXPECT_EQ(Find(secrets, u"a"_s), "kept") << "agreed anew with the new one";
    bus.End();
    EXPECT_EQ(Find(secrets, u"a"_s), "no store");
}

TEST(DesktopSecrets, NeverCrossTheBusInTheClear)
{
    SessionBus bus;
    const Keyring keyring(bus);
    Listener listener(bus);
    DesktopSecrets secrets;
    const std::string password = "correct horse battery staple";
    secrets.Keep(u"the place"_s, u"the label"_s, Secret(password));
    EXPECT_TRUE(Until([&] { return Find(secrets, u"the place"_s) == password; }));
    secrets.Forget(u"the place"_s);
    EXPECT_TRUE(listener.Hears("Delete")); // so it has heard all that went before
    EXPECT_TRUE(listener.Heard().contains("the label"));
    EXPECT_FALSE(listener.Heard().contains("battery"));
}

TEST(DesktopSecrets, AreNotGivenToAStoreThatKnowsNoEncryption)
{
    SessionBus bus;
    OpenStore open(bus);
    DesktopSecrets cautious;
    EXPECT_EQ(Find(cautious, u"a"_s), "no store");
    cautious.Keep(u"a"_s, u"a"_s, Secret("x"));
    EXPECT_EQ(Find(cautious, u"a"_s), "no store");
    EXPECT_TRUE(open.asked.contains(u"OpenSession"_s));
    EXPECT_FALSE(open.asked.contains(u"CreateItem"_s));
}

// On this bus nobody can ask the user, which counts as their refusal.
TEST(DesktopSecrets, ALockedStoreAsksTheUser)
{
    SessionBus bus;
    const Keyring keyring(bus);
    DesktopSecrets secrets;
    secrets.Keep(u"a"_s, u"a"_s, Secret("kept"));
    EXPECT_TRUE(Until([&] { return Find(secrets, u"a"_s) == "kept"; }));
    QDBusMessage lock = QDBusMessage::createMethodCall(StoreName, StorePath, StoreInterface, u"Lock"_s);
    lock.setArguments({QVariant::fromValue(QList{QDBusObjectPath(StorePath + u"/collection/login"_s)})});
    ASSERT_EQ(bus.Connection().call(lock).type(), QDBusMessage::ReplyMessage);
    Listener listener(bus);
    EXPECT_EQ(Find(secrets, u"a"_s), "none");
    EXPECT_TRUE(listener.Hears("Prompt"));
}

} // namespace

} // namespace kestrune
