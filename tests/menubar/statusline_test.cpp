#include "viewbench.h"

#include <QLocale>

namespace kestrune {
namespace {

using namespace Qt::StringLiterals;

MenuTool Panel(int key, const QString& caption, qint16 style, int pixels = 0, ToolType type = ToolType::Panel)
{
    MenuTool tool = Titled(key, caption);
    tool.type = type;
    tool.style = style;
    tool.width = pixels * 15;
    return tool;
}

struct LineBench : ViewBench
{
    LineBench(std::vector<MenuTool> tools, MenuBarView::Surroundings surroundings = {})
        : ViewBench(std::move(surroundings))
    {
        Add(BandOf(u"StatusBar"_s, BandType::StatusBar, std::move(tools)));
    }
    // What a reader is told, for each panel that is seen; places in pixels.
    QWidget* Panel(const QString& text) const
    {
        for (QWidget* child : window.statusBar()->findChildren<QWidget*>())
            if (child->accessibleName() == text && child->isVisible())
                return child;
        return nullptr;
    }
};

TEST(StatusLine, WidthsFollowTheStyles)
{
    const LineBench bench({Panel(1, u"fixed at ninety, though its text is longer than that"_s, 0, 90),
                           Panel(2, u"fit"_s, ToolStyle::FitContents),
                           Panel(3, u"least"_s, ToolStyle::FitContents, 200), Panel(4, u"spring"_s, ToolStyle::Spring),
                           Panel(5, u"own"_s, 0)});
    const auto width = [&](const QString& text) { return bench.Panel(text)->width(); };
    EXPECT_EQ(width(u"fixed at ninety, though its text is longer than that"_s), 90);
    EXPECT_LT(width(u"fit"_s), 60);
    EXPECT_EQ(width(u"least"_s), 200);
    EXPECT_GT(width(u"own"_s), 20) << "a fixed width of nothing is that of the text";
    EXPECT_EQ(bench.Panel(u"own"_s)->geometry().right() + 1, bench.Panel(u"own"_s)->parentWidget()->width());
}

TEST(StatusLine, TextsFollowTheModelAndSayNothingWithoutASession)
{
    LineBench bench({Panel(1101, u"VT220"_s, ToolStyle::FitContents), Panel(1103, u"ready"_s, ToolStyle::Spring)});
    bench.model.SetToolProperty(1101, ToolProperty::Caption, u"Wyse 60, a longer name"_s);
    ViewBench::Settle();
    ASSERT_NE(bench.Panel(u"Wyse 60, a longer name"_s), nullptr);
    bench.model.SetToolProperty(1103, ToolProperty::Enabled, false);
    bench.model.SetToolProperty(1101, ToolProperty::Visible, false);
    ViewBench::Settle();
    EXPECT_EQ(bench.Panel(u"ready"_s), nullptr);
    EXPECT_EQ(bench.Panel(u"Wyse 60, a longer name"_s), nullptr);
}

TEST(StatusLine, ANoticeTakesThePlaceOfTheSpringOnly)
{
    LineBench bench({Panel(1, u"first"_s, 0, 80), Panel(2, u"second"_s, ToolStyle::Spring)});
    bench.view->ShowNotice(u"a notice"_s, std::chrono::minutes(1));
    EXPECT_NE(bench.Panel(u"a notice"_s), nullptr);
    EXPECT_NE(bench.Panel(u"first"_s), nullptr);
    EXPECT_EQ(bench.Panel(u"second"_s), nullptr);
    bench.view->ShowNotice(u"another"_s, std::chrono::minutes(1));
    EXPECT_NE(bench.Panel(u"a notice  another"_s), nullptr) << "the first is still being read";
    bench.view->ShowNotice(u"the last"_s, std::chrono::milliseconds(1));
    EXPECT_TRUE(QTest::qWaitFor([&] { return bench.Panel(u"second"_s) != nullptr; }));
}

TEST(StatusLine, ShowsWhatNobodyReports)
{
    KeyboardLocks lamps;
    int reads = 0;
    QDateTime now(QDate(2026, 3, 4), QTime(15, 6));
    LineBench bench({Panel(1, {}, ToolStyle::FitContents, 0, ToolType::CapsLock),
                     Panel(2, u"Num"_s, ToolStyle::FitContents, 0, ToolType::NumLock),
                     Panel(3, {}, ToolStyle::FitContents, 0, ToolType::Time),
                     Panel(4, {}, ToolStyle::FitContents, 0, ToolType::Date),
                     Panel(5, {}, ToolStyle::FitContents, 0, ToolType::TimeAndDate)},
                    {.locks =
                         [&] {
                             ++reads;
                             return lamps;
                         },
                     .now = [&] { return now; }});
    const QLocale locale;
    EXPECT_NE(bench.Panel(u"CAPS"_s), nullptr);
    EXPECT_NE(bench.Panel(u"Num"_s), nullptr);
    EXPECT_NE(bench.Panel(locale.toString(now.time(), QLocale::ShortFormat)), nullptr);
    EXPECT_NE(bench.Panel(locale.toString(now.date(), QLocale::ShortFormat)), nullptr);
    EXPECT_NE(bench.Panel(locale.toString(now, QLocale::ShortFormat)), nullptr);
    const QImage off = bench.Panel(u"CAPS"_s)->grab().toImage();
    const QImage numOff = bench.Panel(u"Num"_s)->grab().toImage();
    lamps.caps = true;
    now = now.addSecs(60);
    EXPECT_TRUE(
        QTest::qWaitFor([&] { return bench.Panel(locale.toString(now.time(), QLocale::ShortFormat)) != nullptr; }));
    EXPECT_NE(bench.Panel(u"CAPS"_s)->grab().toImage(), off);
    EXPECT_EQ(bench.Panel(u"Num"_s)->grab().toImage(), numOff);
    EXPECT_TRUE(bench.model.RemoveBand(u"StatusBar"_s));
    ViewBench::Settle();
    const int before = reads;
    QTest::qWait(600);
    EXPECT_EQ(reads, before) << "nobody looks at lamps that are not shown";
}

} // namespace
} // namespace kestrune
