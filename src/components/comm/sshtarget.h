#pragma once

// The host field of an SSH session taken apart: "host", "user@host", "host:port", "user@[v6]:port". What is not
// given is left empty, so that the user's SSH configuration and the session's other fields can say it.

#include <QString>

namespace kestrune::comm {

struct SshTarget
{
    QString user;
    QString host; // without the brackets of an IPv6 address
    QString port;

    static SshTarget From(const QString& field);
};

} // namespace kestrune::comm
