#include "charsets.h"

#include <algorithm>

namespace kestrune::emu {
namespace {

constexpr std::u16string_view kControlPictures = // what a PC's ROM draws for 0x01 to 0x1F
    u"☺☻♥♦♣♠•◘○◙♂♀♪♫☼►◄↕‼¶§▬↨↑↓→←∟↔▲▼";

constexpr Glyphs AsciiGlyphs()
{
    Glyphs glyphs{};
    for (size_t i = 0; i < glyphs.size(); ++i)
        glyphs[i] = char16_t(0x20 + i);
    return glyphs;
}

// ASCII with some places taken by others: "#\u00A3" puts a pound sign at #.
constexpr Glyphs Replaced(std::u16string_view pairs)
{
    Glyphs glyphs = AsciiGlyphs();
    for (size_t i = 0; i + 1 < pairs.size(); i += 2)
        glyphs[size_t(pairs[i] - 0x20)] = pairs[i + 1];
    return glyphs;
}

// ASCII with a stretch of other characters from one place on.
constexpr Glyphs From(char16_t first, std::u16string_view run)
{
    Glyphs glyphs = AsciiGlyphs();
    for (size_t i = 0; i < run.size(); ++i)
        glyphs[size_t(first - 0x20) + i] = run[i];
    return glyphs;
}

constexpr Glyphs Latin1Glyphs()
{
    Glyphs glyphs{};
    for (size_t i = 0; i < glyphs.size(); ++i)
        glyphs[i] = char16_t(0xA0 + i);
    return glyphs;
}

constexpr std::u16string_view kSpecialGraphics = // 0x5F to 0x7E, VT100 user guide table 3-9
    u"\u00A0◆▒␉␌␍␊°±␤␋┘┐┌└┼⎺⎻─⎼⎽├┤┴┬│≤≥π≠£·";
constexpr std::u16string_view kTechnical = // 0x21 to 0x7E, VT330/VT340 programmer reference
    u"⎷┌─⌠⌡│⎡⎣⎤⎦⎛⎝⎞⎠⎨⎬␦␦␦␦␦␦␦␦␦␦␦≤≠≥∫∴"
    u"∝∞÷Δ∇ΦΓ∼≃Θ×Λ⇔⇒≡ΠΨ␦Σ␦␦√ΩΞΥ⊂⊃∩∪∧∨¬"
    u"αβχδεφγηιθκλ␦ν∂πψρστ␦ƒωξυζ←↑→↓";
constexpr std::u16string_view kSupplemental = // 0x21 to 0x7E, DEC multinational
    u"¡¢£␦¥¦§¤©ª«␦␦␦␦°±²³␦µ¶·␦¹º»¼½␦¿À"
    u"ÁÂÃÄÅÆÇÈÉÊËÌÍÎÏ␦ÑÒÓÔÕÖŒØÙÚÛÜŸ␦ßà"
    u"áâãäåæçèéêëìíîï␦ñòóôõöœøùúûüÿ␦";

using enum CharacterSet::Kind;
constexpr Dialects kAll = Dialect::Common | Dialect::Vt52;

constexpr std::array kSets = {
    CharacterSet{"B", Set94, kAll, AsciiGlyphs()},
    CharacterSet{"A", Set94, kAll, Replaced(u"#£")},
    CharacterSet{"0", Set94, kAll, From(0x5F, kSpecialGraphics)},
    CharacterSet{"1", Set94, Dialect::Vt100, AsciiGlyphs()},
    CharacterSet{"2", Set94, Dialect::Vt100, From(0x5F, kSpecialGraphics)},
    CharacterSet{"<", Set94, Dialect::Vt220, From(0x21, kSupplemental)},
    CharacterSet{"%5", Set94, Dialect::Vt320, From(0x21, kSupplemental)},
    CharacterSet{">", Set94, Dialect::Vt320, From(0x21, kTechnical)},
    CharacterSet{"A", Set96, Dialect::Vt320, Latin1Glyphs()},
    CharacterSet{"4", National, Dialect::Vt220, Replaced(u"#£@¾[ÿ\\½]|{¨|ƒ}¼~´")},
    CharacterSet{"5", National, Dialect::Vt220, Replaced(u"[Ä\\Ö]Å^Ü`é{ä|ö}å~ü")},
    CharacterSet{"C", National, Dialect::Vt220, Replaced(u"[Ä\\Ö]Å^Ü`é{ä|ö}å~ü")},
    CharacterSet{"R", National, Dialect::Vt220, Replaced(u"#£@à[°\\ç]§{é|ù}è~¨")},
    CharacterSet{"f", National, Dialect::Vt220, Replaced(u"#£@à[°\\ç]§{é|ù}è~¨")},
    CharacterSet{"Q", National, Dialect::Vt220, Replaced(u"@à[â\\ç]ê^î`ô{é|ù}è~û")},
    CharacterSet{"9", National, Dialect::Vt320, Replaced(u"@à[â\\ç]ê^î`ô{é|ù}è~û")},
    CharacterSet{"K", National, Dialect::Vt220, Replaced(u"@§[Ä\\Ö]Ü{ä|ö}ü~ß")},
    CharacterSet{"Y", National, Dialect::Vt220, Replaced(u"#£@§[°\\ç]é`ù{à|ò}è~ì")},
    CharacterSet{"E", National, Dialect::Vt220, Replaced(u"@Ä[Æ\\Ø]Å^Ü`ä{æ|ø}å~ü")},
    CharacterSet{"6", National, Dialect::Vt220, Replaced(u"@Ä[Æ\\Ø]Å^Ü`ä{æ|ø}å~ü")},
    CharacterSet{"`", National, Dialect::Vt320, Replaced(u"@Ä[Æ\\Ø]Å^Ü`ä{æ|ø}å~ü")},
    CharacterSet{"%6", National, Dialect::Vt320, Replaced(u"[Ã\\Ç]Õ{ã|ç}õ")},
    CharacterSet{"Z", National, Dialect::Vt220, Replaced(u"#£@§[¡\\Ñ]¿{°|ñ}ç")},
    CharacterSet{"7", National, Dialect::Vt220, Replaced(u"@É[Ä\\Ö]Å^Ü`é{ä|ö}å~ü")},
    CharacterSet{"H", National, Dialect::Vt220, Replaced(u"@É[Ä\\Ö]Å^Ü`é{ä|ö}å~ü")},
    CharacterSet{"=", National, Dialect::Vt220, Replaced(u"#ù@à[é\\ç]ê^î_è`ô{ä|ö}ü~û")},
    CharacterSet{"U", Set94, Dialect::Linux, AsciiGlyphs()}, // null map: bytes as the ROM has them
    CharacterSet{"K", Set94, Dialect::Linux, AsciiGlyphs()}, // user map: nobody loads one here
};

static_assert(kControlPictures.size() == 31);

consteval bool Distinct()
{
    for (size_t i = 0; i < kSets.size(); ++i)
        for (size_t j = i + 1; j < kSets.size(); ++j)
            if (kSets[i].designator == kSets[j].designator && (kSets[i].kind == Set96) == (kSets[j].kind == Set96) &&
                (kSets[i].dialects & kSets[j].dialects))
                return false;
    return true;
}
static_assert(Distinct(), "two sets claim one designator");
static_assert(kSets[2].designator == "0" && kSets[5].designator == "<", "these are reached by their places");

constexpr CharacterSet kUpperHalf{"", Set96, kAll, Latin1Glyphs()};

} // namespace

const CharacterSet& AsciiSet() { return kSets[0]; }
const CharacterSet& SpecialGraphicsSet() { return kSets[2]; }
const CharacterSet& SupplementalSet() { return kSets[5]; }
const CharacterSet& UpperHalfSet() { return kUpperHalf; }

const CharacterSet* FindCharacterSet(std::string_view designator, bool wide96, Dialects dialects)
{
    for (const CharacterSet& set : kSets)
        if (set.designator == designator && (set.kind == Set96) == wide96 && (set.dialects & dialects))
            return &set;
    return nullptr;
}

char32_t RomGlyph(uint8_t byte)
{
    if (byte != 0 && byte <= kControlPictures.size())
        return kControlPictures[byte - 1u];
    return byte == 0x7F ? U'\u2302' : HostPoint(HostCharset::Cp437, byte);
}

std::string EncodeForHost(HostCharset charset, std::u16string_view upperHalf, char32_t point)
{
    if (charset == HostCharset::Utf8)
        return ToUtf8(point);
    if (point < 0x80)
        return std::string(1, char(point));
    constexpr char32_t none = 0x2426;
    for (unsigned byte = CharsetAllowsC1(charset) ? 0xA0 : 0x80; byte <= 0xFF && point != none; ++byte)
        if (point == (upperHalf.size() != 128 ? HostPoint(charset, uint8_t(byte)) : char32_t(upperHalf[byte - 0x80])))
            return std::string(1, char(byte));
    return "?";
}

std::string ToUtf8(char32_t point)
{
    std::string out;
    AppendUtf8(out, point);
    return out;
}

void AppendUtf8(std::string& out, char32_t point)
{
    if (point < 0x80) {
        out += char(point);
    } else if (point < 0x800) {
        out += char(0xC0 | (point >> 6));
        out += char(0x80 | (point & 0x3F));
    } else if (point < 0x10000) {
        out += char(0xE0 | (point >> 12));
        out += char(0x80 | ((point >> 6) & 0x3F));
        out += char(0x80 | (point & 0x3F));
    } else {
        out += char(0xF0 | (point >> 18));
        out += char(0x80 | ((point >> 12) & 0x3F));
        out += char(0x80 | ((point >> 6) & 0x3F));
        out += char(0x80 | (point & 0x3F));
    }
}

std::u32string FromUtf8(std::string_view text)
{
    std::u32string out;
    Utf8Decoder decoder;
    for (const char byte : text)
        decoder.Put(uint8_t(byte), [&](char32_t point) { out += point; });
    if (decoder.Pending())
        out += ReplacementPoint;
    return out;
}

} // namespace kestrune::emu
