#include "socketreason.h"

#include <ports/line.h>

#include <QCoreApplication>

#include <algorithm>
#include <array>

namespace kestrune::comm {

namespace {

struct ReasonRow
{
    QAbstractSocket::SocketError error;
    quint16 number;
    const char* words;
};

constexpr std::array ReasonRows{
    ReasonRow{QAbstractSocket::ConnectionRefusedError, LineErrorNumber::ConnectionRefused,
              QT_TRANSLATE_NOOP("SocketReason", "connection refused")},
    ReasonRow{QAbstractSocket::HostNotFoundError, LineErrorNumber::HostNotFound,
              QT_TRANSLATE_NOOP("SocketReason", "no host of this name was found")},
    ReasonRow{QAbstractSocket::SocketTimeoutError, LineErrorNumber::TimedOut,
              QT_TRANSLATE_NOOP("SocketReason", "the host does not answer")},
    ReasonRow{QAbstractSocket::SocketAccessError, LineErrorNumber::AccessDenied,
              QT_TRANSLATE_NOOP("SocketReason", "access denied")},
    ReasonRow{QAbstractSocket::SocketResourceError, LineErrorNumber::NoBufferSpace,
              QT_TRANSLATE_NOOP("SocketReason", "the system has no room for another connection")},
    ReasonRow{QAbstractSocket::RemoteHostClosedError, LineErrorNumber::ConnectionReset,
              QT_TRANSLATE_NOOP("SocketReason", "the host has closed the connection")},
};

} // namespace

SocketReason SocketReason::Of(QAbstractSocket::SocketError error, const QString& systemText)
{
    const auto row = std::ranges::find(ReasonRows, error, &ReasonRow::error);
    if (row == ReasonRows.end())
        return {LineErrorNumber::NetworkUnreachable, systemText};
    return {row->number, QCoreApplication::translate("SocketReason", row->words)};
}

} // namespace kestrune::comm
