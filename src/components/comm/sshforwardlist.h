#pragma once

// The connections that an SSH session carries besides its shell, as they stand in a session file:
//
//     L8080:intranet:80, R2222:localhost:22, D1080
//
// L listens here and connects there, R listens there and connects here, D listens here as a SOCKS proxy. In front of
// the first port an address to listen at may stand ("L*:8080:intranet:80", "D[::1]:1080"); without one only the
// listening machine itself may call.

#include <QString>

#include <vector>

namespace kestrune::comm {

struct SshForward
{
    enum class Kind
    {
        Local,
        Remote,
        Dynamic
    };

    Kind kind = Kind::Local;
    QString address; // to listen at; empty: the listener's own machine alone
    quint16 port = 0;
    QString host; // to connect to; not for Dynamic
    quint16 hostPort = 0;

    bool operator==(const SshForward&) const = default;
};

struct SshForwardList
{
    std::vector<SshForward> forwards{};
    QString wrong{}; // the first entry that nobody can understand; empty: all are well

    static SshForwardList From(const QString& text);
};

} // namespace kestrune::comm
