#pragma once

// The question for the login that a proxy wants, and what the user has said to it.

#include <ports/line.h>

#include <optional>
#include <utility>

namespace kestrune::comm {

inline constexpr int MostProxyLogins = 3;

// user: known already; empty: asked for too. again: the proxy has refused the last one.
LineQuestion ProxyLoginQuestion(const QString& proxy, const QString& host, const QString& user, bool again);

struct ProxyLogin
{
    QString user;
    Secret password;
};

// Nothing: the user, or nobody, has said so.
std::optional<ProxyLogin> ProxyLoginFrom(LineAnswer answer, const QString& user);

} // namespace kestrune::comm
