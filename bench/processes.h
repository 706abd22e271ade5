#pragma once

// What another process has used up so far.

#include <ctime>
#include <fstream>
#include <string>

#include <sys/types.h>

namespace bench {

// Seconds of processor time of all its threads; 0: there is no such process.
inline double ProcessorSeconds(pid_t process)
{
    clockid_t clock{};
    timespec spent{};
    if (process <= 0 || clock_getcpuclockid(process, &clock) != 0 || clock_gettime(clock, &spent) != 0)
        return 0;
    return static_cast<double>(spent.tv_sec) + static_cast<double>(spent.tv_nsec) * 1e-9;
}

inline long ResidentKilobytes(pid_t process)
{
    std::ifstream status("/proc/" + std::to_string(process) + "/status");
    for (std::string word; status >> word;)
        if (word == "VmRSS:" && status >> word)
            return std::stol(word);
    return 0;
}

} // namespace bench
