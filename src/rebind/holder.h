#pragma once

// The process that holds one session: the login shell on a pseudo-terminal of its own, and the streams to the terminal
// over whichever login is there at the moment. With none it keeps the shell and what it prints (when the buffer is full
// the shell waits, as it would for a stopped terminal).

#include <chrono>
#include <string>
#include <vector>

namespace kestrune::rebind {

struct HolderOptions
{
    std::vector<std::string> command; // empty: the login shell
    std::size_t bufferSize = 0x40000;
    std::chrono::minutes keep{8 * 60}; // without a login, until the session is hung up
};

struct WindowSize
{
    unsigned short rows = 24;
    unsigned short cols = 80;
};

// Starts it, out of reach of this login's end. False: with the reason on standard error. On success the session's
// socket listens at path.
bool StartHolder(const HolderOptions& options, const std::string& path, WindowSize size);

} // namespace kestrune::rebind
