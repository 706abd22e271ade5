#pragma once

// The process in a login: finds out whether the terminal knows resumable sessions, and then carries its streams between
// the terminal and the session's holder until either goes.

#include "holder.h"

#include <chrono>
#include <optional>

namespace kestrune::rebind {

struct AttachOptions
{
    HolderOptions holder;
    std::chrono::milliseconds wait{2000}; // for a terminal that answers nothing at all; others take no time
};

// The exit code of the session's program; 255 when the connection to its holder broke. Nothing: this is no such
// terminal, or no terminal: the login goes on as ever.
std::optional<int> AttachSession(const AttachOptions& options);

} // namespace kestrune::rebind
