#pragma once

// A host on the way to another one: a session of its own with it, logged in, and a channel to the next that a thread
// of its own pumps, since the session behind it is waited for elsewhere.

#include "sshpipe.h"

#include <platform/wakeup.h>

#include <atomic>
#include <memory>
#include <thread>

namespace kestrune::comm {

class SshJump
{
public:
    // before: the one that contact is reached through, null: none; it stays as long as this. contact is logged in.
    // Throws SshFailure when the host does not lead on.
    SshJump(std::unique_ptr<SshJump> before, std::unique_ptr<SshContact> contact, const QString& host, int port);
    ~SshJump();
    SshJump(const SshJump&) = delete;
    SshJump& operator=(const SshJump&) = delete;

    int TakeSocket() { return near_.Release(); } // to the next host; the caller's from now on

private:
    void Pump();

    std::unique_ptr<SshJump> before_;
    std::unique_ptr<SshContact> contact_;
    SshChannelHandle channel_; // the thread's, as is the session, until it has ended
    OwnedSocket near_;
    OwnedSocket far_;
    WakeUp wake_;
    std::atomic<bool> leaving_{false};
    std::thread thread_;
};

} // namespace kestrune::comm
