#pragma once

// A real session bus of a test's own, and the services of the desktop that the test starts on it.

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDeadlineTimer>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QTimer>

#include <gtest/gtest.h>

#include <csignal>
#include <functional>
#include <sys/prctl.h>

namespace kestrune {

using namespace Qt::StringLiterals;

inline bool Until(const std::function<bool()>& happened)
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
    QByteArray Address() const { return address_.toUtf8(); }
    QDBusConnection Connection()
    {
        names_ << u"test%1"_s.arg(++counter);
        return QDBusConnection::connectToBus(address_, names_.back());
    }
    void End()
    {
        daemon_.kill();
        daemon_.waitForFinished();
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

} // namespace kestrune
