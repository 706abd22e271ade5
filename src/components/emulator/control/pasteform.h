#pragma once

// In which form pasted text goes to the host, by the settings of a session.

#include <emulator/control/emulatorsettings.h>
#include <emulator/engine/terminal.h>

#include <QString>

#include <chrono>
#include <string>

namespace kestrune {

// Setting PasteEOLMode: what stands for a line end. Another number counts as Enter.
enum class PasteLineEnd : int
{
    Enter = 0, // carriage return, as the Enter key sends it
    CarriageReturnLineFeed = 1,
    LineFeed = 2,
    Character = 3, // the code PasteEOLChar, 0 to 255
    Nothing = 4    // the lines are joined
};

// Setting PasteEOFMode: what follows the text. Another number counts as None.
enum class PasteFileEnd : int
{
    None = 0,
    ControlD = 1, // end of input, as Unix has it
    ControlZ = 2,
    Character = 3 // the code PasteEOFChar, 0 to 255
};

// Bits of the setting PasteOptions.
namespace PasteOption {
inline constexpr int NoQuestion = 1; // about several lines; control characters are still told of
inline constexpr int Slowly = 2;     // a pause of AsciiDelay milliseconds behind each line
inline constexpr int NoLastEnd = 4;  // the line ends at the end of the text are not pasted
} // namespace PasteOption

struct PasteForm
{
    std::string bytes;   // to the host, in the marks of a bracketed paste if the host has asked for them
    std::string lineEnd; // as it stands in bytes; empty: there are none
    std::chrono::milliseconds pause{0};
};

PasteForm PasteFormOf(const EmulatorSettings& settings, const emu::Terminal& screen, QString text);

} // namespace kestrune
