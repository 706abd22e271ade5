// Signals that ask the program to end.

#include <platform/endrequests.h>

#include <QCoreApplication>

#include <gtest/gtest.h>

#include <csignal>

namespace kestrune {

namespace {

TEST(EndRequests, AreHeardInTheEventLoopOnceAndTheNextOneIsDeadly)
{
    for (const int number : {SIGTERM, SIGHUP, SIGINT}) {
        int asked = 0;
        {
            const EndRequests requests([&] { ++asked; });
            std::raise(number);
            EXPECT_EQ(asked, 0) << "not in the handler";
            QCoreApplication::processEvents();
            EXPECT_EQ(asked, 1) << "signal " << number;
            EXPECT_EXIT(std::raise(number), testing::KilledBySignal(number), "");
        }
        struct sigaction after = {};
        ::sigaction(number, nullptr, &after);
        EXPECT_EQ(after.sa_handler, SIG_DFL);
    }
}

TEST(EndRequests, ASignalThatIsIgnoredStaysIgnored)
{
    std::signal(SIGHUP, SIG_IGN);
    {
        const EndRequests requests([] { FAIL() << "asked"; });
        std::raise(SIGHUP);
        QCoreApplication::processEvents();
    }
    std::raise(SIGHUP); // still harmless
    std::signal(SIGHUP, SIG_DFL);
}

} // namespace

} // namespace kestrune
