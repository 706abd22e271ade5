#pragma once

// The daemon of inetutils, started for each caller by socat, with a script in place of the login.

#include "linerig.h"

#include <QFile>
#include <QHostAddress>
#include <QProcess>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTemporaryDir>

namespace kestrune {

class TelnetServer
{
public:
    // prefix: a command that runs another one where the server is to be, which has the address there.
    explicit TelnetServer(const char* script, const QStringList& prefix = {},
                          const QString& address = QStringLiteral("127.0.0.1"))
        : address_(address)
    {
        QFile login(folder_.filePath(QStringLiteral("login")));
        EXPECT_TRUE(login.open(QIODevice::WriteOnly));
        login.write(script);
        login.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        QTcpServer free;
        free.listen(QHostAddress::LocalHost);
        port_ = free.serverPort();
        free.close();
        QStringList command = prefix;
        command << QStringLiteral("timeout") << QStringLiteral("-k") << QStringLiteral("1") << QStringLiteral("300")
                << QStringLiteral("socat")
                << QStringLiteral("TCP-LISTEN:%1,bind=%2,reuseaddr,fork").arg(port_).arg(address)
                << QStringLiteral("EXEC:/usr/sbin/telnetd -h --accept-env=USER --exec-login=%1,nofork")
                       .arg(login.fileName());
        process_.start(command.takeFirst(), command);
    }
    ~TelnetServer() { Kill(); }
    void Kill()
    {
        process_.terminate(); // timeout passes it on to all of its group
        process_.waitForFinished();
    }
    bool Answers()
    {
        return WaitUntil([this] {
            QTcpSocket caller;
            caller.connectToHost(address_, port_);
            return caller.waitForConnected(200);
        });
    }
    LineOptions Options() const
    {
        LineOptions options;
        options.device = Device::Telnet;
        options.hostName = address_ == QStringLiteral("127.0.0.1") ? QStringLiteral("localhost") : address_;
        options.hostPort = QString::number(port_);
        options.terminalName = QStringLiteral("vt220");
        options.userName = "ann";
        options.size = {.cols = 255, .rows = 40};
        return options;
    }

private:
    QTemporaryDir folder_;
    QProcess process_;
    QString address_;
    quint16 port_ = 0;
};

} // namespace kestrune
