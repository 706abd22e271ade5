#include "toollist.h"

#include <menubar/icons.h>

#include "toolcombo.h"

#include <QAction>
#include <QActionGroup>
#include <QCoreApplication>
#include <QKeyEvent>
#include <QMenu>
#include <QToolBar>
#include <QToolButton>
#include <QWidgetAction>

#include <algorithm>

namespace kestrune {

using namespace Qt::StringLiterals;

namespace {

// The first text that stands as the shortcut of a tool with this key.
QString ShortcutOf(const std::vector<MenuTool>& tools, int key)
{
    for (const MenuTool& tool : tools) {
        if (tool.key == key && !tool.shortcut.isEmpty())
            return tool.shortcut;
        if (QString inside = ShortcutOf(tool.tools, key); !inside.isEmpty())
            return inside;
    }
    return {};
}

// A button whose action is nothing but its own number has no command beside its menu.
bool HasCommandOfItsOwn(const MenuTool& tool) { return !tool.action.isEmpty() && CommandId(tool.action) != tool.key; }

Qt::ToolButtonStyle ButtonStyle(const MenuTool& tool, qint16 bandStyle, bool hasPicture)
{
    const qint16 content = tool.style & ToolStyle::ContentMask;
    if (content == ToolStyle::TextOnly || !hasPicture)
        return Qt::ToolButtonTextOnly;
    if (content == ToolStyle::IconOnly || (content == ToolStyle::ContentNormal && bandStyle == BandStyle::Icon))
        return Qt::ToolButtonIconOnly;
    return bandStyle == BandStyle::CaptionBelow ? Qt::ToolButtonTextUnderIcon : Qt::ToolButtonTextBesideIcon;
}

} // namespace

ToolList::ToolList(QWidget& widget, Look look) : QObject(&widget), widget_(widget), look_(look) {}

ToolList::ToolList(QMenu& menu, ToolList& above, std::size_t index)
    : QObject(&menu), widget_(menu), look_(Look::Menu), above_(&above), index_(index)
{
    connect(&menu, &QMenu::aboutToShow, this, &ToolList::Open);
}

ToolList::~ToolList() = default;

// Escape leaves a menu of the menu bar and the bar with it. The toolkit stays on the bar, where the next thing that is
// typed for the session would choose a menu.
bool ToolList::eventFilter(QObject* watched, QEvent* event)
{
    auto* key = event->type() == QEvent::KeyPress ? static_cast<QKeyEvent*>(event) : nullptr;
    if (key == nullptr || key->key() != Qt::Key_Escape)
        return QObject::eventFilter(watched, event);
    static_cast<QMenu*>(watched)->hide();
    QKeyEvent leave(key->type(), key->key(), key->modifiers());
    QCoreApplication::sendEvent(&widget_, &leave);
    return true;
}

const std::vector<MenuTool>* ToolList::Tools() const
{
    if (above_ != nullptr) {
        const MenuTool* tool = above_->ToolAt(index_);
        return tool != nullptr ? &tool->tools : nullptr;
    }
    const MenuBand* band = model_ ? model_->Band(band_) : nullptr;
    return band != nullptr ? &band->tools : nullptr;
}

const MenuTool* ToolList::ToolAt(std::size_t index) const
{
    const std::vector<MenuTool>* tools = Tools();
    if (tools == nullptr || index >= tools->size() || index >= items_.size() ||
        (*tools)[index].key != items_[index].key)
        return nullptr;
    return &(*tools)[index];
}

void ToolList::Show(taMenuBar& model, const QString& band)
{
    model_ = &model;
    band_ = band;
    Update();
}

// The owner brings what is listed below up to date, recent files and windows for instance.
void ToolList::Open()
{
    if (model_ && above_->ToolAt(index_) != nullptr && model_->OpenTool(band_, above_->items_[index_].key) != nullptr)
        Update();
}

void ToolList::Update()
{
    static const std::vector<MenuTool> none;
    const std::vector<MenuTool>* there = Tools();
    const std::vector<MenuTool>& tools = there != nullptr ? *there : none;
    if (!HasForm(tools)) {
        Clear();
        Build(tools);
    }
    for (std::size_t i = 0; i < tools.size(); ++i)
        Apply(items_[i], tools[i]);
    ShowSeparators(tools);
}

void ToolList::Refresh(const QSet<int>& keys)
{
    const std::vector<MenuTool>* tools = Tools();
    if (tools == nullptr || !HasForm(*tools))
        return; // it is about to be shown anew
    bool changed = false;
    for (std::size_t i = 0; i < items_.size(); ++i) {
        if (keys.contains(items_[i].key)) {
            Apply(items_[i], (*tools)[i]);
            changed = true;
        } else if (items_[i].below != nullptr) {
            items_[i].below->Refresh(keys);
        }
    }
    if (changed)
        ShowSeparators(*tools);
}

// --- form

bool ToolList::HasForm(const std::vector<MenuTool>& tools) const
{
    return std::equal(items_.begin(), items_.end(), tools.begin(), tools.end(),
                      [](const Item& item, const MenuTool& tool) {
                          return item.key == tool.key && item.type == tool.type && item.beginGroup == tool.beginGroup;
                      });
}

// One of the actions may be the running command's: they go from the event loop.
void ToolList::Clear()
{
    for (const Item& item : items_) {
        for (QAction* action : {item.action, item.separator})
            if (action != nullptr) {
                widget_.removeAction(action);
                action->deleteLater();
            }
        if (item.menu != nullptr)
            item.menu->deleteLater();
    }
    items_.clear();
}

void ToolList::Build(const std::vector<MenuTool>& tools)
{
    items_.reserve(tools.size());
    for (std::size_t i = 0; i < tools.size(); ++i)
        AddItem(tools[i], i);
}

void ToolList::AddItem(const MenuTool& tool, std::size_t index)
{
    Item item;
    item.key = tool.key;
    item.type = tool.type;
    item.beginGroup = tool.beginGroup;
    if (tool.beginGroup && look_ != Look::MenuBar) {
        item.separator = new QAction(this);
        item.separator->setSeparator(true);
        widget_.addAction(item.separator);
    }
    if (tool.type == ToolType::ComboBox)
        MakeCombo(item, index);
    else
        item.action = new QAction(this);
    if (tool.type == ToolType::SubMenu) {
        item.menu = new QMenu(&widget_);
        item.below = new ToolList(*item.menu, *this, index);
        item.action->setMenu(item.menu);
        if (look_ == Look::MenuBar)
            item.menu->installEventFilter(this);
    }
    if (tool.type == ToolType::Group) {
        const bool goesOn = !items_.empty() && items_.back().group != nullptr && !tool.beginGroup;
        item.group = goesOn ? items_.back().group : new QActionGroup(item.action);
        item.group->addAction(item.action);
    }
    connect(item.action, &QAction::triggered, this, [this, index] { Choose(index); });
    items_.push_back(item);
    widget_.addAction(item.action);
}

void ToolList::MakeCombo(Item& item, std::size_t index)
{
    auto* action = new QWidgetAction(this);
    item.action = action;
    item.combo = new ToolCombo;
    action->setDefaultWidget(item.combo);
    connect(item.combo, &ToolCombo::Opening, this, [this, index] {
        const MenuTool* now = ToolAt(index) != nullptr ? model_->OpenTool(band_, items_[index].key) : nullptr;
        if (now != nullptr)
            items_[index].combo->Fill(*now);
    });
    connect(item.combo, &ToolCombo::Chosen, this, [this, index](int entry) { ChooseInCombo(index, entry); });
}

// --- state

void ToolList::Apply(Item& item, const MenuTool& tool)
{
    QAction& action = *item.action;
    // The key as the menu file writes it; what listens for it stands elsewhere, because a tool has several places.
    const bool showsKey = look_ == Look::Menu && !tool.shortcut.isEmpty();
    action.setText(showsKey ? tool.caption + u'\t' + tool.shortcut : tool.caption);
    action.setToolTip(ToolTip(tool));
    action.setEnabled(tool.enabled);
    action.setVisible(tool.visible);
    action.setCheckable(tool.type == ToolType::Toggle || tool.type == ToolType::Group || tool.checked);
    action.setChecked(tool.checked);
    ApplyPicture(item, tool);
    if (tool.isDefault && look_ == Look::Menu)
        static_cast<QMenu&>(widget_).setDefaultAction(&action);
    if (item.below != nullptr) {
        item.below->model_ = model_;
        item.below->band_ = band_;
        item.below->Update();
    }
    if (item.combo != nullptr)
        item.combo->Fill(tool);
    if (look_ == Look::ToolBar)
        ApplyButton(item, tool);
}

void ToolList::ApplyPicture(Item& item, const MenuTool& tool) const
{
    const bool wanted =
        look_ == Look::ToolBar || (look_ == Look::Menu && (tool.style & ToolStyle::ContentMask) != ToolStyle::TextOnly);
    const bool checked = tool.checked && !tool.checkedImage.isEmpty();
    const QString picture = wanted && tool.imageSource != ImageSource::None
                                ? QString::number(static_cast<int>(tool.imageSource)) + u' ' +
                                      (checked ? tool.checkedImage : tool.normalImage)
                                : QString();
    if (picture == item.picture)
        return;
    item.picture = picture;
    item.action->setIcon(picture.isEmpty() ? QIcon()
                                           : ToolIcon(tool, tool.checked ? ToolState::Checked : ToolState::Normal));
}

void ToolList::ApplyButton(const Item& item, const MenuTool& tool) const
{
    auto* button = qobject_cast<QToolButton*>(static_cast<QToolBar&>(widget_).widgetForAction(item.action));
    const MenuBand* band = model_->Band(band_);
    if (button == nullptr || band == nullptr)
        return;
    button->setFocusPolicy(Qt::NoFocus); // the keyboard stays with the session
    button->setToolButtonStyle(ButtonStyle(tool, band->style, !item.action->icon().isNull()));
    button->setPopupMode(HasCommandOfItsOwn(tool) ? QToolButton::MenuButtonPopup : QToolButton::InstantPopup);
}

// A line stands only between two tools that are seen.
void ToolList::ShowSeparators(const std::vector<MenuTool>& tools)
{
    QAction* pending = nullptr;
    bool any = false;
    for (std::size_t i = 0; i < tools.size(); ++i) {
        if (QAction* line = items_[i].separator) {
            line->setVisible(false);
            if (any && pending == nullptr)
                pending = line;
        }
        if (!tools[i].visible)
            continue;
        if (pending != nullptr)
            pending->setVisible(true);
        pending = nullptr;
        any = true;
    }
}

QString ToolList::ToolTip(const MenuTool& tool) const
{
    QString text = tool.toolTipText;
    if (text.isEmpty()) {
        text = QString(tool.caption).remove(u'&');
        if (text.endsWith("..."_L1))
            text.chop(3);
    }
    if (look_ != Look::ToolBar)
        return text;
    QString keys = tool.shortcut;
    for (const MenuBand& band : model_->Bands())
        if (keys.isEmpty())
            keys = ShortcutOf(band.tools, tool.key);
    return keys.isEmpty() ? text : u"%1 (%2)"_s.arg(text, keys);
}

// --- choice

void ToolList::Choose(std::size_t index)
{
    const MenuTool* tool = ToolAt(index);
    if (tool == nullptr || tool->type == ToolType::ComboBox ||
        (tool->type == ToolType::SubMenu && look_ != Look::ToolBar))
        return;
    const MenuTool copy = *tool; // the command may change the menu
    const std::vector<MenuTool>& tools = *Tools();
    for (std::size_t i = 0; i < items_.size(); ++i)
        items_[i].action->setChecked(tools[i].checked); // the model decides, not the click
    emit model_->ToolClick(band_, copy);
}

void ToolList::ChooseInCombo(std::size_t index, int entry)
{
    const MenuTool* tool = ToolAt(index);
    if (tool == nullptr || entry < 0 || static_cast<std::size_t>(entry) >= tool->tools.size())
        return;
    const MenuTool copy = tool->tools[static_cast<std::size_t>(entry)];
    items_[index].combo->Fill(*tool);
    emit model_->ToolClick(band_, copy);
}

} // namespace kestrune
