#pragma once

// The nine kinds of output that terminals are measured with, made from a fixed seed; and what a hostile host sends,
// which must cost about as much a byte as anything else.

#include <cstddef>
#include <span>
#include <string>
#include <string_view>

namespace bench {

std::span<const std::string_view> StreamNames();
std::span<const std::string_view> HostileNames();
// At least `bytes` of one kind; empty: there is no such kind.
std::string Stream(std::string_view name, std::size_t bytes);

} // namespace bench
