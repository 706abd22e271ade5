#pragma once

// The settings layer's calls do not report failures: a read gives its default, a write is silent, and a caller that
// must know tests the result or gathers its changes in a ProfileGroup. This is the one place that swallows them.

#include <dispatch/failure.h>

namespace kestrune {

template <typename Operation>
bool Quietly(Operation operation)
{
    try {
        operation();
        return true;
    } catch (const Failure&) {
        return false;
    }
}

} // namespace kestrune
