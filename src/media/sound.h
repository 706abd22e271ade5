#pragma once

// A sound as loudspeakers take it.

#include <cstdint>
#include <vector>

namespace kestrune {

struct Sound
{
    int rate = 0; // frames a second
    int channels = 1;
    std::vector<int16_t> samples; // channel by channel within a frame
};

} // namespace kestrune
