#pragma once

// Work in a process of its own. Whatever the work raises ends that process, so that the test program never goes on
// twice.

#include <functional>
#include <unistd.h>

#include <sys/wait.h>

namespace kestrune {

inline constexpr int ChildRaised = 99;

inline pid_t StartChild(const std::function<int()>& run)
{
    const pid_t child = fork();
    if (child != 0)
        return child;
    int status = ChildRaised;
    try {
        status = run();
    } catch (...) {
        _exit(ChildRaised);
    }
    _exit(status);
}

// The exit status, or minus the signal that ended it.
inline int EndOf(pid_t child)
{
    int status = 0;
    waitpid(child, &status, 0);
    return WIFSIGNALED(status) ? -WTERMSIG(status) : WEXITSTATUS(status);
}

inline int InChild(const std::function<int()>& run) { return EndOf(StartChild(run)); }

} // namespace kestrune
