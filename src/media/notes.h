#pragma once

// A tune written as text, and how it sounds.
//
// Notes are C D E F G A B with # (or +) and - behind them, and a number for their length (4 a quarter; without one the
// present length); a dot makes half as much more. R is a rest. O0 to O8 chooses the octave, > and < go up and down one,
// T32 to T255 is the number of quarters in a minute, L1 to L64 the length of notes without one. At the start: O4 T120
// L4. Blanks and the case of letters mean nothing.

#include <media/sound.h>

#include <QString>

#include <optional>
#include <vector>

namespace kestrune {

struct Tone
{
    double hertz = 0; // 0: a rest
    double seconds = 0;
    bool operator==(const Tone&) const = default;
};

inline constexpr double LongestTune = 120; // seconds; what is more is left out

std::optional<std::vector<Tone>> TonesOf(const QString& notes); // nothing: they are not understood
Sound SoundOfTones(const std::vector<Tone>& tones);

} // namespace kestrune
