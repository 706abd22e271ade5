#pragma once

// From a telephone number to what a modem dials, by the place where the telephone stands: country and area code, and
// what must be dialled before the number to get out of the house, out of the area and out of the country.

#include <optional>
#include <string>
#include <string_view>

namespace kestrune::comm {

// Digits, tone letters, pauses and other modifiers (ITU-T V.250 6.3.1), but not ";", which would leave the call a voice
// call.
inline constexpr std::string_view DialCharacters = "0123456789*#ABCDabcd,W@!TPtpw";

struct DialLocation
{
    std::string country;        // its code, "1"; empty: not known, numbers are dialled as they are written
    std::string area;           // area code; empty: none, or not known
    std::string outsideLine;    // before every number that goes out, "9,"
    std::string outsideLineFar; // before those that leave the area; empty: as outsideLine
    std::string longDistance;   // before the area code, "1" or "0"
    std::string international;  // before the country code, "011" or "00"
    bool areaAlways = false;    // the area code is dialled within the area, too
    bool operator==(const DialLocation&) const = default;
};

struct DialText
{
    std::string dialable;  // DialCharacters
    std::string displayed; // for the eye
};

// number: canonical ("+1 (212) 5550100", UTF-8), or anything else, which is dialled as it is written. Nothing: no
// character of it can be dialled.
std::optional<DialText> TranslateNumber(std::string_view number, const DialLocation& from);

// The same for a number as people type it: blanks, "-", "/" and "." do not count, "(212)..." is of this country, and
// in country 1 seven digits are of this area and eleven begin with the country code.
std::optional<DialText> TranslateTyped(std::string_view number, const DialLocation& from);

} // namespace kestrune::comm
