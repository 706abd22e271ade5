#include <app/affinity.h>

namespace kestrune {

namespace {

constexpr int kMaskBits = 64;

std::uint64_t Mask(const std::vector<int>& processors)
{
    std::uint64_t mask = 0;
    for (const int number : processors)
        if (number >= 0 && number < kMaskBits)
            mask |= std::uint64_t{1} << number;
    return mask;
}

// The walk from bit 0 is r + 1 steps at most and stops when the permitted bits met are r. So the draw never gives
// the last of a full mask, and 0 gives the second; every other processor has its chance.
std::uint64_t Draw(std::uint64_t permitted, std::size_t count, double random)
{
    const auto r = static_cast<int>(random * static_cast<double>(count));
    std::uint64_t candidate = 1;
    for (int step = 0, met = 0; step <= r; ++step) {
        if ((permitted & candidate) != 0 && ++met == r)
            break;
        candidate <<= 1;
    }
    return candidate;
}

} // namespace

std::optional<std::uint64_t> ThreadAffinity(int argument, const std::vector<int>& permitted, double random)
{
    const std::uint64_t all = Mask(permitted);
    std::uint64_t wanted = 0;
    if (argument == AnyProcessor) {
        if (permitted.size() < 2)
            return std::nullopt;
        wanted = Draw(all, permitted.size(), random);
    } else if (argument == 0) {
        return all;
    } else if ((argument >= 1 && argument <= 30) || argument == 32) {
        wanted = std::uint64_t{1} << (argument - 1);
    }
    // In a mask with gaps the walk can end on a processor that is not ours; the system would refuse it.
    return (wanted & all) != 0 ? std::optional(wanted & all) : std::nullopt;
}

} // namespace kestrune
