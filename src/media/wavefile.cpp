#include "wavefile.h"

#include <QtEndian>

#include <algorithm>
#include <string_view>

namespace kestrune {

namespace {

constexpr quint16 kWholeNumbers = 1;    // WAVE_FORMAT_PCM
constexpr quint16 kExtensible = 0xFFFE; // the real format stands further back
constexpr size_t kChunkHead = 8;        // a name and a size
constexpr size_t kFormatSize = 16;      // what every format chunk has
constexpr size_t kSubFormatAt = 24;     // of an extensible one
constexpr int kLeastRate = 1000, kMostRate = 192000;

template <typename T>
T At(std::string_view bytes, size_t place)
{
    return qFromLittleEndian<T>(bytes.data() + place);
}

struct Chunks
{
    std::string_view format;
    std::string_view data;
};

Chunks ChunksOf(std::string_view file)
{
    Chunks found;
    for (size_t at = 12; at + kChunkHead <= file.size();) {
        const std::string_view name = file.substr(at, 4);
        const size_t size = At<quint32>(file, at + 4);
        const std::string_view body = file.substr(at + kChunkHead, size); // shorter in a file that was cut off
        if (name == "fmt ")
            found.format = body;
        else if (name == "data")
            found.data = body;
        at += kChunkHead + size + size % 2; // chunks begin at even places
    }
    return found;
}

int16_t SampleAt(std::string_view data, size_t place, size_t width)
{
    if (width == 1) // the one width without a sign
        return int16_t((quint8(data[place]) - 128) * 256);
    return At<qint16>(data, place + width - 2); // the upper two bytes
}

} // namespace

std::optional<Sound> SoundOfWave(const QByteArray& file)
{
    const std::string_view bytes(file.constData(), size_t(file.size()));
    if (bytes.size() < 12 || bytes.substr(0, 4) != "RIFF" || bytes.substr(8, 4) != "WAVE")
        return std::nullopt;
    const auto [format, data] = ChunksOf(bytes);
    if (format.size() < kFormatSize || data.empty())
        return std::nullopt;
    auto kind = At<quint16>(format, 0);
    if (kind == kExtensible && format.size() >= kSubFormatAt + 2)
        kind = At<quint16>(format, kSubFormatAt);
    Sound sound;
    sound.channels = At<quint16>(format, 2);
    const auto rate = At<quint32>(format, 4);
    const size_t width = At<quint16>(format, 14) / 8;
    if (kind != kWholeNumbers || sound.channels < 1 || sound.channels > 2 || rate < kLeastRate || rate > kMostRate ||
        width < 1 || width > 4)
        return std::nullopt;
    sound.rate = int(rate);
    const size_t frame = width * size_t(sound.channels);
    const size_t count = data.size() / frame * size_t(sound.channels);
    sound.samples.reserve(count);
    for (size_t i = 0; i < count; ++i)
        sound.samples.push_back(SampleAt(data, i * width, width));
    return sound;
}

} // namespace kestrune
