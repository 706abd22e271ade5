#pragma once

// Bytes without a pattern that both ends of a test can make by themselves.

#include <cstdint>
#include <string>

class Noise
{
public:
    explicit Noise(std::uint64_t seed) : state_(seed) {}
    unsigned char Next()
    {
        state_ = state_ * 6364136223846793005U + 1442695040888963407U;
        return static_cast<unsigned char>(state_ >> 56);
    }
    std::string Take(std::size_t count)
    {
        std::string bytes;
        bytes.reserve(count);
        while (count-- > 0)
            bytes += char(Next());
        return bytes;
    }

private:
    std::uint64_t state_;
};
