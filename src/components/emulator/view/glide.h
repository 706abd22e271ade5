#pragma once

// Smooth scroll: the text stands lower than it should and moves up to its place. What is shown never falls behind what
// the host has sent by more than a line: as soon as lines come faster than they can glide, the screen jumps.

#include <cstdint>

namespace kestrune {

class Glide
{
public:
    static constexpr double kMillisecondsPerLine = 80;

    void LinesMoved(int64_t lines, int lineHeight); // pixels; lines: up, since the last call
    void Advance(double milliseconds);              // a frame
    void Stop();
    int Offset() const; // pixels that the text has still to go, 0 to a line's height

private:
    double offset_ = 0;
    int lineHeight_ = 0;
    int64_t linesThisFrame_ = 0;
    bool begins_ = false; // no frame has shown it yet
};

} // namespace kestrune
