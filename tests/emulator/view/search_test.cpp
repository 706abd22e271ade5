// Find in screen and history, and links.

#include "viewbench.h"

#include <emulator/view/droppedtext.h>
#include <emulator/view/links.h>
#include <emulator/view/textsearch.h>

#include <QLabel>
#include <QLineEdit>
#include <QMimeData>
#include <QSignalSpy>
#include <QToolButton>

#include <gtest/gtest.h>

namespace kestrune {

using namespace Qt::StringLiterals;

namespace {

struct SearchCase
{
    const char* name;
    const char* text;
    SearchQuery query;
    std::vector<QString> hits; // from the oldest
};

class SearchFinds : public testing::TestWithParam<SearchCase>
{};

TEST_P(SearchFinds, Hits)
{
    EmulatorBench bench(EmulatorBench::Vt220, 20, 4);
    bench.Connect().HostSays(GetParam().text);
    TextSearch search(bench.control.Screen());
    EXPECT_EQ(search.Start(GetParam().query), QString());
    while (search.Step(1)) {
    }
    std::vector<QString> hits;
    for (int i = 0; i < search.Count(); ++i) {
        search.MoveToNewer();
        const auto hit = *search.Current();
        const auto base = int64_t(bench.control.Screen().HistoryPushed());
        bench.control.SetSelection(
            SelectionArea{hit.column, int(hit.row - base), hit.lastColumn, int(hit.lastRow - base), false});
        hits.push_back(bench.control.Selection());
    }
    EXPECT_EQ(hits, GetParam().hits);
}

INSTANTIATE_TEST_SUITE_P(
    All, SearchFinds,
    testing::Values(SearchCase{"HistoryAndScreen",
                               "one\r\ntwo one\r\n3\r\n4\r\n5\r\none\r\n6",
                               {u"one"_s},
                               {u"one"_s, u"one"_s, u"one"_s}},
                    SearchCase{"Case", "One one ONE", {u"one"_s, true}, {u"one"_s}},
                    SearchCase{"WholeWord", "error errors terror", {u"error"_s, false, true}, {u"error"_s}},
                    SearchCase{"Expression", "a1 b22 c", {u"[a-z]\\d+"_s, false, false, true}, {u"a1"_s, u"b22"_s}},
                    SearchCase{"PlainTextIsNoExpression", "a.c abc", {u"a.c"_s}, {u"a.c"_s}},
                    SearchCase{"AcrossSoftWrap", "0123456789abcdefghijklmnop", {u"ijkl"_s}, {u"ijkl"_s}},
                    SearchCase{"NotAcrossLines", "abc\r\ndef", {u"cd"_s}, {}},
                    SearchCase{"Wide", "x日本語y", {u"本語"_s}, {u"本語"_s}},
                    SearchCase{"EmptyMatchesAreNone", "abc", {u"x*"_s, false, false, true}, {}}),
    [](const auto& test) { return test.param.name; });

TEST(Search, FollowsTheScreenWhileTheHostWrites)
{
    EmulatorBench bench(EmulatorBench::Vt220, 20, 4);
    bench.Connect().HostSays("hit 1\r\nhit 2\r\n");
    TextSearch search(bench.control.Screen());
    search.Start({u"hit"_s});
    const auto finish = [&] {
        while (search.Step(10)) {
        }
    };
    finish();
    search.MoveToOlder();
    search.MoveToOlder();
    EXPECT_EQ(search.CurrentNumber(), 1);
    const auto first = search.Current();
    for (int i = 0; i < 50; ++i)
        bench.HostSays("hit\r\n");
    finish();
    EXPECT_EQ(search.Count(), 52);
    EXPECT_EQ(search.Current(), first) << "it keeps its place";
    EXPECT_TRUE(search.MoveToOlder()) << "round at the oldest";
    EXPECT_EQ(search.CurrentNumber(), 52);
    EXPECT_EQ(search.SpansOf(2), (std::vector<TextSearch::Span>{{0, 3, true}}));
    EXPECT_EQ(search.SpansOf(3), std::vector<TextSearch::Span>{});

    bench.HostSays("\x1b[2J");
    finish();
    EXPECT_EQ(search.Count(), 49) << "what is overwritten is found no more";
    EXPECT_FALSE(search.Current());
    bench.control.Settings().SetValue(Setting("HistoryRows"), 10);
    bench.HostSays("\r\n");
    finish();
    EXPECT_LE(search.Count(), 10);
}

TEST(Search, ALineWithoutEndIsSearchedInPiecesThatAgree)
{
    EmulatorBench bench(EmulatorBench::Vt220, 20, 4);
    std::string text;
    constexpr int count = 1700;
    for (int i = 0; i < count; ++i)
        text += "needle ";
    bench.Connect().HostSays(text);
    TextSearch search(bench.control.Screen());
    search.Start({u"needle"_s});
    while (search.Step(1)) {
    }
    EXPECT_EQ(search.Count(), count);
}

TEST(Search, BadAndHostileExpressionsEnd)
{
    EmulatorBench bench(EmulatorBench::Vt220, 200, 4);
    bench.Connect().HostSays(std::string(150, 'a') + "!");
    TextSearch search(bench.control.Screen());
    EXPECT_FALSE(search.Start({u"(a"_s, false, false, true}).isEmpty());
    EXPECT_FALSE(search.Step(10));
    EXPECT_EQ(search.Start({u"(a+)+$"_s, false, false, true}), QString());
    while (search.Step(10)) {
    }
    EXPECT_EQ(search.Count(), 0);
}

TEST(Search, TheBarFindsMarksAndGivesTheKeysBack)
{
    ViewBench bench(60, 6);
    for (int i = 0; i < 40; ++i)
        bench.HostSays("line " + std::to_string(i) + "\r\n");
    QTest::keyClick(&bench.view, Qt::Key_F, Qt::ControlModifier | Qt::ShiftModifier);
    auto* text = bench.view.findChild<QLineEdit*>();
    ASSERT_TRUE(text && text->isVisible());
    const QImage before = bench.Picture();
    QTest::keyClicks(text, u"line 7"_s);
    EXPECT_TRUE(QTest::qWaitFor([&] { return bench.control.RowsBack() > 20; })) << "it is shown";
    EXPECT_NE(bench.Picture(), before);
    const auto labelSays = [&](const QString& said) {
        const auto labels = bench.view.findChildren<QLabel*>();
        return std::any_of(labels.begin(), labels.end(), [&](const QLabel* label) { return label->text() == said; });
    };
    EXPECT_TRUE(QTest::qWaitFor([&] { return labelSays(u"1 / 1"_s); }));
    text->clear();
    QTest::keyClicks(text, u"line"_s);
    EXPECT_TRUE(QTest::qWaitFor([&] { return labelSays(u"40 / 40"_s); }));
    QTest::keyClick(text, Qt::Key_Return);
    EXPECT_TRUE(labelSays(u"39 / 40"_s));
    QTest::keyClick(text, Qt::Key_Return, Qt::ShiftModifier);
    QTest::keyClick(text, Qt::Key_Return, Qt::ShiftModifier);
    EXPECT_TRUE(labelSays(u"1 / 40 ↻"_s));
    EXPECT_EQ(bench.Host().TakeSent(), "");
    QTest::keyClick(text, Qt::Key_Escape);
    EXPECT_FALSE(text->isVisible());
    EXPECT_TRUE(bench.view.hasFocus());
    bench.view.Find(); // the view goes with the bar open
}

// --- links

struct LinkCase
{
    const char* name;
    const char* text;
    int column;         // of row 0
    const char* target; // empty: no link
};

class Links : public testing::TestWithParam<LinkCase>
{};

TEST_P(Links, AreFound)
{
    EmulatorBench bench(EmulatorBench::Vt220, 40, 4);
    bench.Connect().HostSays(GetParam().text);
    const auto link = LinkAt(bench.control.Screen(), 0, GetParam().column);
    EXPECT_EQ(link ? link->target.toStdString() : "", GetParam().target);
}

INSTANTIATE_TEST_SUITE_P(
    All, Links,
    testing::Values(LinkCase{"Address", "see https://example.org/a?b=c.", 10, "https://example.org/a?b=c"},
                    LinkCase{"BesideIt", "see https://example.org/a.", 25, ""},
                    LinkCase{"InBrackets", "(http://example.org/x_(y))", 5, "http://example.org/x_(y)"},
                    LinkCase{"WithoutScheme", "www.example.org", 0, "https://www.example.org"},
                    LinkCase{"SoftWrapped", "https://example.org/0123456789/0123456789/012345", 3,
                             "https://example.org/0123456789/0123456789/012345"},
                    LinkCase{"Mail", "mailto:a@example.org", 2, "mailto:a@example.org"},
                    LinkCase{"LookAlikeIsVisible", "http://ex\xd0\xb0mple.org", 3, "http://xn--exmple-4nf.org"},
                    LinkCase{"Hosts", "\x1b]8;;https://example.org/y\x1b\\here\x1b]8;;\x1b\\ not", 2,
                             "https://example.org/y"},
                    LinkCase{"HostsBeside", "\x1b]8;;https://example.org/y\x1b\\here\x1b]8;;\x1b\\ not", 6, ""},
                    LinkCase{"HostsScript", "\x1b]8;;javascript:alert(1)\x1b\\here\x1b]8;;\x1b\\", 2, ""},
                    LinkCase{"HostsUnknownScheme", "\x1b]8;;ssh://x/\x1b\\here\x1b]8;;\x1b\\", 2, ""},
                    LinkCase{"NotInsideAWord", "xhttp://example.org", 8, ""}),
    [](const auto& test) { return test.param.name; });

TEST(LinksInTheView, OpenOnlyByControlAndClick)
{
    ViewBench bench;
    QSignalSpy opened(&bench.view, &TerminalView::LinkActivated);
    bench.HostSays("https://example.org/ file:///etc/passwd x");
    QTest::mouseClick(&bench.view, Qt::LeftButton, Qt::NoModifier, bench.Middle(3, 0));
    EXPECT_EQ(opened.size(), 0);
    QTest::mouseClick(&bench.view, Qt::LeftButton, Qt::ControlModifier, bench.Middle(3, 0));
    ASSERT_EQ(opened.size(), 1);
    EXPECT_EQ(opened[0][0].toString(), u"https://example.org/"_s);
    EXPECT_FALSE(opened[0][1].toBool());
    QTest::mouseClick(&bench.view, Qt::LeftButton, Qt::ControlModifier, bench.Middle(25, 0));
    ASSERT_EQ(opened.size(), 2);
    EXPECT_TRUE(opened[1][1].toBool()) << "a file is asked about";
    QTest::mousePress(&bench.view, Qt::LeftButton, Qt::ControlModifier, bench.Middle(3, 0));
    QTest::mouseRelease(&bench.view, Qt::LeftButton, Qt::ControlModifier, bench.Middle(30, 5));
    EXPECT_EQ(opened.size(), 2) << "a drag away changes one's mind";
    bench.HostSays("\x1b[?1000h");
    QTest::mouseClick(&bench.view, Qt::LeftButton, Qt::ControlModifier, bench.Middle(3, 0));
    EXPECT_EQ(opened.size(), 2) << "the host has the mouse";
}

// --- drop

TEST(Drop, PathsAreQuotedAndPastedByThePasteRules)
{
    EXPECT_EQ(TextOfDroppedUrls({QUrl(u"file:///tmp/a.txt"_s), QUrl::fromLocalFile(u"/tmp/it's a $HOME"_s),
                                 QUrl(u"https://example.org/x"_s)}),
              u"/tmp/a.txt '/tmp/it'\\''s a $HOME' https://example.org/x"_s);
    ViewBench bench;
    const auto drop = [&](const QMimeData& data) {
        QDragEnterEvent enter(bench.Middle(2, 2), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(&bench.view, &enter);
        EXPECT_TRUE(enter.isAccepted());
        QDropEvent event(bench.Middle(2, 2), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(&bench.view, &event);
    };
    QMimeData files;
    files.setUrls({QUrl(u"file:///tmp/a b"_s)});
    drop(files);
    EXPECT_EQ(bench.Host().TakeSent(), "'/tmp/a b'");
    QMimeData lines;
    lines.setText(u"one\ntwo\n"_s);
    drop(lines);
    EXPECT_EQ(bench.ask.boxes.size(), 1U) << "several lines are asked about";
}

} // namespace

} // namespace kestrune
