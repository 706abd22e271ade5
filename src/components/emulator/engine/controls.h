#pragma once

// The tables of control characters, escape sequences and control sequences. A row says what the host sends, what
// the manuals call it, which dialects have it and what to do.

#include "machine.h"

#include <span>
#include <string_view>

namespace kestrune::emu {

struct CharacterRow // C0
{
    uint8_t byte;
    std::string_view mnemonic;
    void (*run)(Machine& machine);
};

struct EscapeRow
{
    std::string_view bytes; // after ESC: intermediate if any, final
    std::string_view mnemonic;
    Dialects dialects;
    void (*run)(Machine& machine);
};

struct ControlRow
{
    std::string_view bytes; // after CSI: private marker if any, intermediate if any, final
    std::string_view mnemonic;
    Dialects dialects;
    void (*run)(Machine& machine, const ControlSequence& sequence);
};

std::span<const CharacterRow> CharacterRows();
std::span<const EscapeRow> EscapeRows();
std::span<const ControlRow> ControlRows();

// Places in a flat table: one for each thing that a host can send in this form.
constexpr size_t EscapeKey(char intermediate, char final)
{
    const size_t middle = intermediate == 0 ? 0 : size_t(intermediate - 0x20 + 1) & 31u;
    return (middle > 16 ? 0 : middle) * 80 + size_t(final - 0x30);
}

constexpr size_t ControlKey(char marker, char intermediate, char final)
{
    const size_t first = marker == 0 ? 0 : size_t(marker - '<' + 1);
    const size_t middle = intermediate == 0 ? 0 : size_t(intermediate - 0x20 + 1);
    return (first * 17 + middle) * 64 + size_t(final - 0x40);
}

} // namespace kestrune::emu
