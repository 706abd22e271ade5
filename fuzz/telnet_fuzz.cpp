// A host that says anything: no crash, no answer without measure, and the same outcome however the network cuts
// its bytes. The first byte chooses the settings and the cut.

#include <comm/telnet.h>

#include <cstdint>
#include <cstdlib>
#include <string>

namespace {

using namespace kestrune::comm;

struct Outcome : TelnetEvents
{
    void TelnetData(std::string_view bytes) override { data += bytes; }
    void TelnetOutput(std::string_view wire) override { output += wire; }
    void TelnetRemoteEcho(bool remote) override { echoes += remote ? '1' : '0'; }
    bool operator==(const Outcome& other) const
    {
        return data == other.data && output == other.output && echoes == other.echoes;
    }
    std::string data, output, echoes;
};

Outcome Play(std::uint8_t choice, std::string_view wire, std::size_t piece)
{
    TelnetSettings settings;
    settings.terminalNames = {"vt220", "vt100"};
    settings.binary = choice & 1;
    settings.localEcho = choice & 2;
    settings.userName = choice & 4 ? "ann\xff" : "";
    Outcome outcome;
    Telnet telnet(settings, outcome);
    if (choice & 8)
        telnet.Start();
    for (; !wire.empty(); wire.remove_prefix(std::min(piece, wire.size())))
        telnet.Receive(wire.substr(0, piece));
    telnet.Resize(132, 255);
    telnet.Send(std::string_view("\r\n\xff\r\0", 5));
    return outcome;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size)
{
    if (size == 0)
        return 0;
    const std::string_view wire(reinterpret_cast<const char*>(bytes) + 1, size - 1);
    const Outcome whole = Play(bytes[0], wire, wire.size() + 1);
    const Outcome cut = Play(bytes[0], wire, 1 + bytes[0] / 16);
    // The longest answer to the shortest question: some 20 bytes of a name for 6 bytes of request.
    const bool measured = whole.data.size() <= wire.size() && whole.output.size() <= 100 + 8 * wire.size();
    if (!(whole == cut) || !measured)
        std::abort();
    return 0;
}
