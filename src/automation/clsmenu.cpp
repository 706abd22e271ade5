#include <automation/clsmenu.h>

#include <algorithm>
#include <set>

namespace kestrune {

using namespace Qt::StringLiterals;

namespace {

// Given once; scripts and programs made since bind to them.
constexpr ClassIdentity kMenuIdentity = {"clsMenu",
                                         "Orlin71.clsMenu",
                                         IdOf("ee334eb8-95f0-4dd0-a746-f51428393424"),
                                         {{{"_clsMenu", IdOf("4e5fea22-b8dc-45b7-8dc5-34c5203ae31d")},
                                           {"Menu", IdOf("2d67c370-a5f6-42f6-839c-33e31025df36")}}}};
constexpr ClassIdentity kMnuBandIdentity = {"clsMnuBand",
                                            "Orlin71.clsMnuBand",
                                            IdOf("a9e1e94a-6b80-4092-b6fd-a3161ff9abd6"),
                                            {{{"_clsMnuBand", IdOf("76794520-85e4-45ff-a37a-86f9b95d475f")},
                                              {"MnuBand", IdOf("72bb18a2-027d-4682-aa22-28faf8758072")}}}};
constexpr ClassIdentity kMnuToolIdentity = {"clsMnuTool",
                                            "Orlin71.clsMnuTool",
                                            IdOf("321403cc-0295-4754-bedf-6902745faab8"),
                                            {{{"_clsMnuTool", IdOf("bf41e43e-044c-4db2-a8d3-faed3f15c848")},
                                              {"MnuTool", IdOf("3bce4d23-fd46-4971-bea8-d665c21b5d7f")}}}};

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
