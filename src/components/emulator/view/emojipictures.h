#pragma once

// Emoji as they stand in their cells, each drawn once: fonts in colour decode and scale theirs anew for every glyph
// they paint, which takes longer than a row of text.

#include <QCache>
#include <QImage>
#include <QRgb>
#include <QString>

#include <functional>

class QPainter;

namespace kestrune {

class EmojiPictures
{
public:
    // draw paints the emoji into a transparent picture of size, in device pixels. color: for fonts in black and white.
    QImage Of(const QString& text, const QSize& size, QRgb color, const std::function<void(QPainter&)>& draw);

private:
    struct Key
    {
        QString text;
        int width; // one cell or two
        QRgb color;

        bool operator==(const Key&) const = default;
        friend std::size_t qHash(const Key& key, std::size_t seed)
        {
            return qHashMulti(seed, key.text, key.width, key.color);
        }
    };
    static constexpr int kMostKilobytes = 8 * 1024;

    QCache<Key, QImage> held_{kMostKilobytes};
};

} // namespace kestrune
