#pragma once

// Bytes written as pairs of hexadecimal digits, as user-defined keys and macros carry them.

#include <optional>
#include <string>
#include <string_view>

namespace kestrune::emu {

constexpr int HexDigit(char digit)
{
    if (digit >= '0' && digit <= '9')
        return digit - '0';
    const char lower = char(digit | 0x20);
    return lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : -1;
}

// Nothing when a digit is none, or one is left over.
inline std::optional<std::string> FromHexPairs(std::string_view digits)
{
    std::string bytes;
    if (digits.size() % 2 != 0)
        return std::nullopt;
    for (size_t i = 0; i < digits.size(); i += 2) {
        const int high = HexDigit(digits[i]);
        const int low = HexDigit(digits[i + 1]);
        if (high < 0 || low < 0)
            return std::nullopt;
        bytes += char((high << 4) | low);
    }
    return bytes;
}

inline std::string HexWord(unsigned value) // four digits
{
    std::string out;
    for (unsigned shift = 16; shift > 0; shift -= 4)
        out += "0123456789ABCDEF"[(value >> (shift - 4)) & 15u];
    return out;
}

} // namespace kestrune::emu
