#pragma once

// The consoles of PCs. The Linux console follows console_codes(4); ANSI is what mail box systems of the DOS time
// send, after ANSI.SYS; the SCO console is that of OpenServer, screen(HW). ANSI and SCO draw the PC's character ROM
// (code page 437), so 0x80 to 0x9F are never controls there.

#include "sharedkeys.h"

namespace kestrune::emu::types {

inline constexpr auto kShiftedLinuxKeys = OnShift<8>(std::span(kFunctionKeys).subspan<7, 8>());

inline constexpr KeyRow kLinuxKeys[] = {
    {F1, 0, Always, "\x1b[[A"},   {F2, 0, Always, "\x1b[[B"},
    {F3, 0, Always, "\x1b[[C"},   {F4, 0, Always, "\x1b[[D"},
    {F5, 0, Always, "\x1b[[E"},   {Delete, 0, Always, "\x1b[3~"},
    {Pause, 0, Always, "\x1b[P"}, {Tab, Modifier::Shift, Always, "\x1b[Z"},
};
inline constexpr KeyTable kLinuxKeyboard[] = {
    kDecCursorKeys, kLinuxKeys, kFunctionKeys, kShiftedLinuxKeys, kDecPad.rows, kPfKeys, kDecEditingKeys, kPlainKeys,
};

// F1 to F4 as the boards of later years expect them.
inline constexpr KeyRow kAnsiKeys[] = {
    {Up, 0, Always, "\x1b[A"},     {Down, 0, Always, "\x1b[B"},     {Right, 0, Always, "\x1b[C"},
    {Left, 0, Always, "\x1b[D"},   {Home, 0, Always, "\x1b[H"},     {End, 0, Always, "\x1b[K"},
    {PageUp, 0, Always, "\x1b[V"}, {PageDown, 0, Always, "\x1b[U"}, {Insert, 0, Always, "\x1b[L"},
    {Delete, 0, Always, "\x7f"},   {F5, 0, Always, "\x1b[15~"},     {Tab, Modifier::Shift, Always, "\x1b[Z"},
};
inline constexpr KeyTable kAnsiKeyboard[] = {kAnsiKeys, kPfKeys, kFunctionKeys, kShiftedLinuxKeys, kPlainKeys};

inline constexpr KeyRow kScoKeys[] = {
    {Up, 0, Always, "\x1b[A"},
    {Down, 0, Always, "\x1b[B"},
    {Right, 0, Always, "\x1b[C"},
    {Left, 0, Always, "\x1b[D"},
    {Home, 0, Always, "\x1b[H"},
    {End, 0, Always, "\x1b[F"},
    {PageUp, 0, Always, "\x1b[I"},
    {PageDown, 0, Always, "\x1b[G"},
    {Insert, 0, Always, "\x1b[L"},
    {Delete, 0, Always, "\x7f"},
    {Tab, Modifier::Shift, Always, "\x1b[Z"},
};

// F1 to F12 plain, with Shift, with Control and with both: CSI and one letter each. Shift F2 sends what Shift Tab
// sends, on purpose: so did the console.
struct ScoFunctionKeys
{
    static constexpr std::string_view kLetters = "MNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz@[\\]^_`{";
    static constexpr uint8_t kModifiers[] = {Modifier::None, Modifier::Shift, Modifier::Control,
                                             Modifier::Shift | Modifier::Control};
    static_assert(kLetters.size() == 12 * std::size(kModifiers));

    consteval ScoFunctionKeys()
    {
        for (size_t i = 0; i < kLetters.size(); ++i) {
            bytes[i] = {'\x1b', '[', kLetters[i]};
            rows[i] = {Key(size_t(F1) + i % 12), kModifiers[i / 12], Always, {bytes[i].data(), bytes[i].size()}};
        }
    }
    ScoFunctionKeys(const ScoFunctionKeys&) = delete; // the rows look into its own bytes
    ScoFunctionKeys& operator=(const ScoFunctionKeys&) = delete;

    std::array<std::array<char, 3>, kLetters.size()> bytes{};
    std::array<KeyRow, kLetters.size()> rows{};
};
inline constexpr ScoFunctionKeys kScoFunctionKeys;
inline constexpr KeyTable kScoKeyboard[] = {kScoKeys, kScoFunctionKeys.rows, kPlainKeys};

inline constexpr Personality kLinuxConsole{
    .number = 16,
    .name = "Linux Console",
    .hostName = "linux",
    .dialects = Dialect::Common | Dialect::Linux | Dialect::Extension,
    .eightBitControls = true,
    .backspaceSendsDel = true,
    .primaryAttributes = "?6c",
    .keys = kLinuxKeyboard,
};

inline constexpr Personality kAnsi{
    .number = 9,
    .name = "ANSI",
    .hostName = "ansi",
    .dialects = Dialect::Common | Dialect::Ansi | Dialect::Extension,
    .wrap = WrapStyle::AtOnce,
    .formFeedClears = true,
    .clearHomes = true,
    .drawnControls = 0xF7FFC07Eu, // 01 to 06, 0E to 1A and 1C to 1F
    .primaryAttributes = "?1;2c",
    .keys = kAnsiKeyboard,
};

inline constexpr Personality kScoConsole{
    .number = 15,
    .name = "SCO Console",
    .hostName = "ansi",
    .dialects = Dialect::Common | Dialect::Sco | Dialect::Extension,
    .wrap = WrapStyle::AtOnce,
    .formFeedClears = true,
    .keys = kScoKeyboard,
};

} // namespace kestrune::emu::types
