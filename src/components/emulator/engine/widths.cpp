#include "widths.h"

#include <utf8proc.h>

namespace kestrune::emu {
namespace {

bool IsWideWhenUnassigned(char32_t point)
{
    // East Asian Width, UAX #11: unassigned points of these blocks are reserved for wide characters.
    return (point >= 0x1F300 && point <= 0x1FAFF) || (point >= 0x20000 && point <= 0x3FFFD);
}

} // namespace

uint8_t TraitTable::Compute(char32_t point)
{
    if (point < 0x20 || (point >= 0x7F && point < 0xA0) || point > 0x10FFFF)
        return Trait::Dropped;
    const utf8proc_property_t& property = *utf8proc_get_property(static_cast<utf8proc_int32_t>(point));
    if (property.category == UTF8PROC_CATEGORY_CN)
        return IsWideWhenUnassigned(point) ? 2 : 1;
    const auto width = uint8_t(property.charwidth);
    switch (property.boundclass) {
    case UTF8PROC_BOUNDCLASS_REGIONAL_INDICATOR:
        return 2 | Trait::Regional;
    case UTF8PROC_BOUNDCLASS_EXTENDED_PICTOGRAPHIC:
        return uint8_t((width == 0 ? 1 : width) | Trait::Pictographic);
    case UTF8PROC_BOUNDCLASS_EXTEND:
        if (width != 0)
            return uint8_t(width | Trait::SkinTone);
        return Trait::Joins;
    case UTF8PROC_BOUNDCLASS_V: // the second and third part of a Korean syllable
    case UTF8PROC_BOUNDCLASS_T:
        return Trait::Joins;
    case UTF8PROC_BOUNDCLASS_CONTROL:
        return width == 0 ? Trait::Dropped : width;
    default:
        return width == 0 ? Trait::Joins : width;
    }
}

std::unique_ptr<const uint8_t[]> TraitTable::Make()
{
    auto table = std::make_unique<uint8_t[]>(End);
    for (char32_t point = 0; point < End; ++point)
        table[point] = Compute(point);
    return table;
}

} // namespace kestrune::emu
