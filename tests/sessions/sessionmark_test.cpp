#include "bench.h"

#include <sessions/sessionmark.h>

#include <fakes/emulatorbench.h>

namespace kestrune {
namespace {

TEST(SessionMark, TellsWhatMattersMostToOneWhoLooksElsewhere)
{
    EmulatorBench bench;
    SessionMark mark(bench.control);
    int told = 0;
    QObject::connect(&mark, &SessionMark::Changed, &mark, [&] { ++told; });
    using State = SessionMark::State;
    EXPECT_EQ(mark.Now(), State::Offline);
    bench.Connect();
    EXPECT_EQ(mark.Now(), State::Connected);
    bench.HostSays("login: ");
    EXPECT_EQ(mark.Now(), State::Activity);
    bench.HostSays("\a");
    EXPECT_EQ(mark.Now(), State::Bell) << "calls louder";
    bench.HostSays("more");
    EXPECT_EQ(mark.Now(), State::Bell);
    mark.SetWatched(true);
    EXPECT_EQ(mark.Now(), State::Connected);
    const int before = told;
    bench.HostSays("seen at once\a");
    EXPECT_EQ(mark.Now(), State::Connected);
    EXPECT_EQ(told, before);
    mark.SetWatched(false);
    EXPECT_EQ(mark.Now(), State::Connected) << "it has been seen";
    bench.Host().Drop();
    bench.clock.RunPosted();
    EXPECT_EQ(mark.Now(), State::Lost);
    mark.SetWatched(true);
    EXPECT_EQ(mark.Now(), State::Lost) << "also of the one before the eyes";
    bench.Connect();
    EXPECT_EQ(mark.Now(), State::Connected) << "here again";
}

} // namespace
} // namespace kestrune
