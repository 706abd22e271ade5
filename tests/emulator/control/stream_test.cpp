// What programs read of the host's data: waiting calls, commands inside the data, the input modes.

#include <fakes/emulatorbench.h>
#include <fakes/failures.h>

#include <gtest/gtest.h>

namespace kestrune {

using namespace Qt::StringLiterals;

namespace {

struct StreamBench : EmulatorBench
{
    StreamBench() { Connect(); }

    // What the host sends while a call waits, a piece in a turn.
    void HostWillSay(std::initializer_list<const char*> pieces)
    {
        waiter.during.clear();
        for (const char* piece : pieces)
            waiter.during.emplace_back([this, piece] { HostSays(piece); });
    }
    void WhileWaiting(std::function<void()> run) { waiter.during = {std::move(run)}; }
};

TEST(EmulatorWaitFor, AnswersWithTheTextThatCameFirst)
{
    struct Row
    {
        const char* name;
        std::initializer_list<const char*> host;
        int compare;
        QStringList targets;
        int answer;
    };
    const Row rows[] = {
        {"the only one", {"login: "}, 0, {u"login:"_s}, 1},
        {"cut in pieces", {"lo", "gi", "n: "}, 0, {u"login:"_s}, 1},
        {"the second comes first", {"abc def"}, 0, {u"def"_s, u"bc"_s}, 2},
        {"a longer one that is whole earlier", {"abcdef"}, 0, {u"f"_s, u"cde"_s}, 2},
        {"two that end together: the one named first", {"abc"}, 0, {u"bc"_s, u"c"_s}, 1},
        {"case counts", {"LOGIN: "}, 0, {u"login:"_s}, 0},
        {"case does not count", {"LOGIN: "}, 1, {u"login:"_s}, 1},
        {"an empty target keeps its number", {"x"}, 0, {QString(), u"x"_s}, 2},
        {"outside ASCII, a character cut in two", {"gr\xc3", "\xbc\xc3\x9f"}, 0, {u"grüß"_s}, 1},
        {"control characters are text", {"a\r\n\x1b[1mb"}, 0, {u"\n\x1b[1mb"_s}, 1},
        {"none", {"nothing of it"}, 0, {u"login:"_s, u"$ "_s}, 0},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        StreamBench bench;
        bench.HostWillSay(row.host);
        EXPECT_EQ(bench.control.WaitFor(row.compare, 5, row.targets), row.answer);
        EXPECT_EQ(bench.clock.Now(), std::chrono::seconds(row.answer == 0 ? 5 : 0)) << "time runs only when none comes";
    }
}

TEST(EmulatorWaitFor, InputModeDecidesWhatWasMissed)
{
    StreamBench bench;
    bench.HostSays("early ");
    EXPECT_EQ(bench.control.WaitFor(0, 1, {u"early"_s}), 0) << "mode 0 keeps nothing between calls";

    bench.control.SetInputMode(1);
    bench.HostSays("one two three");
    EXPECT_EQ(bench.control.WaitFor(0, 1, {u"none of it"_s}), 0);
    EXPECT_EQ(bench.control.WaitFor(0, 1, {u"two"_s}), 1) << "a wait in vain took nothing";
    EXPECT_EQ(bench.control.WaitFor(0, 0, {u"one"_s}), 0) << "taken with what stood behind it";
    EXPECT_EQ(bench.control.ReadText(0, 6, 0), u" three"_s);
    EXPECT_EQ(bench.RowText(0), u"early one two three"_s);

    bench.control.SetInputMode(2);
    bench.HostSays("hidden");
    EXPECT_EQ(bench.RowText(0), u"early one two three"_s);
    bench.control.SetInputMode(0);
    EXPECT_EQ(bench.control.ReadText(0, 6, 0), QString()) << "back in mode 0 it is forgotten";

    bench.control.SetInputMode(1);
    bench.HostSays(std::string(100'000, 'x') + "the end");
    EXPECT_EQ(bench.control.ReadText(0, 32767, 0).size(), 32767);
    EXPECT_EQ(bench.control.WaitFor(0, 0, {u"the end"_s}), 1) << "of too much, the newest is kept";
}

TEST(EmulatorReadText, ByLengthOrByLine)
{
    struct Row
    {
        const char* name;
        int mode;
        int length;
        std::initializer_list<const char*> host;
        QStringList answers;
    };
    const Row rows[] = {
        {"length", 0, 3, {"ab", "cdefg"}, {u"abc"_s, u"def"_s, u"g"_s}},
        {"length, time is up", 0, 80, {"all there is"}, {u"all there is"_s}},
        {"lines of any end", 1, 80, {"a\r\nb\rc\nd\r\n"}, {u"a"_s, u"b"_s, u"c"_s, u"d"_s, QString()}},
        {"an end cut in two is one", 1, 80, {"a\r", "\nb\r"}, {u"a"_s, u"b"_s}},
        {"an empty line", 1, 80, {"\r\n\r\nx\r\n"}, {QString(), QString(), u"x"_s}},
        {"a line that is longer comes in pieces", 1, 4, {"abcdef\r\n"}, {u"abcd"_s, u"ef"_s}},
        {"a line without an end, time is up", 1, 80, {"$ "}, {u"$ "_s}},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        StreamBench bench;
        bench.control.SetInputMode(1);
        bench.HostWillSay(row.host);
        for (const QString& answer : row.answers)
            EXPECT_EQ(bench.control.ReadText(row.mode, row.length, 2), answer);
    }
}

TEST(EmulatorWaits, EndWithTheLineTheSessionOrAnAbort)
{
    using End = void (*)(StreamBench&);
    const End ends[] = {
        [](StreamBench& b) { b.control.Abort(); },
        [](StreamBench& b) { b.Host().Drop(); },
        [](StreamBench& b) { b.control.Shutdown(); },
    };
    for (const End end : ends) {
        StreamBench bench;
        bench.WhileWaiting([&] {
            bench.HostSays("part");
            end(bench);
        });
        EXPECT_EQ(bench.control.ReadText(0, 80, -1), u"part"_s);
        EXPECT_EQ(bench.clock.Now().count(), 0);
    }
}

TEST(EmulatorWaits, OneAtATimeAndWithoutTypingBetween)
{
    StreamBench bench;
    bench.WhileWaiting([&] {
        EXPECT_EQ(FailureNumber([&] { bench.control.WaitFor(0, 1, {u"x"_s}); }), int(ErrorNumber::InvalidCall));
        bench.control.TypeText(u"typed"_s);
        bench.HostSays("done");
    });
    EXPECT_EQ(bench.control.WaitFor(0, 1, {u"done"_s}), 1);
    EXPECT_EQ(bench.Host().TakeSent(), "typed") << "a user may help a script that waits in mode 0";

    bench.control.SetInputMode(1);
    bench.WhileWaiting([&] {
        bench.control.TypeText(u"typed"_s);
        bench.control.WriteText(u"written"_s);
        bench.HostSays("done");
    });
    EXPECT_EQ(bench.control.WaitFor(0, 1, {u"done"_s}), 1);
    EXPECT_EQ(bench.Host().TakeSent(), "written");
    EXPECT_EQ(bench.ask.beeps, 1);

    EXPECT_EQ(FailureNumber([&] { bench.control.WaitFor(0, 1, {}); }), int(ErrorNumber::InvalidCall));
    EXPECT_EQ(FailureNumber([&] { bench.control.WaitFor(2, 1, {u"x"_s}); }), int(ErrorNumber::InvalidCall));
    EXPECT_EQ(FailureNumber([&] { bench.control.ReadText(7); }), int(ErrorNumber::InvalidCall));
    EXPECT_EQ(FailureNumber([&] { bench.control.ReadText(0, 0); }), int(ErrorNumber::InvalidCall));
}

TEST(EmulatorWaits, DataReadyTellsOfKeptTextOnceATurn)
{
    StreamBench bench;
    int told = 0;
    QObject::connect(&bench.control, &ctlEmulator::DataReady, [&] { ++told; });
    bench.HostSays("not kept");
    EXPECT_EQ(told, 0);
    bench.control.SetInputMode(1);
    bench.Host().HostSays("two ");
    bench.Host().HostSays("pieces");
    bench.clock.RunPosted();
    EXPECT_EQ(told, 1);
    bench.HostWillSay({"taken"});
    bench.control.ReadText(0, int(sizeof("two piecestaken") - 1), 1);
    EXPECT_EQ(told, 1) << "nothing was left for anybody";
}

TEST(EmulatorExtension, CommandsAreTakenOutOfTheDataHoweverItIsCut)
{
    const std::string data = "before\x1b^run this\x1b\\ between \x1b^and this\x1b\\after";
    for (size_t cut = 0; cut <= data.size(); ++cut) {
        StreamBench bench;
        QString leadIn = u"\x1b^"_s, terminator = u"\x1b\\"_s;
        bench.control.SetExtension(leadIn, terminator);
        QStringList commands;
        QObject::connect(&bench.control, &ctlEmulator::Extension, [&](const QString& c) { commands << c; });
        bench.HostSays(data.substr(0, cut));
        bench.HostSays(data.substr(cut));
        EXPECT_EQ(commands, (QStringList{u"run this"_s, u"and this"_s})) << cut;
        EXPECT_EQ(bench.RowText(0), u"before between after"_s) << cut;
    }
}

TEST(EmulatorExtension, NothingIsLostThatOnlyLookedLikeACommand)
{
    StreamBench bench;
    QString leadIn = u"$$"_s, none;
    bench.control.SetExtension(leadIn, none);
    QStringList commands;
    QObject::connect(&bench.control, &ctlEmulator::Extension, [&](const QString& c) { commands << c; });
    bench.HostSays("prompt $");
    EXPECT_EQ(bench.RowText(0), u"prompt"_s);
    bench.clock.Advance(std::chrono::seconds(1));
    EXPECT_EQ(bench.RowText(0), u"prompt $"_s) << "shown when no more of it comes";
    bench.HostSays("$$x\r");
    EXPECT_EQ(commands, QStringList{u"x"_s}) << "a carriage return ends a command with no terminator given";
    bench.HostSays("\r\n$$" + std::string(40'000, 'y') + "\r\nback");
    EXPECT_EQ(commands.size(), 1) << "too long for a command";
    EXPECT_EQ(bench.RowText(23), u"back"_s);
    bench.HostSays("$");
    bench.Host().Drop();
    EXPECT_TRUE(bench.RowText(22).startsWith(u"[")) << "the notice";
    EXPECT_EQ(bench.RowText(21), u"back$"_s);
    QString off;
    bench.control.SetExtension(off, none);
    bench.Connect();
    bench.HostSays("$$z\r");
    EXPECT_EQ(commands.size(), 1);
}

TEST(EmulatorSink, TheHostsDataGoesToTheOtherScreenAndItsAnswersComeBack)
{
    StreamBench bench, other;
    qint16 byByte = 1, end = 4, untilDetached = 0, none = 0;
    bench.control.AttachAlternateSink(other.control, byByte, end);
    EXPECT_EQ(bench.control.AttachState(), 1);
    EXPECT_EQ(other.control.AttachState(), 2);
    bench.HostSays("there \x1b[5n");
    EXPECT_EQ(bench.Host().TakeSent(), "\x1b[0n");
    EXPECT_EQ(other.Host().TakeSent(), "");
    bench.HostSays("too\x04here");
    EXPECT_EQ(other.RowText(0), u"there too"_s);
    EXPECT_EQ(bench.RowText(0), u"here"_s);
    EXPECT_EQ(bench.control.AttachState() + other.control.AttachState(), 0);

    bench.control.AttachAlternateSink(other.control, untilDetached, none);
    EXPECT_EQ(FailureNumber([&] { other.control.AttachAlternateSink(bench.control, untilDetached, none); }),
              int(ErrorNumber::InvalidCall))
        << "a ring";
    bench.HostSays("\x04!");
    EXPECT_EQ(other.RowText(0), u"there too!"_s);
    bench.control.DetachAlternateSink();
    bench.HostSays("!");
    EXPECT_EQ(bench.RowText(0), u"here!"_s);

    EXPECT_EQ(FailureNumber([&] { bench.control.AttachAlternateSink(bench.control, untilDetached, none); }),
              int(ErrorNumber::InvalidCall));
    qint16 wrong = 256;
    EXPECT_EQ(FailureNumber([&] { bench.control.AttachAlternateSink(other.control, byByte, wrong); }),
              int(ErrorNumber::InvalidCall));
}

TEST(EmulatorSink, EitherEndMayGoFirst)
{
    StreamBench bench;
    qint16 mode = 0, code = 0;
    {
        StreamBench target;
        bench.control.AttachAlternateSink(target.control, mode, code);
        target.control.Shutdown();
        bench.HostSays("back");
        EXPECT_EQ(bench.control.AttachState(), 0);
        bench.control.DetachAlternateSink();
        StreamBench second;
        bench.control.AttachAlternateSink(second.control, mode, code);
    }
    bench.HostSays(" again");
    EXPECT_EQ(bench.RowText(0), u"back again"_s);
    StreamBench target;
    bench.control.AttachAlternateSink(target.control, mode, code);
    bench.Host().Drop();
    EXPECT_EQ(target.control.AttachState(), 0);
}

// A script may read inside the event that told it of data, and the session may end meanwhile.
TEST(EmulatorExtension, AHandlerMayWaitAndEndTheSession)
{
    StreamBench bench;
    QString leadIn = u"<"_s, terminator = u">"_s;
    bench.control.SetExtension(leadIn, terminator);
    QString heard;
    int events = 0;
    QObject::connect(&bench.control, &ctlEmulator::Extension, [&] {
        ++events;
        bench.WhileWaiting([&] {
            bench.Host().HostSays("answer");
            bench.control.Shutdown();
        });
        heard = bench.control.ReadText(0, 80, 5);
    });
    bench.HostSays("<one><two>");
    EXPECT_EQ(heard, u"answer"_s);
    EXPECT_EQ(events, 1);
}

} // namespace

} // namespace kestrune
