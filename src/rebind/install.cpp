#include "install.h"

#include <fstream>
#include <sstream>

namespace kestrune::rebind {

namespace {

constexpr const char* kMark = "kestrune-rebind --login";
// In words of the oldest shells. Only in a login with a terminal; everything else goes past it.
constexpr const char* kLines = "\n# A lost connection can be resumed: the session goes on without it.\n"
                               "if [ -t 0 ] && [ -z \"$KESTRUNE_REBIND\" ] && command -v kestrune-rebind >/dev/null "
                               "2>&1; then\n    kestrune-rebind --login && exit\nfi\n";

bool Exists(const std::string& path) { return std::ifstream(path).good(); }

std::string Content(const std::string& path)
{
    std::ostringstream text;
    text << std::ifstream(path).rdbuf();
    return text.str();
}

} // namespace

// bash reads the first of these that is there, other shells the last.
std::string InstallInProfile(const std::string& home, bool& ok)
{
    std::string profile = home + "/.profile";
    for (const char* name : {"/.bash_profile", "/.bash_login"})
        if (Exists(home + name)) {
            profile = home + name;
            break;
        }
    ok = true;
    if (Content(profile).find(kMark) != std::string::npos)
        return profile + " has it already.";
    std::ofstream file(profile, std::ios::app);
    file << kLines;
    ok = file.flush().good();
    return ok ? std::string("The next login reads it from ").append(profile) + "." : profile + " cannot be written.";
}

} // namespace kestrune::rebind
