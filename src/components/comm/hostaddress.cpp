#include "hostaddress.h"

#include <platform/sockets.h>

#include <algorithm>

namespace kestrune::comm {

namespace {

constexpr qsizetype LongestHostName = 253; // RFC 1035 2.3.4, as text

bool IsHostCharacter(QChar c)
{
    using namespace Qt::StringLiterals;
    return c.isLetterOrNumber() || u".-_"_s.contains(c) || c.isMark() || c.isSurrogate();
}

bool IsAddressCharacter(QChar c)
{
    using namespace Qt::StringLiterals;
    return c.unicode() < 128 && (c.isLetterOrNumber() || u".:%-_"_s.contains(c));
}

bool IsHost(const QString& host)
{
    const bool address = host.contains(u':'); // IPv6, with its zone perhaps
    return !host.isEmpty() && host.size() <= LongestHostName && !host.startsWith(u'-') &&
           std::ranges::all_of(host, address ? IsAddressCharacter : IsHostCharacter);
}

std::optional<quint16> PortNumber(const QString& text)
{
    bool isNumber = false;
    const uint number = text.toUInt(&isNumber);
    if (isNumber)
        return number >= 1 && number <= 65535 ? std::optional(static_cast<quint16>(number)) : std::nullopt;
    const auto isServiceCharacter = [](QChar c) {
        return c.unicode() < 128 && (c.isLetterOrNumber() || c == u'-' || c == u'_');
    };
    if (text.startsWith(u'-') || !std::ranges::all_of(text, isServiceCharacter))
        return std::nullopt;
    return ServicePort(text.toLatin1());
}

} // namespace

HostAddress HostAddress::From(const QString& hostField, const QString& portField, quint16 defaultPort, bool idn)
{
    HostAddress result;
    result.host = hostField.trimmed();
    if (result.host.startsWith(u'[') && result.host.endsWith(u']'))
        result.host = result.host.mid(1, result.host.size() - 2);
    // 0 stands for the device's own port, as forms with a number in them write it.
    const QString port = portField.trimmed() == u"0" ? QString() : portField.trimmed();
    const bool ascii = std::ranges::all_of(result.host, [](QChar c) { return c.unicode() < 128; });

    if (result.host.isEmpty())
        result.error = tr("Unable to connect: the session names no host.");
    else if (!IsHost(result.host))
        result.error = tr("Unable to connect: \"%1\" is not a host name or address.").arg(result.host.left(80));
    else if (!ascii && !idn)
        result.error =
            tr("Unable to connect to %1: international host names are switched off for this session.").arg(result.host);
    else if (port.isEmpty() && defaultPort == 0)
        result.error = tr("Unable to connect to %1: the session names no port.").arg(result.host);
    else if (const auto number = port.isEmpty() ? std::optional(defaultPort) : PortNumber(port))
        result.port = *number;
    else
        result.error = tr("Unable to connect to %1: \"%2\" is not a port number or a service name.")
                           .arg(result.host, port.left(80));
    return result;
}

} // namespace kestrune::comm
