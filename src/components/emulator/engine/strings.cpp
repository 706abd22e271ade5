// What comes in strings: window title, palette, links, clipboard, setting requests. The user's colours and the
// clipboard are never read back to the host.

#include "fields.h"
#include "machine.h"
#include "presentation.h"
#include "terminalstate.h"
#include "widths.h"

#include <algorithm>
#include <charconv>
#include <optional>

namespace kestrune::emu {
namespace {

constexpr size_t kMaxTitle = 256;     // code points
constexpr size_t kUserKeySpace = 256; // bytes, VT220 and VT320
constexpr size_t kUserKeySpace420 = 768;

std::optional<int> ToNumber(std::string_view text, int base = 10)
{
    int value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value, base);
    if (text.empty() || error != std::errc() || end != text.data() + text.size() || value < 0)
        return std::nullopt;
    return value;
}

// One channel of a colour: one to four hexadecimal digits, scaled to eight bits.
std::optional<int> ToChannel(std::string_view digits)
{
    if (digits.size() > 4)
        return std::nullopt;
    const std::optional<int> value = ToNumber(digits, 16);
    if (!value)
        return std::nullopt;
    return *value * 255 / ((1 << (4 * digits.size())) - 1);
}

// "rgb:r/g/b" or "#rrggbb" and their longer and shorter forms (X11 color names manual).
std::optional<uint32_t> ToColor(std::string_view spec)
{
    std::string_view parts[3];
    if (spec.starts_with("rgb:")) {
        spec.remove_prefix(4);
        for (std::string_view& part : parts)
            part = TakeField(spec, '/');
        if (!spec.empty())
            return std::nullopt;
    } else if (spec.starts_with('#') && spec.size() % 3 == 1) {
        const size_t digits = spec.size() / 3;
        for (size_t i = 0; i < 3; ++i)
            parts[i] = spec.substr(1 + i * digits, digits);
    }
    uint32_t color = 1;
    for (const std::string_view part : parts) {
        const std::optional<int> channel = ToChannel(part);
        if (!channel)
            return std::nullopt;
        color = (color << 8) | uint32_t(*channel);
    }
    return color;
}

std::optional<std::string> FromBase64(std::string_view text)
{
    static constexpr std::string_view kDigits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    while (text.ends_with('='))
        text.remove_suffix(1);
    std::string out;
    uint32_t bits = 0;
    int count = 0;
    for (const char digit : text) {
        const size_t value = kDigits.find(digit);
        if (value == kDigits.npos)
            return std::nullopt;
        bits = (bits << 6) | uint32_t(value);
        count += 6;
        if (count >= 8) {
            count -= 8;
            out += char((bits >> count) & 0xFF);
        }
    }
    return out;
}

// Text for people from a host: no controls, nothing that turns the direction of writing.
std::string CleanText(std::u32string_view points, size_t limit)
{
    std::string out;
    for (const char32_t point : points.substr(0, limit))
        if (!(TraitsOf(point) & Trait::Dropped))
            AppendUtf8(out, point);
    return out;
}

} // namespace

void Machine::String(StringKind kind, std::string_view body)
{
    if (kind == StringKind::Dcs) {
        DeviceControl(body);
        return;
    }
    if (Speaks(Dialect::Linux) && (body == "R" || (body.size() == 8 && body[0] == 'P')))
        LinuxPalette(body.substr(1));
    else if (Speaks(Dialect::Extension))
        OperatingSystemCommand(body);
}

void Machine::DeviceControl(std::string_view body)
{
    if (body.starts_with("$q")) {
        RequestSetting(body.substr(2));
        return;
    }
    if (presentation::Take(*this, body) || terminalstate::Take(*this, body))
        return;
    if (Speaks(Dialect::Vt220) && !options_.lockFunctionKeys &&
        userKeys_.Take(body, Speaks(Dialect::Vt420) ? kUserKeySpace420 : kUserKeySpace))
        return;
    if (Speaks(Dialect::Vt220) && softCharacters_.Take(body, level_))
        return;
    if (Speaks(Dialect::Vt420) && macroDepth_ == 0) // a macro may define none
        macros_.Take(body);
}

void Machine::OperatingSystemCommand(std::string_view body)
{
    const std::optional<int> command = ToNumber(TakeField(body));
    if (!command)
        return;
    switch (*command) {
    case 0:
    case 2:
        SetTitle(body);
        break;
    case 4:
        SetPalette(body);
        break;
    case 8:
        SetLink(body);
        break;
    case 10:
    case 11:
    case 12:
        SetColors(PaletteForeground + *command - 10, body);
        break;
    case 52:
        OfferClipboard(body);
        break;
    case 104:
        ResetPalette(body);
        break;
    case 110:
    case 111:
    case 112:
        palette_[size_t(PaletteForeground + *command - 110)] = 0;
        break;
    default:
        break; // icon names, folders, notices, fonts: not ours
    }
}

void Machine::SetTitle(std::string_view text)
{
    std::u32string points;
    if (charset_ == HostCharset::Utf8)
        points = FromUtf8(text);
    else
        for (const char byte : text)
            points += PointOf(uint8_t(byte));
    listener_.TitleChanged(CleanText(points, kMaxTitle));
}

void Machine::SetPalette(std::string_view pairs)
{
    while (!pairs.empty()) {
        const std::optional<int> index = ToNumber(TakeField(pairs));
        const std::optional<uint32_t> color = ToColor(TakeField(pairs));
        if (index && *index < 256 && color)
            palette_[size_t(*index)] = *color;
    }
}

// Further specifications belong to the colours that follow.
void Machine::SetColors(int first, std::string_view specs)
{
    for (int index = first; index <= PaletteCursor && !specs.empty(); ++index)
        if (const std::optional<uint32_t> color = ToColor(TakeField(specs)))
            palette_[size_t(index)] = *color;
}

void Machine::ResetPalette(std::string_view indexes)
{
    if (indexes.empty())
        std::fill_n(palette_.begin(), 256, 0u);
    while (!indexes.empty())
        if (const std::optional<int> index = ToNumber(TakeField(indexes)); index && *index < 256)
            palette_[size_t(*index)] = 0;
}

void Machine::LinuxPalette(std::string_view digits)
{
    if (digits.empty()) {
        std::fill_n(palette_.begin(), 256, 0u);
        return;
    }
    const std::optional<int> index = ToNumber(digits.substr(0, 1), 16);
    const std::optional<int> color = ToNumber(digits.substr(1), 16);
    if (index && color)
        palette_[size_t(*index)] = 0x01000000u | uint32_t(*color);
}

void Machine::SetLink(std::string_view body)
{
    std::string_view options = TakeField(body);
    std::string_view id;
    while (!options.empty())
        if (const std::string_view option = TakeField(options, ':'); option.starts_with("id="))
            id = option.substr(3);
    const auto isPlain = [](char byte) { return byte > 0x20 && byte < 0x7F; }; // RFC 3986: all else is escaped
    const bool sound = std::all_of(body.begin(), body.end(), isPlain) && std::all_of(id.begin(), id.end(), isPlain);
    screen_.Pen().link = sound ? screen_.LinkFor(body, id) : uint16_t(0);
}

void Machine::OfferClipboard(std::string_view body)
{
    TakeField(body); // which clipboard: there is one
    const std::optional<std::string> text = FromBase64(body);
    if (!text || text->empty())
        return; // "?" asks for the contents, and gets no answer
    std::string clean;
    for (const char32_t point : FromUtf8(*text))
        AppendUtf8(clean, point);
    listener_.ClipboardOffered(clean);
}

} // namespace kestrune::emu
