#pragma once

// Bytes and characters: the host's encodings, the graphic sets that a host designates into G0 to G3, UTF-8.

#include <emulator/engine/hostcharsets.h>
#include <emulator/engine/personality.h>
#include <emulator/engine/terminal.h>

#include <array>
#include <string>
#include <string_view>

namespace kestrune::emu {

using Glyphs = std::array<char16_t, 96>; // for 0x20 to 0x7F

struct CharacterSet
{
    enum class Kind : uint8_t
    {
        Set94,
        Set96,
        National // takes effect only in national mode (DECNRCM)
    };

    std::string_view designator; // what follows ESC ( and the like
    Kind kind;
    Dialects dialects;
    Glyphs glyphs;
};

const CharacterSet& AsciiSet();
const CharacterSet& SpecialGraphicsSet();
const CharacterSet& SupplementalSet(); // DEC multinational, upper half
// What stands in G2 and G3 until the host designates something: bytes from 0xA0 are read in the host's encoding.
const CharacterSet& UpperHalfSet();
const CharacterSet* FindCharacterSet(std::string_view designator, bool wide96, Dialects dialects); // nullptr: unknown

char32_t RomGlyph(uint8_t byte); // what a PC draws for a byte, controls included
// '?' for what it lacks. upperHalf: see TerminalOptions.
std::string EncodeForHost(HostCharset charset, std::u16string_view upperHalf, char32_t point);

inline constexpr char32_t ReplacementPoint = 0xFFFD;
inline constexpr char32_t ErrorPoint = 0x2E2E; // reversed question mark, VT220 programmer reference 4.4

// One code point from bytes that may come in any pieces. Faults give U+FFFD for each longest start of a sequence,
// as the Unicode standard advises (table 3-7, section 3.9).
class Utf8Decoder
{
public:
    bool Pending() const { return need_ != 0; }
    void Forget() { need_ = 0; }

    template <typename Emit>
    void Put(uint8_t byte, Emit&& emit)
    {
        if (need_ != 0) {
            if (byte >= low_ && byte <= high_) {
                point_ = (point_ << 6) | (byte & 0x3Fu);
                low_ = 0x80;
                high_ = 0xBF;
                if (--need_ == 0)
                    emit(point_);
                return;
            }
            need_ = 0;
            emit(ReplacementPoint);
        }
        Start(byte, emit);
    }

private:
    template <typename Emit>
    void Start(uint8_t byte, Emit&& emit)
    {
        low_ = 0x80;
        high_ = 0xBF;
        if (byte < 0x80) {
            emit(char32_t(byte));
        } else if (byte >= 0xC2 && byte <= 0xDF) {
            Lead(byte & 0x1Fu, 1);
        } else if ((byte & 0xF0) == 0xE0) {
            Lead(byte & 0x0Fu, 2);
            low_ = byte == 0xE0 ? 0xA0 : 0x80;  // no overlong forms
            high_ = byte == 0xED ? 0x9F : 0xBF; // no surrogates
        } else if (byte >= 0xF0 && byte <= 0xF4) {
            Lead(byte & 0x07u, 3);
            low_ = byte == 0xF0 ? 0x90 : 0x80;
            high_ = byte == 0xF4 ? 0x8F : 0xBF; // nothing above U+10FFFF
        } else {
            emit(ReplacementPoint);
        }
    }
    void Lead(char32_t bits, int need)
    {
        point_ = bits;
        need_ = need;
    }

    char32_t point_ = 0;
    int need_ = 0;
    uint8_t low_ = 0x80;
    uint8_t high_ = 0xBF;
};

std::string ToUtf8(char32_t point);
void AppendUtf8(std::string& out, char32_t point);
std::u32string FromUtf8(std::string_view text);

} // namespace kestrune::emu
