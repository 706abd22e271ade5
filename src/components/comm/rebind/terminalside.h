#pragma once

// The terminal's side of a resumable session: bytes from the line and from the keyboard in, bytes for the screen and
// for the line out. It knows no line, window or clock.
//
// At first everything passes as it is while the host's announcement is looked for. Once that has come and both sides
// have agreed, the line carries the two streams. A host that never announces itself is served as ever.

#include <comm/rebind/handshake.h>
#include <comm/rebind/stream.h>

#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace kestrune::comm {

// What a lost connection leaves behind: which session, and the two streams with what is not yet acknowledged.
struct RebindTicket
{
    std::string token;
    ResumableStream stream;
    std::string waiting{}; // what the user sent and the stream had no room for yet
};

class RebindEvents
{
public:
    virtual ~RebindEvents() = default;
    virtual void RebindData(std::string_view bytes) = 0;  // for the screen
    virtual void RebindOutput(std::string_view wire) = 0; // for the line
    virtual void RebindAnswered() = 0;                    // an agreement is on its way: see GiveUp
    virtual void RebindAgreed(bool sameSession) = 0;      // sameSession: what was asked for has been resumed
    virtual void RebindEnded(int exitCode) = 0;           // the program of the session has ended
    virtual void RebindBroken() = 0;                      // the connection garbles the streams: close it
};

class RebindTerminal
{
public:
    // ticket: the session to resume; null for a new one.
    RebindTerminal(std::size_t bufferSize, std::unique_ptr<RebindTicket> ticket, RebindEvents& events);

    void SetSevenBit(bool on) { sevenBit_ = on; } // what the line carries now; asked when the host announces itself

    void FromLine(std::string_view wire);
    void FromUser(std::string_view bytes); // what the stream has no room for waits here, and is sent as room comes
    std::size_t Waiting() const { return waiting_.size(); }

    // Nobody announced or agreed for so long (the caller has the clock) that nobody will: everything passes as it is.
    void GiveUp();
    void Quit(); // the user leaves for good: the host's side is to hang up

    bool IsBound() const { return state_ == State::Bound; }
    // Of a bound session whose connection has gone, and that has not ended. This object is of no use afterwards.
    std::unique_ptr<RebindTicket> TakeTicket();

private:
    enum class State
    {
        Watching,
        Answered,
        Bound,
        Plain
    };

    std::size_t Watch(std::string_view wire);
    void AnswerHost();
    void TakeReady(std::string_view message);
    void TakeStream(std::string_view wire);
    void Push();

    RebindEvents& events_;
    std::size_t bufferSize_;
    std::unique_ptr<RebindTicket> ticket_;
    bool sevenBit_ = false;
    State state_ = State::Watching;
    std::string held_; // the start of what may be a message of the host's side
    std::size_t watched_ = 0;
    std::string waiting_; // from the user
    bool endTold_ = false;
};

} // namespace kestrune::comm
