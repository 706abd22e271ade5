#pragma once

// The conversation with a modem (ITU-T V.250, and what makers have added) as a machine: the modem's bytes, its carrier
// line and time in; bytes for the modem, its DTR line and events out. It shows nothing and changes nothing of what
// passes: the owner carries the modem's bytes to the screen and, while MayType, what is typed to the modem.
//
//     ModemDialogue modem(definition, options, events);
//     modem.Start(now);            // sets the modem up; ModemIsReady or ModemIsSilent follows
//     modem.Dial("5550100", now);  // the outcome comes as ModemCallChanged
//
// Whenever Deadline is due the owner calls Tick. An event may call back into the machine.

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kestrune::comm {

enum class ModemResult : std::uint8_t
{
    Ok,
    Connect, // with the speed behind it, perhaps
    Ring,
    NoCarrier,
    Error,
    NoDialTone,
    Busy,
    NoAnswer
};

struct ModemWord
{
    ModemResult result;
    std::string word; // a line of its own; of Connect its beginning
};

// What is different from modem to modem. Commands stand without their carriage return.
struct ModemDefinition
{
    using Duration = std::chrono::milliseconds;

    std::vector<std::string> setUp{"ATZ", "ATE1V1Q0S0=0"}; // one after the other
    std::string dial{"ATDT"};                              // the number follows
    std::string answer{"ATA"};
    std::string hangUp{"ATH"};
    std::string escape{"+++"};
    Duration guard{1100};     // silence before and after the escape
    bool hangUpByLine = true; // by DTR, where the port has it; the escape only when that does not help
    int rings = 1;            // before a call is answered
    int redials = 0;          // further tries when the number is busy or nobody answers
    Duration redialPause{30000};
    std::vector<ModemWord> words{{ModemResult::Ok, "OK"},
                                 {ModemResult::Connect, "CONNECT"},
                                 {ModemResult::Ring, "RING"},
                                 {ModemResult::NoCarrier, "NO CARRIER"},
                                 {ModemResult::Error, "ERROR"},
                                 {ModemResult::NoDialTone, "NO DIALTONE"},
                                 {ModemResult::NoDialTone, "NO DIAL TONE"},
                                 {ModemResult::Busy, "BUSY"},
                                 {ModemResult::NoAnswer, "NO ANSWER"}};
};

struct ModemOptions
{
    bool autoAnswer = false;
    bool hasLines = false;                 // the port has modem lines: DTR, carrier
    std::chrono::milliseconds patience{0}; // for a call to be made; 0: one minute
};

// The numbers are those of DialStatus (ports/line.h).
enum class ModemCall : std::uint8_t
{
    None = 0,
    Dialing = 1, // or waiting for the next try
    Connected = 2,
    Busy = 3,
    NoCarrier = 4, // not connected, or the call was cut off
    NoDialTone = 5,
    NoAnswer = 6,
    Failed = 7, // the modem refuses
    Answering = 8,
    Ringing = 9
};

class ModemEvents
{
public:
    virtual ~ModemEvents() = default;
    virtual void ModemOutput(std::string_view bytes) = 0;
    virtual void ModemTerminalReady(bool on) = 0;
    virtual void ModemSpeed(int bitsPerSecond) = 0; // as CONNECT says; 0: that of the settings again
    virtual void ModemIsReady() = 0;
    virtual void ModemIsSilent() = 0; // it does not answer; nothing more comes
    // said: the modem's own words, empty when it has said nothing.
    virtual void ModemCallChanged(ModemCall call, const std::string& said) = 0;
};

class ModemDialogue
{
public:
    using Duration = std::chrono::milliseconds; // also a moment, since some fixed one

    ModemDialogue(ModemDefinition definition, const ModemOptions& options, ModemEvents& events);

    void Start(Duration now);
    void Receive(std::string_view bytes, Duration now);
    void Carrier(bool on, Duration now); // the line's level, as often as the owner likes
    void Tick(Duration now);
    std::optional<Duration> Deadline() const { return deadline_; }

    // False: there is a call, the modem is not ready, or nothing in the number can be dialled.
    bool Dial(std::string_view number, Duration now);
    // Ends the call, or the try to make one; false: there is none.
    bool HangUp(Duration now);

    ModemCall Call() const { return call_; }
    bool MayType() const { return phase_ == Phase::Ready || phase_ == Phase::Online; }

private:
    enum class Phase : std::uint8_t
    {
        Silent, // before Start, and when the modem has not answered
        SetUp,
        Ready,
        Dialing,
        Answering,
        Pause,    // before the next try
        Stopping, // a try, because the user wishes it or time is up
        Online,
        LineDown, // DTR is off
        Dropping, // DTR is on again: has it hung up?
        Guard,    // the silence before the escape
        Escaping,
        HangingUp
    };
    using Step = void (ModemDialogue::*)(const std::string& said, Duration now);
    struct ResultRow;
    struct DeadlineRow;
    friend struct ModemTables;

    void Tell(Phase phase, std::string bytes, Duration pause, Duration patience, Duration now);
    void Enter(Phase phase) { phase_ = phase, deadline_.reset(), pending_.clear(); }
    void TakeLine(Duration now);
    void SendPending(Duration now);
    void SetCall(ModemCall call, const std::string& said);
    void BecomeIdle(ModemCall call, const std::string& said);
    void SayNumber(Duration pause, Duration now);
    void TryAgainOr(ModemCall call, const std::string& said, Duration now);

    void NextSetUp(const std::string& said, Duration now);
    void RepeatSetUp(const std::string& said, Duration now);
    void GoOnline(const std::string& said, Duration now);
    void TakeRing(const std::string& said, Duration now);
    void RingsEnded(const std::string& said, Duration now);
    void TakeBusy(const std::string& said, Duration now);
    void TakeNoAnswer(const std::string& said, Duration now);
    void TakeNoCarrier(const std::string& said, Duration now);
    void TakeNoDialTone(const std::string& said, Duration now);
    void TakeError(const std::string& said, Duration now);
    void StopTrying(const std::string& said, Duration now);
    void TryEnded(const std::string& said, Duration now);
    void NextTry(const std::string& said, Duration now);
    void SuspectLoss(const std::string& said, Duration now);
    void LoseCall(const std::string& said, Duration now);
    void BeginHangUp(const std::string& said, Duration now);
    void RaiseLine(const std::string& said, Duration now);
    void BeginEscape(const std::string& said, Duration now);
    void SayHangUp(const std::string& said, Duration now);
    void KeepCall(const std::string& said, Duration now);
    void CallEnded(const std::string& said, Duration now);

    ModemDefinition definition_;
    ModemOptions options_;
    ModemEvents& events_;
    Phase phase_ = Phase::Silent;
    ModemCall call_ = ModemCall::None;
    std::optional<Duration> deadline_;
    std::string pending_; // goes out at the deadline
    Duration patience_{0};
    std::string line_; // what has come of it
    std::string number_;
    std::size_t setUpStep_ = 0;
    int attempts_ = 0;  // of one set-up command
    int triesLeft_ = 0; // to dial
    int rings_ = 0;
    ModemCall ending_ = ModemCall::None; // what the call will be called when the try has stopped
    bool carrierOn_ = false;
    bool carrierTells_ = false; // it came on with this call: its going off means something
};

} // namespace kestrune::comm
