// What a screen reader reads and hears.

#include "viewbench.h"

#include <emulator/view/readabletext.h>
#include <emulator/view/terminalaccess.h>

#include <QAccessible>

#include <gtest/gtest.h>

namespace kestrune {

using namespace Qt::StringLiterals;

namespace {

TEST(Readable, TextAndPlacesAgree)
{
    EmulatorBench bench(EmulatorBench::Vt220, 20, 4);
    bench.Connect().HostSays("one  \r\n日本x\r\n$ ");
    const ReadableText text(bench.control.Screen(), 0);
    EXPECT_EQ(text.Text(), u"one\n日本x\n$ \n\n"_s) << "blanks as far as the cursor";
    EXPECT_EQ(text.CursorOffset(), 10);
    EXPECT_EQ(text.OffsetOf({2, 1}), 5) << "the second wide character";
    EXPECT_EQ(text.PlaceOf(5), (emu::Position{2, 1}));
    EXPECT_EQ(text.OffsetOf({19, 0}), 3) << "beyond the end of a row: its end";
    for (int offset = 0; offset < text.Text().size(); ++offset)
        EXPECT_EQ(text.OffsetOf(text.PlaceOf(offset)), offset);
}

TEST(Readable, ChangesAreNoMoreThanWhatChanged)
{
    EXPECT_EQ(ChangeBetween(u"a\nb\n"_s, u"a\nbc\n"_s), (TextChange{3, {}, u"c"_s}));
    EXPECT_EQ(ChangeBetween(u"abc"_s, u"axc"_s), (TextChange{1, u"b"_s, u"x"_s}));
    EXPECT_EQ(ChangeBetween(u"aa"_s, u"a"_s), (TextChange{1, u"a"_s, {}}));
    EXPECT_EQ(ChangeBetween(u"same"_s, u"same"_s), (TextChange{4, {}, {}}));
}

TEST(Access, AReaderReadsLinesCaretAttributesAndPlaces)
{
    ViewBench bench(20, 4);
    bench.HostSays("plain \x1b[1mbold\x1b[m\r\nsecond\r\n$ ");
    QAccessibleInterface* access = QAccessible::queryAccessibleInterface(&bench.view);
    ASSERT_TRUE(access);
    EXPECT_EQ(access->role(), QAccessible::Terminal);
    EXPECT_FALSE(access->text(QAccessible::Name).isEmpty());
    QAccessibleTextInterface* text = access->textInterface();
    ASSERT_TRUE(text);
    EXPECT_EQ(text->text(0, text->characterCount()), u"plain bold\nsecond\n$ \n\n"_s);
    EXPECT_EQ(text->cursorPosition(), 20);
    int start = 0, end = 0;
    EXPECT_EQ(text->textAtOffset(13, QAccessible::LineBoundary, &start, &end).trimmed(), u"second"_s);
    EXPECT_EQ(text->attributes(7, &start, &end), u"font-weight:bold;"_s);
    EXPECT_EQ(std::pair(start, end), std::pair(6, 10));
    const QRect place = text->characterRect(11);
    EXPECT_EQ(bench.view.mapFromGlobal(place.topLeft()), bench.view.CellRect(0, 1).topLeft());
    EXPECT_EQ(text->offsetAtPoint(place.center()), 11);
    text->setSelection(0, 11, 17);
    EXPECT_EQ(bench.control.Selection(), u"second"_s);
    text->selection(0, &start, &end);
    EXPECT_EQ(std::pair(start, end), std::pair(11, 17));

    for (int i = 0; i < 10; ++i)
        bench.HostSays("more\r\n");
    bench.control.ScrollTo(bench.control.Screen().HistoryCount());
    EXPECT_TRUE(text->text(0, 5) == u"plain"_s) << "history that is in sight is read";
}

QStringList inserted; // the handler is a plain function
void Hear(QAccessibleEvent* event)
{
    if (event->type() == QAccessible::TextUpdated)
        inserted.push_back(static_cast<QAccessibleTextUpdateEvent*>(event)->textInserted());
}

TEST(Access, NewTextIsHeardOnceAndScrollingIsNot)
{
    ViewBench bench(20, 4);
    bench.HostSays("1\r\n2\r\n3\r\n4");
    inserted.clear();
    ScreenAnnouncer announcer(bench.view, Hear); // the view has one for a desktop with a reader
    QObject::connect(&bench.control, &ctlEmulator::ScreenChanged, &bench.view, [&] { announcer.FrameShown(); });
    bench.HostSays("!");
    // The first look only learns what is there; it is over when a later change is heard.
    EXPECT_TRUE(QTest::qWaitFor([&] {
        bench.HostSays("x");
        return !inserted.empty();
    }));
    inserted.clear();
    bench.HostSays("\r\nnew line"); // scrolls
    const auto heard = [&](const QString& what) { return inserted.join(u'|').contains(what); };
    EXPECT_TRUE(QTest::qWaitFor([&] { return heard(u"new line"_s); }));
    EXPECT_FALSE(heard(u"3"_s)) << "rows that only moved up are not told again";
    QObject::disconnect(&bench.control, &ctlEmulator::ScreenChanged, &bench.view, nullptr);
}

} // namespace

} // namespace kestrune
