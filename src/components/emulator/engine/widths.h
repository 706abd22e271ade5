#pragma once

// The one place that knows how wide a character is and what joins the character before it.
//
// Marks of no width (Mn, Me, joiners, variation selectors) join; direction marks and other invisible format
// characters are dropped, since they would show text in an order in which the host did not send it. A regional
// indicator is wide, so that a flag of two takes the two columns that hosts count for it.

#include <cstdint>
#include <memory>

namespace kestrune::emu {

namespace Trait {
inline constexpr uint8_t WidthMask = 3;    // columns: 0, 1, 2
inline constexpr uint8_t Joins = 4;        // belongs to the character before it
inline constexpr uint8_t Pictographic = 8; // emoji: joins after a zero width joiner, takes skin tones
inline constexpr uint8_t Regional = 16;    // two of them are one flag
inline constexpr uint8_t SkinTone = 32;    // joins a pictograph, else stands alone
inline constexpr uint8_t Dropped = 64;     // never shown
inline constexpr uint8_t Special = uint8_t(~WidthMask);
} // namespace Trait

inline constexpr char32_t ZeroWidthJoiner = 0x200D;

class TraitTable // one byte for each point of planes 0 and 1, which hold nearly all text in use
{
public:
    static constexpr char32_t End = 0x20000;
    static const uint8_t* Get()
    {
        static const std::unique_ptr<const uint8_t[]> table = Make();
        return table.get();
    }
    static uint8_t Compute(char32_t point);

private:
    static std::unique_ptr<const uint8_t[]> Make();
};

// Trait bits and the width.
inline uint8_t TraitsOf(char32_t point)
{
    return point < TraitTable::End ? TraitTable::Get()[point] : TraitTable::Compute(point);
}

inline int WidthOf(char32_t point) { return TraitsOf(point) & Trait::WidthMask; }

} // namespace kestrune::emu
