// Whole conversations with a modem. A step: "<..." the modem says (CR and LF round it), "+N" N milliseconds pass,
// "dial ...", "hangup", "carrier on", "carrier off". What comes of it is one line of words: bytes for the modem stand
// as they are, events in brackets.

#include <comm/modemdialogue.h>

#include <gtest/gtest.h>

#include <array>
#include <sstream>

namespace kestrune::comm {

namespace {

using namespace std::chrono_literals;

class ModemBench : public ModemEvents
{
public:
    explicit ModemBench(const ModemDefinition& definition = {}, const ModemOptions& options = {})
        : dialogue(definition, options, *this)
    {}

    ModemBench& SetUp()
    {
        dialogue.Start(now);
        for (const char* step : {"+250", "<OK", "+100", "<OK"})
            Step(step);
        log.str({});
        return *this;
    }
    void Step(const std::string& step)
    {
        if (step[0] == '<')
            dialogue.Receive("\r\n" + step.substr(1) + "\r\n", now);
        else if (step[0] == '+')
            Pass(std::chrono::milliseconds(std::stoi(step.substr(1))));
        else if (step.starts_with("dial "))
            log << (dialogue.Dial(step.substr(5), now) ? "" : "[cannot] ");
        else if (step == "hangup")
            log << (dialogue.HangUp(now) ? "" : "[cannot] ");
        else
            dialogue.Carrier(step == "carrier on", now);
    }
    std::string Play(const std::vector<std::string>& steps)
    {
        for (const std::string& step : steps)
            Step(step);
        std::string text = log.str();
        if (!text.empty())
            text.pop_back();
        return text;
    }
    void Pass(ModemDialogue::Duration time)
    {
        const auto end = now + time;
        while (dialogue.Deadline() && *dialogue.Deadline() <= end) {
            now = *dialogue.Deadline();
            dialogue.Tick(now);
        }
        now = end;
    }

    void ModemOutput(std::string_view bytes) override
    {
        for (const char c : bytes)
            log << (c == '\r' ? '^' : c);
        log << ' ';
    }
    void ModemTerminalReady(bool on) override { log << (on ? "[DTR on] " : "[DTR off] "); }
    void ModemSpeed(int bitsPerSecond) override
    {
        if (bitsPerSecond > 0)
            log << '[' << bitsPerSecond << " bit/s] ";
    }
    void ModemIsReady() override { log << "[ready] "; }
    void ModemIsSilent() override { log << "[silent] "; }
    void ModemCallChanged(ModemCall call, const std::string& said) override
    {
        static constexpr std::array names{"none",    "dialing",   "connected", "busy",      "no carrier",
                                          "no tone", "no answer", "failed",    "answering", "ringing"};
        log << '[' << names.at(static_cast<std::size_t>(call)) << (said.empty() ? "" : ": " + said) << "] ";
    }

    std::ostringstream log;
    ModemDialogue::Duration now{5s};
    ModemDialogue dialogue;
};

TEST(ModemDialogue, SetsTheModemUp)
{
    struct Case
    {
        const char* name;
        std::vector<std::string> steps;
        const char* trace;
    };
    for (const Case& c : {
             Case{"at once", {"+250", "<OK", "+100", "<OK"}, "ATZ^ ATE1V1Q0S0=0^ [ready]"},
             Case{"the echo and old rubbish say nothing",
                  {"<OK", "+250", "<ATZ", "<OKAY", "<OK ", "+100", "<OK"},
                  "ATZ^ ATE1V1Q0S0=0^ [ready]"},
             Case{"an option that it has not got", {"+250", "<OK", "+100", "<ERROR"}, "ATZ^ ATE1V1Q0S0=0^ [ready]"},
             Case{"it was asleep", {"+3500", "<OK", "+100", "<OK"}, "ATZ^ ATZ^ ATE1V1Q0S0=0^ [ready]"},
             Case{"nobody is there", {"+60000"}, "ATZ^ ATZ^ ATZ^ [silent]"},
         }) {
        ModemBench bench;
        bench.dialogue.Start(bench.now);
        EXPECT_FALSE(bench.dialogue.MayType());
        EXPECT_EQ(bench.Play(c.steps), c.trace) << c.name;
    }
}

TEST(ModemDialogue, MakesCallsAndTellsWhatBecomesOfThem)
{
    struct Case
    {
        const char* name;
        std::vector<std::string> steps;
        const char* trace;
    };
    for (const Case& c : {
             Case{"answered",
                  {"dial 555-0100", "<ATDT5550100", "+9000", "<CONNECT 9600/ARQ"},
                  "ATDT5550100^ [dialing] [9600 bit/s] [connected: CONNECT 9600/ARQ]"},
             Case{"without a speed", {"dial 1", "<CONNECT"}, "ATDT1^ [dialing] [connected: CONNECT]"},
             Case{"busy", {"dial 1", "<BUSY"}, "ATDT1^ [dialing] [busy: BUSY]"},
             Case{"no carrier", {"dial 1", "<NO CARRIER"}, "ATDT1^ [dialing] [no carrier: NO CARRIER]"},
             Case{"no tone", {"dial 1", "<NO DIAL TONE"}, "ATDT1^ [dialing] [no tone: NO DIAL TONE]"},
             Case{"no answer", {"dial 1", "<NO ANSWER"}, "ATDT1^ [dialing] [no answer: NO ANSWER]"},
             Case{"refused", {"dial 1", "<ERROR"}, "ATDT1^ [dialing] [failed: ERROR]"},
             Case{"the modem says nothing at all", {"dial 1", "+60000", "+2000"}, "ATDT1^ [dialing] ^ [no answer]"},
             Case{"the modem stops late",
                  {"dial 1", "+60000", "<NO CARRIER"},
                  "ATDT1^ [dialing] ^ [no answer: NO CARRIER]"},
             Case{"hung up while dialling",
                  {"dial 1", "hangup", "<NO CARRIER"},
                  "ATDT1^ [dialing] ^ [none: NO CARRIER]"},
             Case{"connected a moment too late",
                  {"dial 1", "hangup", "<CONNECT", "+1100", "+1100", "<OK", "+100", "<OK"},
                  "ATDT1^ [dialing] ^ +++ ATH^ [none: OK]"},
             Case{"one call at a time",
                  {"dial 1", "dial 2", "<CONNECT", "dial 3"},
                  "ATDT1^ [dialing] [cannot] [connected: CONNECT] [cannot]"},
             Case{"nothing to dial or to hang up", {"dial ;\r()", "hangup"}, "[cannot] [cannot]"},
             Case{"a command cannot ride on a number", {"dial 1;\rATH2&Z"}, "ATDT1AT2^ [dialing]"},
             Case{"typed by the user", {"<CONNECT 1200"}, "[1200 bit/s] [connected: CONNECT 1200]"},
         }) {
        ModemBench bench;
        EXPECT_EQ(bench.SetUp().Play(c.steps), c.trace) << c.name;
    }
}

TEST(ModemDialogue, TriesAgainAsOftenAsTheDefinitionSays)
{
    ModemDefinition definition;
    definition.redials = 2;
    definition.redialPause = 5s;
    struct Case
    {
        std::vector<std::string> steps;
        const char* trace;
    };
    for (const Case& c : {
             Case{{"dial 1", "<BUSY", "+5000", "<NO ANSWER", "+5000", "<BUSY", "+90000"},
                  "ATDT1^ [dialing] [dialing: BUSY] ATDT1^ [dialing] [dialing: NO ANSWER] ATDT1^ [dialing] [busy: "
                  "BUSY]"},
             Case{{"dial 1", "<BUSY", "hangup", "+90000"}, "ATDT1^ [dialing] [dialing: BUSY] [none]"},
             Case{{"dial 1", "<NO DIALTONE", "+90000"}, "ATDT1^ [dialing] [no tone: NO DIALTONE]"},
         })
        EXPECT_EQ(ModemBench(definition).SetUp().Play(c.steps), c.trace);
}

TEST(ModemDialogue, AnswersWhenItMay)
{
    ModemDefinition definition;
    definition.rings = 2;
    struct Case
    {
        bool mayAnswer;
        std::vector<std::string> steps;
        const char* trace;
    };
    for (const Case& c : {
             Case{true,
                  {"<RING", "+5000", "<RING", "+100", "<CONNECT 2400"},
                  "[ringing: RING] [answering: RING] ATA^ [2400 bit/s] [connected: CONNECT 2400]"},
             Case{true, {"<RING", "+8000", "<RING"}, "[ringing: RING] [none] [ringing: RING]"},
             Case{true,
                  {"<RING", "<RING", "+100", "<NO CARRIER"},
                  "[ringing: RING] [answering: RING] ATA^ [no carrier: NO CARRIER]"},
             Case{true, {"<RING", "<RING", "hangup"}, "[ringing: RING] [answering: RING] ^ [none]"},
             Case{false, {"<RING", "<RING", "<RING"}, "[ringing: RING] [ringing: RING] [ringing: RING]"},
             Case{false, {"<RING", "dial 1", "<RING", "<BUSY"}, "[ringing: RING] ATDT1^ [dialing] [busy: BUSY]"},
         })
        EXPECT_EQ(ModemBench(definition, {.autoAnswer = c.mayAnswer}).SetUp().Play(c.steps), c.trace);
}

TEST(ModemDialogue, HangsUpByLineOrByEscape)
{
    struct Case
    {
        const char* name;
        bool lines, byLine;
        std::vector<std::string> steps;
        const char* trace;
    };
    for (const Case& c : {
             Case{"escape", false, true, {"+1100", "+1100", "<OK", "+100", "<OK"}, "+++ ATH^ [none: OK]"},
             Case{"the escape is not heard: the call stands", false, true, {"+90000"}, "+++ [connected]"},
             Case{"the host hangs up first", false, true, {"<NO CARRIER"}, "[none: NO CARRIER]"},
             Case{"no answer to the command", false, true, {"+1100", "<OK", "+90000"}, "+++ ATH^ [none]"},
             Case{"line", true, true, {"+600", "<NO CARRIER"}, "[DTR off] [DTR on] [none: NO CARRIER]"},
             Case{"line, answered at once", true, true, {"<OK", "+9000"}, "[DTR off] [DTR on] [none: OK]"},
             Case{"line, seen by the carrier",
                  true,
                  true,
                  {"carrier on", "+600", "carrier off"},
                  "[DTR off] [DTR on] [none]"},
             Case{"the line is not heeded",
                  true,
                  true,
                  {"+2600", "<OK", "+100", "<OK"},
                  "[DTR off] [DTR on] +++ ATH^ [none: OK]"},
             Case{"the definition will not have the line",
                  true,
                  false,
                  {"+1100", "<OK", "+100", "<OK"},
                  "+++ ATH^ [none: OK]"},
         }) {
        ModemDefinition definition;
        definition.hangUpByLine = c.byLine;
        ModemBench bench(definition, {.hasLines = c.lines});
        bench.SetUp().Play({"dial 1", "<CONNECT"});
        bench.log.str({});
        EXPECT_TRUE(bench.dialogue.MayType());
        bench.Step("hangup");
        EXPECT_FALSE(bench.dialogue.MayType()) << "what is typed would break the silence";
        EXPECT_EQ(bench.Play(c.steps), c.trace) << c.name;
        EXPECT_TRUE(bench.dialogue.MayType());
    }
}

TEST(ModemDialogue, NoticesThatTheCallIsCutOff)
{
    struct Case
    {
        const char* name;
        std::vector<std::string> before, steps;
        const char* trace;
    };
    for (const Case& c : {
             Case{"the modem says so, and then nothing", {}, {"<NO CARRIER", "+1000"}, "[no carrier]"},
             Case{"a host's text", {}, {"<NO CARRIER", "+500", "<is what the modem says", "+9000"}, ""},
             Case{"in the middle of a line", {}, {"<he said NO CARRIER", "+9000"}, ""},
             Case{"the escape as data", {}, {"<+++", "<OK", "+9000"}, ""},
             Case{"the carrier line", {}, {"carrier on", "+100", "carrier off"}, "[no carrier]"},
             Case{"the carrier line knows better", {}, {"carrier on", "<NO CARRIER", "+9000"}, ""},
             Case{"a carrier line that is always on says nothing",
                  {"carrier on"},
                  {"<NO CARRIER", "+1000"},
                  "[no carrier]"},
         }) {
        ModemBench bench({}, {.hasLines = true});
        bench.Play(c.before);
        bench.SetUp().Play({"dial 1", "<CONNECT"});
        bench.log.str({});
        EXPECT_EQ(bench.Play(c.steps), c.trace) << c.name;
        EXPECT_EQ(bench.dialogue.Call(), *c.trace ? ModemCall::NoCarrier : ModemCall::Connected) << c.name;
    }
}

TEST(ModemDialogue, TakesAnySplitOfWhatTheModemSays)
{
    const std::string talk = "ATDT1\r\r\nRINGING\r\n\r\nCONNECT 9600\r\nlogin: ";
    for (std::size_t cut = 0; cut <= talk.size(); ++cut) {
        ModemBench bench;
        bench.SetUp().Play({"dial 1"});
        bench.dialogue.Receive(talk.substr(0, cut), bench.now);
        bench.dialogue.Receive(talk.substr(cut), bench.now);
        EXPECT_EQ(bench.dialogue.Call(), ModemCall::Connected) << cut;
    }
    ModemBench bench;
    bench.SetUp().Play({"dial 1"});
    bench.dialogue.Receive(std::string(1000000, 'x') + "\rCONNECT\r", bench.now);
    EXPECT_EQ(bench.dialogue.Call(), ModemCall::Connected);
}

} // namespace

} // namespace kestrune::comm
