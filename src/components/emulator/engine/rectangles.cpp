// Rectangular areas of the screen: copied, filled, erased, given another rendition, summed up. After the VT420
// programmer reference, chapter 5.

#include "screen.h"

#include <algorithm>
#include <utility>

namespace kestrune::emu {
namespace {

// What a rendition adds to a checksum.
uint16_t WeightOf(const Style& style)
{
    uint16_t weight = style.underline != Underline::None ? 0x10 : 0;
    for (const auto& [attribute, value] : {std::pair<uint16_t, uint16_t>(Attr::Protected, 0x04),
                                           {Attr::Invisible, 0x08},
                                           {Attr::Reverse, 0x20},
                                           {Attr::Blink, 0x40},
                                           {Attr::Bold, 0x80}})
        if (style.attributes & attribute)
            weight = uint16_t(weight + value);
    return weight;
}

// The byte that puts a character on the screen; for line drawing, and for what the host has drawn, that is a letter.
uint16_t CodeOf(char32_t point)
{
    if (point == 0)
        return U' ';
    if (IsSoftPoint(point))
        return uint16_t(point & 0x7F);
    const Glyphs& graphics = SpecialGraphicsSet().glyphs;
    if (point > 0xFF)
        if (const auto* at = std::find(graphics.begin(), graphics.end(), char16_t(point)); at != graphics.end())
            return uint16_t(0x20 + (at - graphics.begin()));
    return uint16_t(point);
}

} // namespace

Area Screen::Addressable() const { return {Top(), Left(), Bottom(), Right()}; }

void Screen::CopyArea(const Area& area, int fromPage, Position to, int toPage)
{
    const bool isMemory = !isAlternate_ && !onStatus_; // these two have no other page beside them
    const Page& source = isMemory ? MemoryPage(std::clamp(fromPage, 0, pageCount_ - 1)) : P();
    Page& target = isMemory ? MemoryPage(std::clamp(toPage, 0, pageCount_ - 1)) : P();
    const int rows = std::min(area.bottom - area.top, Extent().rows - to.row);
    const bool downwards = to.row > area.top; // the areas may overlap: start where nothing is still needed
    for (int i = 0; i < rows; ++i) {
        const int row = downwards ? rows - 1 - i : i;
        const int cols = std::min(area.right - area.left, target.Columns(to.row + row) - to.col);
        if (cols > 0)
            target.CopyCells(source, {area.left, area.top + row}, {to.col, to.row + row}, cols);
    }
}

void Screen::FillArea(const Area& area, char32_t point)
{
    const StyleId style = PenId();
    for (int row = area.top; row < area.bottom; ++row)
        for (int col = area.left; col < std::min(area.right, P().Columns(row)); ++col)
            P().PutPoint(row, col, point, 1, style);
}

void Screen::EraseArea(const Area& area, Selective selective)
{
    for (int row = area.top; row < area.bottom; ++row)
        if (const int right = std::min(area.right, P().Columns(row)); area.left < right)
            EraseSpan(row, area.left, right, selective);
}

void Screen::ChangeArea(const Area& area, ChangeExtent extent, const std::function<void(Style&)>& change)
{
    const bool isStream = extent == ChangeExtent::Stream;
    const auto changed = [&](StyleId id) {
        Style style = styles_.At(id);
        change(style);
        return StyleIdFor(style);
    };
    for (int row = area.top; row < area.bottom; ++row) {
        const int columns = P().Columns(row);
        const int left = isStream && row != area.top ? 0 : area.left;
        const int right = isStream && row != area.bottom - 1 ? columns : std::min(area.right, columns);
        if (left < right)
            P().Restyle(row, left, right, changed);
    }
}

// EK-VT420-RM: blanks at the end of a line without a rendition do not count, but for the very first cell.
uint16_t Screen::ChecksumOf(const Area& area, int page)
{
    const Page& summed = isAlternate_ || onStatus_ ? P() : MemoryPage(std::clamp(page, 0, pageCount_ - 1));
    uint16_t sum = 0;
    bool isFirst = true;
    for (int row = area.top; row < area.bottom; ++row) {
        uint16_t blanks = 0; // since the last cell that counts
        for (int col = area.left; col < area.right; ++col) {
            const Row& line = summed.At(row);
            const Cell cell = col < line.used ? line.cells[col] : Cell{};
            const char32_t point = cell.text & Cell::ClusterBit ? clusters_.At(cell.text).front() : char32_t(cell.text);
            const uint16_t code = CodeOf(point);
            const uint16_t weight = WeightOf(styles_.At(cell.style));
            blanks = uint16_t(blanks + code + weight);
            if (code != U' ' || weight != 0 || isFirst)
                sum = uint16_t(sum + std::exchange(blanks, uint16_t(0)));
            isFirst = false;
        }
    }
    return sum;
}

} // namespace kestrune::emu
