#pragma once

// Asks what failure a call raises: 0 for none. Every failure has a text for people.

#include <dispatch/failure.h>

#include <gtest/gtest.h>

namespace kestrune {

int FailureNumber(auto run)
{
    try {
        run();
    } catch (const Failure& failure) {
        EXPECT_FALSE(failure.Text().isEmpty());
        return int(failure.Number());
    }
    return 0;
}

} // namespace kestrune
