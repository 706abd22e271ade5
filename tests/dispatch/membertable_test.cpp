#include <dispatch/membertable.h>
#include <fakes/failures.h>
#include <fakes/print.h>

#include <gtest/gtest.h>

namespace kestrune {

using namespace Qt::StringLiterals;

namespace {

class Lamp // a part of the object that serves some members
{
public:
    int Brightness() const { return brightness_; }
    void SetBrightness(int value) { brightness_ = value; }

private:
    int brightness_ = 3;
};

class Desk final : public TableObject
{
public:
    static inline int alive = 0;
    Desk() { ++alive; }
    ~Desk() override { --alive; }

    QString Join(const QString& first, const QString& second, int times) { return first + second.repeated(times); }
    bool Swap(QString& left, qint16& count)
    {
        left += u"!"_s;
        ++count;
        return true;
    }
    QString Told(std::optional<int> number, const Variant& any) const
    {
        return (number ? QString::number(*number) : u"none"_s) + (any.IsMissing() ? u" left out"_s : any.ToText());
    }
    QString Name() const { return name_; }
    void SetName(const QString& name) { name_ = name; }
    QString Drawer(int index) const { return drawers_.value(index); }
    void SetDrawer(int index, const QString& text) { drawers_[index] = text; }
    Ref<Desk> Other() const { return other_; }
    void SetOther(const Ref<Desk>& other) { other_ = other; }
    void DropOther() { other_ = {}; }
    Ref<Enumerator> NewEnum() { return MakeObject<ListEnumerator>(Variant::Array{u"a"_s, u"b"_s}); }

    Lamp& Served(Lamp*) { return lamp_; }
    const MemberTable& Table() const override;

protected:
    bool SubstituteName(QString& name) const override
    {
        if (name.compare(u"Label"_s, Qt::CaseInsensitive) != 0)
            return false;
        name = u"Name"_s;
        return true;
    }

private:
    QString name_ = u"desk"_s;
    QHash<int, QString> drawers_;
    Ref<Desk> other_;
    Lamp lamp_;
};

using M = Members<Desk>;
constexpr MemberRow kDeskRows[] = {
    M::Get<&Desk::NewEnum>(kEnumeratorMember, "NewEnum"),
    M::Property<&Desk::Name, &Desk::SetName>(kDefaultMember, "Name"),
    M::Method<&Desk::Join>(1, "Join", "First, [Second = \"x\"], [Times = 2]"),
    Boolean16(M::Method<&Desk::Swap>(2, "Swap", "Left, Count")),
    M::Method<&Desk::Told>(3, "Told", "[Number], [Any]"),
    M::Property<&Desk::Drawer, &Desk::SetDrawer>(4, "Drawer", "Index"),
    M::ObjectProperty<&Desk::Other, &Desk::SetOther>(5, "Other"),
    M::Property<&Lamp::Brightness, &Lamp::SetBrightness>(6, "Brightness"),
    M::Unserved(7, "Polish", InvokeKind::Method | InvokeKind::Let, "[How]"),
    M::Method<&Desk::DropOther>(8, "DropOther"),
};
static_assert(DistinctMembers(kDeskRows));

const MemberTable& Desk::Table() const
{
    static const MemberTable table("Desk", kDeskRows);
    return table;
}

class MemberTableTest : public testing::Test
{
protected:
    ~MemberTableTest() override
    {
        desk_ = {};
        EXPECT_EQ(Desk::alive, 0); // whatever a test does, nothing keeps an object back
    }
    Ref<Desk> desk_ = MakeObject<Desk>();
};

TEST_F(MemberTableTest, NamesAreFoundWithoutRegardToCaseAndByTheirOldName)
{
    EXPECT_EQ(desk_->IdOfName(u"jOIN"_s), 1);
    EXPECT_EQ(desk_->IdOfName(u"label"_s), 0);
    EXPECT_EQ(desk_->IdOfName(u"Joins"_s), std::nullopt);
    EXPECT_EQ(desk_->IndexOfArgument(1, u"TIMES"_s), 2);
    EXPECT_EQ(desk_->IndexOfArgument(1, u"Label"_s), std::nullopt);
    EXPECT_EQ(desk_->IndexOfArgument(99, u"Times"_s), std::nullopt);
    EXPECT_EQ(FailureNumber([&] { desk_->Get(u"Joins"_s); }), 438);
}

TEST_F(MemberTableTest, ArgumentsComeByPlaceByNameOrFromTheTable)
{
    using Values = std::vector<Variant>;
    using Named = std::vector<NamedArgument>;
    const Variant left = Variant::Missing{};
    struct Row
    {
        Values positional;
        Named named;
        QString result;
        int failure = 0;
    };
    const Row rows[] = {
        {{u"a"_s}, {}, u"axx"_s},
        {{u"a"_s, u"b"_s, qint16(3)}, {}, u"abbb"_s},
        {{u"a"_s, left, u"1"_s}, {}, u"ax"_s},
        {{u"a"_s}, {{2, qint16(1)}}, u"ax"_s},
        {{}, {{2, qint16(1)}, {1, u"b"_s}, {0, u"a"_s}}, u"ab"_s},
        {{qint16(5), left, left}, {}, u"5xx"_s},
        {{}, {}, {}, 449},
        {{left, u"b"_s}, {}, {}, 449},
        {{u"a"_s}, {{0, u"b"_s}}, {}, 448}, // given twice
        {{u"a"_s}, {{3, u"b"_s}}, {}, 448},
        {{u"a"_s}, {{-1, u"b"_s}}, {}, 448},
        {{u"a"_s, u"b"_s, qint16(3), qint16(4)}, {}, {}, 450},
        {{u"a"_s, u"b"_s, u"many"_s}, {}, {}, 13},
        {{u"a"_s, u"b"_s, 1e10}, {}, {}, 6},
    };
    for (const Row& row : rows) {
        Variant result;
        EXPECT_EQ(FailureNumber([&] {
                      result = desk_->Invoke(1, InvokeKind::Method | InvokeKind::Get, {row.positional, row.named});
                  }),
                  row.failure);
        EXPECT_EQ(result.ToText(), row.result);
    }
    EXPECT_EQ(desk_->Call(u"Told"_s).ToText(), u"none left out"_s);
    EXPECT_EQ(desk_->Call(u"Told"_s, {qint16(4), u" x"_s}).ToText(), u"4 x"_s);
}

TEST_F(MemberTableTest, ByReferenceArgumentsComeBack)
{
    Variant text = u"a"_s;
    Variant count = u"4"_s;
    EXPECT_EQ(desk_->Call(u"Swap"_s, {Variant::Reference{&text}, Variant::Reference{&count}}), Variant(qint16(-1)));
    EXPECT_EQ(text, Variant(u"a!"_s));
    EXPECT_EQ(count, Variant(qint16(5)));
    desk_->Call(u"Swap"_s, {text, count}); // values: nothing to write to
    EXPECT_EQ(text, Variant(u"a!"_s));
}

TEST_F(MemberTableTest, PropertiesOfEachShape)
{
    desk_->Let(u"Name"_s, {u"table"_s});
    EXPECT_EQ(desk_->Get(u"Name"_s), Variant(u"table"_s));
    desk_->Let(u"Drawer"_s, {qint16(2), u"pens"_s});
    EXPECT_EQ(desk_->Get(u"Drawer"_s, {2.4}), Variant(u"pens"_s));
    desk_->Let(u"Brightness"_s, {u"9"_s});
    EXPECT_EQ(desk_->Get(u"Brightness"_s), Variant(qint32(9)));
    EXPECT_EQ(Convert<QString>::From(Variant(static_cast<const ObjectRef&>(desk_))), u"table"_s); // the default member

    EXPECT_EQ(FailureNumber([&] { desk_->Let(u"Name"_s, {}); }), 449);
    EXPECT_EQ(FailureNumber([&] { desk_->Call(u"Name"_s); }), 438);
    EXPECT_EQ(FailureNumber([&] { desk_->Let(u"Join"_s, {u"a"_s}); }), 438);
    EXPECT_EQ(FailureNumber([&] { desk_->Invoke(99, InvokeKind::Get, {}); }), 438);
}

TEST_F(MemberTableTest, ObjectsAreAssignedBySetAndLiveAsLongAsTheyAreHeld)
{
    const ObjectRef other = MakeObject<Desk>();
    const Variant value[] = {other};
    desk_->Invoke(5, InvokeKind::Set, {value, {}});
    EXPECT_EQ(desk_->Get(u"Other"_s).ToObject(), other);
    const Variant wrong[] = {ObjectRef(MakeObject<ListEnumerator>(Variant::Array{}))};
    EXPECT_EQ(FailureNumber([&] { desk_->Invoke(5, InvokeKind::Set, {wrong, {}}); }), 13);
    EXPECT_EQ(FailureNumber([&] { desk_->Let(u"Other"_s, {value[0]}); }), 438);

    // An object that lets itself go in the middle of a call.
    Ref<Desk> first = MakeObject<Desk>();
    Desk* raw = first.Get();
    raw->SetOther(first);
    first = {};
    raw->Call(u"DropOther"_s);
}

TEST_F(MemberTableTest, ItemsAreEnumerated)
{
    const Ref<Enumerator> items = EnumerateItems(*desk_);
    QStringList seen;
    for (int round = 0; round < 2; ++round) {
        for (Variant item; items->Next(item);)
            seen.append(item.ToText());
        items->Reset();
    }
    EXPECT_EQ(seen, (QStringList{u"a"_s, u"b"_s, u"a"_s, u"b"_s}));
    EXPECT_EQ(FailureNumber([&] { EnumerateItems(*items); }), 451);
}

TEST_F(MemberTableTest, FailuresSayWhoFailed)
{
    for (const quint8 kind : {InvokeKind::Method, InvokeKind::Let})
        try {
            const Variant value[] = {u"well"_s};
            desk_->Invoke(7, kind, {value, {}});
            FAIL();
        } catch (const Failure& failure) {
            EXPECT_EQ(failure.Number(), ErrorNumber::NotImplemented);
            EXPECT_EQ(failure.Source(), u"Desk"_s);
        }
}

} // namespace

} // namespace kestrune
