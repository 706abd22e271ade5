#include "viewbench.h"

#include <QSignalSpy>

namespace kestrune {
namespace {

using namespace Qt::StringLiterals;

TEST(MenuBarView, ShowsTheMenuAndRunsWhatIsChosen)
{
    ViewBench bench;
    MenuTool save = Titled(105, u"&Save"_s), hidden = Titled(106, u"Hidden"_s), exit = Titled(110, u"E&xit"_s);
    save.shortcut = u"Shift+Ctrl+F5"_s;
    hidden.visible = false;
    hidden.beginGroup = exit.beginGroup = true;
    bench.Add(BandOf(u"Menu"_s, BandType::MainMenu, {Titled(100, u"&File"_s, {save, hidden, exit})}));
    EXPECT_EQ(ViewBench::Seen(*bench.window.menuBar()), QStringList{u"&File"_s});
    EXPECT_EQ(ViewBench::Seen(*bench.Menu(0)), (QStringList{u"&Save\tShift+Ctrl+F5"_s, u"-"_s, u"E&xit"_s}))
        << "one line, though two groups begin, and the keys as the file writes them";
    bench.Menu(0)->actions().last()->trigger();
    EXPECT_EQ(bench.clicks, QStringList{u"Menu [#110]"_s});

    bench.model.SetToolProperty(105, ToolProperty::Enabled, false);
    bench.model.SetToolProperty(105, ToolProperty::Caption, u"Store"_s);
    ViewBench::Settle();
    EXPECT_FALSE(bench.Menu(0)->actions().first()->isEnabled());
    EXPECT_TRUE(bench.Menu(0)->actions().first()->text().startsWith(u"Store"_s));
}

TEST(MenuBarView, TheModelDecidesWhatIsChecked)
{
    ViewBench bench;
    MenuTool toggle = Titled(1, u"Toggle"_s), one = Titled(2, u"One"_s), two = Titled(3, u"Two"_s);
    toggle.type = ToolType::Toggle;
    one.type = two.type = ToolType::Group;
    two.checked = true;
    bench.Add(BandOf(u"Menu"_s, BandType::MainMenu, {Titled(100, u"M"_s, {toggle, one, two})}));
    const QList<QAction*> actions = bench.Menu(0)->actions();
    actions[0]->trigger();
    actions[1]->trigger();
    EXPECT_FALSE(actions[0]->isChecked()) << "nobody has changed the model";
    EXPECT_FALSE(actions[1]->isChecked());
    EXPECT_TRUE(actions[2]->isChecked());
    EXPECT_EQ(bench.clicks.size(), 2);
    EXPECT_NE(actions[1]->actionGroup(), nullptr) << "drawn as one of several";
    bench.model.SetToolProperty(1, ToolProperty::Checked, true);
    ViewBench::Settle();
    EXPECT_TRUE(actions[0]->isChecked());
}

TEST(MenuBarView, ASubMenuIsBroughtUpToDateAsItOpens)
{
    ViewBench bench;
    bench.Add(BandOf(u"Menu"_s, BandType::MainMenu, {Titled(500, u"&Window"_s, {Titled(501, u"Cascade"_s)})}));
    QObject::connect(&bench.model, &taMenuBar::BandOpen, &bench.window,
                     [](MenuTool& tool) { tool.tools.push_back(Titled(515, u"&1  host"_s)); });
    bench.Menu(0)->popup(QPoint(0, 0));
    EXPECT_EQ(ViewBench::Seen(*bench.Menu(0)), (QStringList{u"Cascade"_s, u"&1  host"_s}));
    bench.Menu(0)->actions().last()->trigger();
    EXPECT_EQ(bench.clicks, QStringList{u"Menu [#515]"_s});
}

TEST(MenuBarView, KeysOfAnyBandRunTheFirstToolThatCanBeUsed)
{
    struct Case
    {
        QString shortcut;
        Qt::Key key;
        Qt::KeyboardModifiers modifiers;
    };
    const Case cases[] = {
        {u"Ctrl+K"_s, Qt::Key_K, Qt::ControlModifier},
        {u"F7"_s, Qt::Key_F7, Qt::NoModifier},
        {u"Shift+Ctrl+F12"_s, Qt::Key_F12, Qt::ShiftModifier | Qt::ControlModifier},
        {u"Shift+Insert"_s, Qt::Key_Insert, Qt::ShiftModifier},
        {u"Ctrl+Delete"_s, Qt::Key_Delete, Qt::ControlModifier},
        {u"Alt+Bksp"_s, Qt::Key_Backspace, Qt::AltModifier},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.shortcut.toStdString());
        ViewBench bench;
        MenuTool first = Titled(1, u"First"_s), second = Titled(2, u"Second"_s);
        first.shortcut = second.shortcut = row.shortcut;
        bench.Add(BandOf(u"ContextMenu"_s, BandType::Popup, {first, second}));
        bench.window.activateWindow();
        QTest::keyClick(&bench.window, row.key, row.modifiers);
        bench.model.SetToolProperty(1, ToolProperty::Enabled, false);
        ViewBench::Settle();
        QTest::keyClick(&bench.window, row.key, row.modifiers);
        bench.model.SetToolProperty(2, ToolProperty::Visible, false);
        ViewBench::Settle();
        QTest::keyClick(&bench.window, row.key, row.modifiers);
        EXPECT_EQ(bench.clicks, (QStringList{u"ContextMenu [#1]"_s, u"ContextMenu [#2]"_s}));
    }
}

TEST(MenuBarView, TextThatNamesNoKeyHarmsNothing)
{
    ViewBench bench;
    std::vector<MenuTool> tools;
    for (const QString& text : {u"+"_s, u"Ctrl+"_s, u"nonsense"_s, u"Ctrl+nonsense"_s, u"  "_s, u"Ctrl+A, Ctrl+B"_s}) {
        tools.push_back(Titled(int(tools.size()) + 1, text));
        tools.back().shortcut = text;
    }
    bench.Add(BandOf(u"Menu"_s, BandType::MainMenu, {Titled(100, u"M"_s, tools)}));
    QTest::keyClick(&bench.window, Qt::Key_A);
    EXPECT_TRUE(bench.clicks.isEmpty());
    EXPECT_EQ(bench.Menu(0)->actions().size(), 6);
}

// Counts what reaches the eye.
class Paints : public QObject
{
public:
    bool eventFilter(QObject* watched, QEvent* event) override
    {
        count +=
            event->type() == QEvent::Paint && watched->isWidgetType() && static_cast<QWidget*>(watched)->isWindow();
        layouts += event->type() == QEvent::Resize || event->type() == QEvent::Move;
        return false;
    }
    int count = 0, layouts = 0;
};

TEST(MenuBarView, AnotherMenuOfTheSameFormIsShownInOnePaintWithNothingMoved)
{
    ViewBench bench;
    MenuTool panel = Titled(1101, u"Emulation"_s);
    panel.type = ToolType::Panel;
    panel.width = 1500;
    const auto fill = [&](taMenuBar& menu) {
        menu.SetBands({BandOf(u"Menu"_s, BandType::MainMenu, {Titled(100, u"M"_s, {Titled(101, u"New"_s)})}),
                       BandOf(u"Toolbar"_s, BandType::ToolBar, {Titled(101, u"New"_s), Titled(103, u"Open"_s)}),
                       BandOf(u"StatusBar"_s, BandType::StatusBar, {panel})});
    };
    taMenuBar other;
    fill(bench.model);
    fill(other);
    other.SetToolProperty(103, ToolProperty::Enabled, false);
    other.SetToolProperty(1101, ToolProperty::Caption, u"VT100"_s);
    ViewBench::Settle();
    QToolBar* bar = bench.Bar(u"Toolbar"_s);
    const QToolButton* open = bench.Button(u"Toolbar"_s, u"Open"_s);
    Paints paints;
    qApp->installEventFilter(&paints);
    bench.view->Show(&other);
    ViewBench::Settle();
    qApp->removeEventFilter(&paints);
    EXPECT_LE(paints.count, 1);
    EXPECT_EQ(paints.layouts, 0);
    EXPECT_EQ(bench.Bar(u"Toolbar"_s), bar);
    EXPECT_EQ(bench.Button(u"Toolbar"_s, u"Open"_s), open);
    EXPECT_FALSE(open->isEnabled());
    bench.Menu(0)->actions().first()->trigger();
    EXPECT_TRUE(bench.clicks.isEmpty()) << "the click belongs to the menu that is shown";
    bench.view->Show(&bench.model);
    EXPECT_TRUE(open->isEnabled());
}

TEST(MenuBarView, AMenuThatGoesAwayWhileShownLeavesNothingThatRuns)
{
    ViewBench bench;
    auto other = std::make_unique<taMenuBar>();
    EXPECT_TRUE(other->AddBand(BandOf(u"Menu"_s, BandType::MainMenu, {Titled(100, u"M"_s, {Titled(101, u"New"_s)})})));
    bench.view->Show(other.get());
    bench.view->Popup(*other, u"Menu"_s, QPoint(0, 0));
    QAction* action = bench.Menu(0)->actions().first();
    other.reset();
    action->trigger();
    ViewBench::Settle();
    EXPECT_EQ(bench.view->Shown(), nullptr);
}

} // namespace
} // namespace kestrune
