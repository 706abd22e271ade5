#pragma once

// The host field of an SSH session taken apart: "host", "user@host", "host:port", "user@[v6]:port". What is not
// given is left empty, so that the user's SSH configuration and the session's other fields can say it.

#include <QCoreApplication>
#include <QString>

namespace kestrune::comm {

struct SshTarget
{
    Q_DECLARE_TR_FUNCTIONS(SshLine)

public:
    QString user;
    QString host; // without the brackets of an IPv6 address
    QString port;

    static SshTarget From(const QString& field);

    // What no connection can be made to, in the user's words; empty: nothing. Session files come from strangers, too:
    // a name must not be able to become an option or a command on its way. idn as in HostAddress.
    QString Error(bool idn) const;
    // The name of a user may hold what a shell would act on: no command is given such a name.
    static bool IsSafeInCommand(const QString& user);
};

} // namespace kestrune::comm
