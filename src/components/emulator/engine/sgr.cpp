// Select graphic rendition: ECMA-48 8.3.117, colours by index and direct colours as in ISO 8613-6.

#include "machine.h"
#include "pcconsole.h"

#include <array>

namespace kestrune::emu {
namespace {

struct SgrRow
{
    int code;
    uint16_t set;
    uint16_t clear;
};

constexpr SgrRow kAttributes[] = {
    {1, Attr::Bold, 0},      {2, Attr::Dim, 0},
    {3, Attr::Italic, 0},    {5, Attr::Blink, 0},
    {6, Attr::Blink, 0},     {7, Attr::Reverse, 0},
    {8, Attr::Invisible, 0}, {9, Attr::Strike, 0},
    {53, Attr::Overline, 0}, {22, 0, Attr::Bold | Attr::Dim},
    {23, 0, Attr::Italic},   {25, 0, Attr::Blink},
    {27, 0, Attr::Reverse},  {28, 0, Attr::Invisible},
    {29, 0, Attr::Strike},   {55, 0, Attr::Overline},
};

constexpr auto kByCode = [] {
    std::array<SgrRow, 64> rows{};
    for (const SgrRow& row : kAttributes)
        rows[size_t(row.code)] = row;
    return rows;
}();

uint8_t Channel(int value) { return uint8_t(value > 255 ? 255 : value); }

// What follows 38, 48 or 58: "5;n", "2;r;g;b", or the same with colons, where "2:space:r:g:b" has one more.
// Returns how many parameters it took.
int ReadColor(const Params& params, int at, Color& color)
{
    int end = at;
    while (end < params.Size() && params.AfterColon(end))
        ++end;
    const bool withColons = end > at;
    if (!withColons)
        end = params.Size();
    const int kind = params.At(at);
    if (kind == 5 && at + 1 < end) {
        color = Color::Palette(Channel(params.At(at + 1)));
        return withColons ? end - at : 2;
    }
    const int first = withColons && end - at >= 5 ? at + 2 : at + 1;
    if (kind == 2 && first + 2 < end)
        color = Color::Direct(Channel(params.At(first)), Channel(params.At(first + 1)), Channel(params.At(first + 2)));
    if (withColons)
        return end - at;
    return kind == 2 ? 4 : kind == 5 ? 2 : 1;
}

void SetUnderline(Style& pen, const Params& params, int& at)
{
    pen.underline = Underline::Single;
    if (!params.AfterColon(at + 1))
        return;
    const int kind = params.At(++at, 1);
    pen.underline = kind <= int(Underline::Dashed) ? Underline(kind) : Underline::Single;
}

void ResetPen(Style& pen)
{
    Style plain;
    plain.attributes = pen.attributes & Attr::Protected; // DECSCA and links are not renditions
    plain.link = pen.link;
    pen = plain;
}

bool PaletteCode(Style& pen, int code)
{
    struct Range
    {
        int first;
        int last;
        uint8_t index;
        Color Style::*color;
    };
    static constexpr Range kRanges[] = {
        {30, 37, 0, &Style::foreground},
        {40, 47, 0, &Style::background},
        {90, 97, 8, &Style::foreground},
        {100, 107, 8, &Style::background},
    };
    for (const Range& range : kRanges)
        if (code >= range.first && code <= range.last) {
            pen.*range.color = Color::Palette(uint8_t(range.index + code - range.first));
            return true;
        }
    return false;
}

void AppendNumber(std::string& out, int number)
{
    out += ';';
    out += std::to_string(number);
}

void AppendColor(std::string& out, Color color, int base)
{
    const bool isPalette = color.What() == Color::Kind::Palette;
    if (color.What() == Color::Kind::Default)
        return;
    if (isPalette && color.Index() < 8 && base != 58) {
        AppendNumber(out, base - 8 + color.Index());
        return;
    }
    AppendNumber(out, base);
    AppendNumber(out, isPalette ? 5 : 2);
    if (isPalette)
        AppendNumber(out, color.Index());
    else
        for (const uint8_t channel : {color.Red(), color.Green(), color.Blue()})
            AppendNumber(out, channel);
}

} // namespace

void Machine::ApplySgr(const Params& params)
{
    if (params.HasColons() && !Speaks(Dialect::Extension))
        return;
    const bool isSco = Speaks(Dialect::Sco);
    if (isSco && pc::ScoColors(*this, params))
        return;
    Style& pen = screen_.Pen();
    if (params.Size() == 0)
        ResetPen(pen);
    const int count = params.Size();
    for (int at = 0; at < count; ++at) {
        const int code = params.At(at);
        if (params.AfterColon(at) || (isSco && pc::ScoRendition(pen, code)))
            continue;                   // a part of something unknown, or done
        if (code == 38 || code == 48) { // full-screen programs send these for nearly every cell
            at += ReadColor(params, at + 1, code == 38 ? pen.foreground : pen.background);
            continue;
        }
        if (PaletteCode(pen, code))
            continue;
        if (code < int(kByCode.size()) && kByCode[size_t(code)].code != 0) {
            const SgrRow& row = kByCode[size_t(code)];
            pen.attributes = uint16_t((pen.attributes | row.set) & ~row.clear);
            continue;
        }
        switch (code) {
        case 0:
            ResetPen(pen);
            break;
        case 4:
            SetUnderline(pen, params, at);
            break;
        case 10:
        case 11:
        case 12:
            if (Speaks(Dialect::Linux | Dialect::Ansi | Dialect::Sco))
                SetRomFont(RomFont(code - 10));
            break;
        case 21:
            pen.underline = Underline::Double;
            break;
        case 24:
            pen.underline = Underline::None;
            break;
        case 58:
            at += ReadColor(params, at + 1, pen.underlineColor);
            break;
        case 39:
            pen.foreground = Color::Default();
            break;
        case 49:
            pen.background = Color::Default();
            break;
        case 59:
            pen.underlineColor = Color::Default();
            break;
        default:
            break; // unknown ones are passed over
        }
    }
}

std::string Machine::SgrSetting() const
{
    const Style& pen = screen_.Cursor().pen;
    std::string out = "0";
    for (const SgrRow& row : kAttributes)
        if (row.set != 0 && row.code != 6 && (pen.attributes & row.set))
            AppendNumber(out, row.code);
    if (pen.underline == Underline::Single)
        out += ";4";
    else if (pen.underline != Underline::None)
        out += ";4:" + std::to_string(int(pen.underline));
    AppendColor(out, pen.foreground, 38);
    AppendColor(out, pen.background, 48);
    AppendColor(out, pen.underlineColor, 58);
    return out;
}

} // namespace kestrune::emu
