#include <menubar/menubarview.h>

#include "shortcutkeys.h"
#include "statusline.h"
#include "toolbars.h"
#include "toollist.h"

#include <QAction>
#include <QActionGroup>
#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>
#include <QStatusBar>

#include <algorithm>

namespace kestrune {

using namespace Qt::StringLiterals;

namespace {

// The first one that may be seen.
QString BandOf(const taMenuBar& model, BandType type)
{
    const auto at = std::find_if(model.Bands().begin(), model.Bands().end(),
                                 [type](const MenuBand& band) { return band.type == type; });
    return at != model.Bands().end() ? at->key : QString();
}

bool IsVisible(const taMenuBar& model, const QString& key)
{
    const MenuBand* band = model.Band(key);
    return band != nullptr && band->visible;
}

} // namespace

MenuBarView::MenuBarView(QMainWindow& window, Surroundings surroundings)
    // The menu bar is there from the first show on: maximised windows inside look for one.
    : QObject(&window), window_(window), menu_(new ToolList(*window.menuBar(), ToolList::Look::MenuBar)),
      bars_(new ToolBars(window)), status_(new StatusLine(std::move(surroundings.locks), std::move(surroundings.now))),
      shortcuts_(new ShortcutKeys(window))
{
    window.statusBar()->setSizeGripEnabled(false);
    window.statusBar()->setContentsMargins(0, 0, 0, 0);
    window.statusBar()->addWidget(status_, 1);
    connect(bars_, &ToolBars::Moved, this, &MenuBarView::BarsMoved);
    connect(bars_, &ToolBars::MenuWanted, this, &MenuBarView::ShowBarsMenu);
}

MenuBarView::~MenuBarView() = default;

void MenuBarView::Show(taMenuBar* model)
{
    if (model == model_)
        return;
    if (model_)
        disconnect(model_, nullptr, this, nullptr);
    model_ = model;
    if (model == nullptr)
        return;
    connect(model, &taMenuBar::BandsChanged, this, &MenuBarView::WholeChanged);
    connect(model, &taMenuBar::ToolChanged, this, &MenuBarView::ToolChanged);
    Draw();
}

// --- catching up: many tools change in one go, and are drawn once, at the end of the turn

void MenuBarView::WholeChanged()
{
    whole_ = true;
    CatchUpSoon();
}

void MenuBarView::ToolChanged(int key)
{
    changed_.insert(key);
    CatchUpSoon();
}

void MenuBarView::CatchUpSoon()
{
    if (!std::exchange(pending_, true))
        QMetaObject::invokeMethod(this, &MenuBarView::CatchUp, Qt::QueuedConnection);
}

void MenuBarView::CatchUp()
{
    pending_ = false;
    if (!model_)
        return;
    if (whole_) {
        Draw();
        return;
    }
    const QSet<int> keys = std::exchange(changed_, {});
    menu_->Refresh(keys);
    bars_->Refresh(keys);
    status_->Refresh(keys);
    shortcuts_->Refresh(keys);
}

void MenuBarView::Draw()
{
    whole_ = false;
    changed_.clear();
    const QString menu = BandOf(*model_, BandType::MainMenu), status = BandOf(*model_, BandType::StatusBar);
    menu_->Show(*model_, menu);
    window_.menuBar()->setVisible(IsVisible(*model_, menu));
    bars_->Show(*model_);
    status_->Show(*model_, status);
    window_.statusBar()->setVisible(IsVisible(*model_, status));
    shortcuts_->Show(*model_);
}

taMenuBar* MenuBarView::Shown() const { return model_; }

void MenuBarView::Popup(taMenuBar& model, const QString& band, const QPoint& at)
{
    const MenuBand* popup = model.Band(band);
    if (popup == nullptr || popup->tools.empty())
        return;
    auto* menu = new QMenu(&window_);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    connect(&model, &QObject::destroyed, menu, &QMenu::close); // its session may end while it is open
    auto* tools = new ToolList(*menu, ToolList::Look::Menu);
    tools->Show(model, popup->key);
    menu->popup(at);
}

void MenuBarView::ShowNotice(const QString& text, std::chrono::milliseconds time) { status_->ShowNotice(text, time); }

// --- toolbars

void MenuBarView::MoveBar(const QString& band, BandDock to) { bars_->Move(band, to); }

void MenuBarView::WriteDocks(taMenuBar& model) const { bars_->WriteDocks(model); }

QByteArray MenuBarView::BarPlaces() const { return bars_->Places(); }

void MenuBarView::RestoreBarPlaces(const QByteArray& places) { bars_->RestorePlaces(places); }

// Which bars are seen, and where the one under the mouse stands: for those who do not pull it with the mouse.
void MenuBarView::ShowBarsMenu(const QString& key, const QPoint& at)
{
    const MenuBand* own = model_ ? model_->Band(key) : nullptr;
    if (own == nullptr)
        return;
    auto* menu = new QMenu(&window_);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    const auto add = [](QMenu& to, const QString& text, bool checked, auto run) {
        QAction* action = to.addAction(text);
        action->setCheckable(true);
        action->setChecked(checked);
        connect(action, &QAction::triggered, &to, run);
        return action;
    };
    for (const MenuBand& band : model_->Bands())
        if (band.type == BandType::ToolBar || band.type == BandType::StatusBar || band.type == BandType::SessionBar)
            add(*menu, band.title.isEmpty() ? band.key : band.title, band.visible,
                [this, name = band.key](bool on) { emit BandVisibleWanted(name, on); });
    menu->addSeparator();
    auto* group = new QActionGroup(menu);
    const std::pair<BandDock, QString> places[] = {{BandDock::Top, tr("At the &Top")},
                                                   {BandDock::Bottom, tr("At the &Bottom")},
                                                   {BandDock::Left, tr("At the &Left")},
                                                   {BandDock::Right, tr("At the &Right")},
                                                   {BandDock::Floating, tr("F&loating")}};
    for (const auto& [dock, text] : places) {
        QAction* action = add(*menu, text, own->dock == dock, [this, key, to = dock](bool) { bars_->Move(key, to); });
        action->setEnabled(!own->locked);
        group->addAction(action);
    }
    menu->addSeparator();
    add(*menu, tr("Large &Icons"), own->icons == IconSize::Large, [this](bool on) { emit LargeIconsWanted(on); });
    menu->popup(at);
}

} // namespace kestrune
