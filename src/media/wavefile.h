#pragma once

// Sounds in RIFF WAVE files, uncompressed: whole numbers of 8 to 32 bits.

#include <media/sound.h>

#include <QByteArray>

#include <optional>

namespace kestrune {

inline constexpr qint64 LargestWave = 64LL * 1024 * 1024; // bytes

// Nothing: it is none of these. A file that was cut off gives what there is of it.
std::optional<Sound> SoundOfWave(const QByteArray& file);

} // namespace kestrune
