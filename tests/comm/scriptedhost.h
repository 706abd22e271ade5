#pragma once

// The host of a test on a port of its own: takes one caller and plays bytes.

#include "linerig.h"

#include <QHostAddress>
#include <QTcpServer>
#include <QTcpSocket>

namespace kestrune {

class ScriptedHost
{
public:
    ScriptedHost() { EXPECT_TRUE(server_.listen(QHostAddress::LocalHost)); }

    quint16 Port() const { return server_.serverPort(); }
    LineOptions Options() const
    {
        LineOptions options;
        options.device = Device::Telnet;
        options.hostName = QStringLiteral("127.0.0.1");
        options.hostPort = QString::number(Port());
        options.terminalName = QStringLiteral("vt220");
        return options;
    }
    bool IsCalled(LineRig& rig)
    {
        return rig.Until([this] {
            if (QTcpSocket* next = server_.nextPendingConnection()) {
                caller_ = next;
                heard_.clear();
            }
            return caller_ && caller_->state() == QAbstractSocket::ConnectedState;
        });
    }
    bool Takes(LineRig& rig)
    {
        rig.line->Open();
        return IsCalled(rig) && rig.UntilOpen();
    }
    QTcpSocket& Caller() { return *caller_; }
    void Says(const QByteArray& bytes) { caller_->write(bytes); }
    bool Hears(LineRig& rig, const QByteArray& bytes)
    {
        return rig.Until([&] {
            heard_ += caller_->readAll();
            return heard_.contains(bytes);
        });
    }

private:
    QTcpServer server_;
    QTcpSocket* caller_ = nullptr; // the server's
    QByteArray heard_;
};

// A port on which nobody listens.
inline quint16 ClosedPort()
{
    QTcpServer server;
    server.listen(QHostAddress::LocalHost);
    return server.serverPort();
}

} // namespace kestrune
