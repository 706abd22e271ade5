#include "notes.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>
#include <string>

namespace kestrune {

namespace {

constexpr int kRate = 22050;
constexpr double kLoudness = 0.25;
constexpr double kEdge = 0.008; // seconds of swelling and fading: without them tones click

struct Range
{
    char letter;
    int low;
    int high;
};
constexpr std::array kRanges{Range{'O', 0, 8}, Range{'T', 32, 255}, Range{'L', 1, 64}};

class TuneReader
{
public:
    explicit TuneReader(const QString& notes)
    {
        for (const QChar c : notes.toUpper())
            if (!c.isSpace())
                text_ += c.unicode() < 0x80 ? char(c.unicode()) : '?';
    }

    std::optional<std::vector<Tone>> Read()
    {
        while (at_ < text_.size())
            if (!ReadOne(text_[at_++]))
                return std::nullopt;
        return tones_;
    }

private:
    bool ReadOne(char letter)
    {
        static constexpr std::array<int, 7> halfTones{9, 11, 0, 2, 4, 5, 7}; // A to G, above C
        if (letter >= 'A' && letter <= 'G')
            return AddNote(halfTones[size_t(letter - 'A')]);
        if (letter == 'R')
            return Add(0);
        if (letter == '<' || letter == '>') {
            octave_ = std::clamp(octave_ + (letter == '>' ? 1 : -1), 0, 8);
            return true;
        }
        for (const Range& range : kRanges)
            if (range.letter == letter)
                return Take(range);
        return false;
    }

    bool Take(const Range& range)
    {
        const auto number = Number();
        if (!number || *number < range.low || *number > range.high)
            return false;
        (range.letter == 'O' ? octave_ : range.letter == 'T' ? tempo_ : length_) = *number;
        return true;
    }

    bool AddNote(int halfTone)
    {
        if (at_ < text_.size() && (text_[at_] == '#' || text_[at_] == '+')) {
            ++halfTone;
            ++at_;
        } else if (at_ < text_.size() && text_[at_] == '-') {
            --halfTone;
            ++at_;
        }
        const double fromA4 = 12 * (octave_ - 4) + halfTone - 9; // A of the fourth octave has 440 Hz
        return Add(440 * std::exp2(fromA4 / 12));
    }

    bool Add(double hertz)
    {
        const auto length = Number();
        if (length && (*length < 1 || *length > 64))
            return false;
        double seconds = 4 * 60.0 / tempo_ / length.value_or(length_);
        for (double more = seconds / 2; at_ < text_.size() && text_[at_] == '.'; ++at_, more /= 2)
            seconds += more;
        if (total_ + seconds > LongestTune)
            return true;
        total_ += seconds;
        tones_.push_back({hertz, seconds});
        return true;
    }

    std::optional<int> Number()
    {
        std::optional<int> number;
        for (; at_ < text_.size() && text_[at_] >= '0' && text_[at_] <= '9'; ++at_)
            number = std::min(number.value_or(0) * 10 + text_[at_] - '0', 1000);
        return number;
    }

    std::string text_;
    size_t at_ = 0;
    int octave_ = 4;
    int tempo_ = 120;
    int length_ = 4;
    double total_ = 0;
    std::vector<Tone> tones_;
};

} // namespace

std::optional<std::vector<Tone>> TonesOf(const QString& notes) { return TuneReader(notes).Read(); }

Sound SoundOfTones(const std::vector<Tone>& tones)
{
    Sound sound{kRate, 1, {}};
    for (const Tone& tone : tones) {
        const int count = int(tone.seconds * kRate);
        for (int i = 0; i < count; ++i) {
            const double second = double(i) / kRate;
            const double left = tone.seconds - second;
            const double swell = std::clamp(std::min(second, left) / kEdge, 0.0, 1.0);
            const double wave = tone.hertz > 0 ? std::sin(2 * std::numbers::pi * tone.hertz * second) : 0;
            sound.samples.push_back(int16_t(wave * swell * kLoudness * 32767));
        }
    }
    return sound;
}

} // namespace kestrune
