#pragma once

// What stands between here and an SSH host, read from the session and from the user's SSH configuration.

#include <comm/sshtarget.h>

#include <QString>

#include <optional>
#include <vector>

namespace kestrune::comm {

// "user@host:port, ..." as ProxyJump has it, the nearest first. "none" and nothing: empty.
std::vector<SshTarget> JumpsFrom(const QString& list);

// A command that does nothing but run ssh as a jump host ("ssh -W %h:%p user@host", with -l, -p and -J): the hosts
// that it goes by, the nearest first. Nothing: it is some other command.
std::optional<std::vector<SshTarget>> JumpsOfCommand(const QString& command);

// A command of the user's configuration with its tokens: %h host, %p port, %r user, %n host as given, %%.
QString ExpandedCommand(const QString& command, const QString& host, int port, const QString& user,
                        const QString& given);

} // namespace kestrune::comm
