#include "colortable.h"

#include "fields.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>
#include <vector>

namespace kestrune::emu::colortable {
namespace {

constexpr int kReported = 16;
constexpr size_t kColors = 256;
constexpr int kHls = 1;
constexpr int kRgb = 2;
constexpr uint32_t kSetByHost = 0x01000000u;

// Hue in degrees from blue over red to green; the others, and the channels of RGB, in hundredths.
using Coordinates = std::array<int, 3>;

struct Channels // 0 to 1
{
    double red;
    double green;
    double blue;
};

int Hundredths(double part) { return int(std::lround(part * 100)); }

Channels ChannelsOf(uint32_t color)
{
    return {((color >> 16) & 0xFF) / 255.0, ((color >> 8) & 0xFF) / 255.0, (color & 0xFF) / 255.0};
}

uint32_t ColorOf(const Channels& channels)
{
    uint32_t color = 1;
    for (const double part : {channels.red, channels.green, channels.blue})
        color = (color << 8) | uint32_t(std::lround(part * 255));
    return color;
}

Coordinates ToHls(const Channels& c)
{
    const double most = std::max({c.red, c.green, c.blue});
    const double least = std::min({c.red, c.green, c.blue});
    const double span = most - least;
    const double lightness = (most + least) / 2;
    if (span == 0)
        return {0, Hundredths(lightness), 0};
    double sixth = 0; // of the circle, from blue on
    if (most == c.blue)
        sixth = (c.red - c.green) / span;
    else if (most == c.red)
        sixth = 2 + (c.green - c.blue) / span;
    else
        sixth = 4 + (c.blue - c.red) / span;
    const double saturation = span / (1 - std::abs(2 * lightness - 1));
    return {(int(std::lround(sixth * 60)) + 360) % 360, Hundredths(lightness), Hundredths(saturation)};
}

Channels FromHls(const Coordinates& hls)
{
    const double lightness = hls[1] / 100.0;
    const double reach = hls[2] / 100.0 * std::min(lightness, 1 - lightness);
    const auto channel = [&](int peak) { // full up to 60 degrees beside its peak, at 120 nothing is left
        const int apart = std::abs(hls[0] - peak) % 360;
        const double sixths = std::min(apart, 360 - apart) / 60.0;
        return lightness + reach * (2 * std::clamp(2 - sixths, 0.0, 1.0) - 1);
    };
    return {channel(120), channel(240), channel(0)};
}

struct Entry
{
    int index = 0;
    uint32_t color = 0; // 0: the user's own
};

std::optional<Entry> Read(std::string_view text)
{
    const auto index = NumberIn(TakeField(text), 0, int(kColors) - 1);
    const auto space = NumberIn(TakeField(text), kHls, kRgb);
    std::string_view fields[3];
    for (std::string_view& field : fields)
        field = TakeField(text);
    if (!index || !space || !text.empty())
        return std::nullopt;
    if (fields[0].empty() && fields[1].empty() && fields[2].empty())
        return Entry{*index, 0};
    Coordinates values{};
    for (size_t i = 0; i < values.size(); ++i) {
        const auto value = NumberIn(fields[i], 0, *space == kHls && i == 0 ? 360 : 100);
        if (!value)
            return std::nullopt;
        values[i] = *value;
    }
    const Channels rgb{values[0] / 100.0, values[1] / 100.0, values[2] / 100.0};
    return Entry{*index, ColorOf(*space == kHls ? FromHls(values) : rgb)};
}

} // namespace

void Report(Machine& machine, int space)
{
    if (space > kRgb)
        return;
    space = std::max(space, kHls);
    std::string out = "2$s";
    for (int index = 0; index < kReported; ++index) {
        out.append(index > 0 ? "/" : "").append(std::to_string(index)).append(";").append(std::to_string(space));
        const uint32_t color = machine.PaletteOverride(index);
        const Channels c = ChannelsOf(color);
        const Coordinates rgb{Hundredths(c.red), Hundredths(c.green), Hundredths(c.blue)};
        for (const int value : space == kHls ? ToHls(c) : rgb)
            out.append(";").append((color & kSetByHost) != 0 ? std::to_string(value) : std::string());
    }
    machine.ReplyDcs(out);
}

void Restore(Machine& machine, std::string_view entries)
{
    std::vector<Entry> table;
    while (!entries.empty() && table.size() < kColors) {
        const auto entry = Read(TakeField(entries, '/'));
        if (!entry)
            return;
        table.push_back(*entry);
    }
    for (const Entry& entry : table)
        machine.SetPaletteColor(entry.index, entry.color);
}

} // namespace kestrune::emu::colortable
