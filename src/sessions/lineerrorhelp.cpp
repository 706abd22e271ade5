#include "lineerrorhelp.h"

#include <ports/line.h>

#include <QCoreApplication>

#include <algorithm>
#include <array>

namespace kestrune {

namespace {

struct ErrorAdvice
{
    quint16 number;
    const char* text;
    Device device = Device::None; // none: every one that has no row of its own further up
};

const char* const kNoPort = QT_TRANSLATE_NOOP(
    "LineErrorHelp", "Check the port in the session's settings, and whether its adapter is plugged in.");
const char* const kPortRefused =
    QT_TRANSLATE_NOOP("LineErrorHelp", "Another program has the port, or your account may not use it: accounts in the "
                                       "group \"dialout\" mostly may.");

const std::array kErrorAdvice{
    ErrorAdvice{LineErrorNumber::NoSuchFile, kNoPort, Device::SerialPort},
    ErrorAdvice{LineErrorNumber::NoSuchFile, kNoPort, Device::Modem},
    ErrorAdvice{LineErrorNumber::AccessDenied, kPortRefused, Device::SerialPort},
    ErrorAdvice{LineErrorNumber::AccessDenied, kPortRefused, Device::Modem},
    ErrorAdvice{LineErrorNumber::TimedOut,
                QT_TRANSLATE_NOOP("LineErrorHelp",
                                  "Is the modem switched on, and at this port? Check speed and frame in the session's "
                                  "settings or in modems.ini, and whether it takes the commands that stand there."),
                Device::Modem},
    ErrorAdvice{LineErrorNumber::NoSuchFile,
                QT_TRANSLATE_NOOP("LineErrorHelp",
                                  "Check the name of the file with the client certificate in the session's settings."),
                Device::SslTelnet},
    ErrorAdvice{LineErrorNumber::NoSuchFile,
                QT_TRANSLATE_NOOP("LineErrorHelp", "Check the name of the program in the session's settings.")},
    ErrorAdvice{LineErrorNumber::AccessDenied,
                QT_TRANSLATE_NOOP("LineErrorHelp",
                                  "The host has refused the login or the connection. Check user name, password and "
                                  "key, and whether the host takes logins of that kind.")},
    ErrorAdvice{LineErrorNumber::InvalidArgument,
                QT_TRANSLATE_NOOP("LineErrorHelp", "Check host name, port and device in the session's settings.")},
    ErrorAdvice{LineErrorNumber::ProtocolNotSupported,
                QT_TRANSLATE_NOOP("LineErrorHelp",
                                  "Host and session could not agree on a protocol. Check the device, the port and the "
                                  "ciphers in the session's settings; an old host may need an old cipher.")},
    ErrorAdvice{LineErrorNumber::NetworkDown, QT_TRANSLATE_NOOP("LineErrorHelp", "Check this computer's network.")},
    ErrorAdvice{LineErrorNumber::NetworkUnreachable,
                QT_TRANSLATE_NOOP("LineErrorHelp", "Check this computer's network and the way to the host's.")},
    ErrorAdvice{LineErrorNumber::ConnectionReset,
                QT_TRANSLATE_NOOP("LineErrorHelp",
                                  "The host, or something on the way to it, has dropped the connection. Reconnect; if "
                                  "it happens again, keep-alives in the session's settings may help.")},
    ErrorAdvice{LineErrorNumber::TimedOut,
                QT_TRANSLATE_NOOP("LineErrorHelp",
                                  "Nothing has answered in time. Check the host name, and whether a firewall is in the "
                                  "way; a slow network may need a longer time limit.")},
    ErrorAdvice{LineErrorNumber::ConnectionRefused,
                QT_TRANSLATE_NOOP("LineErrorHelp",
                                  "The host is there, but no service answers at that port. Check the port and the "
                                  "device, and whether the service is running.")},
    ErrorAdvice{LineErrorNumber::HostUnreachable,
                QT_TRANSLATE_NOOP("LineErrorHelp", "There is no way to the host at present. Is it switched on?")},
    ErrorAdvice{
        LineErrorNumber::HostNotFound,
        QT_TRANSLATE_NOOP("LineErrorHelp", "Check the spelling of the host name, and this computer's network.")},
};

} // namespace

QString LineErrorHelp(quint32 word)
{
    if (word == 0)
        return {};
    const auto device = static_cast<Device>(word >> 16);
    const auto row = std::ranges::find_if(kErrorAdvice, [word, device](const ErrorAdvice& advice) {
        return advice.number == static_cast<quint16>(word) &&
               (advice.device == Device::None || advice.device == device);
    });
    const char* text = row == kErrorAdvice.end()
                           ? QT_TRANSLATE_NOOP("LineErrorHelp", "There is no advice for this error.")
                           : row->text;
    return QCoreApplication::translate("LineErrorHelp", text);
}

} // namespace kestrune
