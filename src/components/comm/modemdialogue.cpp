#include <comm/dialing.h>
#include <comm/modemdialogue.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <iterator>
#include <utility>

namespace kestrune::comm {

namespace {

using namespace std::chrono_literals;
using ModemTime = ModemDialogue::Duration;

constexpr std::size_t LongestModemLine = 256;
constexpr ModemTime LineSettles = 250ms;       // after the port was opened, and DTR went up
constexpr ModemTime BetweenCommands = 100ms;   // some modems lose what follows a result at once
constexpr ModemTime CommandPatience = 3s;      // ATZ takes two on some
constexpr ModemTime DefaultCallPatience = 60s; // as S7 of many
constexpr ModemTime StopPatience = 2s;
constexpr ModemTime LineDownTime = 600ms; // S25 of most is 50 ms, of some half a second
constexpr ModemTime DropPatience = 2s;
constexpr ModemTime SilenceAfterLoss = 1s; // text of a host goes on after "NO CARRIER"
constexpr ModemTime RingsApart = 8s;       // then the caller has given up
constexpr int SetUpAttempts = 3;

int SpeedIn(const std::string& said)
{
    const std::size_t digit = said.find_first_of("0123456789");
    int speed = 0;
    if (digit != std::string::npos)
        std::from_chars(said.data() + digit, said.data() + said.size(), speed);
    return speed;
}

} // namespace

struct ModemDialogue::ResultRow
{
    Phase phase;
    ModemResult result;
    Step run;
};

struct ModemDialogue::DeadlineRow
{
    Phase phase;
    Step run;
};

// What a result, or the lack of one, means in each phase. What has no row means nothing there.
struct ModemTables
{
    using M = ModemDialogue;
    using P = M::Phase;
    using R = ModemResult;

    static constexpr std::array Results{
        M::ResultRow{P::SetUp, R::Ok, &M::NextSetUp},
        M::ResultRow{P::SetUp, R::Error, &M::NextSetUp},  // an option that it has not got
        M::ResultRow{P::Ready, R::Connect, &M::GoOnline}, // somebody has typed the command
        M::ResultRow{P::Ready, R::Ring, &M::TakeRing},
        M::ResultRow{P::Dialing, R::Connect, &M::GoOnline},
        M::ResultRow{P::Dialing, R::Busy, &M::TakeBusy},
        M::ResultRow{P::Dialing, R::NoAnswer, &M::TakeNoAnswer},
        M::ResultRow{P::Dialing, R::NoCarrier, &M::TakeNoCarrier},
        M::ResultRow{P::Dialing, R::NoDialTone, &M::TakeNoDialTone},
        M::ResultRow{P::Dialing, R::Error, &M::TakeError},
        M::ResultRow{P::Answering, R::Connect, &M::GoOnline},
        M::ResultRow{P::Answering, R::NoCarrier, &M::TakeNoCarrier},
        M::ResultRow{P::Answering, R::Error, &M::TakeError},
        M::ResultRow{P::Stopping, R::Connect, &M::BeginHangUp}, // too late to stop
        M::ResultRow{P::Stopping, R::NoCarrier, &M::TryEnded},
        M::ResultRow{P::Stopping, R::Ok, &M::TryEnded},
        M::ResultRow{P::Stopping, R::Busy, &M::TryEnded},
        M::ResultRow{P::Stopping, R::NoAnswer, &M::TryEnded},
        M::ResultRow{P::Online, R::NoCarrier, &M::SuspectLoss},
        M::ResultRow{P::LineDown, R::NoCarrier, &M::RaiseLine},
        M::ResultRow{P::LineDown, R::Ok, &M::RaiseLine},
        M::ResultRow{P::Dropping, R::NoCarrier, &M::CallEnded},
        M::ResultRow{P::Dropping, R::Ok, &M::CallEnded},
        M::ResultRow{P::Guard, R::NoCarrier, &M::CallEnded},
        M::ResultRow{P::Escaping, R::Ok, &M::SayHangUp},
        M::ResultRow{P::Escaping, R::NoCarrier, &M::CallEnded},
        M::ResultRow{P::HangingUp, R::Ok, &M::CallEnded},
        M::ResultRow{P::HangingUp, R::NoCarrier, &M::CallEnded},
        M::ResultRow{P::HangingUp, R::Error, &M::CallEnded},
    };
    static constexpr std::array Deadlines{
        M::DeadlineRow{P::SetUp, &M::RepeatSetUp},    M::DeadlineRow{P::Ready, &M::RingsEnded},
        M::DeadlineRow{P::Dialing, &M::StopTrying},   M::DeadlineRow{P::Answering, &M::StopTrying},
        M::DeadlineRow{P::Pause, &M::NextTry},        M::DeadlineRow{P::Stopping, &M::TryEnded},
        M::DeadlineRow{P::Online, &M::LoseCall},      M::DeadlineRow{P::LineDown, &M::RaiseLine},
        M::DeadlineRow{P::Dropping, &M::BeginEscape}, M::DeadlineRow{P::Guard, &M::BeginEscape},
        M::DeadlineRow{P::Escaping, &M::KeepCall},    M::DeadlineRow{P::HangingUp, &M::CallEnded},
    };
};

ModemDialogue::ModemDialogue(ModemDefinition definition, const ModemOptions& options, ModemEvents& events)
    : definition_(std::move(definition)), options_(options), events_(events)
{
    if (options_.patience <= 0ms)
        options_.patience = DefaultCallPatience;
}

// --- time, and what goes out

// Goes into the phase; the bytes go out after the pause, and an answer is waited for as long as patience says.
void ModemDialogue::Tell(Phase phase, std::string bytes, Duration pause, Duration patience, Duration now)
{
    phase_ = phase;
    pending_ = std::move(bytes);
    patience_ = patience;
    deadline_ = now + pause;
    if (pause <= 0ms)
        SendPending(now);
}

void ModemDialogue::SendPending(Duration now)
{
    deadline_ = now + patience_;
    events_.ModemOutput(std::exchange(pending_, {}));
}

void ModemDialogue::Tick(Duration now)
{
    if (!deadline_ || now < *deadline_)
        return;
    if (!pending_.empty()) {
        SendPending(now);
        return;
    }
    deadline_.reset();
    const auto row = std::ranges::find(ModemTables::Deadlines, phase_, &DeadlineRow::phase);
    if (row != ModemTables::Deadlines.end())
        (this->*row->run)({}, now);
}

// --- what comes in

void ModemDialogue::Receive(std::string_view bytes, Duration now)
{
    for (const char byte : bytes) {
        if (byte == '\r' || byte == '\n') {
            TakeLine(now);
            continue;
        }
        if (phase_ == Phase::Online)
            deadline_.reset(); // what looked like the end of the call was a host's text
        if (line_.size() < LongestModemLine)
            line_ += byte;
    }
}

void ModemDialogue::TakeLine(Duration now)
{
    const std::string line = std::exchange(line_, {});
    const std::size_t end = line.find_last_not_of(' ') + 1;
    const std::string_view said(line.data(), end);
    const auto word = std::ranges::find_if(definition_.words, [said](const ModemWord& row) {
        const bool begins = said.starts_with(row.word) && !row.word.empty();
        const bool ends = said.size() == row.word.size();
        return begins && (ends || (row.result == ModemResult::Connect && said[row.word.size()] == ' '));
    });
    if (word == definition_.words.end())
        return;
    const auto row = std::ranges::find_if(ModemTables::Results, [this, word](const ResultRow& candidate) {
        return candidate.phase == phase_ && candidate.result == word->result;
    });
    if (row != ModemTables::Results.end())
        (this->*row->run)(std::string(said), now);
}

void ModemDialogue::Carrier(bool on, Duration now)
{
    if (std::exchange(carrierOn_, on) == on)
        return;
    if (on)
        carrierTells_ = true;
    else if (carrierTells_ && phase_ == Phase::Online)
        LoseCall({}, now);
    else if (carrierTells_ && phase_ == Phase::Dropping)
        CallEnded({}, now);
}

// --- set-up

void ModemDialogue::Start(Duration now)
{
    line_.clear();
    setUpStep_ = 0;
    attempts_ = 0;
    rings_ = 0;
    call_ = ModemCall::None;
    carrierTells_ = false;
    RepeatSetUp({}, now);
}

void ModemDialogue::RepeatSetUp(const std::string&, Duration now)
{
    if (setUpStep_ >= definition_.setUp.size()) {
        Enter(Phase::Ready);
        events_.ModemIsReady();
    } else if (attempts_++ < SetUpAttempts) {
        const Duration pause = setUpStep_ == 0 ? LineSettles : BetweenCommands;
        Tell(Phase::SetUp, definition_.setUp[setUpStep_] + '\r', pause, CommandPatience, now);
    } else {
        Enter(Phase::Silent);
        events_.ModemIsSilent();
    }
}

void ModemDialogue::NextSetUp(const std::string&, Duration now)
{
    if (!pending_.empty()) // an answer that comes before the question
        return;
    ++setUpStep_;
    attempts_ = 0;
    RepeatSetUp({}, now);
}

// --- calls

void ModemDialogue::SetCall(ModemCall call, const std::string& said)
{
    call_ = call;
    events_.ModemCallChanged(call, said);
}

void ModemDialogue::BecomeIdle(ModemCall call, const std::string& said)
{
    Enter(Phase::Ready);
    rings_ = 0;
    carrierTells_ = false;
    events_.ModemSpeed(0);
    SetCall(call, said);
}

bool ModemDialogue::Dial(std::string_view number, Duration now)
{
    number_.clear();
    std::ranges::copy_if(number, std::back_inserter(number_),
                         [](char c) { return DialCharacters.find(c) != std::string_view::npos; });
    if (phase_ != Phase::Ready || number_.empty())
        return false;
    triesLeft_ = definition_.redials;
    SayNumber(0ms, now);
    return true;
}

void ModemDialogue::SayNumber(Duration pause, Duration now)
{
    rings_ = 0;
    carrierTells_ = false;
    Tell(Phase::Dialing, definition_.dial + number_ + '\r', pause, options_.patience, now);
    SetCall(ModemCall::Dialing, {});
}

void ModemDialogue::GoOnline(const std::string& said, Duration)
{
    Enter(Phase::Online);
    events_.ModemSpeed(SpeedIn(said));
    SetCall(ModemCall::Connected, said);
}

void ModemDialogue::TryAgainOr(ModemCall call, const std::string& said, Duration now)
{
    if (triesLeft_-- <= 0) {
        BecomeIdle(call, said);
        return;
    }
    Enter(Phase::Pause);
    deadline_ = now + definition_.redialPause;
    SetCall(ModemCall::Dialing, said);
}

void ModemDialogue::NextTry(const std::string&, Duration now) { SayNumber(0ms, now); }
void ModemDialogue::TakeBusy(const std::string& said, Duration now) { TryAgainOr(ModemCall::Busy, said, now); }
void ModemDialogue::TakeNoAnswer(const std::string& said, Duration now) { TryAgainOr(ModemCall::NoAnswer, said, now); }
void ModemDialogue::TakeNoCarrier(const std::string& said, Duration) { BecomeIdle(ModemCall::NoCarrier, said); }
void ModemDialogue::TakeNoDialTone(const std::string& said, Duration) { BecomeIdle(ModemCall::NoDialTone, said); }
void ModemDialogue::TakeError(const std::string& said, Duration) { BecomeIdle(ModemCall::Failed, said); }

void ModemDialogue::TakeRing(const std::string& said, Duration now)
{
    ++rings_;
    deadline_ = now + RingsApart;
    if (!options_.autoAnswer || rings_ < definition_.rings) {
        SetCall(ModemCall::Ringing, said);
        return;
    }
    triesLeft_ = 0;
    Tell(Phase::Answering, definition_.answer + '\r', BetweenCommands, options_.patience, now);
    SetCall(ModemCall::Answering, said);
}

void ModemDialogue::RingsEnded(const std::string&, Duration)
{
    rings_ = 0;
    if (call_ == ModemCall::Ringing)
        SetCall(ModemCall::None, {});
}

// Any character stops a modem that is dialling (V.250 5.6.1).
void ModemDialogue::StopTrying(const std::string&, Duration now)
{
    ending_ = ModemCall::NoAnswer;
    Tell(Phase::Stopping, "\r", 0ms, StopPatience, now);
}

void ModemDialogue::TryEnded(const std::string& said, Duration) { BecomeIdle(ending_, said); }

// --- the end of a call

void ModemDialogue::SuspectLoss(const std::string&, Duration now)
{
    if (!carrierTells_)
        deadline_ = now + SilenceAfterLoss;
}

void ModemDialogue::LoseCall(const std::string& said, Duration) { BecomeIdle(ModemCall::NoCarrier, said); }

bool ModemDialogue::HangUp(Duration now)
{
    if (phase_ == Phase::Dialing || phase_ == Phase::Answering) {
        const bool asked = pending_.empty(); // the modem knows of it
        StopTrying({}, now);
        ending_ = ModemCall::None;
        if (!asked)
            TryEnded({}, now);
    } else if (phase_ == Phase::Pause) {
        BecomeIdle(ModemCall::None, {});
    } else if (phase_ == Phase::Online) {
        BeginHangUp({}, now);
    } else {
        return false;
    }
    return true;
}

void ModemDialogue::BeginHangUp(const std::string&, Duration now)
{
    ending_ = ModemCall::None;
    Enter(Phase::Guard);
    if (!options_.hasLines || !definition_.hangUpByLine) {
        deadline_ = now + definition_.guard;
        return;
    }
    Enter(Phase::LineDown);
    deadline_ = now + LineDownTime;
    events_.ModemTerminalReady(false);
}

void ModemDialogue::RaiseLine(const std::string& said, Duration now)
{
    Enter(Phase::Dropping);
    deadline_ = now + DropPatience;
    events_.ModemTerminalReady(true);
    if (!said.empty() || (carrierTells_ && !carrierOn_))
        CallEnded(said, now);
}

// After the silence: those before it were the silence, too, when the line did not help.
void ModemDialogue::BeginEscape(const std::string&, Duration now)
{
    Tell(Phase::Escaping, definition_.escape, 0ms, definition_.guard + CommandPatience, now);
}

void ModemDialogue::SayHangUp(const std::string&, Duration now)
{
    Tell(Phase::HangingUp, definition_.hangUp + '\r', BetweenCommands, CommandPatience, now);
}

// It has not heard: the call stands, and what is typed still goes to the host.
void ModemDialogue::KeepCall(const std::string&, Duration)
{
    Enter(Phase::Online);
    SetCall(ModemCall::Connected, {});
}

void ModemDialogue::CallEnded(const std::string& said, Duration) { BecomeIdle(ModemCall::None, said); }

} // namespace kestrune::comm
