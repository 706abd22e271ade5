#include "toolbars.h"

#include <menubar/barlayout.h>

#include "toollist.h"

#include <QContextMenuEvent>
#include <QEvent>
#include <QGuiApplication>
#include <QMainWindow>
#include <QScreen>
#include <QToolBar>

#include <algorithm>
#include <array>

namespace kestrune {

using namespace Qt::StringLiterals;

namespace {

constexpr int SmallPicture = 16, LargePicture = 24; // pixels
constexpr int PlacesVersion = 1;
constexpr int HomeOffset = 24; // of a bar that was out of sight, from the corner of the window

struct DockArea
{
    BandDock dock;
    Qt::ToolBarArea area;
};

constexpr std::array kDockAreas = {
    DockArea{BandDock::Top, Qt::TopToolBarArea}, DockArea{BandDock::Bottom, Qt::BottomToolBarArea},
    DockArea{BandDock::Left, Qt::LeftToolBarArea}, DockArea{BandDock::Right, Qt::RightToolBarArea}};

Qt::ToolBarArea AreaOf(BandDock dock)
{
    const auto* at =
        std::find_if(kDockAreas.begin(), kDockAreas.end(), [&](const DockArea& d) { return d.dock == dock; });
    return at != kDockAreas.end() ? at->area : Qt::TopToolBarArea;
}

} // namespace

ToolBars::ToolBars(QMainWindow& window) : QObject(&window), window_(window)
{
    connect(qGuiApp, &QGuiApplication::screenRemoved, this, [this] {
        for (const Bar& bar : bars_)
            BringBack(*bar.widget);
    });
}

void ToolBars::Show(taMenuBar& model)
{
    model_ = &model;
    std::erase_if(bars_, [&](const Bar& bar) {
        const MenuBand* band = model.Band(bar.key);
        const bool gone = band == nullptr || band->type != BandType::ToolBar;
        if (gone) {
            window_.removeToolBar(bar.widget);
            bar.widget->deleteLater();
        }
        return gone;
    });
    for (const MenuBand& band : model.Bands())
        if (band.type == BandType::ToolBar) {
            Bar* bar = Find(band.key);
            Apply(bar != nullptr ? *bar : Make(band), band);
        }
    if (!restored_.isEmpty() && !bars_.empty()) {
        Restore(std::exchange(restored_, {}));
    }
    WriteDocks(model);
}

void ToolBars::Refresh(const QSet<int>& keys)
{
    for (const Bar& bar : bars_)
        bar.tools->Refresh(keys);
}

QToolBar* ToolBars::SessionRow() const
{
    return window_.findChild<QToolBar*>(u"SessionBar"_s, Qt::FindDirectChildrenOnly);
}

ToolBars::Bar* ToolBars::Find(const QString& key)
{
    const auto at = std::find_if(bars_.begin(), bars_.end(), [&](const Bar& bar) { return SameBandKey(bar.key, key); });
    return at != bars_.end() ? &*at : nullptr;
}

ToolBars::Bar& ToolBars::Make(const MenuBand& band)
{
    auto* widget = new QToolBar(&window_);
    widget->setObjectName(band.key); // its name among the kept places
    widget->setContextMenuPolicy(Qt::PreventContextMenu);
    widget->installEventFilter(this);
    connect(widget, &QToolBar::topLevelChanged, this, &ToolBars::CheckPlaces);
    connect(widget, &QToolBar::orientationChanged, this, &ToolBars::CheckPlaces);
    bars_.push_back({band.key, widget, new ToolList(*widget, ToolList::Look::ToolBar)});
    Dock(*widget, band.dock);
    return bars_.back();
}

void ToolBars::Apply(Bar& bar, const MenuBand& band)
{
    const QString title = QString(band.title.isEmpty() ? band.key : band.title).remove(u'&');
    bar.widget->setWindowTitle(title);
    bar.widget->setAccessibleName(title);
    bar.widget->setMovable(!band.locked);
    bar.widget->setFloatable(!band.locked);
    bar.widget->setEnabled(band.enabled);
    const int side = band.icons == IconSize::Large ? LargePicture : SmallPicture;
    bar.widget->setIconSize(QSize(side, side));
    bar.tools->Show(*model_, band.key);
    if (bar.widget->isHidden() == band.visible)
        bar.widget->setVisible(band.visible);
}

// --- places

void ToolBars::Move(const QString& key, BandDock to)
{
    Bar* bar = Find(key);
    if (bar == nullptr || DockOf(*bar->widget) == to)
        return;
    Dock(*bar->widget, to);
    CheckPlaces();
}

void ToolBars::Dock(QToolBar& bar, BandDock to)
{
    const bool hidden = bar.isHidden();
    if (to == BandDock::Floating) {
        const QPoint home = window_.mapToGlobal(window_.rect().center() - bar.rect().center());
        bar.setWindowFlags(Qt::Tool | Qt::FramelessWindowHint); // as it floats when the mouse has pulled it out
        bar.setOrientation(Qt::Horizontal);
        bar.move(home);
        bar.adjustSize();
    } else {
        bar.setWindowFlags(Qt::Widget);
        QToolBar* tabs = SessionRow();
        if (tabs != nullptr && AreaOf(to) == window_.toolBarArea(tabs)) { // the row of session tabs stays inmost
            window_.insertToolBar(tabs, &bar);
            window_.insertToolBarBreak(tabs);
        } else {
            window_.addToolBar(AreaOf(to), &bar);
        }
    }
    bar.setVisible(!hidden);
}

BandDock ToolBars::DockOf(const QToolBar& bar) const
{
    if (bar.isFloating())
        return BandDock::Floating;
    const Qt::ToolBarArea area = window_.toolBarArea(&bar);
    const auto* at =
        std::find_if(kDockAreas.begin(), kDockAreas.end(), [&](const DockArea& d) { return d.area == area; });
    return at != kDockAreas.end() ? at->dock : BandDock::Top;
}

void ToolBars::WriteDocks(taMenuBar& model) const
{
    for (const Bar& bar : bars_)
        model.SetBandDock(bar.key, DockOf(*bar.widget));
}

QByteArray ToolBars::Places() const { return window_.saveState(PlacesVersion); }

void ToolBars::RestorePlaces(const QByteArray& places)
{
    restored_ = places;
    if (model_ && !bars_.empty())
        Show(*model_);
}

// Only places: what is seen is for others to say.
void ToolBars::Restore(const QByteArray& places)
{
    QList<QToolBar*> seen;
    const QList<QToolBar*> all = window_.findChildren<QToolBar*>(QString(), Qt::FindDirectChildrenOnly);
    for (QToolBar* bar : all)
        if (!bar->isHidden())
            seen.append(bar);
    auto* tabs = SessionRow();
    const Qt::ToolBarArea side = tabs != nullptr ? window_.toolBarArea(tabs) : Qt::NoToolBarArea;
    window_.restoreState(places, PlacesVersion);
    SetTabsInmost(side); // not where they were: they are no bar of ours, and their old height may be that of no tabs
    for (QToolBar* bar : all)
        bar->setVisible(seen.contains(bar));
    for (const Bar& bar : bars_)
        BringBack(*bar.widget);
    last_ = Places();
}

// The tabs have a row of their own, next to the sessions; a bar that was dropped into it or behind it makes way.
void ToolBars::SetTabsInmost(Qt::ToolBarArea side)
{
    QToolBar* tabs = SessionRow();
    if (tabs == nullptr)
        return;
    const bool hidden = tabs->isHidden();
    window_.removeToolBar(tabs);
    window_.addToolBarBreak(side);
    window_.addToolBar(side, tabs);
    tabs->setVisible(!hidden);
}

void ToolBars::BringBack(QToolBar& bar) const
{
    if (!bar.isFloating())
        return;
    QList<QRect> screens;
    for (const QScreen* screen : QGuiApplication::screens())
        screens.append(screen->availableGeometry());
    bar.move(
        FloatingPlace(QRect(bar.pos(), bar.sizeHint()), screens, window_.mapToGlobal(QPoint(HomeOffset, HomeOffset))));
}

// A bar may have been moved: looked at when the move is over.
void ToolBars::CheckPlaces()
{
    if (std::exchange(checking_, true))
        return;
    QMetaObject::invokeMethod(
        this,
        [this] {
            checking_ = false;
            if (QGuiApplication::mouseButtons() != Qt::NoButton)
                return; // still in the hand; letting go comes here again
            if (Places() != last_) {
                if (const QToolBar* tabs = SessionRow())
                    SetTabsInmost(window_.toolBarArea(tabs));
                last_ = Places();
                if (model_)
                    WriteDocks(*model_);
                emit Moved();
            }
        },
        Qt::QueuedConnection);
}

bool ToolBars::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::MouseButtonRelease)
        CheckPlaces();
    if (event->type() == QEvent::ContextMenu)
        for (const Bar& bar : bars_)
            if (bar.widget == watched) {
                emit MenuWanted(bar.key, static_cast<QContextMenuEvent*>(event)->globalPos());
                return true;
            }
    return QObject::eventFilter(watched, event);
}

} // namespace kestrune
