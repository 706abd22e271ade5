#pragma once

// Which one processor the main process keeps to. The drawing is apart from the setting (platform/processors.h).

#include <cstdint>
#include <optional>
#include <vector>

namespace kestrune {

inline constexpr int AnyProcessor = -1; // a random one

// argument: AnyProcessor, 0 (all permitted ones), 1 to 30 the permitted processor of that number less one, 32
// number 31; anything else changes nothing. permitted: numbers below 64, ascending. random: in [0, 1).
// The mask to set; nothing: leave it as it is.
std::optional<std::uint64_t> ThreadAffinity(int argument, const std::vector<int>& permitted, double random);

} // namespace kestrune
