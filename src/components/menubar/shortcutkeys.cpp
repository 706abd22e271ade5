#include "shortcutkeys.h"

#include "shortcuts.h"

#include <QShortcut>
#include <QWidget>

#include <algorithm>

namespace kestrune {

ShortcutKeys::ShortcutKeys(QWidget& window) : QObject(&window), window_(window) {}

void ShortcutKeys::Show(taMenuBar& model)
{
    model_ = &model;
    for (auto& [keys, entry] : entries_)
        entry.places.clear();
    for (const MenuBand& band : model.Bands())
        Collect(band.key, band.tools);
    for (auto& [keys, entry] : entries_)
        Enable(entry);
}

void ShortcutKeys::Collect(const QString& band, const std::vector<MenuTool>& tools)
{
    for (const MenuTool& tool : tools) {
        Collect(band, tool.tools);
        if (tool.shortcut.isEmpty())
            continue;
        auto read = read_.find(tool.shortcut);
        if (read == read_.end())
            read = read_.insert(tool.shortcut, KeysOfShortcut(tool.shortcut));
        if (read->isEmpty())
            continue;
        Entry& entry = entries_[*read];
        if (entry.listener == nullptr) {
            entry.listener = new QShortcut(*read, &window_);
            connect(entry.listener, &QShortcut::activated, this, [this, keys = *read] { Run(keys); });
        }
        entry.places.push_back({band, tool.key});
    }
}

void ShortcutKeys::Refresh(const QSet<int>& keys)
{
    for (auto& [sequence, entry] : entries_)
        if (std::any_of(entry.places.begin(), entry.places.end(),
                        [&](const Place& place) { return keys.contains(place.key); }))
            Enable(entry);
}

void ShortcutKeys::Enable(Entry& entry) const
{
    entry.listener->setEnabled(std::any_of(entry.places.begin(), entry.places.end(),
                                           [this](const Place& place) { return Usable(place) != nullptr; }));
}

const MenuTool* ShortcutKeys::Usable(const Place& place) const
{
    const MenuTool* tool = model_ ? model_->Tool(place.band, place.key) : nullptr;
    return tool != nullptr && tool->enabled && tool->visible ? tool : nullptr;
}

bool ShortcutKeys::Has(const QKeySequence& keys) const
{
    const auto entry = entries_.find(keys);
    return entry != entries_.end() && entry->second.listener->isEnabled();
}

void ShortcutKeys::Run(const QKeySequence& keys)
{
    for (const Place& place : entries_[keys].places)
        if (const MenuTool* tool = Usable(place)) {
            const MenuTool copy = *tool; // the command may change the menu
            emit model_->ToolClick(QString(place.band), copy);
            return;
        }
}

} // namespace kestrune
