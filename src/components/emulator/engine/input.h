#pragma once

// What keys, the mouse, focus and pasted text send to the host under the present modes.

#include "machine.h"

#include <string>
#include <string_view>

namespace kestrune::emu {

std::string KeyToBytes(const Machine& machine, const KeyPress& press);
std::string MouseToBytes(const Machine& machine, const MouseAction& action);
std::string FocusToBytes(const Machine& machine, bool gained);
std::string PasteToBytes(const Machine& machine, std::string_view utf8);
std::string TextToBytes(const Machine& machine, std::string_view utf8);

} // namespace kestrune::emu
