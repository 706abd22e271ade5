// The real window, offscreen, driven by clicks and keys.

#include <help/helpkey.h>
#include <help/helpviewer.h>

#include <QApplication>
#include <QLineEdit>
#include <QListWidget>
#include <QMenu>
#include <QTabWidget>
#include <QTest>
#include <QTextBlock>
#include <QTextBrowser>
#include <QTreeWidget>

#include <gtest/gtest.h>

namespace kestrune {

using namespace Qt::StringLiterals;

namespace {

struct ViewerBench
{
    QString kept;
    HelpViewer viewer{{[this] { return kept; }, [this](const QString& text) { kept = text; }}};

    QTextBrowser& Page() { return *viewer.findChild<QTextBrowser*>(); }
    QLineEdit& Field(int tab)
    {
        viewer.findChild<QTabWidget*>()->setCurrentIndex(tab);
        return *viewer.findChild<QTabWidget*>()->widget(tab)->findChild<QLineEdit*>();
    }
    QListWidget& List(int tab) { return *viewer.findChild<QTabWidget*>()->widget(tab)->findChild<QListWidget*>(); }
    QString Shown() const { return viewer.Place().page + u'#' + viewer.Place().heading; }
};

TEST(HelpViewer, PagesByContentsLinksBackAndForward)
{
    ViewerBench bench;
    bench.viewer.Open(HelpViewer::Side::Contents);
    EXPECT_EQ(bench.Shown(), u"start#"_s);
    EXPECT_TRUE(bench.Page().toPlainText().startsWith(u"Getting started"_s));
    emit bench.Page().anchorClicked(QUrl(u"keys.md"_s));
    EXPECT_EQ(bench.Shown(), u"keys#"_s);
    EXPECT_EQ(bench.viewer.findChild<QTreeWidget*>()->currentItem()->text(0), u"The keyboard"_s);
    emit bench.Page().anchorClicked(QUrl(u"https://example.com/"_s)); // no page of ours: nothing happens
    EXPECT_EQ(bench.Shown(), u"keys#"_s);
    bench.viewer.Open({u"menus"_s, u"Tools"_s});
    EXPECT_EQ(bench.Page().textCursor().block().text(), u"Tools"_s);
    EXPECT_GT(bench.Page().textCursor().position(), 0);
    QApplication::setActiveWindow(&bench.viewer);
    QTest::keyClick(&bench.viewer, Qt::Key_Left, Qt::AltModifier);
    EXPECT_EQ(bench.Shown(), u"keys#"_s);
    QTest::keyClick(&bench.viewer, Qt::Key_Left, Qt::AltModifier);
    QTest::keyClick(&bench.viewer, Qt::Key_Left, Qt::AltModifier);
    EXPECT_EQ(bench.Shown(), u"start#"_s);
    QTest::keyClick(&bench.viewer, Qt::Key_Right, Qt::AltModifier);
    EXPECT_EQ(bench.Shown(), u"keys#"_s);
}

TEST(HelpViewer, IndexAndSearchLeadToTheirPlaces)
{
    ViewerBench bench;
    bench.viewer.Open(HelpViewer::Side::Index);
    QTest::keyClicks(&bench.Field(1), u"fingerp"_s);
    QTest::keyClick(&bench.Field(1), Qt::Key_Return);
    EXPECT_EQ(bench.Shown(), u"connecting#SSH"_s);

    QTest::keyClicks(&bench.Field(2), u"garbled"_s);
    EXPECT_GE(bench.List(2).count(), 1);
    QTest::keyClick(&bench.Field(2), Qt::Key_Return);
    EXPECT_EQ(bench.Shown(), u"terminals#When the screen is garbled"_s);
    bench.Field(2).setText(u"zebra"_s);
    ASSERT_EQ(bench.List(2).count(), 1);
    EXPECT_EQ(bench.List(2).item(0)->text(), u"Nothing found"_s);
    QTest::keyClick(&bench.Field(2), Qt::Key_Return);
    EXPECT_EQ(bench.Shown(), u"terminals#When the screen is garbled"_s);
}

TEST(HelpViewer, RemembersItsPlaceAndStandsBadOnes)
{
    QString kept;
    {
        ViewerBench bench;
        bench.viewer.Open({u"printing"_s, {}});
        bench.viewer.setGeometry(40, 50, 600, 400);
        QTest::keyClick(&bench.viewer, Qt::Key_Escape);
        EXPECT_FALSE(bench.viewer.isVisible());
        kept = bench.kept;
    }
    const auto open = [](const QString& text) {
        return std::make_unique<HelpViewer>(HelpViewer::Memory{[text] { return text; }, [](const QString&) {}});
    };
    const auto again = open(kept);
    EXPECT_EQ(again->geometry(), QRect(40, 50, 600, 400));
    EXPECT_EQ(again->Place().page, u"printing"_s);
    for (const QString& bad : {u"90000,90000,600,400;gone"_s, u"1,2,3,4;"_s, u"nonsense"_s, u";;;,,,"_s}) {
        const auto viewer = open(bad);
        EXPECT_EQ(viewer->size(), QSize(900, 640)) << bad.toStdString();
        EXPECT_EQ(viewer->Place().page, u"start"_s) << bad.toStdString();
    }
}

TEST(HelpKey, AsksForThePageOfWhatHasTheKeyboard)
{
    QStringList asked;
    const HelpKey key([&](const QString& page) { asked.append(page); });
    QMenu menu;
    QLineEdit other;
    QTest::keyClick(&menu, Qt::Key_F1);
    QTest::keyClick(&menu, Qt::Key_F1, Qt::ShiftModifier);
    QTest::keyClick(&other, Qt::Key_F1);
    EXPECT_EQ(asked, QStringList{u"menus"_s});
}

} // namespace

} // namespace kestrune
