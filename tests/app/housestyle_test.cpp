#include <app/housestyle.h>

#include <gtest/gtest.h>

#include <QImage>
#include <QPainter>
#include <QStyleOption>

#include <algorithm>

namespace kestrune {
namespace {

struct Hint
{
    const char* name;
    QColor ground, text, hint;
    bool kept;
};

TEST(HouseStyle, HintsStandOutFromTheirGround)
{
    const Hint hints[] = {
        {"light, the toolkit's own", Qt::white, Qt::black, QColor(0, 0, 0, 128), true},
        {"dark, the toolkit's own", QColor(27, 30, 32), QColor(239, 240, 241), QColor(239, 240, 241, 128), true},
        {"dark, with a hint for light", QColor(27, 30, 32), QColor(239, 240, 241), QColor(0, 0, 0, 128), false},
        {"light, with a hint for dark", Qt::white, Qt::black, QColor(255, 255, 255, 128), false},
    };
    for (const Hint& row : hints) {
        QPalette palette;
        palette.setColor(QPalette::Base, row.ground);
        palette.setColor(QPalette::Text, row.text);
        palette.setColor(QPalette::PlaceholderText, row.hint);
        const QPalette readable = Readable(palette);
        EXPECT_EQ(readable == palette, row.kept) << row.name;
        EXPECT_EQ(Readable(readable), readable) << row.name;
    }
}

int Brightest(const QImage& drawn)
{
    int brightest = 0;
    for (int y = 0; y < drawn.height(); ++y)
        for (int x = 0; x < drawn.width(); ++x)
            brightest = std::max(brightest, drawn.pixelColor(x, y).lightness());
    return brightest;
}

int BrightestOfEntry(const HouseStyle& style, QStyle::State state)
{
    QStyleOptionMenuItem item;
    item.palette.setColor(QPalette::Highlight, QColor(20, 60, 140));
    item.palette.setColor(QPalette::HighlightedText, Qt::white);
    item.rect = QRect(0, 0, 120, 24);
    item.maxIconWidth = 16;
    item.state = state;
    QPixmap plain(16, 16), chosen(16, 16);
    plain.fill(QColor(20, 60, 140));
    chosen.fill(Qt::white);
    item.icon.addPixmap(plain, QIcon::Normal);
    item.icon.addPixmap(chosen, QIcon::Selected);
    QImage drawn(item.rect.size(), QImage::Format_RGB32);
    drawn.fill(Qt::black);
    QPainter painter(&drawn);
    style.drawControl(QStyle::CE_MenuItem, &item, &painter, nullptr);
    painter.end();
    return Brightest(drawn);
}

TEST(HouseStyle, AChosenEntryHasThePictureThatIsMadeForIt)
{
    const HouseStyle style(QStringLiteral("fusion"));
    EXPECT_EQ(BrightestOfEntry(style, QStyle::State_Enabled | QStyle::State_Selected), 255);
    EXPECT_LT(BrightestOfEntry(style, QStyle::State_Enabled), 255);
}

TEST(HouseStyle, AnEmptyBoxHasAnEdgeOnADarkDesktop)
{
    const HouseStyle style(QStringLiteral("fusion"));
    const QColor ground(41, 44, 48);
    for (const QStyle::PrimitiveElement box : {QStyle::PE_IndicatorCheckBox, QStyle::PE_IndicatorRadioButton}) {
        QStyleOptionButton option;
        option.palette = QPalette(ground);
        option.palette.setColor(QPalette::WindowText, Qt::white);
        option.rect = QRect(0, 0, 14, 14);
        option.state = QStyle::State_Enabled | QStyle::State_Off;
        QImage drawn(option.rect.size(), QImage::Format_RGB32);
        drawn.fill(ground);
        QPainter painter(&drawn);
        style.drawPrimitive(box, &option, &painter, nullptr);
        painter.end();
        EXPECT_GT(Brightest(drawn), ground.lightness() + 40) << box;
    }
}

} // namespace
} // namespace kestrune
