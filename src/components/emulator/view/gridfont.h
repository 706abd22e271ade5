#pragma once

// A font laid on a grid: the cell in device pixels, and glyphs of the font itself by code point. What the font
// lacks is left to the platform's fallback fonts.

#include "emojipictures.h"

#include <QFont>
#include <QGlyphRun>
#include <QHash>
#include <QRawFont>

#include <array>
#include <memory>

namespace kestrune {

class GridFont
{
public:
    static constexpr int Bold = 1, Italic = 2; // bits of a variant, 0 is the regular one

    // size: device pixels. A family that is not installed gives the desktop's own fixed font.
    GridFont(const QString& family, double size, bool bold);

    int CellWidth() const { return cellWidth_; }
    int CellHeight() const { return cellHeight_; }
    int Ascent() const { return ascent_; } // from the top of the cell to the base line
    int UnderlineTop() const { return underlineTop_; }
    int LineWidth() const { return lineWidth_; }

    const QFont& Font(int variant);
    const QFont& EmojiFont(); // pictures in colour before signs in black and white
    EmojiPictures& Emoji() { return emojiPictures_; }
    const QRawFont& Raw(int variant);
    struct Shaped // text of one cell, in whatever fonts it takes
    {
        QList<QGlyphRun> runs;
        double width = 0;
        double ascent = 0; // from the runs' own top to the base line
    };
    const Shaped& Shape(const QString& text, int variant); // valid until the next call
    Shaped ShapeEmoji(const QString& text);
    quint32 GlyphOf(int variant, char32_t c); // 0: not in this font

private:
    struct Variant
    {
        QFont font;
        QRawFont raw;
        std::array<quint32, 256> latin{};
        QHash<char32_t, quint32> others; // bounded
        QHash<QString, Shaped> shaped;   // bounded
    };
    Variant& Of(int variant);

    double size_;                  // device pixels
    QFont base_;                   // the nearest whole size: for what the font itself lacks
    std::unique_ptr<QFont> emoji_; // made when first used
    EmojiPictures emojiPictures_;
    int cellWidth_ = 8;
    int cellHeight_ = 16;
    int ascent_ = 12;
    int underlineTop_ = 14;
    int lineWidth_ = 1;
    std::array<std::unique_ptr<Variant>, 4> variants_; // made when first used
};

} // namespace kestrune
