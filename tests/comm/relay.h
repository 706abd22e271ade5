#pragma once

// A proxy of a test's own on loopback, SOCKS5 (RFC 1928, 1929) or HTTP CONNECT, that really connects to where it is
// told, whatever the name: all of them are this machine.

#include "linerig.h"

#include <QHostAddress>
#include <QTcpServer>
#include <QTcpSocket>

namespace kestrune {

class Relay
{
public:
    Relay() { EXPECT_TRUE(server_.listen(QHostAddress::LocalHost)); }
    ~Relay()
    {
        for (QTcpSocket* socket : server_.findChildren<QTcpSocket*>())
            socket->disconnect(); // each speaks to the other while it goes
    }
    Relay(const Relay&) = delete;
    Relay& operator=(const Relay&) = delete;

    LineOptions::Proxy Proxy(int kind)
    {
        QObject::connect(&server_, &QTcpServer::newConnection, &server_, [this, kind] {
            QTcpSocket* caller = server_.nextPendingConnection();
            QObject::connect(caller, &QIODevice::readyRead, &server_, [this, kind, caller] {
                (kind == 1 ? &Relay::TakeSocks : &Relay::TakeHttp)(*this, caller);
            });
        });
        return {.kind = kind,
                .host = QStringLiteral("127.0.0.1"),
                .port = QString::number(server_.serverPort()),
                .user = QString::fromUtf8(user)};
    }

    QByteArray user, password; // not empty: who may pass
    QByteArray asked;          // for which host, last
    int refused = 0;           // callers that were not known
    bool drips = false;        // passes what the host says on byte by byte
    bool swallows = false;     // passes nothing on any more, and says nothing of it

private:
    static QByteArray Counted(const QByteArray& text) { return char(text.size()) + text; }

    static void TakeSocks(Relay& relay, QTcpSocket* caller)
    {
        const QByteArray said = caller->peek(600);
        const qsizetype greeting = said.size() < 2 ? 2 : 2 + said[1];
        if (said.size() < greeting)
            return;
        const auto answeredBefore = caller->property("answered").toInt();
        if (answeredBefore == 0) {
            caller->write(relay.user.isEmpty() ? QByteArray("\5\0", 2) : QByteArray("\5\2", 2));
            caller->setProperty("answered", 1);
        }
        qsizetype at = greeting;
        if (!relay.user.isEmpty()) {
            const QByteArray login = QByteArray("\1") + Counted(relay.user) + Counted(relay.password);
            const qsizetype secret = said.size() < at + 2 ? 0 : at + 2 + said[at + 1];
            if (secret == 0 || said.size() <= secret || said.size() < secret + 1 + said[secret])
                return;
            const bool right = said.mid(at, login.size()) == login;
            if (answeredBefore < 2) {
                caller->write(right ? QByteArray("\1\0", 2) : QByteArray("\1\1", 2));
                caller->setProperty("answered", 2);
                relay.refused += right ? 0 : 1;
            }
            if (!right)
                return caller->disconnectFromHost();
            at += login.size();
        }
        if (said.size() < at + 5 || said.size() < at + 7 + said[at + 4])
            return;
        relay.asked = said.mid(at + 5, said[at + 4]);
        const auto* port = reinterpret_cast<const uchar*>(said.constData()) + at + 5 + said[at + 4];
        Join(relay, caller, at + 7 + said[at + 4], static_cast<quint16>(port[0] << 8 | port[1]),
             QByteArray("\5\0\0\1\0\0\0\0\0\0", 10));
    }

    static void TakeHttp(Relay& relay, QTcpSocket* caller)
    {
        const QByteArray said = caller->peek(2000);
        const qsizetype end = said.indexOf("\r\n\r\n");
        if (end < 0)
            return;
        const QByteArray target = said.split(' ').at(1);
        const QByteArray login = "Basic " + (relay.user + ':' + relay.password).toBase64() + "\r\n";
        if (!relay.user.isEmpty() && !said.contains(login)) {
            ++relay.refused;
            caller->write("HTTP/1.1 407 Who\r\n\r\n");
            return caller->disconnectFromHost();
        }
        relay.asked = target.left(target.lastIndexOf(':'));
        Join(relay, caller, end + 4, target.mid(target.lastIndexOf(':') + 1).toUShort(), "HTTP/1.1 200 OK\r\n\r\n");
    }

    static void Join(Relay& relay, QTcpSocket* caller, qsizetype taken, quint16 port, const QByteArray& granted)
    {
        caller->skip(taken);
        caller->disconnect(&relay.server_);
        caller->setSocketOption(QAbstractSocket::LowDelayOption, 1);
        auto* host = new QTcpSocket(caller);
        QObject::connect(host, &QAbstractSocket::connected, caller, [caller, granted] { caller->write(granted); });
        QObject::connect(host, &QIODevice::readyRead, caller, [=, &relay] {
            const QByteArray said = host->readAll();
            if (!relay.swallows && !relay.drips)
                caller->write(said);
            for (const char byte : relay.drips ? said : QByteArray()) {
                caller->write(&byte, 1);
                caller->flush();
            }
        });
        QObject::connect(caller, &QIODevice::readyRead, host, [=, &relay] {
            const QByteArray said = caller->readAll();
            if (!relay.swallows)
                host->write(said);
        });
        QObject::connect(host, &QAbstractSocket::disconnected, caller, &QAbstractSocket::disconnectFromHost);
        QObject::connect(caller, &QAbstractSocket::disconnected, host, &QAbstractSocket::disconnectFromHost);
        host->connectToHost(QHostAddress::LocalHost, port);
    }

    QTcpServer server_;
};

} // namespace kestrune
