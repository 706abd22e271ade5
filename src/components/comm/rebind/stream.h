#pragma once

// One side of a byte stream that outlives its connections. What is written is numbered and kept until the other side
// has said that it has it; a new connection starts where the other side stopped, so that no byte is lost and none comes
// twice. Knows no socket, no clock and no terminal; bounded in memory by the buffer size whatever the other side does.
//
// On the wire the bytes go as they are, but for those that a terminal line may change or act on (CR, LF, NUL, flow
// control, DEL, DLE and, where the line has only seven bits, all above 0x7F): each goes as DLE and a printable byte.
// Bare control bytes are therefore the line's own noise and are passed over. DLE and a small letter is a message with a
// number and ";": a count received, a count sent (so that a line that changes or drops bytes is noticed), the end with
// its exit code, that the end has been seen (servers drop what a program has printed last), the user's wish to end.

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace kestrune::comm {

class ResumableStream
{
public:
    static constexpr std::size_t MinBuffer = 4096;

    // bufferSize: bytes written and not yet acknowledged that are kept; at least MinBuffer. Both sides use the smaller
    // of their sizes only for their own sending: they need not agree.
    explicit ResumableStream(std::size_t bufferSize);

    void SetSevenBit(bool on) { sevenBit_ = on; }

    // --- sending
    std::size_t Room() const { return bufferSize_ - Kept().size(); }
    void Write(std::string_view bytes); // at most Room() bytes are taken; the caller sees to it
    void End(int code);                 // after all that was written
    void Quit();                        // the user's side asks the host's side to hang up
    bool HasOutput() const;
    // What the connection is to carry next, from about so many bytes of the stream.
    std::string TakeOutput(std::size_t most);

    // --- receiving: the stream's bytes are appended to data. False: the connection changes or drops bytes, or the
    // other side does not speak this: give the connection up; the stream itself stays whole.
    [[nodiscard]] bool Receive(std::string_view wire, std::string& data);
    std::optional<int> Ended() const { return ended_; } // the other side's End, once all before it has been received
    bool EndSeen() const { return endSeen_; }           // by the other side
    bool QuitAsked() const { return quitAsked_; }

    // --- the next connection
    std::uint64_t Received() const { return received_; } // bytes taken so far: what the other side's Resume wants
    // False: the other side asks for what it has acknowledged before, or for what was never sent.
    [[nodiscard]] bool Resume(std::uint64_t theirReceived);

private:
    enum class State : std::uint8_t
    {
        Data,
        Escape,
        High, // after DLE +: the next byte, itself perhaps escaped, gets its eighth bit back
        HighEscape,
        Message
    };

    std::string_view Kept() const { return std::string_view(buffer_).substr(gone_); }
    void Encode(std::string& wire, unsigned char byte) const;
    void SayCount(std::string& wire, char message, std::uint64_t count) const;
    bool Take(unsigned char byte, std::string& data);
    void Put(unsigned char byte, std::string& data);
    bool TakeMessage();
    bool Acknowledge(std::uint64_t count);

    std::size_t bufferSize_;
    bool sevenBit_ = false;
    std::string buffer_;             // written, of which
    std::size_t gone_ = 0;           // so much is acknowledged; the rest is kept
    std::uint64_t acknowledged_ = 0; // the number of the first byte that is kept
    std::size_t sent_ = 0;           // of what is kept, on this connection
    std::uint64_t sentMark_ = 0;     // the last count that the other side was told to check
    std::optional<int> end_;
    bool endSent_ = false;
    bool quit_ = false;

    State state_ = State::Data;
    char message_ = 0;
    std::string number_;
    std::uint64_t received_ = 0;
    std::uint64_t told_ = 0; // of received_, on any connection
    std::optional<int> ended_;
    bool endedTold_ = false;
    bool endSeen_ = false;
    bool quitAsked_ = false;
};

} // namespace kestrune::comm
