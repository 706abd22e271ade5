// The control and its screen: text, selection, history, events, settings that take effect live.

#include <emulator/engine/personality.h>
#include <fakes/emulatorbench.h>
#include <fakes/failures.h>

#include <QHash>

#include <gtest/gtest.h>

#include <tuple>

namespace kestrune {

using namespace Qt::StringLiterals;

namespace {

TEST(EmulatorScreen, TextIsReadAndWrittenByPlace)
{
    EmulatorBench bench(EmulatorBench::Vt220, 20, 5);
    bench.Connect();
    bench.HostSays("one\r\ntwo\x1b"); // in the middle of a sequence
    auto& control = bench.control;
    EXPECT_EQ(std::tuple(control.col(), control.Row()), std::tuple(3, 1));
    EXPECT_EQ(control.GetText(), u"two"_s.leftJustified(20));
    EXPECT_EQ(control.GetText(1, 0, 2), u"ne"_s);
    EXPECT_EQ(control.GetText(0, 9), QString());

    control.SetText(u"fünf"_s, 17, 3);
    control.SetText(u"!"_s);
    EXPECT_EQ(bench.RowText(3), u"                 fün"_s);
    EXPECT_EQ(std::tuple(control.col(), control.Row()), std::tuple(3, 1)) << "the cursor stays";
    bench.HostSays("[1;1HX"); // the sequence goes on
    EXPECT_EQ(bench.RowText(0), u"Xne"_s);
    EXPECT_EQ(bench.RowText(1), u"two!"_s);

    control.Clear(1, 0, 2, 1);
    EXPECT_EQ(bench.RowText(0), u"X"_s);
    EXPECT_EQ(bench.RowText(1), u"t  !"_s);
    control.Locate(5, 2);
    bench.HostSays("here");
    EXPECT_EQ(bench.RowText(2), u"     here"_s);
    control.Clear();
    EXPECT_EQ(bench.RowText(2), QString());
    EXPECT_EQ(FailureNumber([&] { control.SetText(u"x"_s, 20, 0); }), 5);
    EXPECT_EQ(FailureNumber([&] { control.SetText(u"x"_s, 0, 0, 64); }), 5);
    EXPECT_EQ(FailureNumber([&] { control.Locate(0, 0, 1); }), 5);
}

TEST(EmulatorScreen, ProtectedTextCanBeLeftOut)
{
    EmulatorBench bench;
    bench.Connect();
    bench.HostSays("\x1b[1\"qName:\x1b[0\"q Ada");
    EXPECT_EQ(bench.control.GetText(0, 0, 9), u"Name: Ada"_s);
    EXPECT_EQ(bench.control.GetText(0, 0, 9, true), u"      Ada"_s);
}

TEST(EmulatorScreen, LinesWrappedAnewTakeTheSelectionAndTheViewAlong)
{
    EmulatorBench bench(EmulatorBench::Vt220, 20, 4);
    bench.Connect();
    bench.control.Settings().SetValue(Setting("ReflowOnResize"), true);
    bench.HostSays("a line of some length\r\n1\r\n2\r\n3\r\nthe second long line");
    bench.control.ScrollTo(1);
    bench.control.SetSelection(4, 3, 13, 3);
    ASSERT_EQ(bench.control.Selection(), u"second lon"_s);

    bench.control.Resize(10, 4, 80, 64);
    EXPECT_EQ(bench.control.Selection(), u"second lon"_s);
    EXPECT_EQ(bench.control.RowsBack(), 2);
    EXPECT_EQ(bench.control.GetText(0, -bench.control.RowsBack()).trimmed(), u"h"_s) << "the same line on top";
    bench.control.Resize(30, 4, 240, 64);
    EXPECT_EQ(bench.control.Selection(), u"second lon"_s);
    EXPECT_EQ(bench.RowText(3), u"the second long line"_s);

    bench.control.SetSelection(SelectionArea{0, 0, 5, 2, true});
    bench.control.Resize(12, 4, 96, 64);
    EXPECT_EQ(bench.control.Selection(), QString()) << "a rectangle does not stand on lines";
}

struct SelectionCase
{
    const char* name;
    SelectionArea area;
    QString text;
};

class EmulatorSelection : public testing::TestWithParam<SelectionCase>
{};

TEST_P(EmulatorSelection, GivesTheTextThatPeopleMean)
{
    EmulatorBench bench(EmulatorBench::Vt220, 10, 5);
    bench.Connect();
    bench.HostSays("gone\r\nleft\r\nabcdefghijklm\r\n中文 x\r\nlast"); // "gone" is in the history
    bench.control.SetSelection(GetParam().area);
    EXPECT_EQ(bench.control.Selection(), GetParam().text);
    bench.control.Copy();
    EXPECT_EQ(bench.clipboard.standard, GetParam().text);
}

INSTANTIATE_TEST_SUITE_P(All, EmulatorSelection,
                         testing::Values(SelectionCase{"PartOfARow", {1, 0, 2, 0, false}, u"ef"_s},
                                         SelectionCase{"TrailingBlanksCut", {0, 0, 9, 0, false}, u"left"_s},
                                         SelectionCase{"SoftWrapJoined", {2, 1, 9, 2, false}, u"cdefghijklm"_s},
                                         SelectionCase{"WideOnce", {0, 3, 9, 3, false}, u"中文 x"_s},
                                         SelectionCase{"BlockKeepsRows", {2, 1, 3, 2, true}, u"cd\nm"_s},
                                         SelectionCase{"FromTheHistory", {2, -1, 3, 0, false}, u"ne\nleft"_s}),
                         [](const auto& test) { return test.param.name; });

TEST(EmulatorScreen, SelectionStaysOnItsTextAndGoesWithIt)
{
    EmulatorBench bench(EmulatorBench::Vt220, 10, 4);
    bench.Connect();
    auto& control = bench.control;
    int announced = 0;
    QObject::connect(&control, &ctlEmulator::SelectionChange, [&] { ++announced; });
    bench.HostSays("one\r\ntwo\r\nthree\r\n$ ");
    control.SetSelection(0, 1, 2, 1);
    bench.HostSays("ls\r\n");
    EXPECT_EQ(control.SelectedArea(), (SelectionArea{0, 0, 2, 0, false})) << "moved up with its text";
    bench.HostSays("\x1b[1;6Hx"); // beside it
    EXPECT_EQ(control.Selection(), u"two"_s);
    bench.HostSays("\x1b[4;1H\r\n\r\n\r\n");
    EXPECT_EQ(control.Selection(), u"two"_s) << "in the history";
    control.SetSelection(0, 3, 5, 3);
    bench.HostSays("over");
    EXPECT_FALSE(control.SelectedArea());
    EXPECT_EQ(announced, 0) << "only the user's own selecting is an event";

    control.Settings().Set(u"HistoryRows"_s, 2);
    control.SetSelection(0, -2, 9, -1);
    bench.HostSays("\x1b[4;1H\r\n\r\n\r\n");
    EXPECT_FALSE(control.SelectedArea()) << "fell out of the history";
}

TEST(EmulatorScreen, SelectionTakesEdgesAndOrder)
{
    EmulatorBench bench(EmulatorBench::Vt220, 10, 4);
    bench.Connect();
    bench.HostSays("a\r\nb\r\nc\r\nd\r\ne\r\nf");
    auto& control = bench.control;
    int left = 9, top = 9, right = 9, bottom = 9;
    EXPECT_FALSE(control.GetSelection(left, top, right, bottom));
    EXPECT_EQ(std::tuple(left, top, right, bottom), std::tuple(0, 0, 0, 0));
    control.SetSelection(0, -1000);
    EXPECT_TRUE(control.GetSelection(left, top, right, bottom));
    EXPECT_EQ(std::tuple(left, top, right, bottom), std::tuple(0, -2, 9, 3));
    EXPECT_EQ(control.Selection(), u"a\nb\nc\nd\ne\nf"_s);
    control.SetSelection(5, 3, 2, 1);
    EXPECT_EQ(control.SelectedArea(), (SelectionArea{2, 1, 5, 3, false}));
    control.SetCopySelMode(1);
    control.SetSelection(5, 1, 2, 3);
    EXPECT_EQ(control.SelectedArea(), (SelectionArea{2, 1, 5, 3, true}));
    control.ClearSelection();
    bench.clipboard.standard = u"kept"_s;
    control.Copy();
    EXPECT_EQ(bench.clipboard.standard, u"kept"_s);
    control.Copy(0, 0, 0, 1);
    EXPECT_EQ(bench.clipboard.standard, u"c\nd"_s);
    control.CopyHistory();
    EXPECT_EQ(bench.clipboard.standard, u"a\nb\nc\nd\ne\nf"_s);
}

TEST(EmulatorScreen, WordsAndLines)
{
    EmulatorBench bench(EmulatorBench::Vt220, 20, 5);
    bench.Connect();
    bench.HostSays("see /usr/bin-x, (größe) https://example.org/long?q=1 ok\r\nnext");
    const auto word = [&](int column, int row) {
        bench.control.SetSelection(bench.control.WordAt(column, row));
        return bench.control.Selection();
    };
    EXPECT_EQ(word(6, 0), u"/usr/bin-x"_s);
    EXPECT_EQ(word(14, 0), u","_s);
    EXPECT_EQ(word(18, 0), u"größe"_s.left(3)); // a word ends with its row
    bench.control.SetSelection(bench.control.LineAt(1));
    EXPECT_EQ(bench.control.Selection(), u"see /usr/bin-x, (größe) https://example.org/long?q=1 ok"_s);
}

TEST(EmulatorScreen, OutputDoesNotPullTheHistoryViewDownTypingDoes)
{
    EmulatorBench bench(EmulatorBench::Vt220, 10, 4);
    bench.Connect();
    auto& control = bench.control;
    bench.HostSays("1\r\n2\r\n3\r\n4\r\n5\r\n6\r\n7\r\n8");
    EXPECT_FALSE(control.HistoryVisible());
    control.ScrollHistory(int(ScrollCommand::LineUp));
    const auto topRow = [&] { return bench.RowText(-control.RowsBack()); };
    EXPECT_EQ(topRow(), u"4"_s);
    bench.HostSays("\r\n9\r\n10");
    EXPECT_EQ(topRow(), u"4"_s);
    control.ScrollHistory(int(ScrollCommand::Top));
    EXPECT_EQ(topRow(), u"1"_s);
    control.ScrollTo(1'000'000);
    EXPECT_EQ(topRow(), u"1"_s);
    control.ScrollHistory(int(ScrollCommand::PageDown));
    EXPECT_EQ(topRow(), u"4"_s);
    control.SetLockHistory(true);
    control.TypeKey({emu::Key::Text, 0, "x"});
    EXPECT_TRUE(control.HistoryVisible());
    control.SetLockHistory(false);
    control.TypeKey({emu::Key::Text, 0, "x"});
    EXPECT_FALSE(control.HistoryVisible());
    control.SetHistoryVisible(true);
    EXPECT_EQ(control.RowsBack(), 3);
    control.Settings().Set(u"HistoryRows"_s, 0);
    EXPECT_EQ(control.RowsBack(), 0);
    EXPECT_EQ(FailureNumber([&] { control.ScrollHistory(5); }), 5);
}

TEST(EmulatorScreen, ExtendedSizeAndPages)
{
    EmulatorBench bench;
    auto& control = bench.control;
    QStringList events;
    QObject::connect(&control, &ctlEmulator::ScreenSizeChange, [&](int c, int r, int p, bool extended) {
        events << u"size %1,%2,%3,%4"_s.arg(c).arg(r).arg(p).arg(extended);
    });
    QObject::connect(&control, &ctlEmulator::GridChanged, [&] { events << u"grid"_s; });
    QObject::connect(&control, &ctlEmulator::CursorMove,
                     [&](int c, int r, int p) { events << u"cursor %1,%2,%3"_s.arg(c).arg(r).arg(p); });
    const auto taken = [&] {
        bench.clock.RunPosted();
        return std::exchange(events, {});
    };
    control.Settings().SetValue(Setting("TermType"), 13);
    bench.Connect();
    taken();
    control.SetScrMode(1);
    EXPECT_EQ(control.ScrMode(), 1);
    EXPECT_EQ(taken(), (QStringList{u"size 132,24,1,1"_s, u"grid"_s}));
    EXPECT_EQ(bench.Host().size.cols, 132);
    control.Resize(100, 40, 800, 640); // the window: for later
    EXPECT_EQ(control.Cols(), 132);
    control.Settings().SetValue(Setting("ExtRows"), 43);
    EXPECT_EQ(taken(), (QStringList{u"size 132,43,1,1"_s, u"grid"_s}));
    control.SetScrMode(0);
    EXPECT_EQ(taken(), (QStringList{u"size 100,40,1,0"_s, u"grid"_s}));
    EXPECT_EQ(bench.Host().size.rows, 40);
    EXPECT_EQ(FailureNumber([&] { control.SetScrMode(2); }), 5);

    control.Settings().SetValue(Setting("Pages"), 2);
    control.Locate(4, 3, 1);
    EXPECT_EQ(control.Page(), 1);
    EXPECT_EQ(taken(), (QStringList{u"size 100,40,2,0"_s, u"cursor 4,3,1"_s}));
    EXPECT_EQ(FailureNumber([&] { control.SetPage(2); }), 5);
    EXPECT_EQ(FailureNumber([&] { control.SetPage(-1); }), 5);
    EXPECT_EQ(control.Page(), 1);
    bench.Host().HostSays("\x1b[1$~");
    EXPECT_EQ(taken(), QStringList{u"grid"_s});
}

TEST(EmulatorScreen, EventsComeOnceATurn)
{
    EmulatorBench bench;
    bench.Connect();
    QStringList events;
    auto& control = bench.control;
    QObject::connect(&control, &ctlEmulator::CursorMove,
                     [&](int c, int r, int p) { events << u"cursor %1,%2,%3"_s.arg(c).arg(r).arg(p); });
    QObject::connect(&control, &ctlEmulator::ScreenSizeChange, [&](int c, int r, int p, bool extended) {
        events << u"size %1,%2,%3,%4"_s.arg(c).arg(r).arg(p).arg(extended);
    });
    QObject::connect(&control, &ctlEmulator::TermTypeChange, [&](int type) { events << u"type %1"_s.arg(type); });
    QObject::connect(&control, &ctlEmulator::KeyboardLock, [&](bool on) { events << u"lock %1"_s.arg(on); });
    QObject::connect(&control, &ctlEmulator::HostTitleChange, [&](const QString& t) { events << u"title "_s + t; });
    QObject::connect(&control, &ctlEmulator::Bell, [&] { events << u"bell"_s; });
    const auto taken = [&] {
        bench.clock.RunPosted();
        return std::exchange(events, {});
    };
    for (const char* piece : {"a", "bc\a\a", "\x1b]0;Tïtle\a", "d"})
        bench.Host().HostSays(piece);
    EXPECT_TRUE(events.isEmpty());
    EXPECT_EQ(taken(), (QStringList{u"cursor 4,0,0"_s, u"title Tïtle"_s, u"bell"_s}));
    bench.Host().HostSays("x\b");
    EXPECT_EQ(taken(), QStringList());
    control.SetLockKeyboard(true);
    EXPECT_EQ(taken(), QStringList{u"lock 1"_s});
    control.Resize(100, 40, 800, 640);
    EXPECT_EQ(taken(), QStringList{u"size 100,40,1,0"_s});
    control.Settings().Set(u"TermType"_s, 16);
    EXPECT_EQ(taken(), QStringList{u"type 16"_s});
    for (int i = 0; i < 10; ++i) { // a flood
        bench.Host().HostSays("\r" + std::string(10'000, '\n') + std::string(size_t(i), 'x'));
        bench.clock.RunPosted();
    }
    EXPECT_LE(taken().size(), 1);
    bench.clock.Advance(std::chrono::seconds(1));
    EXPECT_EQ(taken(), QStringList{u"cursor 9,39,0"_s}) << "the last place is told in the end";
    QStringList told;
    for (int i = 0; i < 10; ++i) {
        bench.Host().HostSays(std::string("\x1b]0;") + char('0' + i) + "\a");
        told += taken();
    }
    EXPECT_EQ(told, QStringList{u"title 0"_s});
    bench.clock.Advance(std::chrono::seconds(1));
    EXPECT_EQ(taken(), QStringList{u"title 9"_s});
}

TEST(EmulatorScreen, SettingsTakeEffectLive)
{
    EmulatorBench bench;
    bench.Connect();
    auto& settings = bench.control.Settings();
    bench.HostSays("\xc3\xa9");
    settings.Set(u"Charset"_s, u"ISO-8859-1"_s);
    bench.HostSays("\xe9");
    settings.Set(u"charset"_s, u"ibm437"_s);
    bench.HostSays("\x82");
    EXPECT_EQ(bench.RowText(0), u"ééé"_s);
    settings.Set(u"Strip8th"_s, true);
    bench.HostSays("\xc1");
    EXPECT_EQ(bench.RowText(0), u"éééA"_s);

    settings.Set(u"Charset"_s, u"Klingon"_s);
    EXPECT_EQ(bench.RowText(1), u"[There is no character set \"Klingon\".]"_s);
    settings.Set(u"TermType"_s, 98);
    EXPECT_TRUE(bench.RowText(2).startsWith(u"[The terminal type 98 has not been implemented at this time."_s));
    bench.control.Reset();
    EXPECT_EQ(bench.RowText(0), QString());
}

TEST(EmulatorScreen, CustomTypesAreWhatTheInstallationSays)
{
    EmulatorBench bench;
    bench.Connect();
    const QHash<QString, QString> rows{{u"TT80"_s, u"1,VT320,Our VT320"_s},
                                       {u"TT81"_s, u"0,VT320,out of use"_s},
                                       {u"TT82"_s, u"1, sco-console,SCO"_s},
                                       {u"TT83"_s, u"1,VT9000,unknown"_s},
                                       {u"TT84"_s, u"1"_s}};
    QObject::connect(&bench.control, &ctlEmulator::ReadProfile,
                     [&](const QString& section, const QString& key, QString* value, bool* found) {
                         *value = section == u"Custom" ? rows.value(key) : QString();
                         *found = true;
                     });
    const struct
    {
        int number;
        int like;
    } types[] = {{80, 13}, {81, 8}, {82, 15}, {83, 8}, {84, 8}, {77, 77}, {14, 14}};
    for (const auto& type : types) {
        bench.control.Settings().Set(u"TermType"_s, type.number);
        EXPECT_EQ(bench.control.Screen().CurrentPersonality().number, type.like) << type.number;
    }
}

TEST(EmulatorScreen, MappingAndModesFollowTheSettings)
{
    EmulatorBench bench;
    bench.Connect();
    auto& settings = bench.control.Settings();
    settings.Set(u"Charset"_s, u"Latin1"_s);
    settings.Set(u"CharacterMapping"_s, u"A4=20AC"_s);
    bench.HostSays("\xa4");
    EXPECT_EQ(bench.RowText(0), u"€"_s);
    settings.Set(u"CharacterMapping"_s, u"nonsense"_s);
    EXPECT_TRUE(bench.RowText(1).startsWith(u"[The character mapping \"nonsense\""_s));
    settings.Set(u"Ansi8Bit"_s, true);
    bench.Host().sent.clear();
    bench.HostSays("\x1b[5n");
    EXPECT_EQ(bench.Host().sent, "\x9b"
                                 "0n");
    settings.Set(u"DisableAppMode"_s, true);
    bench.HostSays("\x1b[?1h");
    EXPECT_EQ(bench.control.Screen().KeyBytes({emu::Key::Up, 0, {}}), "\x9b"
                                                                      "A");
}

TEST(EmulatorScreen, WhatIsNotBuiltSaysSo)
{
    EmulatorBench bench;
    auto& control = bench.control;
    const auto text = [&](auto run) {
        try {
            run();
        } catch (const Failure& failure) {
            EXPECT_EQ(failure.Number(), ErrorNumber::NotImplemented);
            return failure.Text();
        }
        return QString();
    };
    EXPECT_EQ(text([&] { control.Upload(u"x"_s, 0, 0); }),
              u"The file transfer has not been implemented at this time."_s);
    EXPECT_EQ(FailureNumber([&] { control.Reset(7); }), 5);
}

} // namespace

} // namespace kestrune
