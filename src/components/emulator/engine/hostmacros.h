#pragma once

// Macros of the VT420 (DECDMAC, DECINVM): strings that a host leaves in the terminal and lets it receive again later.
// Nothing of them ever goes back to the host but how much room is left and a checksum.

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

namespace kestrune::emu {

class HostMacros
{
public:
    static constexpr size_t Space = 6144; // of all macros together, as in the terminal
    static constexpr int Count = 64;

    // The string between DCS and ST: "Pid;Pdt;Pen!z" and the text, or pairs of hexadecimal digits in which
    // "!count;pairs;" repeats. What is malformed or too long leaves the old macro. Returns false when it is no such
    // string.
    bool Take(std::string_view body);
    // Empty: there is none.
    const std::string& At(int id) const { return id >= 0 && id < Count ? macros_[size_t(id)] : none_; }
    size_t SpaceLeft() const;
    uint16_t Checksum() const; // of all, two's complement
    void Clear();

private:
    std::array<std::string, Count> macros_;
    std::string none_;
};

} // namespace kestrune::emu
