#pragma once

// How the host's side of a resumable session and the terminal find each other, inside the stream of an ordinary login.
//
//   host      DCS + kestrune-rebind ST, then a request for device attributes. A terminal that does not know the string
//             ignores it (ECMA-48 8.3.27) and answers the request, so that the host's side does not wait in vain.
//   terminal  DCS + kestrune-rebind ; 1 ; bits ; token ; count ST    bits: 7 or 8, what the line carries; token and
//             count: which session to resume and the bytes received of it, empty and 0 for a new one. Nothing in it
//             is the host's own text.
//   host      DCS + kestrune-rebind ; ready ; token ; count ST, after it nothing but the streams of stream.h. Another
//             token than the one asked for: that session is gone, this is a new one.

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace kestrune::comm::rebind {

inline constexpr std::string_view Announcement = "\x1bP+kestrune-rebind\x1b\\\x1b[c";
inline constexpr std::string_view Opening = "\x1bP+kestrune-rebind;"; // of an answer and of ready
inline constexpr std::string_view Closing = "\x1b\\";
inline constexpr std::size_t LongestMessage = 128; // between opening and closing

struct Answer
{
    bool sevenBit = false;
    std::string token; // 32 hexadecimal digits, or empty
    std::uint64_t received = 0;
};

struct Ready
{
    std::string token;
    std::uint64_t received = 0;
};

std::string Format(const Answer& answer);
std::string Format(const Ready& ready);
// What stands between Opening and Closing. Nothing: not one of ours.
std::optional<Answer> ParseAnswer(std::string_view message);
std::optional<Ready> ParseReady(std::string_view message);
bool IsToken(std::string_view text);

} // namespace kestrune::comm::rebind
