#pragma once

// The two loops that plain text goes through, sixteen bytes a step where the processor allows it.

#include <emulator/engine/cell.h>

#include <cstddef>
#include <cstdint>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace kestrune::emu {

// What became of plain lines that were offered all at once.
struct LinesTaken
{
    size_t bytes;  // from the front: these are done
    size_t looked; // so many need not be offered again
};

// End of the run of 0x20..0x7E that begins at `at`.
inline const uint8_t* GraphicRunEnd(const uint8_t* at, const uint8_t* end)
{
#if defined(__SSE2__)
    const __m128i below = _mm_set1_epi8(0x1F);
    const __m128i above = _mm_set1_epi8(0x7F);
    while (end - at >= 16) { // compared as signed: bytes from 0x80 are negative
        const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(at));
        const __m128i good = _mm_and_si128(_mm_cmpgt_epi8(bytes, below), _mm_cmplt_epi8(bytes, above));
        const auto bad = ~unsigned(_mm_movemask_epi8(good)) & 0xFFFFu;
        if (bad != 0)
            return at + __builtin_ctz(bad);
        at += 16;
    }
#endif
    while (at != end && *at >= 0x20 && *at < 0x7F)
        ++at;
    return at;
}

// Spreads bytes over cells of one style.
inline void SpreadBytes(Cell* to, const uint8_t* from, size_t count, StyleId style)
{
    size_t i = 0;
#if defined(__SSE2__)
    const __m128i zero = _mm_setzero_si128();
    const __m128i styles = _mm_set1_epi32(style); // little endian: style below, flags 0 above
    for (; i + 8 <= count; i += 8) {
        const __m128i bytes = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(from + i));
        const __m128i words = _mm_unpacklo_epi8(bytes, zero);
        const __m128i first = _mm_unpacklo_epi16(words, zero);
        const __m128i second = _mm_unpackhi_epi16(words, zero);
        auto* out = reinterpret_cast<__m128i*>(to + i);
        _mm_storeu_si128(out, _mm_unpacklo_epi32(first, styles));
        _mm_storeu_si128(out + 1, _mm_unpackhi_epi32(first, styles));
        _mm_storeu_si128(out + 2, _mm_unpacklo_epi32(second, styles));
        _mm_storeu_si128(out + 3, _mm_unpackhi_epi32(second, styles));
    }
#endif
    for (; i < count; ++i)
        to[i] = Cell{from[i], style, 0};
}

// The texts of `count` Latin-1 cells as bytes. Reads and writes whole steps of kPackedAtOnce: both sides have room.
inline constexpr size_t kPackedAtOnce = 16;
inline void PackBytes(uint8_t* to, const Cell* from, size_t count)
{
#if defined(__SSE2__)
    const auto fourTexts = [](const Cell* cells) {
        const auto* two = reinterpret_cast<const __m128*>(cells);
        return _mm_castps_si128(_mm_shuffle_ps(_mm_loadu_ps(reinterpret_cast<const float*>(two)),
                                               _mm_loadu_ps(reinterpret_cast<const float*>(two + 1)),
                                               _MM_SHUFFLE(2, 0, 2, 0)));
    };
    for (size_t i = 0; i < count; i += kPackedAtOnce) {
        const Cell* at = from + i;
        const __m128i low = _mm_packs_epi32(fourTexts(at), fourTexts(at + 4));
        const __m128i high = _mm_packs_epi32(fourTexts(at + 8), fourTexts(at + 12));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(to + i), _mm_packus_epi16(low, high));
    }
#else
    for (size_t i = 0; i < count; ++i)
        to[i] = uint8_t(from[i].text);
#endif
}

} // namespace kestrune::emu
