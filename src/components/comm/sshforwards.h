#pragma once

// What an SSH session carries besides its shell: forwarded ports in both directions, a SOCKS proxy, the user's agent.
// All of it is moved on the session's thread, between two waits of its event.

#include "sshpipe.h"
#include <comm/socksserver.h>
#include <comm/sshforwardlist.h>

#include <libssh/callbacks.h>

#include <list>
#include <optional>
#include <vector>

namespace kestrune::comm {

class SshForwards
{
public:
    SshForwards(SshContact& contact, ssh_event event);
    ~SshForwards();
    SshForwards(const SshForwards&) = delete;
    SshForwards& operator=(const SshForwards&) = delete;

    // Listens here, and asks the host to listen there. What cannot be had is told on the screen, and the session goes
    // on without it.
    void Open();
    // As much as goes without waiting. True: there is more to do before the event is waited for.
    bool Move();

private:
    struct Listener // here
    {
        const SshForward& forward;
        OwnedSocket socket;
        SshWatch watch;
    };
    struct Remote // the host listens
    {
        const SshForward& forward;
        std::vector<QByteArray> addresses; // of what is connected to here
    };
    struct Caller // a program here that waits for a connection of the host's
    {
        OwnedSocket socket;
        SshWatch watch;
        std::optional<SocksServer> socks;
        QByteArray host;
        quint16 port = 0;
        SshChannelHandle channel{};
    };
    struct Dialed // a channel of the host's that waits for a connection here
    {
        SshChannelHandle channel;
        std::vector<QByteArray> addresses; // still to be tried, the last one first
        OwnedSocket socket{};
        std::optional<SshWatch> watch{};
    };
    enum class Step
    {
        Waits,
        Done, // it has become a pipe
        Failed
    };

    void ListenHere(const SshForward& forward);
    void ListenThere(const SshForward& forward);
    void Tell(const SshForward& forward, const QString& why);
    bool IsFull() const;
    void Accept(Listener& listener);
    Step Advance(Caller& caller);
    Step HearSocks(Caller& caller);
    Step Advance(Dialed& dialed);
    static int HostAsks(ssh_session session, ssh_message message, void* self);
    static ssh_channel OpenAgent(ssh_session session, void* self);

    SshContact& contact_;
    ssh_event event_;
    std::vector<SshForward> wanted_;
    ssh_callbacks_struct callbacks_{};
    std::list<Listener> listeners_;
    std::vector<Remote> remotes_;
    std::list<Caller> callers_;
    std::list<Dialed> dialed_;
    std::list<SshPipe> pipes_;
};

} // namespace kestrune::comm
