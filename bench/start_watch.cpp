// start_watch PROGRAM ARGUMENT..: starts a terminal that runs "window_probe block", watches the screen's pixels
// until the block is there, ends the terminal and prints one line of JSON: milliseconds from start to sight,
// processor milliseconds and resident kilobytes of the terminal by then.

#include "display.h"
#include "processes.h"

#include <chrono>
#include <csignal>
#include <cstdio>

#include <sys/wait.h>
#include <unistd.h>

namespace {

using Clock = std::chrono::steady_clock;
constexpr auto TimeLimit = std::chrono::seconds(30);

} // namespace

int main(int count, char** arguments)
{
    if (count < 2) {
        std::fputs("usage: start_watch PROGRAM ARGUMENT..\n", stderr);
        return 2;
    }
    const bench::Display screen;
    if (screen.ShowsBlock()) {
        std::fputs("start_watch: the block is there before the start\n", stderr);
        return 1;
    }
    const auto begin = Clock::now();
    const pid_t terminal = fork();
    if (terminal == 0) {
        execvp(arguments[1], arguments + 1);
        std::perror(arguments[1]);
        _exit(127);
    }
    bool seen = false;
    while (!seen && Clock::now() - begin < TimeLimit && waitpid(terminal, nullptr, WNOHANG) == 0) {
        seen = screen.ShowsBlock();
        usleep(seen ? 0 : 1000);
    }
    const double milliseconds = std::chrono::duration<double, std::milli>(Clock::now() - begin).count();
    if (seen)
        std::printf("{\"shown\": %.1f, \"processor\": %.1f, \"resident\": %ld}\n", milliseconds,
                    1000 * bench::ProcessorSeconds(terminal), bench::ResidentKilobytes(terminal));
    else
        std::fprintf(stderr, "start_watch: %s has shown no block\n", arguments[1]);
    kill(terminal, SIGKILL);
    waitpid(terminal, nullptr, 0);
    return seen ? 0 : 1;
}
