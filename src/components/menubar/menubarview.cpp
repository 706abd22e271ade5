#include <menubar/menubarview.h>

#include <menubar/icons.h>

#include <QAction>
#include <QLabel>
#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>
#include <QStatusBar>
#include <QToolBar>

#include <list>

namespace kestrune {

using namespace Qt::StringLiterals;

// The actions made of one model's tools, in whatever menus and bars they stand.
class MenuBarView::ToolActions : public QObject
{
public:
    ToolActions(taMenuBar& model, QObject* parent) : QObject(parent), model_(model)
    {
        connect(&model, &taMenuBar::ToolChanged, this, &ToolActions::Refresh);
    }

    void FillMenu(QMenu& menu, const QString& band, const std::vector<MenuTool>& tools)
    {
        const QList<QAction*> old = menu.actions();
        for (const QAction* action : old)
            if (QMenu* sub = action->menu())
                sub->deleteLater(); // the menu's clear() leaves these behind
        menu.clear();
        for (const MenuTool& tool : tools) {
            if (tool.beginGroup)
                menu.addSeparator(); // a leading one is not drawn
            Bind(*(tool.type == ToolType::SubMenu ? AddSubMenu(menu, band, tool)->menuAction()
                                                  : menu.addAction(QString())),
                 band, tool, false);
        }
    }

    template <typename Parent>
    QMenu* AddSubMenu(Parent& parent, const QString& band, const MenuTool& tool)
    {
        QMenu* sub = parent.addMenu(tool.caption);
        FillMenu(*sub, band, tool.tools);
        // Filled again when it opens, so that recent files and windows are as they are now.
        connect(sub, &QMenu::aboutToShow, this, [this, sub, band, key = tool.key] {
            if (const MenuTool* now = model_.OpenTool(band, key))
                FillMenu(*sub, band, now->tools);
        });
        return sub;
    }

    void Bind(QAction& action, const QString& band, const MenuTool& tool, bool onToolBar)
    {
        std::erase_if(shown_, [](const Shown& s) { return s.action == nullptr; });
        shown_.push_back({&action, tool.key, band, onToolBar});
        RefreshAction(action, tool, shown_.back());
        if (tool.type == ToolType::SubMenu)
            return;
        connect(&action, &QAction::triggered, this, [this, &action, band, key = tool.key] {
            const MenuTool* now = model_.Tool(band, key);
            if (now == nullptr)
                return;
            const MenuTool copy = *now;      // the command may change the menu
            action.setChecked(copy.checked); // the model decides, not the click
            emit model_.ToolClick(band, copy);
        });
    }

private:
    struct Shown
    {
        QPointer<QAction> action;
        int key;
        QString band;
        bool onToolBar;
    };

    static void RefreshAction(QAction& action, const MenuTool& tool, const Shown& shown)
    {
        action.setText(tool.caption);
        action.setToolTip(tool.toolTipText.isEmpty() ? QString(tool.caption).remove(u'&') : tool.toolTipText);
        action.setEnabled(tool.enabled);
        action.setVisible(tool.visible);
        action.setCheckable(tool.type == ToolType::Toggle || tool.checked);
        action.setChecked(tool.checked);
        if (shown.onToolBar)
            action.setIcon(ToolIcon(tool, tool.checked ? ToolState::Checked : ToolState::Normal));
        else // the same command stands in several places; two with one key would be ambiguous
            action.setShortcut(QKeySequence(tool.shortcut));
    }

    void Refresh(int key)
    {
        for (const Shown& shown : shown_)
            if (const MenuTool* tool = model_.Tool(shown.band, shown.key);
                tool != nullptr && shown.action && (tool->key == key || CommandId(tool->action) == key))
                RefreshAction(*shown.action, *tool, shown);
    }

    taMenuBar& model_;
    std::list<Shown> shown_;
};

// One rendering of one model in the window. It is made anew when the bands change; single tools are brought up to
// date in place. Bars stay from one rendering to the next, so that the window's inside keeps its size.
class MenuBarView::Drawing : public QObject
{
public:
    Drawing(QMainWindow& window, taMenuBar& model) : window_(window), model_(model)
    {
        connect(&model, &taMenuBar::BandsChanged, this, &Drawing::RebuildSoon);
        connect(&model, &taMenuBar::ToolChanged, this, &Drawing::RefreshPanels);
        connect(window.statusBar(), &QStatusBar::messageChanged, this, [this] {
            for (const Panel& panel : panels_)
                RefreshPanels(panel.key);
        });
        Rebuild();
    }

    ~Drawing() override { Clear(); }

private:
    struct Panel
    {
        QPointer<QLabel> label;
        int key;
    };

    // Many tools change in one go; one rebuild at the end of the turn is enough.
    void RebuildSoon()
    {
        if (!pending_)
            QMetaObject::invokeMethod(this, &Drawing::Rebuild, Qt::QueuedConnection);
        pending_ = true;
    }

    void Rebuild()
    {
        pending_ = false;
        Clear();
        actions_ = std::make_unique<ToolActions>(model_, nullptr);
        for (const MenuBand& band : model_.Bands()) {
            if (band.type == BandType::MainMenu)
                BuildMenu(band);
            else if (band.type == BandType::ToolBar)
                BuildToolBar(band);
            else if (band.type == BandType::StatusBar)
                BuildStatusBar(band);
        }
    }

    void BuildMenu(const MenuBand& band)
    {
        for (const MenuTool& tool : band.tools) {
            QMenu* menu = actions_->AddSubMenu(*window_.menuBar(), band.key, tool);
            menus_.emplace_back(menu);
            actions_->Bind(*menu->menuAction(), band.key, tool, false);
        }
    }

    QToolBar* BarFor(const MenuBand& band)
    {
        if (auto* standing = window_.findChild<QToolBar*>(band.key, Qt::FindDirectChildrenOnly))
            return standing;
        auto* bar = new QToolBar(QString(band.title).remove(u'&'));
        bar->setObjectName(band.key);
        bar->setMovable(false);
        bar->setContextMenuPolicy(Qt::PreventContextMenu);
        // The row of session tabs stays below.
        if (auto* tabs = window_.findChild<QToolBar*>(u"SessionBar"_s, Qt::FindDirectChildrenOnly)) {
            window_.insertToolBar(tabs, bar);
            window_.insertToolBarBreak(tabs);
        } else {
            window_.addToolBar(bar);
        }
        return bar;
    }

    void BuildToolBar(const MenuBand& band)
    {
        QToolBar* bar = BarFor(band);
        const QList<QAction*> old = bar->actions();
        for (QAction* action : old)
            action->deleteLater(); // clear() only takes them off; one may be the running command's
        bar->clear();
        const int side = band.icons == IconSize::Large ? 24 : 16;
        bar->setIconSize(QSize(side, side));
        for (const MenuTool& tool : band.tools) {
            if (tool.beginGroup)
                bar->addSeparator();
            QAction* action = bar->addAction(QString());
            actions_->Bind(*action, band.key, tool, true);
            if (QWidget* button = bar->widgetForAction(action))
                button->setFocusPolicy(Qt::NoFocus); // the keyboard stays with the session
        }
        bar->setVisible(band.visible);
    }

    void BuildStatusBar(const MenuBand& band)
    {
        QStatusBar* line = window_.statusBar();
        line->setSizeGripEnabled(false);
        line->setVisible(band.visible);
        for (const MenuTool& tool : band.tools) {
            auto* label = new QLabel;
            label->setContentsMargins(6, 0, 6, 0);
            constexpr int twipsPerPixel = 15;
            label->setMinimumWidth(tool.width / twipsPerPixel);
            panels_.push_back({label, tool.key});
            if (!IsPicture(tool))
                line->addWidget(label, (tool.style & ToolStyle::SizeMask) == ToolStyle::Spring ? 1 : 0);
            else
                line->addPermanentWidget(label); // stays beside a message
            RefreshPanel(*label, tool);
        }
    }

    void RefreshPanels(int key)
    {
        for (const Panel& panel : panels_)
            if (const MenuTool* tool = model_.Tool(panel.key); panel.key == key && tool != nullptr && panel.label)
                RefreshPanel(*panel.label, *tool);
    }

    static bool IsPicture(const MenuTool& tool) { return (tool.style & ToolStyle::ContentMask) == ToolStyle::IconOnly; }

    void RefreshPanel(QLabel& label, const MenuTool& tool) const
    {
        if (IsPicture(tool)) {
            const int side = label.fontMetrics().height();
            const QIcon icon = ToolIcon(tool, tool.checked ? ToolState::Checked : ToolState::Normal);
            label.setPixmap(icon.pixmap(side, side));
            label.setAccessibleName(tool.toolTipText);
        } else {
            label.setText(tool.enabled ? tool.caption : QString()); // what it stands for is not known: no session
        }
        label.setEnabled(tool.enabled);
        // Panels give way to a message, but for a picture, which stands at the far end.
        const bool room = IsPicture(tool) || window_.statusBar()->currentMessage().isEmpty();
        label.setVisible(tool.visible && room);
        label.setToolTip(tool.toolTipText);
    }

    void Clear()
    {
        actions_.reset();
        for (const QPointer<QMenu>& menu : menus_)
            if (menu) {
                window_.menuBar()->removeAction(menu->menuAction());
                menu->deleteLater(); // may be the one whose command runs
            }
        for (const Panel& panel : panels_)
            if (panel.label) {
                window_.statusBar()->removeWidget(panel.label);
                panel.label->deleteLater();
            }
        menus_.clear();
        panels_.clear();
    }

    QMainWindow& window_;
    taMenuBar& model_;
    std::unique_ptr<ToolActions> actions_;
    std::list<Panel> panels_;
    std::list<QPointer<QMenu>> menus_;
    bool pending_ = false;
};

MenuBarView::MenuBarView(QMainWindow& window) : QObject(&window), window_(window)
{
    window.menuBar(); // both are there from the first show on: maximised windows inside look for a menu bar
    window.statusBar();
}

MenuBarView::~MenuBarView() = default;

void MenuBarView::Show(taMenuBar* model)
{
    if (model == model_)
        return;
    drawing_.reset();
    if (model_)
        disconnect(model_, &QObject::destroyed, this, nullptr); // its end must not take the next one's drawing away
    model_ = model;
    if (model == nullptr)
        return;
    drawing_ = std::make_unique<Drawing>(window_, *model);
    connect(model, &QObject::destroyed, this, [this] { drawing_.reset(); });
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
    auto* actions = new ToolActions(model, menu);
    actions->FillMenu(*menu, popup->key, popup->tools);
    menu->popup(at);
}

} // namespace kestrune
