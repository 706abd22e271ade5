#include "hostmacros.h"

#include "hexpairs.h"

#include <algorithm>
#include <charconv>
#include <optional>

namespace kestrune::emu {
namespace {

constexpr std::string_view kMacroFinal = "!z";

bool AppendBounded(std::string& out, std::string_view bytes, size_t times)
{
    if (bytes.size() * times > HostMacros::Space - std::min(HostMacros::Space, out.size()))
        return false;
    for (size_t i = 0; i < times; ++i)
        out += bytes;
    return true;
}

// "4142!3;43;44" is "ABCCCD". Repeats do not nest.
std::optional<std::string> FromRepeatedPairs(std::string_view text)
{
    std::string out;
    while (!text.empty()) {
        const size_t mark = std::min(text.find('!'), text.size());
        const auto plain = FromHexPairs(text.substr(0, mark));
        if (!plain || !AppendBounded(out, *plain, 1))
            return std::nullopt;
        text.remove_prefix(mark);
        if (text.empty())
            break;
        const size_t head = text.find(';');
        if (head == text.npos)
            return std::nullopt;
        const size_t end = std::min(text.find(';', head + 1), text.size());
        unsigned times = 1; // a missing count, and zero, are one
        std::from_chars(text.data() + 1, text.data() + head, times);
        const auto repeated = FromHexPairs(text.substr(head + 1, end - head - 1));
        if (!repeated || times > HostMacros::Space || !AppendBounded(out, *repeated, std::max(times, 1u)))
            return std::nullopt;
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return out;
}

} // namespace

bool HostMacros::Take(std::string_view body)
{
    const size_t final = body.find_first_not_of("0123456789;");
    if (final == body.npos || body.substr(final, kMacroFinal.size()) != kMacroFinal)
        return false;
    unsigned fields[3] = {0, 0, 0}; // id, what to delete first, encoding
    const char* at = body.data();
    for (unsigned& field : fields) {
        at = std::from_chars(at, body.data() + final, field).ptr;
        at += at != body.data() + final && *at == ';' ? 1 : 0;
    }
    const auto [id, deleting, encoding] = fields;
    if (id >= unsigned(Count) || deleting > 1 || encoding > 1)
        return true;
    const std::string_view text = body.substr(final + kMacroFinal.size());
    const std::optional<std::string> macro = encoding == 0 ? std::string(text) : FromRepeatedPairs(text);
    if (!macro)
        return true;
    if (deleting == 1)
        Clear();
    if (macro->size() <= SpaceLeft() + macros_[id].size())
        macros_[id] = *macro;
    return true;
}

size_t HostMacros::SpaceLeft() const
{
    size_t held = 0;
    for (const std::string& macro : macros_)
        held += macro.size();
    return Space - held;
}

uint16_t HostMacros::Checksum() const
{
    uint16_t sum = 0;
    for (const std::string& macro : macros_)
        for (const char byte : macro)
            sum = uint16_t(sum + uint8_t(byte));
    return uint16_t(-sum);
}

void HostMacros::Clear() { macros_ = {}; }

} // namespace kestrune::emu
