#include "glide.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace kestrune {

void Glide::LinesMoved(int64_t lines, int lineHeight)
{
    if (lines == 0)
        return;
    linesThisFrame_ += lines;
    begins_ |= offset_ == 0;
    lineHeight_ = lineHeight;
    // A second line in one frame, or lines that came back: nobody could follow.
    offset_ = linesThisFrame_ == 1 ? std::min(offset_ + lineHeight, double(lineHeight)) : 0;
}

void Glide::Advance(double milliseconds)
{
    linesThisFrame_ = 0;
    if (!std::exchange(begins_, false))
        offset_ = std::max(0.0, offset_ - lineHeight_ * milliseconds / kMillisecondsPerLine);
}

void Glide::Stop() { offset_ = 0; }

int Glide::Offset() const { return int(std::lround(offset_)); }

} // namespace kestrune
