#include "processors.h"

#include <sched.h>

namespace kestrune {

namespace {

// The one process-wide fact of this room: what the process was permitted before it pinned itself.
struct Permitted
{
    cpu_set_t mask;
    bool known = false;
};
Permitted& BeforePinning()
{
    static Permitted permitted;
    return permitted;
}

} // namespace

std::vector<int> PermittedProcessors()
{
    cpu_set_t mask;
    CPU_ZERO(&mask);
    if (BeforePinning().known)
        mask = BeforePinning().mask;
    else
        sched_getaffinity(0, sizeof mask, &mask);
    std::vector<int> numbers;
    for (int i = 0; i < CPU_SETSIZE; ++i)
        if (CPU_ISSET(i, &mask))
            numbers.push_back(i);
    return numbers;
}

bool PinToProcessor(int number)
{
    auto& before = BeforePinning();
    if (number < 0 || number >= CPU_SETSIZE)
        return false;
    if (!before.known) {
        CPU_ZERO(&before.mask);
        if (sched_getaffinity(0, sizeof before.mask, &before.mask) != 0)
            return false;
        before.known = true;
    }
    cpu_set_t one;
    CPU_ZERO(&one);
    CPU_SET(number, &one);
    return CPU_ISSET(number, &before.mask) && sched_setaffinity(0, sizeof one, &one) == 0;
}

bool GiveBackProcessors() noexcept
{
    const auto& before = BeforePinning();
    return !before.known || sched_setaffinity(0, sizeof before.mask, &before.mask) == 0;
}

} // namespace kestrune
