#pragma once

// Why a socket failed: the number that error words carry and the user's words.

#include <QAbstractSocket>
#include <QString>

namespace kestrune::comm {

struct SocketReason
{
    quint16 number = 0;
    QString words; // "connection refused"

    static SocketReason Of(QAbstractSocket::SocketError error, const QString& systemText);
};

} // namespace kestrune::comm
