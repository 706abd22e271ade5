#pragma once

// A server program on loopback, on a port of its own, that ends with its owner; and a home folder in which the SSH
// device finds no file of the real user.

#include "linerig.h"

#include <QDir>
#include <QFile>
#include <QHostAddress>
#include <QProcess>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTemporaryDir>

#include <csignal>
#include <sys/prctl.h>

namespace kestrune {

inline quint16 FreePort()
{
    QTcpServer free;
    free.listen(QHostAddress::LocalHost);
    return free.serverPort();
}

class PartnerServer
{
public:
    // With %1 for the port. It goes with this process, however that ends.
    PartnerServer(const QString& program, const QStringList& arguments)
        : PartnerServer(QStringList{program} + arguments)
    {}
    explicit PartnerServer(QStringList command) : port_(FreePort())
    {
        command.replaceInStrings(QStringLiteral("%1"), QString::number(port_));
        process_.setProcessChannelMode(QProcess::MergedChannels);
        process_.setChildProcessModifier([] { ::prctl(PR_SET_PDEATHSIG, SIGKILL); });
        process_.start(command.takeFirst(), command);
    }
    ~PartnerServer() { Kill(); }
    void Kill()
    {
        process_.kill();
        process_.waitForFinished();
    }
    // Ready when it answers, whatever it says. It may have keys to make first, on a machine with other work.
    bool Answers(const QString& address = QStringLiteral("127.0.0.1"))
    {
        return WaitUntil(
            [&] {
                QTcpSocket caller;
                caller.connectToHost(address, port_);
                return caller.waitForConnected(200);
            },
            std::chrono::seconds(90));
    }
    quint16 Port() const { return port_; }
    qint64 ProcessId() const { return process_.processId(); }
    QByteArray Log() { return process_.readAll(); }

private:
    quint16 port_;
    QProcess process_;
};

// HOME, and no agent, until it goes.
class OwnHome
{
public:
    OwnHome() : home_(qgetenv("HOME")), agent_(qgetenv("SSH_AUTH_SOCK"))
    {
        QFile::setPermissions(folder_.path(), QFile::Permissions(0x7755)); // servers look for keys as the user
        qputenv("HOME", folder_.path().toLocal8Bit());
        qunsetenv("SSH_AUTH_SOCK");
    }
    ~OwnHome()
    {
        qputenv("HOME", home_);
        if (!agent_.isEmpty())
            qputenv("SSH_AUTH_SOCK", agent_);
    }
    QString Path(const QString& name) const { return folder_.filePath(name); }
    void Write(const QString& name, const QByteArray& content) const
    {
        QDir(folder_.path()).mkpath(QFileInfo(name).path());
        QFile file(Path(name));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(content);
        file.close();
        file.setPermissions(QFile::ReadOwner | QFile::WriteOwner);
    }
    QByteArray Read(const QString& name) const
    {
        QFile file(Path(name));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

private:
    QByteArray home_, agent_;
    QTemporaryDir folder_;
};

} // namespace kestrune
