// Pictures behind the text and over it.

#include "viewbench.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace kestrune {

using namespace Qt::StringLiterals;

namespace {

struct PictureBench : ViewBench
{
    QString Picture(const QString& name, QSize size, const QColor& color) // a file
    {
        QImage image(size, QImage::Format_RGB32);
        image.fill(color);
        QString path = folder.filePath(name);
        EXPECT_TRUE(image.save(path));
        media.pictures << path;
        return path;
    }
    QColor Paper() const
    {
        const qint32 bgr = control.Settings().Palette(PaletteRole::Background);
        return {bgr & 0xFF, (bgr >> 8) & 0xFF, (bgr >> 16) & 0xFF};
    }

    QTemporaryDir folder;
};

TEST(Backdrop, LiesBehindTextThatHasNoBackgroundOfItsOwn)
{
    PictureBench bench;
    bench.HostSays("█\x1b[7m \x1b[m\x1b[5;1H");
    const QColor text = bench.ColorAt(0, 0);
    const QColor reverse = bench.ColorAt(1, 0);
    auto& settings = bench.control.Settings();
    settings.Set(u"BackgroundPictureMode"_s, 1);
    settings.Set(u"BackgroundPictureFile"_s, bench.Picture(u"red.png"_s, {8, 8}, Qt::red));
    EXPECT_EQ(bench.ColorAt(20, 3), QColor(Qt::red));
    EXPECT_EQ(bench.ColorAt(0, 0), text);
    EXPECT_EQ(bench.ColorAt(1, 0), reverse);
    settings.Set(u"BackgroundTransparency"_s, 50);
    EXPECT_NEAR(bench.ColorAt(20, 3).red(), (255 + bench.Paper().red()) / 2.0, 2);
    settings.Set(u"BackgroundPictureFile"_s, u"/no/such/file"_s);
    EXPECT_EQ(bench.ColorAt(20, 3), bench.Paper());
}

TEST(Backdrop, LiesAsItsModeSays)
{
    PictureBench bench;
    auto& settings = bench.control.Settings();
    settings.Set(u"BackgroundPictureFile"_s, bench.Picture(u"green.png"_s, {40, 20}, Qt::green));
    const struct
    {
        int mode;
        bool corner; // of the window shows it
    } cases[] = {{0, false}, {1, true}, {2, true}, {3, true}, {77, false}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.mode);
        settings.Set(u"BackgroundPictureMode"_s, c.mode);
        const QImage shown = bench.ViewBench::Picture();
        EXPECT_EQ(shown.pixelColor(1, 1) == QColor(Qt::green), c.corner);
        EXPECT_EQ(shown.pixelColor(shown.width() / 2, shown.height() / 2), QColor(Qt::green));
    }
}

TEST(ScreenPictures, LieOverTheTextWhereTheyWerePut)
{
    PictureBench bench;
    bench.HostSays("\x1b[41m\x1b[2J\x1b[10;40H");
    const QColor paper = bench.ColorAt(0, 0);
    const QString blue = bench.Picture(u"blue.png"_s, {10, 10}, Qt::blue);
    const QString wide = bench.Picture(u"wide.png"_s, {100, 10}, Qt::yellow);
    bench.control.LoadImage(blue, 2, 1, 4, 2);
    EXPECT_EQ(bench.ColorAt(2, 1), QColor(Qt::blue));
    EXPECT_EQ(bench.ColorAt(5, 2), QColor(Qt::blue));
    EXPECT_EQ(bench.ColorAt(6, 2), paper);
    EXPECT_EQ(bench.ColorAt(1, 1), paper);
    bench.control.LoadImage(wide, 10, 1, 4, 4, true); // in the middle of its room
    EXPECT_EQ(bench.ColorAt(11, 1), paper);
    EXPECT_EQ(bench.ViewBench::Picture().pixelColor(bench.view.CellRect(12, 3).topLeft()), QColor(Qt::yellow));
    bench.control.UnloadImage();
    EXPECT_EQ(bench.ColorAt(2, 1), paper);
}

TEST(ScreenPictures, GoWithTheScreenWhenTheHistoryIsLookedAt)
{
    PictureBench bench;
    for (int i = 0; i < 15; ++i)
        bench.HostSays("\r\n");
    bench.control.LoadImage(bench.Picture(u"blue.png"_s, {10, 10}, Qt::blue), 2, 1, 4, 2);
    bench.control.ScrollTo(3);
    EXPECT_EQ(bench.ColorAt(3, 1), QColor(Qt::blue)); // row 1 of the screen, which is shown three rows lower
    EXPECT_EQ(bench.ViewBench::Picture().pixelColor(bench.view.CellRect(3, -2).center()), bench.Paper());
}

} // namespace

} // namespace kestrune
