// What the view paints, and how often.

#include "viewbench.h"

#include <emulator/control/contrast.h>

#include <gtest/gtest.h>

namespace kestrune {

using namespace Qt::StringLiterals;

namespace {

QColor PaletteColor(int index)
{
    const qint32 bgr = EmulatorSettings::DefaultPalette(index);
    return {bgr & 0xFF, (bgr >> 8) & 0xFF, (bgr >> 16) & 0xFF};
}

const QColor kText = PaletteColor(PaletteRole::Foreground);
const QColor kPaper = PaletteColor(PaletteRole::Background);

struct LookCase
{
    const char* name;
    const char* sequence; // then a full block, which shows the foreground, and a blank, which shows the background
    QColor foreground;
    QColor background;
};

class ViewLook : public testing::TestWithParam<LookCase>
{};

TEST_P(ViewLook, IsPainted)
{
    ViewBench bench(40, 10, EmulatorBench::LinuxConsole);
    bench.HostSays(std::string(GetParam().sequence) + "█ \x1b[m\x1b[3;1H");
    EXPECT_EQ(bench.ColorAt(0, 0).name(), GetParam().foreground.name());
    EXPECT_EQ(bench.ColorAt(1, 0).name(), GetParam().background.name());
}

INSTANTIATE_TEST_SUITE_P(
    All, ViewLook,
    testing::Values(LookCase{"Plain", "", kText, kPaper}, LookCase{"Reverse", "\x1b[7m", kPaper, kText},
                    LookCase{"Colors", "\x1b[31;44m", PaletteColor(1), PaletteColor(4)},
                    LookCase{"ReversedColors", "\x1b[31;44;7m", PaletteColor(4), PaletteColor(1)},
                    LookCase{"BoldIsBright", "\x1b[1;32m", PaletteColor(10), kPaper},
                    LookCase{"Cube", "\x1b[38;5;196;48;5;240m", QColor(255, 0, 0), QColor(88, 88, 88)},
                    LookCase{"Direct", "\x1b[38;2;1;2;3;48;2;4;5;6m", QColor(1, 2, 3), QColor(4, 5, 6)},
                    LookCase{"Invisible", "\x1b[8;41m", PaletteColor(1), PaletteColor(1)},
                    LookCase{"ReverseScreen", "\x1b[?5h", kPaper, kText},
                    LookCase{"HostSetsPalette", "\x1b]4;1;#102030\x1b\\\x1b[31m", QColor(0x10, 0x20, 0x30), kPaper}),
    [](const auto& test) { return test.param.name; });

// A shape of two columns of dots, the left one set, and later the right one.
TEST(ViewPaint, CharactersDrawnByTheHostFillTheirCellsAtAnySize)
{
    ViewBench bench;
    const auto sides = [&](int col) {
        const QRect cell = bench.view.CellRect(col, 0);
        const QImage picture = bench.Picture();
        return picture.pixelColor(cell.left() + 1, cell.top() + 1).name() +
               picture.pixelColor(cell.right() - 1, cell.bottom() - 1).name();
    };
    const std::string half(5, '?');
    const std::string full(5, '~');
    bench.HostSays("\x1bP1;1;0;10;0;2;6{ @" + full + half + "\x1b\\ \x1b( @!\x1b(B \x1b[3;1H");
    EXPECT_EQ(sides(1), kText.name() + kPaper.name());
    EXPECT_EQ(sides(0), kPaper.name() + kPaper.name());
    bench.control.Settings().SetValue(Setting("FontSize"), 17);
    EXPECT_EQ(sides(1), kText.name() + kPaper.name());
    bench.HostSays("\x1bP1;1;0;10;0;2;6{ @" + half + full + "\x1b\\");
    EXPECT_EQ(sides(1), kPaper.name() + kText.name()) << "what stands on the screen follows";
}

// Emoji are drawn once and kept: as a picture where they stand, in the colours of each place, and large where rows are.
TEST(ViewPaint, AnEmojiIsTheSameWhereverItStands)
{
    ViewBench bench;
    bench.HostSays("\xf0\x9f\x98\x80 \xf0\x9f\x98\x80\r\n\x1b[7m\xf0\x9f\x98\x80\x1b[m\r\n\x1b#6\xf0\x9f\x98\x80\r\n");
    const auto at = [&](int col, int row, int cells) {
        return bench.Picture().copy(bench.view.CellRect(col, row).united(bench.view.CellRect(col + cells - 1, row)));
    };
    const auto painted = [](const QImage& picture) { // pixels that are not background
        int count = 0;
        for (int y = 0; y < picture.height(); ++y)
            for (int x = 0; x < picture.width(); ++x)
                count += picture.pixelColor(x, y).name() != kPaper.name() ? 1 : 0;
        return count;
    };
    const QImage first = at(0, 0, 2);
    EXPECT_GT(painted(first), 20);
    EXPECT_EQ(at(3, 0, 2), first);
    EXPECT_EQ(at(0, 1, 2).pixelColor(0, 0).name(), kText.name());
    EXPECT_GT(painted(at(0, 2, 2)), painted(first) * 3 / 2);
}

TEST(ViewPaint, ColoursOfTheSettingsAreFollowedLive)
{
    ViewBench bench;
    bench.HostSays("█ \x1b[4m█ \x1b[m\x1b[3;1H");
    auto& settings = bench.control.Settings();
    settings.SetPalette(PaletteRole::Background, 0x332211);
    EXPECT_EQ(bench.ColorAt(1, 0).name(), u"#112233"_s);
    settings.SetColors(8, AttributeColor(2, 3)); // underlined text in green on yellow
    EXPECT_EQ(bench.ColorAt(2, 0).name(), PaletteColor(2).name());
    EXPECT_EQ(bench.ColorAt(3, 0).name(), PaletteColor(3).name());
    EXPECT_EQ(bench.ColorAt(0, 0).name(), kText.name());
}

TEST(ViewPaint, TurnsLightAndDarkWithTheDesktop)
{
    ViewBench bench;
    bench.HostSays("█\x1b[3;5H");
    EXPECT_EQ(bench.ColorAt(3, 0).name(), kPaper.name());
    bench.view.setPalette(QPalette(QColor(Qt::white)));
    EXPECT_GT(bench.ColorAt(3, 0).lightness(), 200);
    EXPECT_LT(bench.ColorAt(0, 0).lightness(), 100);
    EXPECT_NE(bench.ColorAt(4, 2), bench.ColorAt(3, 0)) << "the cursor";
    bench.view.setPalette(QPalette(ViewBench::DarkDesktop));
    EXPECT_EQ(bench.ColorAt(3, 0).name(), kPaper.name());
}

TEST(ViewPaint, SelectionCursorAndSignsAreSeen)
{
    ViewBench bench;
    bench.HostSays("abc\x1b[3;5H");
    EXPECT_EQ(bench.ColorAt(4, 2).name(), PaletteColor(PaletteRole::Cursor).name());
    bench.view.clearFocus();
    EXPECT_EQ(bench.ColorAt(4, 2).name(), kPaper.name()) << "an outline without the focus";
    bench.HostSays("\x1b[?25l");
    bench.control.SetSelection(5, 0, 6, 0);
    EXPECT_EQ(bench.ColorAt(5, 0).name(), PaletteColor(PaletteRole::Selection).name());
    EXPECT_EQ(bench.ColorAt(7, 0).name(), kPaper.name());

    const QImage before = bench.Picture();
    bench.Host().Drop();
    bench.control.ClearSelection();
    const QImage quiet = bench.Picture();
    QTest::keyClick(&bench.view, Qt::Key_A);
    EXPECT_NE(bench.Picture(), quiet) << "a key without a line leaves a sign";
    EXPECT_NE(before, quiet);
}

// Neighbours whose arms have the same weight must meet without a gap or a step.
struct JoinCase
{
    const char* name;
    const char* first; // the second stands to the right, or below
    const char* second;
    bool below;
};

class ViewBoxes : public testing::TestWithParam<JoinCase>
{};

TEST_P(ViewBoxes, Join)
{
    const JoinCase& c = GetParam();
    ViewBench bench;
    bench.HostSays(std::string("\x1b[?25l") + c.first + (c.below ? "\r\n" : "") + c.second);
    const QImage picture = bench.Picture();
    const QRect first = bench.view.CellRect(0, 0);
    int inked = 0;
    for (int i = 0; i < (c.below ? first.width() : first.height()); ++i) {
        const QPoint in = c.below ? QPoint(first.left() + i, first.bottom()) : QPoint(first.right(), first.top() + i);
        const QPoint out = in + (c.below ? QPoint(0, 1) : QPoint(1, 0));
        EXPECT_EQ(picture.pixel(in), picture.pixel(out)) << i;
        inked += picture.pixelColor(in) == kText ? 1 : 0;
    }
    EXPECT_GT(inked, 0);
}

INSTANTIATE_TEST_SUITE_P(All, ViewBoxes,
                         testing::Values(JoinCase{"Light", "─", "┼", false}, JoinCase{"LightEnds", "╶", "┤", false},
                                         JoinCase{"Heavy", "━", "╋", false}, JoinCase{"MixedHeavy", "┝", "┥", false},
                                         JoinCase{"Double", "╔", "╗", false},
                                         JoinCase{"DoubleToMixed", "╞", "╡", false},
                                         JoinCase{"LightDown", "┬", "│", true}, JoinCase{"HeavyDown", "┳", "┃", true},
                                         JoinCase{"DoubleDown", "╦", "╬", true},
                                         JoinCase{"DoubleDownMixed", "╥", "╨", true},
                                         JoinCase{"Blocks", "█", "▌", false}, JoinCase{"Halves", "▄", "▀", true}),
                         [](const auto& test) { return test.param.name; });

struct PatternCase
{
    const char* name;
    const char* text;
    double x, y; // a place in the cell
    bool inked;
};

class ViewPatterns : public testing::TestWithParam<PatternCase>
{};

TEST_P(ViewPatterns, AreDrawn)
{
    const PatternCase& c = GetParam();
    ViewBench bench;
    bench.HostSays(std::string("\x1b[?25l") + c.text);
    const QRect cell = bench.view.CellRect(0, 0);
    const QPoint at(cell.left() + int(c.x * (cell.width() - 1)), cell.top() + int(c.y * (cell.height() - 1)));
    EXPECT_EQ(bench.Picture().pixelColor(at).name(), (c.inked ? kText : kPaper).name());
}

INSTANTIATE_TEST_SUITE_P(
    All, ViewPatterns,
    testing::Values(
        PatternCase{"BrailleDot1", "⠁", 0.25, 0.13, true}, PatternCase{"BrailleDot8", "⡀", 0.8, 0.13, false},
        PatternCase{"Sextant1", "🬀", 0, 0, true}, PatternCase{"Sextant1Only", "🬀", 0, 0.5, false},
        PatternCase{"SextantBehindLeftHalf", "🬔", 1, 0, true}, // parts 2, 3, 5: after the gap in the list
        PatternCase{"LastSextant", "🬻", 0, 0, false}, PatternCase{"LastSextantEnd", "🬻", 1, 1, true},
        PatternCase{"WedgeBelow", "🬼", 0, 1, true}, PatternCase{"WedgeBelowAway", "🬼", 1, 0, false},
        PatternCase{"WedgeAbove", "🭒", 1, 0, true}, PatternCase{"WedgeAboveAway", "🭒", 0, 1, false},
        PatternCase{"LeftTriangle", "🭬", 0, 0.5, true}, PatternCase{"LeftTriangleOnly", "🭬", 1, 0.5, false},
        PatternCase{"LeftMissing", "🭨", 0, 0.5, false}, PatternCase{"UpperQuarter", "🮂", 1, 0.1, true},
        PatternCase{"UpperQuarterEnd", "🮂", 1, 0.5, false}, PatternCase{"Separator", "\ue0b0", 0, 0.5, true},
        PatternCase{"SeparatorTip", "\ue0b0", 1, 0, false}, PatternCase{"RoundBack", "\ue0b6", 1, 0.5, true},
        PatternCase{"LowerRight", "\ue0ba", 1, 1, true}, PatternCase{"LowerRightAway", "\ue0ba", 0, 0, false},
        PatternCase{"UpperLeft", "\ue0bc", 0, 0, true}, PatternCase{"UpperLeftAway", "\ue0bc", 1, 1, false}),
    [](const auto& test) { return test.param.name; });

TEST(ViewPaint, TheHostsOwnColoursAreFollowed)
{
    ViewBench bench;
    bench.HostSays("\x1b]10;#102030\x1b\\\x1b]11;#F0E0D0\x1b\\\x1b]12;#00A000\x1b\\█ \x1b[3;5H");
    EXPECT_EQ(bench.ColorAt(0, 0).name(), u"#102030"_s);
    EXPECT_EQ(bench.ColorAt(1, 0).name(), u"#f0e0d0"_s);
    EXPECT_EQ(bench.ColorAt(30, 8).name(), u"#f0e0d0"_s);
    EXPECT_EQ(bench.ColorAt(4, 2).name(), u"#00a000"_s);
    bench.HostSays("\x1b]110\x1b\\\x1b]111\x1b\\\x1b]112\x1b\\");
    EXPECT_EQ(bench.ColorAt(0, 0).name(), kText.name());
    EXPECT_EQ(bench.ColorAt(1, 0).name(), kPaper.name());
}

TEST(ViewPaint, CursorAndSelectionAreSeenOnEveryColour)
{
    ViewBench bench;
    const QColor cursor = PaletteColor(PaletteRole::Cursor);
    const QColor selection = PaletteColor(PaletteRole::Selection);
    const auto paint = [&](const QColor& color) {
        bench.HostSays(QStringLiteral("\r\x1b[48;2;%1;%2;%3m  \b")
                           .arg(color.red())
                           .arg(color.green())
                           .arg(color.blue())
                           .toStdString());
    };
    paint(cursor);
    EXPECT_GE(ContrastOf(bench.ColorAt(1, 0).rgb(), cursor.rgb()), VisibleContrast);
    paint(selection);
    bench.control.SetSelection(0, 0, 0, 0);
    EXPECT_GE(ContrastOf(bench.ColorAt(0, 0).rgb(), selection.rgb()), VisibleContrast);
    bench.HostSays("\x1b[m\x1b[2;1H");
    bench.control.Settings().SetValue(Setting("LegibleFont"), true);
    bench.HostSays("\x1b[38;2;30;30;30m█\x1b[m");
    EXPECT_GE(ContrastOf(bench.ColorAt(0, 1).rgb(), kPaper.rgb()), LegibleContrast);
}

TEST(ViewPaint, TheCursorHasTheShapeOfTheSettingsUntilTheHostAsksForAnother)
{
    ViewBench bench;
    const auto shape = [&] { return bench.control.Screen().Modes().cursor; };
    bench.control.Settings().SetValue(Setting("CursorType"), int(emu::CursorShape::Bar));
    EXPECT_EQ(shape(), emu::CursorShape::Bar);
    EXPECT_EQ(bench.ColorAt(0, 0).name(), kPaper.name());
    bench.HostSays("\x1b[2 q");
    EXPECT_EQ(shape(), emu::CursorShape::Block);
    EXPECT_EQ(bench.ColorAt(0, 0).name(), PaletteColor(PaletteRole::Cursor).name());
    bench.HostSays("\x1b[0 q");
    EXPECT_EQ(shape(), emu::CursorShape::Bar);
}

TEST(ViewPaint, WideCharactersTakeTwoCellsAndNoMore)
{
    ViewBench bench;
    bench.HostSays("中|\x1b[?25l");
    const QImage with = bench.Picture();
    bench.HostSays("\r  ");
    const QImage without = bench.Picture();
    const QRect bar = bench.view.CellRect(2, 0);
    EXPECT_EQ(with.copy(bar), without.copy(bar));
    const QRect both = bench.view.CellRect(0, 0) | bench.view.CellRect(1, 0);
    EXPECT_NE(with.copy(both), without.copy(both));
}

// --- how often

struct PaintWatch : QObject
{
    explicit PaintWatch(QWidget& watched) { watched.installEventFilter(this); }
    bool eventFilter(QObject*, QEvent* event) override
    {
        if (event->type() == QEvent::Paint) {
            ++paints;
            region += static_cast<QPaintEvent*>(event)->region();
        }
        return false;
    }
    int paints = 0;
    QRegion region;
};

TEST(ViewPaint, OnlyChangedRowsArePainted)
{
    ViewBench bench;
    bench.HostSays("\x1b[?25l1\r\n2\r\n3\r\n4");
    bench.Picture();
    PaintWatch watch(bench.view);
    bench.HostSays("\x1b[3;1Hnew");
    ASSERT_TRUE(QTest::qWaitFor([&] { return watch.paints > 0; }));
    const QRect row = bench.view.CellRect(0, 2);
    EXPECT_EQ(watch.region.boundingRect().top(), row.top());
    EXPECT_EQ(watch.region.boundingRect().bottom(), row.bottom());

    watch.region = {};
    watch.paints = 0;
    bench.control.SetSelection(0, 0, 0, 0);
    ASSERT_TRUE(QTest::qWaitFor([&] { return watch.paints > 0; }));
    EXPECT_EQ(watch.region.boundingRect().bottom(), bench.view.CellRect(0, 0).bottom());
}

TEST(ViewPaint, AFloodIsPaintedFrameByFrame)
{
    ViewBench bench;
    bench.Picture();
    PaintWatch watch(bench.view);
    QElapsedTimer time;
    time.start();
    int pieces = 0;
    for (; time.elapsed() < 200; ++pieces) {
        bench.HostSays("some text\r\n");
        QCoreApplication::processEvents();
    }
    EXPECT_GT(watch.paints, 0);
    EXPECT_LE(watch.paints, time.elapsed() / 16 + 2);
    EXPECT_GT(pieces, watch.paints * 2) << "the rig must be able to see a flood";
}

TEST(ViewPaint, ASynchronisedUpdateIsNotShownHalf)
{
    ViewBench bench;
    bench.Picture();
    PaintWatch watch(bench.view);
    bench.HostSays("\x1b[?2026hhalf");
    QCoreApplication::processEvents();
    EXPECT_EQ(watch.paints, 0);
    bench.HostSays(" whole\x1b[?2026l");
    EXPECT_TRUE(QTest::qWaitFor([&] { return watch.paints > 0; }));
}

} // namespace

} // namespace kestrune
