// kestrune-rebind, on the host: keeps a login session alive when its connection is lost.

#include <rebind/attach.h>
#include <rebind/install.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <string_view>

namespace {

constexpr int kNotResumable = 125; // the profile goes on
constexpr int kBadUsage = 2;

constexpr const char* kHelp =
    "usage: kestrune-rebind --login [--keep MINUTES] [--buffer KB] [--wait MS] [-- COMMAND ...]\n"
    "       kestrune-rebind --install\n"
    "\n"
    "Keeps a login session alive when its connection is lost, for a terminal that can resume it.\n"
    "  --login    in a login: starts the session, or goes on with the one that the terminal asks for.\n"
    "             With a terminal that does not know how, it ends with 125 at once and the login goes on.\n"
    "  --install  adds that to the profile of your login shell\n"
    "  --keep     how long a session without a connection is kept, in minutes (480)\n"
    "  --buffer   how much unseen output is kept before the session waits, in KB (256)\n"
    "  --wait     how long a silent terminal is waited for, in milliseconds (2000)\n";

bool Number(const char* text, long least, long most, long& number)
{
    char* end = nullptr;
    number = text ? std::strtol(text, &end, 10) : 0;
    return text && *text && !*end && number >= least && number <= most;
}

int Install()
{
    const char* home = std::getenv("HOME"); // NOLINT(concurrency-mt-unsafe): one thread
    if (!home) {
        std::fputs("kestrune-rebind: there is no home folder\n", stderr);
        return 1;
    }
    bool ok = false;
    const std::string told = kestrune::rebind::InstallInProfile(home, ok);
    std::fprintf(ok ? stdout : stderr, "%s\n", told.c_str());
    return ok ? 0 : 1;
}

struct NumberOption
{
    std::string_view name;
    long least;
    long most;
    void (*set)(kestrune::rebind::AttachOptions&, long);
};

constexpr NumberOption kNumbers[] = {
    {"--keep", 1, 525'600, [](auto& options, long value) { options.holder.keep = std::chrono::minutes(value); }},
    {"--buffer", 4, 65'536, [](auto& options, long value) { options.holder.bufferSize = std::size_t(value) * 1024; }},
    {"--wait", 1, 60'000, [](auto& options, long value) { options.wait = std::chrono::milliseconds(value); }},
};

} // namespace

int main(int count, char** arguments)
{
    kestrune::rebind::AttachOptions options;
    bool login = false;
    for (int i = 1; i < count; ++i) {
        const std::string_view word = arguments[i];
        const auto* number = std::ranges::find(kNumbers, word, &NumberOption::name);
        long value = 0;
        if (word == "--help" || word == "-h") {
            std::fputs(kHelp, stdout);
            return 0;
        }
        if (word == "--version") {
            std::puts("kestrune-rebind " KESTRUNE_RELEASE);
            return 0;
        }
        if (word == "--install")
            return Install();
        if (word == "--login") {
            login = true;
        } else if (word == "--") {
            options.holder.command.assign(arguments + i + 1, arguments + count);
            break;
        } else if (number != std::end(kNumbers) && Number(arguments[i + 1], number->least, number->most, value)) {
            number->set(options, value);
            ++i;
        } else {
            std::fprintf(stderr, "kestrune-rebind: %s is not understood\n%s", arguments[i], kHelp);
            return kBadUsage;
        }
    }
    if (!login) {
        std::fputs(kHelp, stderr);
        return kBadUsage;
    }
    // A session inside a session would only be in its own way.
    if (std::getenv("KESTRUNE_REBIND")) // NOLINT(concurrency-mt-unsafe): one thread
        return kNotResumable;
    const auto code = kestrune::rebind::AttachSession(options);
    return code ? 0 : kNotResumable;
}
