// Passwords in the desktop's secret service: the real one, on a bus and in a home folder of the test's own.

#include <fakes/ownbus.h>
#include <secrets/desktopsecrets.h>

#include <gtest/gtest.h>

namespace kestrune {

namespace {

using namespace Qt::StringLiterals;

// The service with a keyring that the password of the user has opened.
class Keyring
{
public:
    explicit Keyring(OwnBus& bus)
        : daemon_(u"gnome-keyring-daemon"_s, {u"--foreground"_s, u"--unlock"_s, u"--components=secrets"_s},
                  bus.Environment())
    {
        daemon_.write("login password");
        daemon_.closeWriteChannel();
        EXPECT_TRUE(Until([&] { return bus.Has(u"org.freedesktop.secrets"_s); }))
            << daemon_.readAllStandardError().data();
    }

private:
    Child daemon_;
};

// What is found: the secret, "none", or "no service".
std::string Find(SecretKeeper& keeper, const QString& place)
{
    std::optional<std::string> result;
    keeper.Find(place, [&](SecretKeeper::Found found) {
        result = !found.canKeep ? "no service" : found.secret ? std::string(found.secret->Utf8()) : "none";
    });
    EXPECT_FALSE(result) << "from the event loop";
    EXPECT_TRUE(Until([&] { return result.has_value(); }));
    return result.value_or("nothing said");
}

TEST(DesktopSecrets, KeepsFindsReplacesAndForgets)
{
    OwnBus bus;
    const Keyring keyring(bus);
    DesktopSecrets secrets([&] { return bus.Connection(); });
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
        DesktopSecrets another([&] { return bus.Connection(); }); // the next run of the program
        EXPECT_EQ(Find(another, ann), password);
    }
    secrets.Forget(ann);
    EXPECT_TRUE(Until([&] { return Find(secrets, ann) == "none"; }));
    EXPECT_EQ(Find(secrets, bob), "other");
}

TEST(DesktopSecrets, SaysThatThereIsNoneAndFindsALateOne)
{
    DesktopSecrets busless([] { return QDBusConnection(u"no such connection"_s); });
    busless.Keep(u"a"_s, u"a"_s, Secret("x"));
    EXPECT_EQ(Find(busless, u"a"_s), "no service");

    OwnBus bus;
    DesktopSecrets secrets([&] { return bus.Connection(); });
    EXPECT_EQ(Find(secrets, u"a"_s), "no service");
    const Keyring keyring(bus);
    EXPECT_EQ(Find(secrets, u"a"_s), "none");
    {
        DesktopSecrets gone([&] { return bus.Connection(); });
        gone.Find(u"a"_s, [](SecretKeeper::Found) { ADD_FAILURE() << "told after its end"; });
    }
    QCoreApplication::processEvents();
}

} // namespace

} // namespace kestrune
