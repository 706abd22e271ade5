#pragma once

// Commands that a host sends inside its data, between a lead-in and a terminator that the programs on both sides
// have agreed on. They are taken out of the stream, however it is cut into pieces.

#include <string>
#include <string_view>
#include <vector>

namespace kestrune {

class ExtensionFilter
{
public:
    static constexpr size_t MaxCommand = size_t{32} * 1024; // bytes; a longer one is data after all

    // Bytes in the host's encoding. An empty lead-in: nothing is taken out. What was held back is dropped.
    void Set(std::string leadIn, std::string terminator);
    bool IsOn() const { return !leadIn_.empty(); }

    std::string Feed(std::string_view bytes, std::vector<std::string>& commands); // returns the data
    // Data that may have been the start of a lead-in. Not a command that has begun.
    std::string TakeHeld();
    bool IsHolding() const { return !inCommand_ && !held_.empty(); }
    void Reset(); // another connection

private:
    std::string leadIn_;
    std::string terminator_;
    std::string held_; // the start of a lead-in, or a command with what may be the start of its terminator
    bool inCommand_ = false;
};

} // namespace kestrune
