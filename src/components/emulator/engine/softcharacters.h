#pragma once

// Character sets that a host draws (DECDLD; VT220, VT320 and VT420 programmer references, "soft character sets"). They
// are designated like the built-in ones, which have precedence: no host takes ASCII away. A set holds 96 shapes for 80
// columns and as many for 132; where one was not drawn for the present width, that for the other one stands in.
//
// The terminal never says how a host has named its sets, nor what they look like.

#include "charsets.h"

#include <emulator/engine/softglyph.h>

#include <array>
#include <string>
#include <string_view>
#include <vector>

namespace kestrune::emu {

class SoftCharacters
{
public:
    SoftCharacters();
    SoftCharacters(const SoftCharacters&) = delete; // terminals keep pointers to the sets
    SoftCharacters& operator=(const SoftCharacters&) = delete;

    // The string between DCS and ST: "Pfn;Pcn;Pe;Pcmw;Pss;Pt;Pcmh;Pcss{Dscs" and the shapes in sixels. What is
    // malformed changes nothing. `level`, 2 to 4: whose cells are meant. Returns false when it is no such string.
    bool Take(std::string_view body, int level);
    void Clear();

    const CharacterSet* Find(std::string_view designator, bool wide96) const; // by the host's name; nullptr: none
    // By the name that reports use, which is the set's `designator`: ours, the same whatever the host calls it.
    const CharacterSet* FindReported(std::string_view designator, bool wide96) const;
    bool Owns(const CharacterSet& set) const { return &set == &sets_[0].set || &set == &sets_[1].set; }
    // Of a set that Owns: what byte 0x20 to 0x7F puts on the screen. The error character where nothing was drawn.
    char32_t PointFor(const CharacterSet& set, uint8_t byte) const;
    const SoftGlyph* GlyphOf(char32_t point, bool for132) const; // nullptr: nothing was drawn
    uint64_t Changes() const { return changes_; }                // goes up when any shape may have changed

private:
    static constexpr size_t kShapes = 96;
    using Shapes = std::vector<SoftGlyph>; // kShapes, or none at all

    struct Set
    {
        std::string name; // as the host has it; empty: never loaded
        CharacterSet set;
        std::array<Shapes, 2> shapes; // for 80 and for 132 columns
    };
    struct Request;

    void Load(const Request& request, std::string_view sixels);

    std::array<Set, 2> sets_;
    uint64_t changes_ = 0;
};

} // namespace kestrune::emu
