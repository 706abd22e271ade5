#include "viewbench.h"

#include <QComboBox>
#include <QSignalSpy>

namespace kestrune {
namespace {

using namespace Qt::StringLiterals;

MenuTool Pictured(int key, qint16 style)
{
    MenuTool tool = Titled(key, u"Tool %1"_s.arg(key));
    tool.style = style;
    tool.imageSource = ImageSource::Resource;
    tool.normalImage = u"101"_s;
    return tool;
}

TEST(ToolBars, ContentsFollowTheToolThenTheBand)
{
    struct Case
    {
        qint16 band, tool;
        bool picture;
        Qt::ToolButtonStyle shown;
    };
    const Case cases[] = {
        {BandStyle::Icon, ToolStyle::ContentNormal, true, Qt::ToolButtonIconOnly},
        {BandStyle::CaptionRight, ToolStyle::ContentNormal, true, Qt::ToolButtonTextBesideIcon},
        {BandStyle::CaptionBelow, ToolStyle::ContentNormal, true, Qt::ToolButtonTextUnderIcon},
        {BandStyle::CaptionBelow, ToolStyle::IconOnly, true, Qt::ToolButtonIconOnly},
        {BandStyle::Icon, ToolStyle::TextOnly, true, Qt::ToolButtonTextOnly},
        {BandStyle::Icon, ToolStyle::TextAndIcon, true, Qt::ToolButtonTextBesideIcon},
        {BandStyle::Icon, ToolStyle::IconOnly, false, Qt::ToolButtonTextOnly}, // nothing would be seen
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(testing::Message() << row.band << " " << row.tool << " " << row.picture);
        ViewBench bench;
        MenuBand band = BandOf(u"Toolbar"_s, BandType::ToolBar, {Pictured(1, row.tool)});
        band.style = row.band;
        if (!row.picture)
            band.tools[0].imageSource = ImageSource::None;
        bench.Add(band);
        EXPECT_EQ(bench.Button(u"Toolbar"_s, u"Tool 1"_s)->toolButtonStyle(), row.shown);
    }
}

TEST(ToolBars, LargeIconsShowWithoutANewBar)
{
    ViewBench bench;
    bench.Add(BandOf(u"Toolbar"_s, BandType::ToolBar, {Pictured(1, ToolStyle::IconOnly)}));
    const QToolBar* bar = bench.Bar(u"Toolbar"_s);
    const int large = bar->iconSize().height();
    bench.model.SetBandProperty({}, BandType::ToolBar, BandProperty::LargeIcons, false);
    ViewBench::Settle();
    EXPECT_LT(bar->iconSize().height(), large);
    EXPECT_EQ(bench.Bar(u"Toolbar"_s), bar);
}

TEST(ToolBars, TooltipSaysTheKeysOfTheCommandWhereverTheyStand)
{
    ViewBench bench;
    MenuTool item = Titled(103, u"&Open..."_s);
    item.shortcut = u"Ctrl+Shift+O"_s;
    bench.Add(BandOf(u"Menu"_s, BandType::MainMenu, {Titled(100, u"M"_s, {item})}));
    bench.Add(BandOf(u"Toolbar"_s, BandType::ToolBar, {Titled(103, u"&Open..."_s)}));
    EXPECT_EQ(bench.Button(u"Toolbar"_s, u"Open"_s)->toolTip(), u"Open (Ctrl+Shift+O)"_s);
}

TEST(ToolBars, ADropdownHasACommandOfItsOwnOrOnlyItsMenu)
{
    ViewBench bench;
    MenuTool plain = Titled(1, u"Plain"_s, {Titled(2, u"Below"_s)});
    MenuTool split = plain;
    split.key = 10001;
    split.caption = u"Split"_s;
    split.action = u"ls^M"_s;
    bench.Add(BandOf(u"Toolbar"_s, BandType::ToolBar, {plain, split}));
    EXPECT_EQ(bench.Button(u"Toolbar"_s, u"Plain"_s)->popupMode(), QToolButton::InstantPopup);
    QToolButton* button = bench.Button(u"Toolbar"_s, u"Split"_s);
    EXPECT_EQ(button->popupMode(), QToolButton::MenuButtonPopup);
    button->defaultAction()->trigger();
    button->defaultAction()->menu()->actions().first()->trigger();
    EXPECT_EQ(bench.clicks, (QStringList{u"Toolbar ls^M"_s, u"Toolbar [#2]"_s}));
}

TEST(ToolBars, AComboBoxOffersItsToolsAndKeepsToTheModel)
{
    ViewBench bench;
    MenuTool combo = Titled(1, u"&Host"_s, {Titled(2, u"one"_s), Titled(3, u"hidden"_s), Titled(4, u"three"_s)});
    combo.type = ToolType::ComboBox;
    combo.tools[0].checked = true;
    combo.tools[1].visible = false;
    bench.Add(BandOf(u"Toolbar"_s, BandType::ToolBar, {combo}));
    auto* box = bench.Bar(u"Toolbar"_s)->findChild<QComboBox*>();
    ASSERT_NE(box, nullptr);
    EXPECT_EQ(box->count(), 2);
    EXPECT_EQ(box->currentText(), u"one"_s);
    EXPECT_EQ(box->focusPolicy(), Qt::NoFocus);
    box->setCurrentIndex(1);
    emit box->activated(1);
    EXPECT_EQ(bench.clicks, QStringList{u"Toolbar [#4]"_s});
    EXPECT_EQ(box->currentText(), u"one"_s) << "until the command has changed what is checked";
}

TEST(ToolBars, StandWhereTheMenuSaysAndMoveWhenItChanges)
{
    ViewBench bench;
    const std::pair<BandDock, Qt::ToolBarArea> rows[] = {{BandDock::Normal, Qt::TopToolBarArea},
                                                         {BandDock::Top, Qt::TopToolBarArea},
                                                         {BandDock::Bottom, Qt::BottomToolBarArea},
                                                         {BandDock::Left, Qt::LeftToolBarArea},
                                                         {BandDock::Right, Qt::RightToolBarArea}};
    QObject::connect(&bench.model, &taMenuBar::BandDocked, bench.view, &MenuBarView::MoveBar);
    for (const auto& [dock, area] : rows) {
        const QString key = u"B%1"_s.arg(int(dock));
        MenuBand band = BandOf(key, BandType::ToolBar, {Titled(1, u"Tool"_s)});
        band.dock = dock;
        bench.Add(band);
        EXPECT_EQ(bench.window.toolBarArea(bench.Bar(key)), area) << key.toStdString();
        EXPECT_EQ(bench.Bar(key)->orientation(),
                  area & (Qt::LeftToolBarArea | Qt::RightToolBarArea) ? Qt::Vertical : Qt::Horizontal);
    }
    const auto move = [&](const QString& key, BandDock to) {
        EXPECT_TRUE(bench.model.ChangeBand(key, [to](MenuBand& band) { band.dock = to; }));
        ViewBench::Settle();
    };
    QSignalSpy moved(bench.view, &MenuBarView::BarsMoved);
    move(u"B3"_s, BandDock::Floating);
    QToolBar* bar = bench.Bar(u"B3"_s);
    EXPECT_TRUE(bar->isFloating());
    EXPECT_TRUE(bar->isVisible());
    EXPECT_EQ(bar->orientation(), Qt::Horizontal);
    EXPECT_EQ(moved.count(), 1);
    move(u"B3"_s, BandDock::Bottom);
    EXPECT_FALSE(bar->isFloating());
    EXPECT_EQ(bench.window.toolBarArea(bar), Qt::BottomToolBarArea);
    EXPECT_TRUE(bar->isVisible());
    bench.view->MoveBar(u"nobody"_s, BandDock::Left);
}

TEST(ToolBars, PlacesComeBackInAnotherRunAndBadOnesDoNoHarm)
{
    const auto make = [](ViewBench& bench) {
        MenuBand locked = BandOf(u"Locked"_s, BandType::ToolBar, {Titled(2, u"Two"_s)});
        locked.locked = true;
        bench.model.SetBands({BandOf(u"Toolbar"_s, BandType::ToolBar, {Titled(1, u"One"_s)}), locked});
        ViewBench::Settle();
    };
    QByteArray places, floating;
    {
        ViewBench bench;
        make(bench);
        EXPECT_TRUE(bench.Bar(u"Toolbar"_s)->isMovable());
        EXPECT_FALSE(bench.Bar(u"Locked"_s)->isMovable());
        bench.view->MoveBar(u"Toolbar"_s, BandDock::Left);
        ViewBench::Settle();
        places = bench.view->BarPlaces();
        bench.view->MoveBar(u"Toolbar"_s, BandDock::Floating);
        bench.Bar(u"Toolbar"_s)->move(90000, 90000);
        ViewBench::Settle();
        floating = bench.view->BarPlaces();
    }
    ViewBench again;
    again.view->RestoreBarPlaces(places); // before there are bars
    make(again);
    EXPECT_EQ(again.window.toolBarArea(again.Bar(u"Toolbar"_s)), Qt::LeftToolBarArea);
    EXPECT_EQ(again.model.Band(u"Toolbar"_s)->dock, BandDock::Left) << "scripts read where it really is";
    taMenuBar other;
    other.SetBands(again.model.Bands());
    other.SetBandDock(u"Toolbar"_s, BandDock::Top);
    again.view->Show(&other);
    EXPECT_EQ(again.window.toolBarArea(again.Bar(u"Toolbar"_s)), Qt::LeftToolBarArea) << "places are the window's";
    EXPECT_EQ(other.Band(u"Toolbar"_s)->dock, BandDock::Left);
    again.view->RestoreBarPlaces("rubbish");
    EXPECT_EQ(again.window.toolBarArea(again.Bar(u"Toolbar"_s)), Qt::LeftToolBarArea);
    again.view->RestoreBarPlaces(floating);
    const QToolBar* bar = again.Bar(u"Toolbar"_s);
    EXPECT_TRUE(bar->isFloating());
    EXPECT_TRUE(again.window.screen()->geometry().contains(bar->pos())) << "a screen that has gone";
    again.view->Show(nullptr);
}

TEST(ToolBars, ComeAndGoWithTheirBands)
{
    ViewBench bench;
    bench.Add(BandOf(u"Toolbar"_s, BandType::ToolBar, {Titled(1, u"One"_s)}));
    bench.model.SetBandProperty(u"toolbar"_s, {}, BandProperty::Visible, false);
    ViewBench::Settle();
    EXPECT_TRUE(bench.Bar(u"Toolbar"_s)->isHidden());
    EXPECT_TRUE(bench.model.RemoveBand(u"Toolbar"_s));
    ViewBench::Settle();
    EXPECT_EQ(bench.Bar(u"Toolbar"_s), nullptr);
}

} // namespace
} // namespace kestrune
