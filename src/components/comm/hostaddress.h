#pragma once

// The host and port fields of a session, checked before anything is looked up.

#include <QCoreApplication>
#include <QString>

#include <optional>

namespace kestrune::comm {

struct HostAddress
{
    Q_DECLARE_TR_FUNCTIONS(HostAddress)

public:
    QString host; // without the brackets of an IPv6 address
    quint16 port = 0;
    QString error; // not empty: the fields are not usable, in the user's words

    // idn: names outside ASCII are allowed. An empty port and "0" mean defaultPort; of 0 there is none.
    static HostAddress From(const QString& host, const QString& port, quint16 defaultPort, bool idn);
};

} // namespace kestrune::comm
