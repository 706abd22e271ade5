#include <automation/clsmenu.h>

#include <algorithm>
#include <set>

namespace kestrune {

using namespace Qt::StringLiterals;

namespace {

// Given once; scripts and programs made since bind to them.
constexpr ClassIdentity kMenuIdentity = {
    "clsMenu",
    "Orlin71.clsMenu",
    QUuid(0xee334eb8, 0x95f0, 0x4dd0, 0xa7, 0x46, 0xf5, 0x14, 0x28, 0x39, 0x34, 0x24),
    {{{"_clsMenu", QUuid(0x4e5fea22, 0xb8dc, 0x45b7, 0x8d, 0xc5, 0x34, 0xc5, 0x20, 0x3a, 0xe3, 0x1d)},
      {"Menu", QUuid(0x2d67c370, 0xa5f6, 0x42f6, 0x83, 0x9c, 0x33, 0xe3, 0x10, 0x25, 0xdf, 0x36)}}}};
constexpr ClassIdentity kMnuBandIdentity = {
    "clsMnuBand",
    "Orlin71.clsMnuBand",
    QUuid(0xa9e1e94a, 0x6b80, 0x4092, 0xb6, 0xfd, 0xa3, 0x16, 0x1f, 0xf9, 0xab, 0xd6),
    {{{"_clsMnuBand", QUuid(0x76794520, 0x85e4, 0x45ff, 0xa3, 0x7a, 0x86, 0xf9, 0xb9, 0x5d, 0x47, 0x5f)},
      {"MnuBand", QUuid(0x72bb18a2, 0x027d, 0x4682, 0xaa, 0x22, 0x28, 0xfa, 0xf8, 0x75, 0x80, 0x72)}}}};
constexpr ClassIdentity kMnuToolIdentity = {
    "clsMnuTool",
    "Orlin71.clsMnuTool",
    QUuid(0x321403cc, 0x0295, 0x4754, 0xbe, 0xdf, 0x69, 0x02, 0x74, 0x5f, 0xaa, 0xb8),
    {{{"_clsMnuTool", QUuid(0xbf41e43e, 0x044c, 0x4db2, 0xa8, 0xd3, 0xfa, 0xed, 0x3f, 0x15, 0xc8, 0x48)},
      {"MnuTool", QUuid(0x3bce4d23, 0xfd46, 0x4971, 0xbe, 0xa8, 0xd6, 0x65, 0xc2, 0x1b, 0x5d, 0x7f)}}}};

constexpr quint8 kGetLet = InvokeKind::Get | InvokeKind::Let;
constexpr quint8 kMethod = InvokeKind::Method;

using MenuMember = Members<clsMenu>;
constexpr MemberRow kMenuRows[] = {
    MenuMember::Get<&clsMenu::MnuBands>(1, "MnuBands", "vntKey"),
    MenuMember::Get<&clsMenu::NewEnum>(kEnumeratorMember, "NewEnum"),
    MenuMember::Get<&clsMenu::Count>(2, "Count"),
    MenuMember::Get<&clsMenu::Item>(kDefaultMember, "Item", "ToolID"),
    MenuMember::Unserved(3, "Activate", kMethod),
    MenuMember::Unserved(4, "Deactivate", kMethod),
    MenuMember::Unserved(5, "RecalcLayout", kMethod),
    MenuMember::Unserved(6, "RemoveAll", kMethod),
    MenuMember::Unserved(7, "Remove", kMethod, "vntKey"),
    MenuMember::Unserved(8, "AddNew", kMethod, "strName"),
    MenuMember::Unserved(9, "Load", kMethod, "FileName"),
    MenuMember::Unserved(10, "Save", kMethod, "FileName"),
    MenuMember::Unserved(11, "MenuText", kGetLet),
};
static_assert(DistinctMembers(kMenuRows));

using BandMember = Members<clsMnuBand>;
constexpr MemberRow kBandRows[] = {
    BandMember::Get<&clsMnuBand::Name>(1, "Name"),
    BandMember::Property<&clsMnuBand::Caption, &clsMnuBand::SetCaption>(2, "Caption"),
    BandMember::Property<&clsMnuBand::DockingArea, &clsMnuBand::SetDockingArea>(3, "DockingArea"),
    BandMember::Property<&clsMnuBand::BandType, &clsMnuBand::SetBandType>(4, "BandType"),
    BandMember::Property<&clsMnuBand::Visible, &clsMnuBand::SetVisible>(5, "Visible"),
    BandMember::Get<&clsMnuBand::Count>(6, "Count"),
    BandMember::Get<&clsMnuBand::MnuTools>(7, "MnuTools", "Index"),
    BandMember::Unserved(8, "Activate", kMethod),
    BandMember::Unserved(9, "Deactivate", kMethod),
    BandMember::Unserved(10, "AddNew", kMethod, "lngToolID"),
    BandMember::Unserved(11, "Remove", kMethod, "lngToolID"),
    BandMember::Unserved(12, "Insert", kMethod, "MnuTool, lngAfterToolID"),
    BandMember::Get<&clsMnuBand::NewEnum>(kEnumeratorMember, "NewEnum"),
};
static_assert(DistinctMembers(kBandRows));

using ToolMember = Members<clsMnuTool>;
constexpr MemberRow kToolRows[] = {
    ToolMember::Get<&clsMnuTool::ToolID>(1, "ToolID"),
    ToolMember::Property<&clsMnuTool::Action, &clsMnuTool::SetAction>(2, "Action"),
    ToolMember::Property<&clsMnuTool::Caption, &clsMnuTool::SetCaption>(3, "Caption"),
    ToolMember::Property<&clsMnuTool::ToolTipText, &clsMnuTool::SetToolTipText>(4, "ToolTipText"),
    ToolMember::Property<&clsMnuTool::Enabled, &clsMnuTool::SetEnabled>(5, "Enabled"),
    ToolMember::Property<&clsMnuTool::Visible, &clsMnuTool::SetVisible>(6, "Visible"),
    ToolMember::Property<&clsMnuTool::Checked, &clsMnuTool::SetChecked>(7, "Checked"),
    ToolMember::Unserved(8, "Name", kGetLet),
    ToolMember::Unserved(9, "ControlType", kGetLet),
    ToolMember::Unserved(10, "Style", kGetLet),
    ToolMember::Unserved(11, "BeginGroup", kGetLet),
    ToolMember::Unserved(12, "ImageNo", kGetLet),
    ToolMember::Unserved(13, "SubBand", kGetLet),
    ToolMember::Unserved(14, "Height", kGetLet),
    ToolMember::Unserved(15, "Width", kGetLet),
    ToolMember::Unserved(16, "ParentBandName", kGetLet),
};
static_assert(DistinctMembers(kToolRows));

// An item of a collection by its key, without regard to case, or by its number from 1.
template <typename T, typename KeyOf>
// NOLINTNEXTLINE(misc-unused-parameters): the analyser does not see the uses inside a template
Ref<T> FindItem(const std::vector<Ref<T>>& items, const Variant& key, KeyOf keyOf)
{
    if (key.IsText()) {
        const QString wanted = key.ToText();
        for (const Ref<T>& item : items)
            if (keyOf(*item).compare(wanted, Qt::CaseInsensitive) == 0)
                return item;
        throw Failure(ErrorNumber::InvalidCall, u"Invalid procedure call or argument"_s);
    }
    const auto number = Convert<qint32>::From(key);
    if (number < 1 || static_cast<std::size_t>(number) > items.size())
        throw Failure(ErrorNumber::SubscriptOutOfRange, u"Subscript out of range"_s);
    return items[static_cast<std::size_t>(number) - 1];
}

template <typename T>
Ref<Enumerator> EnumeratorOver(const std::vector<Ref<T>>& items)
{
    return MakeObject<ListEnumerator>(Variant::Array(items.begin(), items.end()));
}

struct BandTypeCode
{
    BandType type;
    qint16 code;
};

constexpr BandTypeCode kBandTypes[] = {{BandType::MainMenu, 1},
                                       {BandType::Popup, 2},
                                       {BandType::ToolBar, 0},
                                       {BandType::StatusBar, 3},
                                       {BandType::SessionBar, 4}};

constexpr int kDockCount = 5; // top to floating are 1 to 5, and bits of a number to callers

} // namespace

// --- tool

const MemberTable& clsMnuTool::Table() const
{
    static const MemberTable table(kMnuToolIdentity, kToolRows);
    return table;
}

QVariant clsMnuTool::Value(ToolProperty property) const
{
    return menu_ ? menu_->GetToolProperty(toolId_, property) : QVariant();
}

Variant clsMnuTool::State(ToolProperty property) const
{
    const QVariant value = Value(property);
    return value.isValid() ? Variant(static_cast<qint16>(value.toBool() ? 1 : 0)) : Variant();
}

void clsMnuTool::Set(ToolProperty property, const QVariant& value)
{
    if (menu_)
        menu_->SetToolProperty(toolId_, property, value);
}

// --- band

const MemberTable& clsMnuBand::Table() const
{
    static const MemberTable table(kMnuBandIdentity, kBandRows);
    return table;
}

const MenuBand& clsMnuBand::Band() const
{
    const MenuBand* band = menu_ ? menu_->Band(key_) : nullptr;
    if (band == nullptr)
        throw Failure(ErrorNumber::ObjectNotSet, u"Object variable not set"_s);
    return *band;
}

void clsMnuBand::Change(const std::function<void(MenuBand&)>& change)
{
    Band();
    menu_->ChangeBand(key_, change);
}

QString clsMnuBand::Caption() const { return Band().title; }

void clsMnuBand::SetCaption(const QString& title)
{
    Change([&](MenuBand& band) { band.title = title; });
}

qint16 clsMnuBand::DockingArea() const
{
    const int dock = static_cast<int>(Band().dock);
    return static_cast<qint16>(dock >= 1 && dock <= kDockCount ? 1 << (dock - 1) : 0);
}

void clsMnuBand::SetDockingArea(qint16 area)
{
    for (int dock = 1; dock <= kDockCount; ++dock)
        if (area == 1 << (dock - 1))
            Change([&](MenuBand& band) { band.dock = static_cast<BandDock>(dock); });
}

qint16 clsMnuBand::BandType() const
{
    const auto* row = std::find_if(std::begin(kBandTypes), std::end(kBandTypes),
                                   [type = Band().type](const BandTypeCode& each) { return each.type == type; });
    return row != std::end(kBandTypes) ? row->code : qint16(0);
}

void clsMnuBand::SetBandType(const Variant&)
{
    throw Failure(ErrorNumber::ReadOnlyProperty, u"Property is read-only"_s);
}

qint16 clsMnuBand::Visible() const { return Band().visible ? 1 : 0; }

void clsMnuBand::SetVisible(bool on)
{
    Change([&](MenuBand& band) { band.visible = on; });
    if (on && popup_ && Band().type == kestrune::BandType::Popup)
        popup_(*menu_, key_);
}

const std::vector<Ref<clsMnuTool>>& clsMnuBand::Tools()
{
    if (tools_)
        return *tools_;
    std::vector<Ref<clsMnuTool>> made;
    std::set<int> keys; // a second tool of one key is left out, and what stands below it with it
    const std::function<void(const std::vector<MenuTool>&)> walk = [&](const std::vector<MenuTool>& tools) {
        for (const MenuTool& tool : tools)
            if (keys.insert(tool.key).second) {
                made.push_back(MakeObject<clsMnuTool>(menu_.data(), tool.key));
                walk(tool.tools);
            }
    };
    walk(Band().tools);
    return tools_.emplace(std::move(made));
}

qint16 clsMnuBand::Count() { return static_cast<qint16>(Tools().size()); }

Ref<clsMnuTool> clsMnuBand::MnuTools(const Variant& index)
{
    return FindItem(Tools(), index, [](const clsMnuTool& tool) { return QString::number(tool.ToolID()); });
}

Ref<Enumerator> clsMnuBand::NewEnum() { return EnumeratorOver(Tools()); }

// --- menu

const MemberTable& clsMenu::Table() const
{
    static const MemberTable table(kMenuIdentity, kMenuRows);
    return table;
}

const std::vector<Ref<clsMnuBand>>& clsMenu::Bands()
{
    if (!bands_) {
        bands_.emplace();
        if (menu_)
            for (const MenuBand& band : menu_->Bands())
                bands_->push_back(MakeObject<clsMnuBand>(menu_.data(), band.key, popup_));
    }
    return *bands_;
}

Ref<clsMnuBand> clsMenu::MnuBands(const Variant& key)
{
    return FindItem(Bands(), key, [](const clsMnuBand& band) { return band.Name(); });
}

Ref<Enumerator> clsMenu::NewEnum() { return EnumeratorOver(Bands()); }

qint32 clsMenu::Count() { return static_cast<qint32>(Bands().size()); }

Ref<clsMnuTool> clsMenu::Item(qint32 toolId) { return MakeObject<clsMnuTool>(menu_.data(), toolId); }

} // namespace kestrune
