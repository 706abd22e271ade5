#include "handshake.h"

#include <algorithm>
#include <array>
#include <charconv>

namespace kestrune::comm::rebind {

namespace {

constexpr std::size_t kTokenDigits = 32;
constexpr std::string_view kVersion = "1", kReady = "ready", kSeven = "7", kEight = "8";

template <std::size_t N>
std::optional<std::array<std::string_view, N>> Fields(std::string_view message)
{
    std::array<std::string_view, N> fields;
    for (std::size_t i = 0; i < N; ++i) {
        const auto end = message.find(';');
        if ((end == message.npos) != (i + 1 == N))
            return {};
        fields[i] = message.substr(0, end);
        message.remove_prefix(std::min(message.size(), fields[i].size() + 1));
    }
    return fields;
}

std::optional<std::uint64_t> Number(std::string_view text)
{
    std::uint64_t number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (text.empty() || error != std::errc() || end != text.data() + text.size())
        return {};
    return number;
}

std::string Message(std::initializer_list<std::string_view> fields)
{
    std::string message(Opening);
    const char* separator = "";
    for (const std::string_view field : fields) {
        message.append(separator).append(field);
        separator = ";";
    }
    return message.append(Closing);
}

} // namespace

std::string Format(const Answer& answer)
{
    return Message({kVersion, answer.sevenBit ? kSeven : kEight, answer.token, std::to_string(answer.received)});
}

std::string Format(const Ready& ready) { return Message({kReady, ready.token, std::to_string(ready.received)}); }

std::optional<Answer> ParseAnswer(std::string_view message)
{
    const auto fields = Fields<4>(message);
    if (!fields)
        return {};
    const auto& [version, bits, token, count] = *fields;
    const auto received = Number(count);
    if (version != kVersion || (bits != kSeven && bits != kEight) || (!token.empty() && !IsToken(token)) || !received)
        return {};
    return Answer{bits == kSeven, std::string(token), *received};
}

std::optional<Ready> ParseReady(std::string_view message)
{
    const auto fields = Fields<3>(message);
    if (!fields)
        return {};
    const auto& [word, token, count] = *fields;
    const auto received = Number(count);
    if (word != kReady || !IsToken(token) || !received)
        return {};
    return Ready{std::string(token), *received};
}

bool IsToken(std::string_view text)
{
    return text.size() == kTokenDigits &&
           std::ranges::all_of(text, [](char c) { return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f'); });
}

} // namespace kestrune::comm::rebind
