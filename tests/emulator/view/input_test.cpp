// What keys, mouse, input methods and the window's size do.

#include "viewbench.h"

#include <QContextMenuEvent>
#include <QInputMethodEvent>
#include <QSignalSpy>
#include <QWheelEvent>

#include <gtest/gtest.h>

namespace kestrune {

using namespace Qt::StringLiterals;

namespace {

struct KeyCase
{
    const char* name;
    Qt::Key key;
    Qt::KeyboardModifiers modifiers;
    const char* text; // of the event
    const char* before;
    const char* sent;
};

class ViewKeys : public testing::TestWithParam<KeyCase>
{};

TEST_P(ViewKeys, SendBytes)
{
    const KeyCase& c = GetParam();
    ViewBench bench(40, 10, EmulatorBench::LinuxConsole);
    bench.HostSays(c.before);
    QKeyEvent press(QEvent::KeyPress, c.key, c.modifiers, QString::fromUtf8(c.text));
    QCoreApplication::sendEvent(&bench.view, &press);
    EXPECT_EQ(bench.Host().TakeSent(), c.sent);
}

constexpr auto kNone = Qt::NoModifier;
constexpr auto kCtrl = Qt::ControlModifier;
constexpr auto kShift = Qt::ShiftModifier;
constexpr auto kAlt = Qt::AltModifier;
constexpr auto kPad = Qt::KeypadModifier;

INSTANTIATE_TEST_SUITE_P(All, ViewKeys,
                         testing::Values(KeyCase{"Letter", Qt::Key_A, kNone, "a", "", "a"},
                                         KeyCase{"Umlaut", Qt::Key_Odiaeresis, kNone, "ö", "", "ö"},
                                         KeyCase{"ControlLetter", Qt::Key_C, kCtrl, "\x03", "", "\x03"},
                                         KeyCase{"ControlBracket", Qt::Key_BracketLeft, kCtrl, "\x1b", "", "\x1b"},
                                         KeyCase{"AltLetter", Qt::Key_F, kAlt, "f", "",
                                                 "\x1b"
                                                 "f"},
                                         KeyCase{"AltShiftLetter", Qt::Key_F, kAlt | kShift, "F", "",
                                                 "\x1b"
                                                 "F"},
                                         KeyCase{"AltControlLetter", Qt::Key_C, kAlt | kCtrl, "\x03", "", "\x1b\x03"},
                                         KeyCase{"AltGrAsControlAlt", Qt::Key_At, kAlt | kCtrl, "@", "", "@"},
                                         KeyCase{"Enter", Qt::Key_Return, kNone, "\r", "", "\r"},
                                         KeyCase{"PadEnter", Qt::Key_Enter, kPad, "\r", "", "\r"},
                                         KeyCase{"Backspace", Qt::Key_Backspace, kNone, "\b", "", "\x7f"},
                                         KeyCase{"Escape", Qt::Key_Escape, kNone, "\x1b", "", "\x1b"},
                                         KeyCase{"Tab", Qt::Key_Tab, kNone, "\t", "", "\t"},
                                         KeyCase{"Up", Qt::Key_Up, kNone, "", "", "\x1b[A"},
                                         KeyCase{"UpInAppMode", Qt::Key_Up, kNone, "", "\x1b[?1h", "\x1bOA"},
                                         KeyCase{"PadUpWithoutNumLock", Qt::Key_Up, kPad, "", "", "\x1b[A"},
                                         KeyCase{"PadDigit", Qt::Key_7, kPad, "7", "", "7"},
                                         KeyCase{"F1", Qt::Key_F1, kNone, "", "", "\x1b[[A"},
                                         KeyCase{"ShiftAlone", Qt::Key_Shift, kShift, "", "", ""},
                                         KeyCase{"ControlTabIsTheWindows", Qt::Key_Tab, kCtrl, "", "", ""}),
                         [](const auto& test) { return test.param.name; });

TEST(ViewInput, AClickOnTextAnswersByTheMouseTable)
{
    ViewBench bench;
    bench.control.MouseTableAdd(1, u"(\\d)\\. \\w+"_s, u"$1\r"_s, {});
    bench.HostSays("1. Orders");
    QTest::mouseClick(&bench.view, Qt::LeftButton, Qt::NoModifier, bench.Middle(4, 0));
    EXPECT_EQ(bench.Host().TakeSent(), "1\r");
    QTest::mouseClick(&bench.view, Qt::LeftButton, Qt::ShiftModifier, bench.Middle(4, 0));
    QTest::mouseClick(&bench.view, Qt::LeftButton, Qt::NoModifier, bench.Middle(20, 0));
    EXPECT_EQ(bench.Host().TakeSent(), "");
}

TEST(ViewInput, AKeyThatIsHeldSendsAgainUnlessTheHostForbidsIt)
{
    ViewBench bench;
    const auto hold = [&] {
        for (const bool again : {false, true, true}) {
            QKeyEvent press(QEvent::KeyPress, Qt::Key_A, kNone, u"a"_s, again);
            QCoreApplication::sendEvent(&bench.view, &press);
        }
        return bench.Host().TakeSent();
    };
    EXPECT_EQ(hold(), "aaa");
    bench.HostSays("\x1b[?8l");
    EXPECT_EQ(hold(), "a");
    const auto send = [&](QEvent::Type type, quint64 at) {
        QKeyEvent event(type, Qt::Key_A, kNone, u"a"_s);
        event.setTimestamp(at);
        QCoreApplication::sendEvent(&bench.view, &event);
    };
    send(QEvent::KeyRelease, 700);
    send(QEvent::KeyPress, 700); // a repeat that is not marked as one
    EXPECT_EQ(bench.Host().TakeSent(), "");
    send(QEvent::KeyRelease, 800);
    send(QEvent::KeyPress, 850);
    EXPECT_EQ(bench.Host().TakeSent(), "a");
    bench.HostSays("\x1b[?8h");
    EXPECT_EQ(hold(), "aaa");
}

TEST(ViewInput, ControlAndALetterOfAnotherScriptIsTheLetterInItsPlace)
{
    ViewBench bench;
    constexpr quint32 placeOfC = 54;
    QKeyEvent press(QEvent::KeyPress, 0x0421, kCtrl, placeOfC, 0, 0, u"с"_s); // Cyrillic es
    QCoreApplication::sendEvent(&bench.view, &press);
    EXPECT_EQ(bench.Host().TakeSent(), "\x03");
    QKeyEvent plain(QEvent::KeyPress, 0x0421, kNone, placeOfC, 0, 0, u"с"_s);
    QCoreApplication::sendEvent(&bench.view, &plain);
    EXPECT_EQ(bench.Host().TakeSent(), "с");
}

TEST(ViewInput, TheViewsOwnKeysGiveWayToAGivenText)
{
    ViewBench bench;
    bench.HostSays("text");
    bench.control.SetSelection(0, 0, 3, 0);
    QTest::keyClick(&bench.view, Qt::Key_C, kCtrl | kShift);
    EXPECT_EQ(bench.clipboard.standard, u"text"_s);
    QTest::keyClick(&bench.view, Qt::Key_Insert, kShift);
    EXPECT_EQ(bench.Host().TakeSent(), "text");
    bench.control.Settings().SetFKeys(1045, u"mine"_s);
    QTest::keyClick(&bench.view, Qt::Key_Insert, kShift);
    EXPECT_EQ(bench.Host().TakeSent(), "mine");

    QKeyEvent walk(QEvent::KeyPress, Qt::Key_Tab, kCtrl);
    walk.accept();
    QCoreApplication::sendEvent(&bench.view, &walk);
    EXPECT_FALSE(walk.isAccepted());
}

TEST(ViewInput, ZoomAndResizeChangeTheGridAndTellTheHostOnce)
{
    ViewBench bench(80, 24);
    bench.Host().resizes = 0;
    const int before = bench.control.Cols();
    EXPECT_EQ(before, 80);
    QTest::keyClick(&bench.view, Qt::Key_Plus, kCtrl);
    EXPECT_LT(bench.control.Cols(), before);
    EXPECT_EQ(bench.Host().resizes, 1);
    QTest::keyClick(&bench.view, Qt::Key_0, kCtrl);
    EXPECT_EQ(bench.control.Cols(), before);

    bench.Host().resizes = 0;
    for (int i = 1; i <= 20; ++i)
        bench.view.resize(bench.view.SizeForGrid(80 + i, 24 + i));
    ASSERT_TRUE(QTest::qWaitFor([&] { return bench.Host().resizes > 0; }));
    EXPECT_EQ(bench.Host().resizes, 1);
    EXPECT_EQ(bench.Host().size.cols, 100);
    EXPECT_EQ(bench.Host().size.rows, 44);
    EXPECT_GT(bench.Host().size.pixelWidth, 0);
}

// --- mouse

void Drag(ViewBench& bench, QPoint from, QPoint to, Qt::KeyboardModifiers modifiers = kNone)
{
    QTest::mousePress(&bench.view, Qt::LeftButton, modifiers, from);
    QMouseEvent move(QEvent::MouseMove, to, bench.view.mapToGlobal(to), Qt::NoButton, Qt::LeftButton, modifiers);
    QCoreApplication::sendEvent(&bench.view, &move);
    QTest::mouseRelease(&bench.view, Qt::LeftButton, modifiers, to);
}

TEST(ViewInput, TheMouseSelectsCharactersWordsLinesAndBlocks)
{
    ViewBench bench;
    QSignalSpy events(&bench.control, &ctlEmulator::SelectionChange);
    bench.HostSays("one two/three four\r\nfive six seven\r\n");
    Drag(bench, bench.LeftEdge(1, 0), bench.LeftEdge(6, 0));
    EXPECT_EQ(bench.control.Selection(), u"ne tw"_s);
    EXPECT_EQ(bench.clipboard.primary, u"ne tw"_s);
    EXPECT_EQ(events.size(), 1);
    QTest::mouseClick(&bench.view, Qt::LeftButton, kShift, bench.LeftEdge(4, 1));
    EXPECT_EQ(bench.control.Selection(), u"ne two/three four\nfive"_s);
    Drag(bench, bench.LeftEdge(5, 1), bench.LeftEdge(2, 0), kAlt);
    EXPECT_EQ(bench.control.Selection(), u"e t\nve"_s);

    QTest::mouseClick(&bench.view, Qt::LeftButton, kNone, bench.Middle(20, 5));
    EXPECT_FALSE(bench.control.SelectedArea()) << "a click alone ends the selection";
    QTest::mouseClick(&bench.view, Qt::LeftButton, kNone, bench.Middle(6, 0));
    QTest::mouseDClick(&bench.view, Qt::LeftButton, kNone, bench.Middle(6, 0));
    EXPECT_EQ(bench.control.Selection(), u"two/three"_s);
    QTest::mouseClick(&bench.view, Qt::LeftButton, kNone, bench.Middle(6, 0));
    EXPECT_EQ(bench.control.Selection(), u"one two/three four"_s);
}

TEST(ViewInput, ADragKeepsItsTextWhileOutputScrolls)
{
    ViewBench bench(20, 4);
    bench.HostSays("1\r\n2\r\nstart here\r\n");
    QTest::mousePress(&bench.view, Qt::LeftButton, kNone, bench.LeftEdge(6, 2));
    bench.HostSays("\r\n"); // everything moves up by one
    const QPoint to = bench.LeftEdge(10, 1);
    QMouseEvent move(QEvent::MouseMove, to, bench.view.mapToGlobal(to), Qt::NoButton, Qt::LeftButton, kNone);
    QCoreApplication::sendEvent(&bench.view, &move);
    EXPECT_EQ(bench.control.Selection(), u"here"_s);
    QTest::mouseRelease(&bench.view, Qt::LeftButton, kNone, to);
}

TEST(ViewInput, TheMouseFindsWhatStandsUnderIt)
{
    ViewBench bench(30, 6, EmulatorBench::Vt220);
    bench.HostSays("אבג abc\r\n\x1b#6wide line\r\n");
    EXPECT_LT(bench.view.CellRect(2, 0).left(), bench.view.CellRect(0, 0).left()) << "Hebrew runs to the left";
    EXPECT_EQ(bench.view.CellRect(2, 0).left(), bench.view.CellRect(0, 2).left());
    Drag(bench, bench.view.CellRect(0, 0).center() + QPoint(3, 0), bench.view.CellRect(1, 0).center() - QPoint(3, 0));
    EXPECT_EQ(bench.control.Selection(), u"אב"_s);
    Drag(bench, bench.LeftEdge(5, 1), bench.LeftEdge(9, 1));
    EXPECT_EQ(bench.control.Selection(), u"line"_s) << "columns of double width";
}

TEST(ViewInput, MiddleAndRightButton)
{
    ViewBench bench;
    bench.clipboard.primary = u"primary"_s;
    QTest::mouseClick(&bench.view, Qt::MiddleButton, kNone, bench.Middle(3, 3));
    EXPECT_EQ(bench.Host().TakeSent(), "primary");
    int asked = 0;
    QObject::connect(&bench.control, &ctlEmulator::ContextMenu,
                     [&](int button, int, int, const QString&, bool* handled) {
                         asked += button;
                         *handled = true;
                     });
    QTest::mouseClick(&bench.view, Qt::RightButton, kNone, bench.Middle(3, 3));
    EXPECT_EQ(asked, 2);
    QContextMenuEvent byKey(QContextMenuEvent::Keyboard, QPoint(), QPoint());
    QCoreApplication::sendEvent(&bench.view, &byKey);
    EXPECT_EQ(asked, 4);
}

TEST(ViewInput, TheMouseTableNamesMenusOfText)
{
    ViewBench bench;
    bench.HostSays("1. Orders");
    bench.control.MouseTableAdd(3, u"(\\d)\\. \\w+"_s, u"Menu$1"_s, {});
    QStringList asked;
    QObject::connect(&bench.control, &ctlEmulator::ContextMenu,
                     [&](int button, int, int, const QString& band, bool* handled) {
                         asked += QString::number(button) + band;
                         *handled = true;
                     });
    QTest::mouseClick(&bench.view, Qt::RightButton, kNone, bench.Middle(4, 0));
    QTest::mouseClick(&bench.view, Qt::RightButton, kShift, bench.Middle(4, 0));
    QTest::mouseClick(&bench.view, Qt::RightButton, kNone, bench.Middle(20, 0));
    bench.control.Settings().SetValue(Setting("MouseEnable"), false);
    QTest::mouseClick(&bench.view, Qt::RightButton, kNone, bench.Middle(4, 0));
    EXPECT_EQ(asked, (QStringList{u"3Menu1"_s, u"2"_s, u"2"_s, u"2"_s}));
    EXPECT_EQ(bench.Host().TakeSent(), "");
}

void Wheel(ViewBench& bench, int notches, Qt::KeyboardModifiers modifiers = kNone)
{
    const QPointF at = bench.Middle(2, 1);
    QWheelEvent wheel(at, bench.view.mapToGlobal(at), {}, QPoint(0, notches * 120), Qt::NoButton, modifiers,
                      Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(&bench.view, &wheel);
}

TEST(ViewInput, TheWheelScrollsHistoryProgramsAndReports)
{
    ViewBench bench(20, 4);
    for (int i = 0; i < 20; ++i)
        bench.HostSays("line\r\n");
    Wheel(bench, 1);
    EXPECT_EQ(bench.control.RowsBack(), 3);
    Wheel(bench, -2);
    EXPECT_EQ(bench.control.RowsBack(), 0);
    bench.HostSays("\x1b[?1049h");
    Wheel(bench, -1);
    EXPECT_EQ(bench.Host().TakeSent(), "\x1b[B\x1b[B\x1b[B");
    bench.HostSays("\x1b[?1000;1006h");
    Wheel(bench, 1);
    EXPECT_EQ(bench.Host().TakeSent(), "\x1b[<64;3;2M");
    Wheel(bench, 1, kShift);
    EXPECT_EQ(bench.control.RowsBack(), 3) << "Shift means this side";
}

TEST(ViewInput, AHostThatAsksForTheMouseGetsItUnlessShiftIsDown)
{
    ViewBench bench;
    bench.HostSays("text\x1b[?1002;1006h");
    Drag(bench, bench.Middle(1, 0), bench.Middle(3, 0));
    EXPECT_EQ(bench.Host().TakeSent(), "\x1b[<0;2;1M\x1b[<32;4;1M\x1b[<0;4;1m");
    EXPECT_FALSE(bench.control.SelectedArea());
    Drag(bench, bench.LeftEdge(1, 0), bench.LeftEdge(3, 0), kShift);
    EXPECT_EQ(bench.Host().TakeSent(), "");
    EXPECT_EQ(bench.control.Selection(), u"ex"_s);
}

// --- input methods and focus

QVariant AskInputMethod(QWidget& view, Qt::InputMethodQuery what)
{
    QInputMethodQueryEvent query(what);
    QCoreApplication::sendEvent(&view, &query);
    return query.value(what);
}

TEST(ViewInput, NothingIsSentWhileComposing)
{
    ViewBench bench;
    bench.HostSays("$ ");
    const QImage before = bench.Picture();
    QInputMethodEvent composing(u"にほ"_s, {});
    QCoreApplication::sendEvent(&bench.view, &composing);
    EXPECT_EQ(bench.Host().TakeSent(), "");
    EXPECT_NE(bench.Picture(), before);
    EXPECT_EQ(AskInputMethod(bench.view, Qt::ImCursorRectangle).toRect(), bench.view.CellRect(2, 0));
    QInputMethodEvent done;
    done.setCommitString(u"日本"_s);
    QCoreApplication::sendEvent(&bench.view, &done);
    EXPECT_EQ(bench.Host().TakeSent(), "日本");
    EXPECT_EQ(bench.Picture(), before);
}

TEST(ViewInput, FocusIsReportedWhenTheHostAsks)
{
    ViewBench bench;
    QFocusEvent out(QEvent::FocusOut), in(QEvent::FocusIn);
    QCoreApplication::sendEvent(&bench.view, &out);
    EXPECT_EQ(bench.Host().TakeSent(), "");
    bench.HostSays("\x1b[?1004h");
    QCoreApplication::sendEvent(&bench.view, &in);
    QCoreApplication::sendEvent(&bench.view, &out);
    EXPECT_EQ(bench.Host().TakeSent(), "\x1b[I\x1b[O");
}

} // namespace

} // namespace kestrune
