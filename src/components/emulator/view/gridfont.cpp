#include "gridfont.h"

#include <QFontDatabase>
#include <QTextLayout>

#include <algorithm>
#include <cmath>

namespace kestrune {

namespace {

constexpr double kLeastPixels = 4;
constexpr int kCachedGlyphs = 4096; // besides Latin-1; started anew when full

QString InstalledFamily(const QString& wanted)
{
    if (!wanted.isEmpty() && QFontDatabase::hasFamily(wanted))
        return wanted;
    return QFontDatabase::systemFont(QFontDatabase::FixedFont).family();
}

// Fonts of pictures say so in their names; empty: none is installed.
QString EmojiFamily()
{
    const QStringList families = QFontDatabase::families().filter(QStringLiteral("emoji"), Qt::CaseInsensitive);
    const QStringList inColor = families.filter(QStringLiteral("color"), Qt::CaseInsensitive);
    return inColor.value(0, families.value(0));
}

} // namespace

GridFont::GridFont(const QString& family, double size, bool bold) : size_(std::max(kLeastPixels, size))
{
    base_.setFamily(InstalledFamily(family));
    base_.setStyleHint(QFont::Monospace);
    base_.setFixedPitch(true);
    base_.setPixelSize(int(std::lround(size_)));
    base_.setKerning(false);
    base_.setBold(bold);

    const QRawFont& raw = Raw(0);
    const QList<QPointF> advances = raw.advancesForGlyphIndexes({GlyphOf(0, U'0')});
    cellWidth_ = std::max(1, int(std::lround(advances.value(0).x())));
    // A little air between the lines, shared above and below.
    const int air = std::max(1, int(std::lround(size / 12)));
    cellHeight_ = int(std::ceil(raw.ascent())) + int(std::ceil(raw.descent())) + air;
    ascent_ = int(std::ceil(raw.ascent())) + air / 2;
    lineWidth_ = std::max(1, int(std::lround(raw.lineThickness())));
    const int below = std::max(1, int(std::lround(raw.underlinePosition())));
    underlineTop_ = std::min(ascent_ + below, cellHeight_ - lineWidth_);
}

GridFont::Variant& GridFont::Of(int variant)
{
    auto& held = variants_[size_t(variant)];
    if (!held) {
        held = std::make_unique<Variant>();
        held->font = base_;
        held->font.setBold(base_.bold() || (variant & Bold) != 0);
        held->font.setItalic((variant & Italic) != 0);
        held->raw = QRawFont::fromFont(held->font);
        held->raw.setPixelSize(size_); // a QFont is rounded to whole pixels: 10 and 10.5 points would often be the same
        QString text(256, u' ');
        for (int c = 32; c < 256; ++c)
            text[c] = QChar(c);
        int count = 256;
        held->raw.glyphIndexesForChars(text.constData(), 256, held->latin.data(), &count);
    }
    return *held;
}

const QFont& GridFont::Font(int variant) { return Of(variant).font; }
const QFont& GridFont::EmojiFont()
{
    if (!emoji_) {
        emoji_ = std::make_unique<QFont>(base_);
        if (const QString family = EmojiFamily(); !family.isEmpty())
            emoji_->setFamilies({family, base_.family()});
    }
    return *emoji_;
}

const QRawFont& GridFont::Raw(int variant) { return Of(variant).raw; }

namespace {

GridFont::Shaped ShapeIn(const QFont& font, const QString& text)
{
    QTextLayout layout(text, font);
    layout.beginLayout();
    const QTextLine line = layout.createLine();
    layout.endLayout();
    if (!line.isValid())
        return {};
    return {layout.glyphRuns(), line.naturalTextWidth(), line.ascent()};
}

} // namespace

const GridFont::Shaped& GridFont::Shape(const QString& text, int variant)
{
    QHash<QString, Shaped>& known = Of(variant).shaped;
    if (const auto it = known.constFind(text); it != known.constEnd())
        return *it;
    if (known.size() >= kCachedGlyphs)
        known.clear();
    return *known.insert(text, ShapeIn(Font(variant), text));
}

GridFont::Shaped GridFont::ShapeEmoji(const QString& text) { return ShapeIn(EmojiFont(), text); }

quint32 GridFont::GlyphOf(int variant, char32_t c)
{
    Variant& held = Of(variant);
    if (c < held.latin.size())
        return held.latin[c];
    if (const auto it = held.others.constFind(c); it != held.others.constEnd())
        return *it;
    if (held.others.size() >= kCachedGlyphs)
        held.others.clear();
    const QString text = QString::fromUcs4(&c, 1);
    std::array<quint32, 2> glyphs{};
    int count = 2;
    const bool known = held.raw.glyphIndexesForChars(text.constData(), int(text.size()), glyphs.data(), &count);
    return *held.others.insert(c, known && count == 1 ? glyphs[0] : 0);
}

} // namespace kestrune
