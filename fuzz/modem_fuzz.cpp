// A modem that says anything, at any time, while calls are made and ended, and numbers that are anything: no crash, no
// wait without end, no command but ours, and the same outcome however its bytes are cut. A byte above 0xF7 is an act of
// the user or the port, 0xF7 time that passes.

#include <comm/dialing.h>
#include <comm/modemdialogue.h>

#include <cstdint>
#include <cstdlib>
#include <string>

namespace {

using namespace kestrune::comm;
using namespace std::chrono_literals;

struct ModemOutcome : ModemEvents
{
    void ModemOutput(std::string_view bytes) override
    {
        said += bytes;
        if (bytes.find('\r') < bytes.size() - 1) // two commands in one
            std::abort();
    }
    void ModemTerminalReady(bool on) override { said += on ? "[up]" : "[down]"; }
    void ModemSpeed(int bitsPerSecond) override { said += std::to_string(bitsPerSecond); }
    void ModemIsReady() override { said += "[ready]"; }
    void ModemIsSilent() override { said += "[silent]"; }
    void ModemCallChanged(ModemCall call, const std::string& words) override
    {
        said += "[" + std::to_string(static_cast<int>(call)) + words + "]";
    }
    std::string said;
};

std::string Play(std::uint8_t choice, std::string_view input, bool cut)
{
    ModemDefinition definition;
    definition.redials = choice & 3;
    ModemOutcome outcome;
    ModemDialogue modem(definition, {.autoAnswer = (choice & 4) != 0, .hasLines = (choice & 8) != 0}, outcome);
    ModemDialogue::Duration now{0};
    const auto pass = [&](ModemDialogue::Duration time) {
        now += time;
        modem.Tick(now);
    };
    modem.Start(now);
    for (std::size_t i = 0; i < input.size();) {
        const auto act = static_cast<std::uint8_t>(input[i]);
        std::size_t end = i + 1;
        if (act < 0xF7) {
            while (!cut && end < input.size() && static_cast<std::uint8_t>(input[end]) < 0xF7)
                ++end;
            modem.Receive(input.substr(i, end - i), now);
        } else if (act == 0xF7) {
            pass(700ms);
        } else if (act < 0xFA) {
            modem.Dial(input.substr(end), now);
        } else if (act < 0xFC) {
            modem.HangUp(now);
        } else {
            modem.Carrier((act & 1) != 0, now);
        }
        i = end;
    }
    for (int turn = 0; modem.Deadline(); ++turn) { // left alone it comes to rest
        pass(*modem.Deadline() - now);
        if (turn > 1000)
            std::abort();
    }
    return outcome.said;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size)
{
    if (size == 0)
        return 0;
    const std::string_view input(reinterpret_cast<const char*>(bytes) + 1, size - 1);
    if (Play(bytes[0], input, false) != Play(bytes[0], input, true))
        std::abort();
    const DialLocation location{.country = "1",
                                .area = "212",
                                .outsideLine = "9,",
                                .outsideLineFar = {},
                                .longDistance = "1",
                                .international = {},
                                .areaAlways = false};
    const auto translated = TranslateTyped(input, location);
    if (translated && (translated->dialable.size() > input.size() + 16 ||
                       translated->dialable.find_first_not_of(DialCharacters) != std::string::npos))
        std::abort();
    return 0;
}
