#pragma once

// The encodings of a host by their names, and what their bytes mean.

#include <emulator/engine/terminal.h>

#include <optional>
#include <string_view>
#include <vector>

namespace kestrune::emu {

// By a name such as "ISO-8859-2", "IBM850" or "KOI8-R", or a shorter one ("Latin2", "CP850"); case does not matter.
std::optional<HostCharset> FindHostCharset(std::string_view name);
std::vector<std::string_view> HostCharsetNames(); // one for each encoding

char32_t HostPoint(HostCharset charset, uint8_t byte); // of an 8-bit encoding; Utf8 reads as Latin-1
bool CharsetAllowsC1(HostCharset charset);             // 0x80 to 0x9F are not characters in it

// The upper half of an encoding, bytes 0x80 to 0xFF, with places taken by others: "A4=20AC 80=2022", byte and code
// point in hexadecimal, separated by blanks, commas or semicolons. Nothing when the text says anything else, or
// names a code point that is no character of the basic plane.
std::optional<std::u16string> MappedUpperHalf(HostCharset charset, std::string_view mapping);

} // namespace kestrune::emu
