#pragma once

// Text with separators, as strings from the host carry their parameters.

#include <charconv>
#include <optional>
#include <string_view>

namespace kestrune::emu {

// What stands before the first separator, or all; the text loses it, and the separator.
inline std::string_view TakeField(std::string_view& text, char separator = ';')
{
    const size_t end = text.find(separator);
    const std::string_view field = text.substr(0, end);
    text = end == text.npos ? std::string_view() : text.substr(end + 1);
    return field;
}

// Digits and nothing else, for a number in the range.
inline std::optional<int> NumberIn(std::string_view field, int least, int most)
{
    int value = 0;
    const auto [end, error] = std::from_chars(field.data(), field.data() + field.size(), value);
    if (error != std::errc() || end != field.data() + field.size() || value < least || value > most)
        return std::nullopt;
    return value;
}

} // namespace kestrune::emu
