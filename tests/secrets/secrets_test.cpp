// Passwords in the desktop's secret service: the real one, on a bus and in a home folder of the test's own.

#include <secrets/desktopsecrets.h>

#include <QCoreApplication>
#include <QDBusConnectionInterface>
#include <QDeadlineTimer>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QTimer>

#include <gtest/gtest.h>

#include <csignal>
#include <sys/prctl.h>

namespace kestrune {

namespace {

using namespace Qt::StringLiterals;

bool Until(const std::function<bool()>& happened)
{
    const QDeadlineTimer longEnough(20000); // reached only when a test fails
    QTimer look;
    look.start(5);
    while (!happened() && !longEnough.hasExpired())
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    return happened();
}

class Child : public QProcess
{
public:
    Child(const QString& program, const QStringList& arguments, const QProcessEnvironment& environment)
    {
        setChildProcessModifier([] { ::prctl(PR_SET_PDEATHSIG, SIGKILL); });
        setProcessEnvironment(environment);
        start(program, arguments);
    }
    ~Child() override
    {
        kill();
        waitForFinished();
    }
};

// A session bus with nothing on it, that starts no service by itself.
class OwnBus
{
public:
    OwnBus()
        : daemon_(u"dbus-daemon"_s, {u"--nofork"_s, u"--print-address"_s, u"--config-file"_s, Configuration()},
                  Environment())
    {
        EXPECT_TRUE(Until([this] { return daemon_.canReadLine(); }));
        address_ = QString::fromUtf8(daemon_.readLine()).trimmed();
    }
    ~OwnBus()
    {
        for (const QString& name : names_)
            QDBusConnection::disconnectFromBus(name);
    }
    OwnBus(const OwnBus&) = delete;
    OwnBus& operator=(const OwnBus&) = delete;

    QProcessEnvironment Environment() const
    {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        for (const char* name : {"HOME", "XDG_DATA_HOME", "XDG_CONFIG_HOME", "XDG_RUNTIME_DIR"})
            environment.insert(QString::fromLatin1(name), folder_.path());
        environment.remove(u"DISPLAY"_s);
        environment.insert(u"DBUS_SESSION_BUS_ADDRESS"_s, address_);
        return environment;
    }
    QDBusConnection Connection()
    {
        names_ << u"test%1"_s.arg(++counter);
        return QDBusConnection::connectToBus(address_, names_.back());
    }
    bool Has(const QString& service) { return Connection().interface()->isServiceRegistered(service); }

private:
    QString Configuration() const
    {
        QFile file(folder_.filePath(u"bus.conf"_s));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("<busconfig><type>session</type><listen>unix:dir=" + folder_.path().toUtf8() +
                   "</listen><policy context=\"default\"><allow send_destination=\"*\" eavesdrop=\"true\"/>"
                   "<allow eavesdrop=\"true\"/><allow own=\"*\"/></policy>"
                   "</busconfig>\n");
        return file.fileName();
    }

    static inline int counter = 0;
    QTemporaryDir folder_;
    QString address_;
    Child daemon_;
    QStringList names_;
};

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
