// How window and screen fit each other: the extended size, and the rows below the screen.

#include "viewbench.h"

namespace kestrune {

namespace {

TEST(ViewGrid, ExtendedScreenIsShownWholeWhateverTheWindow)
{
    ViewBench bench(80, 24);
    const QSize window = bench.view.size();
    const int usual = bench.view.CellRect(0, 0).height();
    bench.control.SetScrMode(1);
    bench.clock.RunPosted();
    EXPECT_EQ(bench.control.Cols(), 132);
    EXPECT_LT(bench.view.CellRect(0, 0).height(), usual);
    EXPECT_TRUE(bench.view.rect().contains(bench.view.CellRect(131, 23)));

    bench.view.resize(3 * window);
    bench.control.Settings().SetValue(Setting("ExtRows"), 30);
    bench.clock.RunPosted();
    EXPECT_GT(bench.view.CellRect(0, 0).height(), usual); // ScaleFont
    EXPECT_TRUE(bench.view.rect().contains(bench.view.CellRect(131, 29)));
    bench.control.Settings().SetValue(Setting("ScaleFont"), false);
    bench.control.Settings().SetValue(Setting("ExtRows"), 24);
    bench.clock.RunPosted();
    EXPECT_EQ(bench.view.CellRect(0, 0).height(), usual);

    bench.view.resize(window);
    bench.control.SetScrMode(0);
    bench.clock.RunPosted();
    EXPECT_EQ(bench.view.CellRect(0, 0).height(), usual);
    EXPECT_EQ(bench.control.Cols(), 80);
    EXPECT_EQ(bench.control.Rows(), 24);
}

TEST(ViewGrid, FontsHaveSizesBetweenWholePixels)
{
    ViewBench bench;
    QSet<int> inks;
    for (const double points : {10.0, 10.2, 10.4, 10.6}) { // within one and a half pixels
        bench.control.Settings().SetValue(Setting("FontSize"), points);
        bench.HostSays("\x1b[H\x1b[2JMMMMM\x1b[3H");
        const QImage picture = bench.Picture();
        int ink = 0;
        for (int y = 0; y < bench.view.CellRect(0, 0).bottom(); ++y)
            for (int x = 0; x < bench.view.CellRect(5, 0).left(); ++x)
                ink += picture.pixelColor(x, y).lightness();
        inks.insert(ink);
    }
    EXPECT_EQ(inks.size(), 4);
}

TEST(ViewGrid, StatusLineIsPaintedBelowTheScreenAndStaysWhileTheHistoryIsSeen)
{
    constexpr int kVt320 = 13;
    ViewBench bench(20, 6, kVt320);
    bench.control.Settings().SetValue(Setting("HistoryRows"), 20);
    bench.HostSays("1\r\n2\r\n3\r\n4\r\n5\r\n6\r\n7\r\n\x1b[2$~\x1b[1$}\x1b[7m \x1b[0$}");
    bench.clock.RunPosted();
    EXPECT_EQ(bench.control.Rows(), 5); // the window has as many rows as before
    const QColor text = bench.ColorAt(0, 5);
    EXPECT_NE(text, bench.ColorAt(5, 5));
    bench.control.ScrollTo(2);
    EXPECT_EQ(bench.Picture().pixelColor(bench.view.CellRect(0, 3).center()), text); // two rows further down
    bench.control.ScrollTo(0);
    bench.HostSays("\x1b[0$~");
    bench.clock.RunPosted();
    EXPECT_EQ(bench.control.Rows(), 6);
}

} // namespace

} // namespace kestrune
