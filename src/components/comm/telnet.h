#pragma once

// The telnet protocol (RFC 854, 855) as a machine: bytes from the wire and from the keyboard in, clean bytes,
// bytes for the wire and events out. It knows no socket and no clock, never blocks, and keeps no more than one
// sub-negotiation of bounded length, whatever the far side sends. Any split of the input gives the same output.
//
// Options it takes part in: BINARY (RFC 856), ECHO (857), SUPPRESS-GO-AHEAD (858), STATUS (859), TIMING-MARK (860),
// END-OF-RECORD (885), TERMINAL-TYPE (1091), NAWS (1073), TERMINAL-SPEED (1079), NEW-ENVIRON (1572). All others are
// refused, LINEMODE (1184) and LOGOUT (727) among them: keys go out one by one, and nobody is logged off unasked.

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace kestrune::comm {

struct TelnetSettings
{
    std::vector<std::string> terminalNames{"UNKNOWN"}; // best first; at least one
    int cols = 80;
    int rows = 24;
    std::string speed = "38400,38400"; // transmit, receive, bits per second
    std::string userName;              // NEW-ENVIRON USER; empty: the option is refused
    bool binary = false;               // ask for BINARY both ways; a host's own wish for it is always granted
    bool localEcho = false;            // refuse the host's offer to echo
};

class TelnetEvents
{
public:
    virtual ~TelnetEvents() = default;
    virtual void TelnetData(std::string_view bytes) = 0;  // from the host, without protocol
    virtual void TelnetOutput(std::string_view wire) = 0; // to be sent as it is
    virtual void TelnetRemoteEcho(bool remote) = 0;
};

enum class TelnetBreak
{
    Break,           // IAC BRK
    InterruptProcess // IAC IP
};

class Telnet
{
public:
    Telnet(TelnetSettings settings, TelnetEvents& events);

    // Makes our offers. On a port that may not speak telnet leave it to the host: the offers then follow
    // the first command that it sends.
    void Start();

    void Receive(std::string_view wire);
    void Send(std::string_view bytes); // doubles IAC and, outside BINARY, ends a CR as RFC 854 asks
    void Resize(int cols, int rows);
    void SendBreak(TelnetBreak kind);
    void SendNop(); // keep-alive
    void SendAreYouThere();

    // The host has sent an urgent notice (RFC 854, SYNCH): text is dropped until its data mark, which may stand far
    // behind. EndSynch: the urgent part is over; a host that has sent no mark does not lose more.
    void BeginSynch() { synch_ = true; }
    void EndSynch() { synch_ = false; }

    bool RemoteEcho() const;

private:
    // This side never takes an offer back, so the queue bits and WANTNO of RFC 1143 have no use here.
    enum class Side : std::uint8_t
    {
        No,
        WantYes,
        Yes
    };
    enum class State : std::uint8_t
    {
        Data,
        Command,       // after IAC
        Option,        // after IAC WILL, WONT, DO or DONT
        SubOption,     // after IAC SB
        SubData,       // inside a sub-negotiation
        SubDataCommand // IAC inside a sub-negotiation
    };
    struct OptionRow;
    friend struct OptionTable;

    static const OptionRow* Find(std::uint8_t option);
    std::size_t TakeData(std::string_view wire);
    std::size_t TakeSubData(std::string_view wire);
    void EmitData(std::string_view run);
    void TakeByte(std::uint8_t byte);
    void TakeCommand(std::uint8_t command);
    void TakeSubCommand(std::uint8_t command);
    void Negotiate(std::uint8_t verb, std::uint8_t option);
    void HostOffers(std::uint8_t option, bool offers);
    void HostAsks(std::uint8_t option, bool asks);
    void EndSub();
    void Offer(std::uint8_t option, bool us);
    void SendCommand(std::uint8_t verb, std::uint8_t option);
    void SendSub(std::uint8_t option, std::string_view payload);
    void SendSize();
    void SendTerminalName(std::string_view request);
    void SendSpeed(std::string_view request);
    void SendStatus(std::string_view request);
    void SendEnvironment(std::string_view request);

    TelnetSettings settings_;
    TelnetEvents& events_;
    std::array<Side, 256> us_{};  // what we do
    std::array<Side, 256> him_{}; // what the host does
    State state_ = State::Data;
    std::uint8_t verb_ = 0;
    std::uint8_t subOption_ = 0;
    std::string sub_;
    std::size_t subLength_ = 0; // of the present sub-negotiation, also what was too much to keep
    std::size_t nextName_ = 0;
    bool started_ = false;
    bool afterCr_ = false;
    bool synch_ = false;
};

} // namespace kestrune::comm
