#include <menubar/icons.h>
#include <menus/toolkeys.h>

#include <gtest/gtest.h>

#include <QGuiApplication>
#include <QHash>
#include <QImage>
#include <QPainter>
#include <QPalette>

#include "menus/menuparts.h"

namespace kestrune {
namespace {

QIcon PictureOf(int number)
{
    MenuTool tool = ToolOf(number);
    tool.imageSource = ImageSource::Resource;
    tool.normalImage = QString::number(number);
    return ToolIcon(tool);
}

TEST(Pictures, EveryBuiltInToolHasOneThatShowsSomething)
{
    for (const ToolKey& key : kToolKeys)
        for (const int side : {16, 24, 32, 48}) {
            const QIcon icon = PictureOf(key.id);
            ASSERT_FALSE(icon.isNull()) << key.name;
            const QImage image = icon.pixmap(side, side).toImage().convertToFormat(QImage::Format_ARGB32);
            int drawn = 0;
            for (int y = 0; y < image.height(); ++y)
                for (int x = 0; x < image.width(); ++x)
                    drawn += qAlpha(image.pixel(x, y)) > 128;
            EXPECT_GT(drawn, side) << key.name << " at " << side;
            EXPECT_LT(drawn, side * side / 2) << key.name << " at " << side;
        }
    EXPECT_TRUE(PictureOf(9999).isNull());
}

TEST(Pictures, LinesOfSmallOnesAreSharp)
{
    QImage image(16, 16, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    PictureOf(500).paint(&painter, image.rect());
    painter.end();
    int full = 0, partly = 0;
    QString seen;
    for (int y = 0; y < 16; ++y) {
        for (int x = 0; x < 16; ++x) {
            const int alpha = qAlpha(image.pixel(x, y));
            full += alpha > 240;
            partly += alpha > 8 && alpha <= 240;
            seen += QStringLiteral("%1 ").arg(alpha, 3);
        }
        seen += QLatin1Char('\n');
    }
    EXPECT_GT(full, 2 * partly) << "a window is made of straight lines, not of:\n" << seen.toStdString();
}

TEST(Pictures, FollowThePaletteFromLightToDark)
{
    const QPalette before = QGuiApplication::palette();
    const QIcon icon = PictureOf(500);
    const auto brightest = [&] {
        const QImage image = icon.pixmap(24, 24).toImage().convertToFormat(QImage::Format_ARGB32);
        int most = 0;
        for (int y = 0; y < 24; ++y)
            for (int x = 0; x < 24; ++x)
                if (qAlpha(image.pixel(x, y)) > 240)
                    most = std::max(most, qGray(image.pixel(x, y)));
        return most;
    };
    QGuiApplication::setPalette(QPalette(QColor(240, 240, 240)));
    const int onLight = brightest();
    QGuiApplication::setPalette(QPalette(QColor(40, 40, 40)));
    EXPECT_GT(brightest(), onLight + 60);
    QGuiApplication::setPalette(before);
}

} // namespace
} // namespace kestrune
