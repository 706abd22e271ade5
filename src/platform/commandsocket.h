#pragma once

// A command of the user's whose standard input and output are one end of a socket, for connections that a program
// makes. It is hung up on when this goes.

#include <platform/sockets.h>

#include <QByteArray>

namespace kestrune {

class CommandSocket
{
public:
    explicit CommandSocket(const QByteArray& command); // for the shell; raises Failure when it cannot be started
    ~CommandSocket();
    CommandSocket(const CommandSocket&) = delete;
    CommandSocket& operator=(const CommandSocket&) = delete;

    int TakeSocket() { return ours_.Release(); } // non-blocking; the caller's from now on

private:
    OwnedSocket ours_;
    int process_ = -1;
};

} // namespace kestrune
