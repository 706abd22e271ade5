#include <automation/clsmenu.h>
#include <fakes/failures.h>
#include <fakes/print.h>
#include <fakes/shellbench.h>

#include <gtest/gtest.h>

#include <bit>

namespace kestrune {

using namespace Qt::StringLiterals;

namespace {

// Drives the objects as a script does: by name.
class ClsMenuTest : public testing::Test
{
protected:
    ObjectRef Tool(int id) const { return menu_->Get(u"Item"_s, {qint32(id)}).ToObject(); }
    ObjectRef Band(const Variant& key) const { return menu_->Get(u"MnuBands"_s, {key}).ToObject(); }

    ShellBench bench_;
    Ref<clsMenu> menu_ = bench_.Run().MenuObject();
    taMenuBar& bars_ = bench_.Frame().menu;
};

TEST_F(ClsMenuTest, BandsByKeyNumberAndOneAfterTheOther)
{
    EXPECT_EQ(menu_->Get(u"Count"_s), Variant(qint32(6)));
    EXPECT_EQ(Band(u"TOOLBAR"_s)->Get(u"Name"_s), Variant(u"Toolbar"_s));
    EXPECT_EQ(Band(qint16(2))->Get(u"Name"_s), Variant(u"StatusBar"_s));
    EXPECT_EQ(FailureNumber([&] { Band(u"None"_s); }), 5);
    EXPECT_EQ(FailureNumber([&] { Band(qint16(0)); }), 9);
    EXPECT_EQ(FailureNumber([&] { Band(qint16(7)); }), 9);
    const Ref<Enumerator> each = EnumerateItems(*menu_);
    QStringList names;
    for (Variant band; each->Next(band);)
        names.append(band.ToObject()->Get(u"Name"_s).ToText());
    EXPECT_EQ(names.join(u' '), u"Menu StatusBar Toolbar ContextMenu SessionBar TabCtx"_s);
}

TEST_F(ClsMenuTest, BandProperties)
{
    const std::pair<const char16_t*, int> types[] = {
        {u"Menu", 1}, {u"TabCtx", 2}, {u"Toolbar", 0}, {u"StatusBar", 3}, {u"SessionBar", 4}};
    for (const auto& [key, code] : types)
        EXPECT_EQ(Band(QString::fromUtf16(key))->Get(u"BandType"_s), Variant(qint16(code)));
    const ObjectRef band = Band(u"Toolbar"_s);
    EXPECT_EQ(FailureNumber([&] { band->Let(u"BandType"_s, {qint16(1)}); }), int(0x800A017F));

    for (const int area : {1, 2, 4, 8, 16}) {
        band->Let(u"DockingArea"_s, {qint16(area)});
        EXPECT_EQ(band->Get(u"DockingArea"_s), Variant(qint16(area)));
    }
    EXPECT_EQ(bars_.Band(u"Toolbar"_s)->dock, BandDock::Floating);
    for (const int area : {0, 3, 32, -1})
        band->Let(u"DockingArea"_s, {qint16(area)});
    EXPECT_EQ(bars_.Band(u"Toolbar"_s)->dock, BandDock::Floating);

    band->Let(u"Caption"_s, {u"Buttons"_s});
    EXPECT_EQ(bars_.Band(u"Toolbar"_s)->title, u"Buttons"_s);
    EXPECT_EQ(band->Get(u"Visible"_s), Variant(qint16(1)));
    band->Let(u"Visible"_s, {false});
    EXPECT_EQ(band->Get(u"Visible"_s), Variant(qint16(0)));
    band->Let(u"Visible"_s, {qint16(1)});
    EXPECT_TRUE(bench_.Frame().popups.isEmpty());
    Band(u"TabCtx"_s)->Let(u"Visible"_s, {true}); // a popup also pops up
    EXPECT_EQ(bench_.Frame().popups, QStringList{u"TabCtx"_s});
    bars_.RemoveBands();
    EXPECT_EQ(FailureNumber([&] { band->Get(u"Caption"_s); }), 91);
}

TEST_F(ClsMenuTest, ToolsOfABandAreFlat)
{
    bars_.AddTool(u"TabCtx"_s, *bars_.Tool(100)); // a sub-menu with tools of its own
    bars_.AddTool(u"TabCtx"_s, *bars_.Tool(101)); // that key stands already
    const ObjectRef band = Band(u"TabCtx"_s);
    EXPECT_EQ(band->Get(u"Count"_s), Variant(qint16(5 + 1 + bars_.Tool(100)->tools.size())));
    EXPECT_EQ(band->Get(u"MnuTools"_s, {qint16(7)}).ToObject()->Get(u"ToolID"_s), Variant(qint32(101)));
    EXPECT_EQ(band->Get(u"MnuTools"_s, {u"1305"_s}).ToObject()->Get(u"Caption"_s), Variant(u"&Rename"_s));
    EXPECT_EQ(FailureNumber([&] { band->Get(u"MnuTools"_s, {u"303"_s}); }), 5);
    int count = 0;
    const Ref<Enumerator> each = EnumerateItems(*band);
    for (Variant tool; each->Next(tool);)
        ++count;
    EXPECT_EQ(count, band->Get(u"Count"_s).ToInteger());
}

TEST_F(ClsMenuTest, ToolsAreAdjustedById)
{
    const ObjectRef tool = Tool(101);
    EXPECT_EQ(tool->Get(u"Enabled"_s), Variant(qint16(1)));
    tool->Let(u"Enabled"_s, {qint16(0)});
    EXPECT_FALSE(bars_.Tool(u"Toolbar"_s, 101)->enabled || bars_.Tool(u"Menu"_s, 101)->enabled);
    tool->Let(u"Checked"_s, {true});
    EXPECT_EQ(tool->Get(u"Checked"_s), Variant(qint16(1)));
    tool->Let(u"Caption"_s, {u"Fresh"_s});
    EXPECT_EQ(tool->Get(u"Caption"_s), Variant(u"Fresh"_s));
    tool->Let(u"Action"_s, {QString()});
    EXPECT_EQ(tool->Get(u"Action"_s), Variant(u"[#101]"_s));

    const ObjectRef nothing = Tool(9999);
    EXPECT_EQ(nothing->Get(u"Caption"_s), Variant(QString()));
    EXPECT_TRUE(nothing->Get(u"Visible"_s).IsEmpty());
    nothing->Let(u"Visible"_s, {true});
}

// Each published member that is not served fails in each way in which it can be called; the rest of the surface is
// what other programs bind to by number.
TEST_F(ClsMenuTest, SurfaceIsAsReleased)
{
    const auto unserved = [](const ObjectRef& object) {
        QStringList names;
        for (const MemberTable::Member& member : dynamic_cast<TableObject&>(*object).Table().All()) {
            const quint8 kinds = member.row->Kinds();
            const std::vector<Variant> arguments(member.parameters.size(), Variant(qint32(1)));
            std::vector<Variant> withValue = arguments;
            withValue.push_back(qint32(1));
            int failures = 0;
            for (const quint8 kind : {InvokeKind::Method, InvokeKind::Get, InvokeKind::Let, InvokeKind::Set})
                if ((kinds & kind) != 0)
                    failures +=
                        FailureNumber([&] {
                            object->Invoke(member.row->id, kind, {kind >= InvokeKind::Let ? withValue : arguments, {}});
                        }) == int(0x80004001);
            if (failures != 0) {
                EXPECT_EQ(failures, std::popcount(kinds)) << member.row->name;
                names.append(QString::fromLatin1(member.row->name));
            }
        }
        return names.join(u' ');
    };
    EXPECT_EQ(unserved(menu_), u"Activate Deactivate RecalcLayout RemoveAll Remove AddNew Load Save MenuText"_s);
    EXPECT_EQ(unserved(Band(u"Menu"_s)), u"Activate Deactivate AddNew Remove Insert"_s);
    EXPECT_EQ(unserved(Tool(101)), u"Name ControlType Style BeginGroup ImageNo SubBand Height Width ParentBandName"_s);
    EXPECT_EQ(
        Convert<QString>::From(menu_->Invoke(kDefaultMember, InvokeKind::Get, {std::vector<Variant>{qint32(101)}, {}})
                                   .ToObject()
                                   ->Get(u"ToolID"_s)),
        u"101"_s); // the default member
}

// Ids by which programs made long ago find the classes and their interfaces.
TEST_F(ClsMenuTest, IdsAreThoseOfTheFirstRelease)
{
    struct Row
    {
        ObjectRef object;
        const char* progId;
        const char* ids; // of the class and its interfaces
    };
    const Row rows[] = {
        {ObjectRef(menu_), "Orlin71.clsMenu",
         "ee334eb8-95f0-4dd0-a746-f51428393424 _clsMenu 4e5fea22-b8dc-45b7-8dc5-34c5203ae31d Menu "
         "2d67c370-a5f6-42f6-839c-33e31025df36"},
        {Band(u"Menu"_s), "Orlin71.clsMnuBand",
         "a9e1e94a-6b80-4092-b6fd-a3161ff9abd6 _clsMnuBand 76794520-85e4-45ff-a37a-86f9b95d475f MnuBand "
         "72bb18a2-027d-4682-aa22-28faf8758072"},
        {Tool(101), "Orlin71.clsMnuTool",
         "321403cc-0295-4754-bedf-6902745faab8 _clsMnuTool bf41e43e-044c-4db2-a8d3-faed3f15c848 MnuTool "
         "3bce4d23-fd46-4971-bea8-d665c21b5d7f"},
    };
    for (const Row& row : rows) {
        const auto& object = dynamic_cast<const TableObject&>(*row.object);
        const ClassIdentity* identity = object.Table().Identity();
        ASSERT_NE(identity, nullptr) << row.progId;
        EXPECT_STREQ(identity->progId, row.progId);
        QStringList ids{identity->id.toString(QUuid::WithoutBraces)};
        for (const InterfaceIdentity& each : identity->interfaces) {
            ids << QString::fromLatin1(each.name) << each.id.toString(QUuid::WithoutBraces);
            EXPECT_TRUE(object.Answers(each.id));
        }
        EXPECT_EQ(ids.join(u' '), QLatin1String(row.ids));
        EXPECT_FALSE(object.Answers(identity->id)) << "a class is no interface";
    }
}

TEST_F(ClsMenuTest, TheObjectStaysUntilMenuFilesAreLoadedAgain)
{
    Kestrune& application = bench_.Application();
    EXPECT_EQ(application.MenuObject(), menu_);
    EXPECT_EQ(menu_->Get(u"Count"_s), Variant(qint32(6)));
    EXPECT_TRUE(bars_.AddBand(MenuBand{}));
    EXPECT_EQ(menu_->Get(u"Count"_s), Variant(qint32(6))); // as first built
    application.Menu().ReloadMenus();
    EXPECT_NE(application.MenuObject(), menu_);
    Tool(101)->Let(u"Caption"_s, {u"Kept"_s}); // the old one goes on working by its keys
    EXPECT_EQ(bars_.Tool(101)->caption, u"Kept"_s);
}

} // namespace

} // namespace kestrune
