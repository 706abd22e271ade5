#include <comm/commhandles.h>
#include <fakes/fakeline.h>

#include <gtest/gtest.h>

namespace kestrune {

namespace {

using namespace Qt::StringLiterals;

struct HandleBench
{
    explicit HandleBench(Device device = Device::Telnet)
    {
        lines.devices.insert(Device::Modem);
        LineOptions options;
        options.device = device;
        handle = comm.ORCommOpen(options);
    }
    int Query(CommQuery what) const { return comm.ORCommQuery(handle, what); }
    std::string ReadAll()
    {
        std::string text(100, ' ');
        text.resize(static_cast<std::size_t>(comm.ORCommReadBuf(handle, text.data(), 100)));
        return text;
    }

    FakeLineFactory lines;
    CommHandles comm{lines};
    int handle = 0;
};

TEST(CommHandles, CarriesBytesBothWays)
{
    HandleBench bench;
    ASSERT_GT(bench.handle, 0);
    EXPECT_EQ(bench.Query(CommQuery::Device), 3);
    EXPECT_EQ(bench.comm.ORCommWrite(bench.handle, 'x'), 0) << "not connected yet";
    bench.lines.Current().Connect();
    EXPECT_EQ(bench.Query(CommQuery::State), 4);
    EXPECT_EQ(bench.comm.ORCommErrmsg(bench.handle), u"Connected"_s);

    EXPECT_EQ(bench.comm.ORCommRead(bench.handle), -1);
    bench.lines.Current().HostSays("a\xff"
                                   "bc");
    EXPECT_EQ(bench.Query(CommQuery::Received), 4);
    EXPECT_EQ(bench.comm.ORCommRead(bench.handle), 'a');
    EXPECT_EQ(bench.comm.ORCommRead(bench.handle), 255);
    EXPECT_EQ(bench.comm.ORCommUnread(bench.handle, 'y'), 1);
    EXPECT_EQ(bench.comm.ORCommUnreadBuf(bench.handle, "wx"), 2);
    EXPECT_EQ(bench.ReadAll(), "wxybc");
    bench.lines.Current().HostSays("old");
    EXPECT_EQ(bench.comm.ORCommFlush(bench.handle), 3);
    EXPECT_EQ(bench.ReadAll(), "");

    EXPECT_EQ(bench.comm.ORCommWrite(bench.handle, 0xE9), 1);
    EXPECT_EQ(bench.comm.ORCommWriteBuf(bench.handle, "text"), 4);
    EXPECT_EQ(bench.lines.Current().TakeSent(), "\xe9text");
    EXPECT_EQ(bench.comm.ORCommBreak(bench.handle, 250), 1);
    EXPECT_EQ(bench.lines.Current().breaks, 1);
}

TEST(CommHandles, HoldsAFarSideBackThatSendsMoreThanIsRead)
{
    HandleBench bench;
    bench.lines.Current().Connect();
    bench.lines.Current().HostSays(std::string(CommHandles::MostKept, 'x'));
    EXPECT_FALSE(bench.lines.Current().receiving);
    EXPECT_EQ(bench.comm.ORCommRead(bench.handle), 'x');
    EXPECT_TRUE(bench.lines.Current().receiving);
    EXPECT_EQ(bench.comm.ORCommOption(bench.handle, CommOption::Receiving, 0), 1);
    EXPECT_FALSE(bench.lines.Current().receiving);
    bench.comm.ORCommFlush(bench.handle);
    EXPECT_FALSE(bench.lines.Current().receiving) << "as it was told";
    bench.lines.Current().unsent = Line::MaxUnsent;
    EXPECT_EQ(bench.comm.ORCommWrite(bench.handle, 'x'), 0);
}

TEST(CommHandles, TellsHowALineEnds)
{
    HandleBench bench;
    bench.lines.Current().Connect();
    bench.lines.Current().HostSays("last words");
    bench.lines.Current().Fail(0x32746, u"The connection was lost"_s);
    EXPECT_EQ(bench.Query(CommQuery::State), 0);
    EXPECT_EQ(bench.Query(CommQuery::ErrorWord), 0x32746);
    EXPECT_EQ(bench.ReadAll(), "last words");
    EXPECT_EQ(bench.comm.ORCommAbort(bench.handle), 0);

    EXPECT_EQ(bench.comm.ORCommOption(bench.handle, CommOption::Columns, 132), 1);
    EXPECT_EQ(bench.comm.ORCommReset(bench.handle), 1);
    EXPECT_EQ(bench.Query(CommQuery::ErrorWord), 0);
    EXPECT_EQ(bench.lines.made.back().size.cols, 132);
    EXPECT_EQ(bench.comm.ORCommOption(bench.handle, CommOption::Rows, 50), 1);
    EXPECT_EQ(bench.lines.Current().size.rows, 50);
    EXPECT_EQ(bench.comm.ORCommOption(bench.handle, CommOption::Rows, 0), 0);
    EXPECT_EQ(bench.comm.ORCommAbort(bench.handle), 1);
    EXPECT_TRUE(bench.lines.Current().closing);
    bench.lines.Current().Exit(3);
    EXPECT_EQ(bench.Query(CommQuery::ExitCode), 3);
}

TEST(CommHandles, AnswersQuestionsAboutTrustAndNoOthers)
{
    HandleBench bench;
    EXPECT_EQ(bench.comm.ORCommEscape(bench.handle, CommEscape::Continue), 0);
    bench.lines.Current().Ask({.id = 7, .kind = LineQuestion::Kind::ChangedHost, .title = {}, .text = {}});
    EXPECT_EQ(bench.Query(CommQuery::Question), 2);
    EXPECT_EQ(bench.comm.ORCommEscape(bench.handle, static_cast<CommEscape>(9)), 0);
    EXPECT_EQ(bench.comm.ORCommEscape(bench.handle, CommEscape::Update), 1);
    EXPECT_EQ(bench.Query(CommQuery::Question), 0);
    bench.lines.Current().Ask({.id = 8, .kind = LineQuestion::Kind::Secrets, .title = {}, .text = {}});
    ASSERT_EQ(bench.lines.Current().answers.size(), 2U);
    EXPECT_EQ(bench.lines.Current().answers[0].choice, LineAnswer::Choice::Update);
    EXPECT_EQ(bench.lines.Current().answers[1].choice, LineAnswer::Choice::Nobody);
}

TEST(CommHandles, MakesCalls)
{
    HandleBench bench(Device::Modem);
    bench.lines.Current().Connect();
    EXPECT_EQ(bench.comm.ORCommDial(bench.handle, u"555"_s), 1);
    EXPECT_EQ(bench.Query(CommQuery::DialStatus), 1);
    bench.lines.Current().Call(DialStatus::Connected);
    EXPECT_EQ(bench.Query(CommQuery::DialStatus), 2);
    EXPECT_EQ(bench.comm.ORCommHangup(bench.handle), 1);
}

TEST(CommHandles, KnowsNoHandleButItsOwn)
{
    HandleBench bench;
    EXPECT_EQ(HandleBench(Device::None).handle, 0);
    EXPECT_EQ(bench.comm.ORCommClose(bench.handle), 1);
    EXPECT_EQ(bench.lines.current, nullptr);
    for (const int handle : {bench.handle, 0, -1}) {
        char buffer = 0;
        EXPECT_EQ(bench.comm.ORCommClose(handle), 0);
        EXPECT_EQ(bench.comm.ORCommAbort(handle), 0);
        EXPECT_EQ(bench.comm.ORCommReset(handle), 0);
        EXPECT_EQ(bench.comm.ORCommRead(handle), -1);
        EXPECT_EQ(bench.comm.ORCommReadBuf(handle, &buffer, 1), 0);
        EXPECT_EQ(bench.comm.ORCommWrite(handle, 'x'), 0);
        EXPECT_EQ(bench.comm.ORCommUnread(handle, 'x'), 0);
        EXPECT_EQ(bench.comm.ORCommFlush(handle), 0);
        EXPECT_EQ(bench.comm.ORCommBreak(handle, 1), 0);
        EXPECT_EQ(bench.comm.ORCommQuery(handle, CommQuery::Device), 0);
        EXPECT_EQ(bench.comm.ORCommOption(handle, CommOption::Rows, 1), 0);
        EXPECT_EQ(bench.comm.ORCommEscape(handle, CommEscape::Cancel), 0);
        EXPECT_EQ(bench.comm.ORCommErrmsg(handle), QString());
        EXPECT_EQ(bench.comm.ORCommDial(handle, u"1"_s), 0);
        EXPECT_EQ(bench.comm.ORCommHangup(handle), 0);
    }
    LineOptions options;
    options.device = Device::Telnet;
    const int another = bench.comm.ORCommOpen(options);
    EXPECT_GT(another, bench.handle) << "no handle is used twice";
    bench.lines.devices = {Device::Telnet, Device::Ssh, Device::Extension};
    EXPECT_EQ(bench.comm.ORCommInit(), 3);
    EXPECT_EQ(bench.lines.current, nullptr);
}

} // namespace

} // namespace kestrune
