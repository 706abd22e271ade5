#pragma once

#include <string>

namespace kestrune::rebind {

// Adds the line that starts resumable sessions to the profile that the user's login shell reads, once. Returns what to
// tell the user; ok is false when the file could not be written.
std::string InstallInProfile(const std::string& home, bool& ok);

} // namespace kestrune::rebind
