#include <menubar/sessionbar.h>

#include <gtest/gtest.h>

#include <QLineEdit>
#include <QSignalSpy>
#include <QTest>
#include <QToolButton>
#include <QWheelEvent>

#include "fakes/print.h"

namespace kestrune {
namespace {

using namespace Qt::StringLiterals;

struct TabsBench
{
    explicit TabsBench(int count, int width = 900)
    {
        for (int i = 1; i <= count; ++i)
            tabs.append({quintptr(i), u"host %1"_s.arg(i), u"/a/%1.orcf"_s.arg(i), {}, {}});
        bar.SetTabs(tabs, 1);
        bar.resize(width, bar.sizeHint().height());
        bar.show();
    }
    QStringList Texts() const
    {
        QStringList texts;
        for (int i = 0; i < bar.count(); ++i)
            texts.append(bar.tabText(i));
        return texts;
    }
    QPoint Middle(int index) const { return bar.tabRect(index).center(); }

    SessionBar bar;
    QList<SessionBar::Tab> tabs;
};

TEST(SessionBar, FollowsTheListInAnyOrderAndSaysNothing)
{
    TabsBench bench(4);
    QSignalSpy chosen(&bench.bar, &SessionBar::TabChosen), dragged(&bench.bar, &SessionBar::Dragged);
    bench.tabs.swapItemsAt(0, 3);
    bench.tabs.removeAt(1);
    bench.tabs[0].caption = u"a & b"_s;
    bench.bar.SetTabs(bench.tabs, 1);
    EXPECT_EQ(bench.Texts(), (QStringList{u"a && b"_s, u"host 3"_s, u"host 1"_s}));
    EXPECT_EQ(bench.bar.HandleAt(bench.bar.currentIndex()), 1u);
    EXPECT_EQ(chosen.count() + dragged.count(), 0);
    bench.bar.SetTabs({}, 0);
    EXPECT_EQ(bench.bar.count(), 0);
}

TEST(SessionBar, ALongNameIsCutInTheMiddleAndWholeInTheTip)
{
    TabsBench bench(2);
    const QString name = u"a host with a name that is far too long for a tab, number 17"_s;
    bench.tabs[0].caption = name;
    bench.bar.SetTabs(bench.tabs, 1);
    const QString shown = bench.bar.tabText(0);
    EXPECT_TRUE(shown.startsWith(u"a host"_s) && shown.endsWith(u"17"_s) && shown.contains(u'\u2026'))
        << shown.toStdString();
    EXPECT_LT(bench.bar.fontMetrics().horizontalAdvance(shown), bench.bar.tabRect(0).width());
    EXPECT_TRUE(bench.bar.tabToolTip(0).contains(name));
    EXPECT_EQ(bench.bar.accessibleTabName(0), name);
}

TEST(SessionBar, ADragSaysWhatMovesWhere)
{
    TabsBench bench(3);
    QSignalSpy dragged(&bench.bar, &SessionBar::Dragged);
    QTest::mousePress(&bench.bar, Qt::LeftButton, {}, bench.Middle(0));
    const QPoint past = bench.Middle(1) + QPoint(20, 0);
    for (const QPoint& at : {bench.Middle(0) + QPoint(15, 0), past - QPoint(10, 0), past}) {
        QMouseEvent move(QEvent::MouseMove, at, bench.bar.mapToGlobal(at), Qt::NoButton, Qt::LeftButton, {});
        QCoreApplication::sendEvent(&bench.bar, &move);
    }
    QTest::mouseRelease(&bench.bar, Qt::LeftButton, {}, past);
    QList<quintptr> order{1, 2, 3};
    for (const auto& move : dragged) { // one for each place that it passes
        const quintptr before = move[1].value<quintptr>();
        order.removeOne(move[0].value<quintptr>());
        order.insert(before != 0 ? order.indexOf(before) : order.size(), move[0].value<quintptr>());
    }
    EXPECT_EQ(order, (QList<quintptr>{2, 1, 3}));
    EXPECT_EQ(bench.Texts(), (QStringList{u"host 2"_s, u"host 1"_s, u"host 3"_s})) << "as it is seen";
}

TEST(SessionBar, WhatTheMouseDoes)
{
    TabsBench bench(3);
    QSignalSpy close(&bench.bar, &SessionBar::SessionTabClose), rename(&bench.bar, &SessionBar::RenameWanted),
        menu(&bench.bar, &SessionBar::ToolRightClick);
    QTest::mouseClick(&bench.bar, Qt::MiddleButton, {}, bench.Middle(1));
    QTest::mouseClick(bench.bar.tabButton(2, QTabBar::RightSide), Qt::LeftButton);
    QTest::mouseDClick(&bench.bar, Qt::LeftButton, {}, bench.Middle(1));
    EXPECT_EQ(close.count(), 2);
    EXPECT_EQ(close[0][0].value<quintptr>(), 2u);
    EXPECT_EQ(close[1][0].value<quintptr>(), 3u);
    ASSERT_EQ(rename.count(), 1);
    EXPECT_EQ(rename[0][0].value<quintptr>(), 2u);
    QContextMenuEvent right(QContextMenuEvent::Mouse, bench.Middle(2), bench.bar.mapToGlobal(bench.Middle(2)));
    QCoreApplication::sendEvent(&bench.bar, &right);
    ASSERT_EQ(menu.count(), 1);
    EXPECT_EQ(menu[0][0].value<quintptr>(), 3u);
}

TEST(SessionBar, RenameEndsByEnterEscapeOrGoingElsewhere)
{
    struct Case
    {
        const char* how;
        QString text;
        Qt::Key key;
        QString name; // confirmed; empty: not
    };
    const Case cases[] = {{"enter", u"new"_s, Qt::Key_Return, u"new"_s},
                          {"escape", u"new"_s, Qt::Key_Escape, {}},
                          {"nothing typed", u"  "_s, Qt::Key_Return, {}}};
    for (const Case& row : cases) {
        SCOPED_TRACE(row.how);
        TabsBench bench(2);
        QSignalSpy renamed(&bench.bar, &SessionBar::Renamed), ended(&bench.bar, &SessionBar::RenameEnded);
        EXPECT_FALSE(bench.bar.Rename(99, u"x"_s));
        ASSERT_TRUE(bench.bar.Rename(2, u"host 2"_s));
        auto* box = bench.bar.findChild<QLineEdit*>(u"frmRename"_s);
        EXPECT_EQ(box->selectedText(), u"host 2"_s);
        EXPECT_GE(box->width(), 133);
        EXPECT_GE(box->height(), 16);
        QTest::keyClicks(box, row.text);
        QTest::keyClick(box, row.key);
        EXPECT_EQ(renamed.count(), row.name.isEmpty() ? 0 : 1);
        if (!row.name.isEmpty()) {
            EXPECT_EQ(renamed[0][1].toString(), row.name);
        }
        EXPECT_EQ(ended.count(), 1);
        EXPECT_FALSE(box->isVisible());
    }
}

TEST(SessionBar, AHundredTabsScrollByWheelAndNoneIsChosen)
{
    TabsBench bench(100, 600);
    QSignalSpy chosen(&bench.bar, &SessionBar::TabChosen);
    EXPECT_TRUE(bench.bar.Overflows());
    const int before = bench.bar.tabRect(0).left();
    for (int i = 0; i < 30; ++i) {
        QWheelEvent wheel(QPointF(50, 5), bench.bar.mapToGlobal(QPointF(50, 5)), {}, QPoint(0, -120), {}, {},
                          Qt::NoScrollPhase, false);
        QCoreApplication::sendEvent(&bench.bar, &wheel);
    }
    EXPECT_LT(bench.bar.tabRect(0).left(), before - 600);
    EXPECT_EQ(chosen.count(), 0);
    bench.bar.SetTabs(bench.tabs, 100);
    EXPECT_TRUE(bench.bar.rect().intersects(bench.bar.TabPlace(100)))
        << "the active one comes into view, and is not at " << bench.bar.TabPlace(100).left();
}

TEST(SessionBar, MarksDifferInShapeAndAreSaid)
{
    TabsBench bench(5);
    QList<QImage> seen;
    for (int i = 0; i < 5; ++i)
        bench.tabs[i].mark = static_cast<SessionBar::Mark>(i);
    bench.bar.SetTabs(bench.tabs, 1);
    EXPECT_TRUE(bench.bar.tabIcon(0).isNull());
    for (int i = 1; i < 5; ++i) {
        const QImage shape =
            bench.bar.tabIcon(i).pixmap(16, 16).toImage().convertToFormat(QImage::Format_Alpha8); // no colour
        EXPECT_FALSE(seen.contains(shape)) << i;
        seen.append(shape);
    }
    EXPECT_TRUE(bench.bar.tabToolTip(2).contains(u"Connection lost"_s));
    EXPECT_TRUE(bench.bar.accessibleTabName(2).contains(u"Connection lost"_s));
}

} // namespace
} // namespace kestrune
