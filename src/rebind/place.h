#pragma once

// Where the sessions of this user lie: one socket each, named by its token, in a folder that is nobody else's.

#include <optional>
#include <string>

namespace kestrune::rebind {

// Made if needed. Nothing: it is there but not safely ours (a link, another owner, open to others), or cannot be made.
std::optional<std::string> SessionFolder();
std::string NewToken();
// A socket; -1 on failure, errno set.
int ListenAt(const std::string& path);
int ConnectTo(const std::string& path);

} // namespace kestrune::rebind
