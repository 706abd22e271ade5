#include "colorscheme.h"

#include "contrast.h"

#include <utility>

namespace kestrune {

namespace {

Rgb FromBgr(qint32 bgr) { return MakeRgb(bgr & 0xFF, (bgr >> 8) & 0xFF, (bgr >> 16) & 0xFF); }

// Entries 16 to 231 are a cube of six steps a side, the rest greys: the xterm convention that hosts rely on.
Rgb CubeOrGrey(int index)
{
    if (index >= 232) {
        const int grey = 8 + 10 * (index - 232);
        return MakeRgb(grey, grey, grey);
    }
    const auto step = [](int i) { return i == 0 ? 0 : 55 + 40 * i; };
    const int cube = index - 16;
    return MakeRgb(step(cube / 36), step(cube / 6 % 6), step(cube % 6));
}

Rgb FromHost(uint32_t rgb) { return MakeRgb(int(rgb >> 16) & 0xFF, int(rgb >> 8) & 0xFF, int(rgb) & 0xFF); }

Rgb Mix(Rgb a, Rgb b, int percentOfA)
{
    const auto mix = [percentOfA](int x, int y) { return (x * percentOfA + y * (100 - percentOfA)) / 100; };
    return MakeRgb(mix(RedOf(a), RedOf(b)), mix(GreenOf(a), GreenOf(b)), mix(BlueOf(a), BlueOf(b)));
}

int AttributeValue(const emu::Style& style)
{
    const auto bit = [&style](uint16_t attribute, int value) {
        return (style.attributes & attribute) != 0 ? value : 0;
    };
    return bit(emu::Attr::Invisible, 1) | bit(emu::Attr::Blink, 2) | bit(emu::Attr::Reverse, 4) |
           (style.underline != emu::Underline::None ? 8 : 0) | bit(emu::Attr::Dim, 16) | bit(emu::Attr::Bold, 32);
}

} // namespace

void ColorScheme::Load(const EmulatorSettings& settings, Ground desktop)
{
    light_ = desktop == Ground::Light && !HasOwnPalette(settings);
    for (int i = 0; i < PaletteSize; ++i)
        palette_[size_t(i)] = light_ && i >= PaletteRole::Foreground ? LightRole(i) : FromBgr(settings.Palette(i));
    for (int i = 0; i < AttributeCount; ++i)
        attributes_[size_t(i)] = settings.Colors(i);
    legible_ = settings.Boolean(Setting("LegibleFont"));
}

bool ColorScheme::Follow(const emu::Terminal& screen)
{
    bool changed = std::exchange(reverse_, screen.Modes().reverseScreen) != screen.Modes().reverseScreen;
    for (int i = 0; i < kHostColors; ++i) {
        const uint32_t set = screen.PaletteOverride(i);
        changed = std::exchange(host_[size_t(i)], set) != set || changed;
    }
    return changed;
}

Rgb ColorScheme::Indexed(int index) const
{
    if (const uint32_t set = host_[size_t(index)])
        return FromHost(set);
    return index < 16 ? palette_[size_t(index)] : CubeOrGrey(index);
}

// A colour for text on the bare background.
Rgb ColorScheme::Ink(int index) const
{
    return light_ && index < 16 && host_[size_t(index)] == 0 ? LightInk(index) : Indexed(index);
}

Rgb ColorScheme::Entry(int paletteEntry) const
{
    return paletteEntry >= 0 && paletteEntry < PaletteSize ? Role(paletteEntry) : Role(0);
}

// The roles that a host can set stand in one order here and there.
Rgb ColorScheme::Role(int paletteRole) const
{
    if (paletteRole < 16)
        return Indexed(paletteRole);
    const uint32_t set =
        paletteRole <= PaletteRole::Cursor ? host_[size_t(256 + paletteRole - PaletteRole::Foreground)] : 0;
    return set != 0 ? FromHost(set) : palette_[size_t(paletteRole)];
}

Rgb ColorScheme::Background() const { return Role(reverse_ ? PaletteRole::Foreground : PaletteRole::Background); }

CellColors ColorScheme::Selected(const CellColors& plain) const
{
    Rgb paper = Role(PaletteRole::Selection);
    if (ContrastOf(paper, plain.background) < VisibleContrast)
        paper = LegibleOn(plain.background, plain.foreground, VisibleContrast);
    const Rgb ink = LegibleOn(paper, Role(PaletteRole::SelectionText));
    return {ink, paper, ink};
}

CellColors ColorScheme::Found(const CellColors& plain, bool current) const
{
    const Rgb mark = current ? Role(PaletteRole::Cursor) : Mix(Indexed(3), Role(PaletteRole::Background), 45);
    const Rgb paper = LegibleOn(plain.background, mark, VisibleContrast);
    const Rgb ink = LegibleOn(paper, plain.foreground);
    return {ink, paper, ink};
}

CellColors ColorScheme::Cursor(const CellColors& plain) const
{
    const Rgb paper = LegibleOn(plain.background, Role(PaletteRole::Cursor), VisibleContrast);
    const Rgb ink = LegibleOn(paper, Role(PaletteRole::CursorText));
    return {ink, paper, ink};
}

CellColors ColorScheme::Of(const emu::Style& style) const
{
    using Kind = emu::Color::Kind;
    const bool bold = (style.attributes & emu::Attr::Bold) != 0;
    const qint16 own = attributes_[size_t(AttributeValue(style))];
    // A cell without any colour of its own looks as the attribute table says, its reverse included.
    const bool plain = style.foreground.What() == Kind::Default && style.background.What() == Kind::Default;

    const int backgroundEntry = plain ? AttributeBackground(own) : PaletteRole::Background;
    const bool onBare = style.background.What() == Kind::Default && backgroundEntry == PaletteRole::Background;
    const auto resolve = [&](emu::Color color, int byDefault, bool isInk) {
        switch (color.What()) {
        case Kind::Palette:
            return isInk ? Ink(color.Index()) : Indexed(color.Index());
        case Kind::Direct:
            return MakeRgb(color.Red(), color.Green(), color.Blue());
        case Kind::Default:
            break;
        }
        return isInk && byDefault < 16 ? Ink(byDefault) : Entry(byDefault);
    };
    emu::Color foreground = style.foreground;
    // Bright is how the sixteen-colour terminals show bold.
    if (bold && foreground.What() == Kind::Palette && foreground.Index() < 8)
        foreground = emu::Color::Palette(uint8_t(foreground.Index() + 8));

    CellColors colors;
    colors.foreground = resolve(foreground, plain ? AttributeForeground(own) : PaletteRole::Foreground, onBare);
    colors.background = resolve(style.background, backgroundEntry, false);
    // Who sets a background alone, of text or of the screen, counts on the light text of dark screens.
    const bool hostSetPaper = host_[size_t(256 + PaletteRole::Background - PaletteRole::Foreground)] != 0;
    if (light_ && (onBare ? hostSetPaper : foreground.What() == Kind::Default))
        colors.foreground = LegibleOn(colors.background, colors.foreground);
    if (!plain && (style.attributes & emu::Attr::Reverse) != 0)
        std::swap(colors.foreground, colors.background);
    if (reverse_ && plain)
        std::swap(colors.foreground, colors.background);
    // A colour that the user has given to dim text is meant as it is.
    const bool hasOwnDim = plain && own != EmulatorSettings::DefaultColors(AttributeValue(style));
    if ((style.attributes & emu::Attr::Dim) != 0 && !hasOwnDim)
        colors.foreground = Mix(colors.foreground, colors.background, 60);
    if (legible_) // also what was dimmed
        colors.foreground = LegibleOn(colors.background, colors.foreground);
    colors.underline =
        style.underlineColor.What() == Kind::Default ? colors.foreground : resolve(style.underlineColor, 0, onBare);
    if ((style.attributes & emu::Attr::Invisible) != 0)
        colors.foreground = colors.underline = colors.background;
    return colors;
}

} // namespace kestrune
