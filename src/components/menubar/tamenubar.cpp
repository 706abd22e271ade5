#include <menubar/tamenubar.h>

#include <algorithm>
#include <utility>

namespace kestrune {

namespace {

using EachFn = std::function<bool(MenuTool&)>;

bool WalkTools(std::vector<MenuTool>& tools, const EachFn& goesOn)
{
    return std::all_of(tools.begin(), tools.end(),
                       [&](MenuTool& tool) { return goesOn(tool) && WalkTools(tool.tools, goesOn); });
}

const MenuTool* FirstTool(const std::vector<MenuTool>& tools, const std::function<bool(const MenuTool&)>& wanted)
{
    for (const MenuTool& tool : tools) {
        if (wanted(tool))
            return &tool;
        if (const MenuTool* inside = FirstTool(tool.tools, wanted))
            return inside;
    }
    return nullptr;
}

const MenuTool* FirstTool(const std::vector<MenuTool>& tools, int key)
{
    return FirstTool(tools, [key](const MenuTool& tool) { return tool.key == key; });
}

// How each property of a tool is read and written by its code.
struct PropertyRow
{
    ToolProperty code;
    QVariant (*get)(const MenuTool&);
    void (*set)(MenuTool&, const QVariant&);
};

constexpr PropertyRow kPropertyRows[] = {
    {ToolProperty::Caption, [](const MenuTool& t) { return QVariant(t.caption); },
     [](MenuTool& t, const QVariant& v) { t.caption = v.toString(); }},
    {ToolProperty::Checked, [](const MenuTool& t) { return QVariant(t.checked); },
     [](MenuTool& t, const QVariant& v) { t.checked = v.toBool(); }},
    {ToolProperty::Enabled, [](const MenuTool& t) { return QVariant(t.enabled); },
     [](MenuTool& t, const QVariant& v) { t.enabled = v.toBool(); }},
    {ToolProperty::Action, [](const MenuTool& t) { return QVariant(t.action); },
     [](MenuTool& t, const QVariant& v) {
         const QString text = v.toString();
         t.action = text.isEmpty() ? QStringLiteral("[#%1]").arg(t.key) : text;
     }},
    {ToolProperty::ToolTipText, [](const MenuTool& t) { return QVariant(t.toolTipText); },
     [](MenuTool& t, const QVariant& v) { t.toolTipText = v.toString(); }},
    {ToolProperty::Visible, [](const MenuTool& t) { return QVariant(t.visible); },
     [](MenuTool& t, const QVariant& v) { t.visible = v.toBool(); }},
    {ToolProperty::Shortcut, [](const MenuTool& t) { return QVariant(t.shortcut); },
     [](MenuTool& t, const QVariant& v) { t.shortcut = v.toString(); }},
};

const PropertyRow* FindProperty(ToolProperty code)
{
    const auto* at = std::find_if(std::begin(kPropertyRows), std::end(kPropertyRows),
                                  [code](const PropertyRow& row) { return row.code == code; });
    return at == std::end(kPropertyRows) ? nullptr : at;
}

MenuTool* FindToolIn(std::vector<MenuTool>& tools, int key)
{
    return const_cast<MenuTool*>(FirstTool(tools, key)); // the tools themselves are not constant
}

bool RemoveFirst(std::vector<MenuTool>& tools, int key)
{
    const auto at = std::find_if(tools.begin(), tools.end(), [key](const MenuTool& t) { return t.key == key; });
    if (at != tools.end()) {
        tools.erase(at);
        return true;
    }
    return std::any_of(tools.begin(), tools.end(), [key](MenuTool& t) { return RemoveFirst(t.tools, key); });
}

} // namespace

int CommandId(const QString& action)
{
    if (!action.startsWith(QLatin1String("[#")))
        return 0;
    int id = 0;
    for (qsizetype i = 2; i < action.size() && action[i].isDigit() && id < 100'000; ++i)
        id = id * 10 + action[i].digitValue();
    return id;
}

bool SameBandKey(const QString& one, const QString& other) { return one.compare(other, Qt::CaseInsensitive) == 0; }

bool taMenuBar::AddBand(MenuBand band)
{
    if (Band(band.key) != nullptr)
        return false;
    bands_.push_back(std::move(band));
    emit BandsChanged();
    return true;
}

bool taMenuBar::RemoveBand(const QString& key)
{
    if (std::erase_if(bands_, [&](const MenuBand& band) { return SameBandKey(band.key, key); }) == 0)
        return false;
    emit BandsChanged();
    return true;
}

void taMenuBar::SetBands(std::vector<MenuBand> bands)
{
    bands_.clear();
    for (MenuBand& band : bands)
        if (Band(band.key) == nullptr)
            bands_.push_back(std::move(band));
    emit BandsChanged();
}

const MenuBand* taMenuBar::Band(const QString& key) const
{
    const auto at =
        std::find_if(bands_.begin(), bands_.end(), [&](const MenuBand& b) { return SameBandKey(b.key, key); });
    return at == bands_.end() ? nullptr : &*at;
}

MenuBand* taMenuBar::FindBand(const QString& key) { return const_cast<MenuBand*>(Band(key)); }

bool taMenuBar::ChangeBand(const QString& key, const std::function<void(MenuBand&)>& change)
{
    MenuBand* band = FindBand(key);
    if (band == nullptr)
        return false;
    const QString name = band->key;
    const BandDock before = band->dock;
    change(*band);
    band->key = name;
    const BandDock now = band->dock;
    emit BandsChanged();
    if (now != before)
        emit BandDocked(name, now);
    return true;
}

void taMenuBar::SetBandProperty(const QString& name, BandType type, BandProperty property, bool value)
{
    bool changed = false;
    for (MenuBand& band : bands_) {
        if (name.isEmpty() ? band.type != type : !SameBandKey(band.key, name))
            continue;
        if (property == BandProperty::Visible)
            changed |= std::exchange(band.visible, value) != value;
        else
            changed |= std::exchange(band.icons, value ? IconSize::Large : IconSize::Small) !=
                       (value ? IconSize::Large : IconSize::Small);
    }
    if (changed)
        emit BandsChanged();
}

void taMenuBar::SetBandTag(const QString& key, quintptr tag)
{
    if (MenuBand* band = FindBand(key))
        band->tag = tag;
}

void taMenuBar::SetBandDock(const QString& key, BandDock dock)
{
    if (MenuBand* band = FindBand(key))
        band->dock = dock;
}

bool taMenuBar::AddTool(const QString& bandKey, MenuTool tool, int parent, int index)
{
    MenuBand* band = FindBand(bandKey);
    if (band == nullptr)
        return false;
    MenuTool* above = parent != 0 ? FindToolIn(band->tools, parent) : nullptr;
    if (parent != 0 && above == nullptr)
        return false;
    std::vector<MenuTool>& tools = above != nullptr ? above->tools : band->tools;
    const bool inside = index >= 0 && static_cast<std::size_t>(index) < tools.size();
    tools.insert(inside ? tools.begin() + index : tools.end(), std::move(tool));
    emit BandsChanged();
    return true;
}

bool taMenuBar::RemoveTool(const QString& bandKey, int key)
{
    MenuBand* band = FindBand(bandKey);
    if (band == nullptr || !RemoveFirst(band->tools, key))
        return false;
    emit BandsChanged();
    return true;
}

void taMenuBar::EachBand(const std::function<void(MenuBand&)>& change)
{
    std::for_each(bands_.begin(), bands_.end(), change);
    emit BandsChanged();
}

void taMenuBar::EachTool(const std::function<void(MenuTool&)>& change)
{
    for (MenuBand& band : bands_)
        WalkTools(band.tools, [&](MenuTool& tool) {
            change(tool);
            return true;
        });
    emit BandsChanged();
}

const MenuTool* taMenuBar::FindTool(const std::function<bool(const MenuTool&)>& wanted) const
{
    for (const MenuBand& band : bands_)
        if (const MenuTool* tool = FirstTool(band.tools, wanted))
            return tool;
    return nullptr;
}

const MenuTool* taMenuBar::Tool(int key) const
{
    return FindTool([key](const MenuTool& tool) { return tool.key == key; });
}

const MenuTool* taMenuBar::Tool(const QString& bandKey, int key) const
{
    const MenuBand* band = Band(bandKey);
    return band != nullptr ? FirstTool(band->tools, key) : nullptr;
}

const MenuTool* taMenuBar::OpenTool(const QString& bandKey, int key)
{
    MenuBand* band = FindBand(bandKey);
    MenuTool* found = band != nullptr ? FindToolIn(band->tools, key) : nullptr;
    if (found != nullptr)
        emit BandOpen(*found);
    return found;
}

QVariant taMenuBar::GetToolProperty(int id, ToolProperty property) const
{
    const PropertyRow* row = FindProperty(property);
    const MenuTool* tool = Tool(id);
    return row != nullptr && tool != nullptr ? row->get(*tool) : QVariant();
}

void taMenuBar::SetToolProperty(int id, ToolProperty property, const QVariant& value)
{
    const PropertyRow* row = FindProperty(property);
    if (id == 0 || row == nullptr)
        return;
    std::vector<int> changed; // keys, each once
    for (MenuBand& band : bands_) {
        // Deliberately kept from tool to tool: behind a tool of the wanted command, one with no command of its own
        // takes the change too.
        int actionId = 0;
        WalkTools(band.tools, [&](MenuTool& tool) {
            if (const int own = CommandId(tool.action))
                actionId = own;
            const bool matches = tool.key == id || (property != ToolProperty::Action && actionId == id);
            if (matches && row->get(tool) != value) {
                row->set(tool, value);
                if (std::find(changed.begin(), changed.end(), tool.key) == changed.end())
                    changed.push_back(tool.key);
            }
            return true;
        });
    }
    if (changed.empty())
        return;
    for (const int key : changed)
        emit ToolChanged(key);
    if (property == ToolProperty::Enabled || property == ToolProperty::Visible)
        emit CommandStateChanged(id);
}

} // namespace kestrune
