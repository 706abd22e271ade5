#pragma once

// What the settings say to the engine and to the line, at the moment of asking.

#include <emulator/control/emulatorsettings.h>
#include <emulator/engine/personality.h>
#include <emulator/engine/terminal.h>
#include <ports/line.h>

#include <optional>

namespace kestrune {

// The names of the IANA registry that this system has, without regard to case; nothing: not one of them.
std::optional<emu::HostCharset> CharsetNamed(const QString& name);

emu::HostCharset CharsetOf(const EmulatorSettings& settings);
// CharacterMapping over the charset's upper half; empty: no mapping; nothing: it cannot be read.
std::optional<std::u16string> MappingOf(const EmulatorSettings& settings);
emu::TerminalOptions TerminalOptionsOf(const EmulatorSettings& settings, emu::Size size);
// What the session asks for and no line can give, in the user's words; empty: nothing.
QString WhyNoLine(const EmulatorSettings& settings);
LineOptions LineOptionsOf(const EmulatorSettings& settings, const emu::Personality& type, const TerminalSize& size);

} // namespace kestrune
