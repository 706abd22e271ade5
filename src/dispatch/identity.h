#pragma once

// Under which ids other programs bind to a class of late-bound objects. An id is given once and never changes.

#include <QUuid>

#include <array>
#include <string_view>

namespace kestrune {

// From its usual text, "01234567-89ab-cdef-0123-456789abcdef"; anything else does not compile.
consteval QUuid IdOf(std::string_view text)
{
    constexpr std::string_view form = "00000000-0000-0000-0000-000000000000";
    std::array<unsigned char, 16> bytes{};
    if (text.size() != form.size())
        throw "the length of an id";
    std::size_t digits = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if ((c == '-') != (form[i] == '-'))
            throw "the groups of an id";
        if (c == '-')
            continue;
        const int value = c >= '0' && c <= '9' ? c - '0' : c >= 'a' && c <= 'f' ? c - 'a' + 10 : throw "a digit";
        bytes[digits / 2] = static_cast<unsigned char>(bytes[digits / 2] * 16 + value);
        ++digits;
    }
    const auto word = [&](std::size_t at) { return static_cast<unsigned short>(bytes[at] * 256 + bytes[at + 1]); };
    return {word(0) * 65536U + word(2),
            word(4),
            word(6),
            bytes[8],
            bytes[9],
            bytes[10],
            bytes[11],
            bytes[12],
            bytes[13],
            bytes[14],
            bytes[15]};
}

struct InterfaceIdentity
{
    const char* name;
    QUuid id;
};

struct ClassIdentity
{
    const char* name;
    const char* progId;
    QUuid id;
    // Each has all members of the class; the first is the one that late binding uses.
    std::array<InterfaceIdentity, 2> interfaces;
};

} // namespace kestrune
