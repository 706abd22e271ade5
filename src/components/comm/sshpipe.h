#pragma once

// A channel of an SSH session and a socket of ours, each given what the other one says. For a thread that pumps the
// session by an ssh_event, which watches the socket as well; nothing here waits.

#include "sshcontact.h"

#include <platform/sockets.h>

#include <QByteArray>

#include <utility>

namespace kestrune::comm {

// What may be read from or written to a socket, told to an event without its callback: who pumps the event looks at
// everything after each turn.
class SshWatch
{
public:
    SshWatch(ssh_event event, int socket) : event_(event), socket_(socket) {}
    ~SshWatch() { For(0); }
    SshWatch(SshWatch&& other) noexcept
        : event_(other.event_), socket_(other.socket_), events_(std::exchange(other.events_, short{0}))
    {}
    SshWatch& operator=(SshWatch&&) = delete;

    void For(short events); // of poll(2); 0: not even for its end

private:
    ssh_event event_;
    int socket_;
    short events_ = 0;
};

class SshPipe
{
public:
    SshPipe(ssh_event event, SshChannelHandle channel, OwnedSocket socket); // an open channel

    enum class Progress
    {
        Idle, // nothing more to do before the event has something
        More, // stopped for the sake of others: come back
        Over  // both directions have ended
    };
    Progress Move();

private:
    bool ReadSocket();
    bool WriteChannel();
    bool ReadChannel();
    bool WriteSocket();
    bool IsOver() const;

    SshChannelHandle channel_;
    OwnedSocket socket_;
    SshWatch watch_; // goes first
    QByteArray toHost_;
    QByteArray toSocket_;
    bool socketEnded_ = false;
    bool hostEnded_ = false;
    bool broken_ = false;
};

} // namespace kestrune::comm
