#pragma once

// How an SSH host is reached: directly by the line's own connection, through the hosts that the session or the user's
// SSH configuration puts in between, or by a command of the user's.

#include "sshjump.h"
#include <comm/sshroute.h>

#include <platform/commandsocket.h>

#include <deque>
#include <memory>
#include <optional>

namespace kestrune::comm {

class SshApproach
{
public:
    // enter: takes a connected socket to a host as far as a login.
    using Enter = void (*)(SshContact& contact, int socket);
    SshApproach(const LineOptions& options, SshMailbox& mail, Enter enter);

    // A connected socket to the host, the caller's from now on. What it needs stays as long as this.
    int To(SshContact& host);

private:
    using Route = std::deque<std::unique_ptr<SshContact>>;
    Route RouteTo(const SshContact& host, const std::vector<SshTarget>& jumps);
    int FirstSocket(SshContact& nearest, bool byCommand);

    LineOptions options_; // of hosts in between
    SshMailbox& mail_;
    Enter enter_;
    std::optional<CommandSocket> command_;
    std::unique_ptr<SshJump> last_;
};

} // namespace kestrune::comm
