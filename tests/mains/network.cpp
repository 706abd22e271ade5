// A test program in a network of its own.

#include <QCoreApplication>

#include <gtest/gtest.h>

#include <cstdio>
#include <sched.h>

int main(int argc, char** argv)
{
    // The test is only registered where this is permitted.
    if (::unshare(CLONE_NEWNET) != 0) {
        std::perror("network_test: no network namespace of its own");
        return 1;
    }
    QCoreApplication application(argc, argv);
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
