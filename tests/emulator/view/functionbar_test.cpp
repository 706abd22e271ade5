// The function bar: where it stands, what it shows, what a click types.

#include "viewbench.h"

#include <emulator/control/functionkeys.h>
#include <emulator/view/terminalpane.h>

#include <QAbstractButton>

#include <gtest/gtest.h>

namespace kestrune {

using namespace Qt::StringLiterals;

namespace {

struct BarBench : EmulatorBench
{
    BarBench()
    {
        control.SetFuncBarBank(-1);
        pane.resize(900, 400);
        pane.show();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&pane));
        Connect();
        Host().TakeSent();
    }

    QAbstractButton& Button(int number) const // 0: the bank's
    {
        return *pane.Bar().findChildren<QAbstractButton*>().at(number);
    }
    void Click(int number) const { QTest::mouseClick(&Button(number), Qt::LeftButton); }

    TerminalPane pane{control};
};

TEST(FunctionBar, StandsOnTheChosenSideAndLeavesTheRestToTheScreen)
{
    BarBench bench;
    const QRect& pane = bench.pane.rect();
    const struct
    {
        int pos;
        bool left, top, right, bottom; // sides of the pane that the bar touches
    } cases[] = {{0, true, false, true, true},
                 {1, true, true, true, false},
                 {2, true, true, false, true},
                 {3, false, true, true, true},
                 {7, true, false, true, true}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.pos);
        bench.control.SetFuncBarPos(c.pos);
        const QRect bar = bench.pane.Bar().geometry();
        const QRect view = bench.pane.View().geometry();
        EXPECT_EQ(bar.left() == pane.left(), c.left);
        EXPECT_EQ(bar.top() == pane.top(), c.top);
        EXPECT_EQ(bar.right() == pane.right(), c.right);
        EXPECT_EQ(bar.bottom() == pane.bottom(), c.bottom);
        EXPECT_FALSE(bar.intersects(view));
        EXPECT_EQ(bar.united(view), pane);
        for (int number = 0; number <= FunctionKeyCount; ++number)
            EXPECT_TRUE(bench.pane.Bar().rect().contains(bench.Button(number).geometry())) << number;
    }
    bench.control.SetFuncBarBank(0);
    EXPECT_FALSE(bench.pane.Bar().isVisible());
    EXPECT_EQ(bench.pane.View().geometry(), pane);
}

TEST(FunctionBar, ClickTypesTheKeyOfTheShownBank)
{
    BarBench bench;
    bench.control.Settings().SetFKeys(112, u"ls\r"_s);
    bench.control.Settings().SetFKeys(1112, u"ls -l\r"_s);
    bench.control.Settings().SetFKeys(10112, u"List"_s);
    EXPECT_EQ(bench.Button(1).text(), u"F1 List"_s);
    bench.Click(1);
    EXPECT_EQ(bench.Host().TakeSent(), "ls\r");
    bench.Click(6);
    EXPECT_EQ(bench.Host().TakeSent(), "\x1b[17~"); // its own sequence
    bench.Click(0);
    EXPECT_EQ(bench.control.FuncBarBank(), 2);
    EXPECT_EQ(bench.Button(1).text(), u"F1 ls -l"_s);
    bench.Click(1);
    EXPECT_EQ(bench.Host().TakeSent(), "ls -l\r");
    for (int turn = 0; turn < 3; ++turn)
        bench.Click(0);
    EXPECT_EQ(bench.control.FuncBarBank(), 1);
    EXPECT_TRUE(bench.pane.View().hasFocus());
}

TEST(FunctionBar, FollowsTheKeyboardWhereThatIsWanted)
{
    BarBench bench;
    bench.control.Settings().SetFKeys(2113, u"top"_s);
    QTest::keyPress(&bench.pane.View(), Qt::Key_Control);
    EXPECT_EQ(bench.Button(2).text(), u"F2"_s);
    bench.control.SetTrackKeyboardState(true);
    EXPECT_EQ(bench.Button(2).text(), u"F2 top"_s);
    QTest::keyRelease(&bench.pane.View(), Qt::Key_Control, Qt::ControlModifier);
    EXPECT_EQ(bench.Button(2).text(), u"F2"_s);
}

} // namespace

} // namespace kestrune
