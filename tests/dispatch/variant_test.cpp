#include <dispatch/conversion.h>
#include <fakes/failures.h>
#include <fakes/print.h>

#include <gtest/gtest.h>

#include <random>

namespace kestrune {

using namespace Qt::StringLiterals;

namespace {

TEST(Variant, EachKindKeepsItsValueAndSaysWhatItIs)
{
    using Kind = Variant::Kind;
    const QDateTime day(QDate(2001, 2, 3), QTime(4, 5, 6), Qt::UTC);
    struct Row
    {
        Variant value;
        Kind kind;
        QString text;
        double number;
    };
    const Row rows[] = {
        {Variant(), Kind::Empty, {}, 0},
        {Variant::Missing{}, Kind::Missing, {}, 0},
        {Variant::Null{}, Kind::Null, {}, 0},
        {true, Kind::Boolean, u"True"_s, -1},
        {qint16(-7), Kind::Int16, u"-7"_s, -7},
        {qint32(70000), Kind::Int32, u"70000"_s, 70000},
        {qint64(1) << 40, Kind::Int64, u"1099511627776"_s, 1099511627776.0},
        {1.5F, Kind::Single, u"1.5"_s, 1.5},
        {0.1, Kind::Double, u"0.1"_s, 0.1},
        {Variant::Currency{-123400}, Kind::Currency, u"-12.34"_s, -12.34},
        {day, Kind::Date, u"2001-02-03T04:05:06Z"_s, 36925.170208333},
        {u" 12 apples"_s, Kind::String, u" 12 apples"_s, 12},
        {ObjectRef(), Kind::Object, {}, 0},
        {Variant::Array{true, 1.0}, Kind::Array, {}, 0},
        {Variant::Error{448}, Kind::Error, u"Error 448"_s, 448},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(row.value.Type(), row.kind) << int(row.kind);
        EXPECT_EQ(row.value.ToText(), row.text) << int(row.kind);
        EXPECT_NEAR(row.value.ToDouble(), row.number, 1e-6) << int(row.kind);
        EXPECT_EQ(Variant(row.value), row.value) << int(row.kind);
        for (const Row& other : rows)
            EXPECT_EQ(row.value == other.value, row.kind == other.kind);
    }
}

TEST(Variant, ReferencesStandForTheirTargets)
{
    Variant target = u"7"_s;
    Variant inner = Variant::Reference{&target};
    const Variant outer = Variant::Reference{&inner};
    EXPECT_EQ(outer.Resolved(), target);
    EXPECT_EQ(Convert<qint16>::From(outer), 7);
    target = qint32(8);
    EXPECT_EQ(outer.ToInteger(), 8);
}

TEST(VariantArray, ElementsStandWithinTheirBounds)
{
    VariantArray array(std::vector<VariantArray::Bound>{{1, 3}, {-1, 0}});
    ASSERT_EQ(array.Elements().size(), 6u);
    for (qint32 i = 1; i <= 3; ++i)
        for (qint32 j = -1; j <= 0; ++j)
            array.At({i, j}) = qint32(10 * i + j);
    EXPECT_EQ(array.Elements()[1], Variant(qint32(19))); // the first index runs fastest
    for (const std::vector<qint32>& wrong : {std::vector<qint32>{0, 0}, {4, 0}, {1, -2}, {1, 1}, {1}, {1, 0, 0}, {}})
        EXPECT_EQ(FailureNumber([&] { array.At(wrong); }), 9);
    EXPECT_EQ(Variant(array), Variant(array));
    array.At({1, 0}) = u"other"_s;
    EXPECT_NE(Variant(array), Variant(VariantArray(array.Elements()))); // other bounds

    EXPECT_EQ(VariantArray(Variant::Array{true, false}).At({1}), Variant(false));
    EXPECT_TRUE(VariantArray(std::vector<VariantArray::Bound>{{0, -1}, {0, 5}}).Elements().empty());
    EXPECT_EQ(FailureNumber([] {
                  VariantArray(std::vector<VariantArray::Bound>{{0, 2'000'000'000}, {0, 2'000'000'000}});
              }),
              7);
    EXPECT_EQ(FailureNumber([] { VariantArray(std::vector<VariantArray::Bound>{}); }), 9);
}

TEST(Conversion, WholeNumbersRoundToEvenAndRefuseWhatDoesNotFit)
{
    struct Row
    {
        Variant value;
        int number; // when it fits
        int failure = 0;
    };
    const Row rows[] = {
        {2.5, 2},
        {3.5, 4},
        {-2.5, -2},
        {true, -1},
        {Variant(), 0},
        {u" 12 "_s, 12},
        {u"1e2"_s, 100},
        {u"1D2"_s, 100},
        {u"&H1F"_s, 31},
        {u"&o17"_s, 15},
        {Variant::Currency{15000}, 2},
        {qint64(-32768), -32768},
        {32767.49, 32767},
        {32768.0, 0, 6},
        {qint32(-32769), 0, 6},
        {qint64(1) << 62, 0, 6},
        {1e300, 0, 6},
        {std::nan(""), 0, 6},
        {u"1e999"_s, 0, 6},
        {u"12 apples"_s, 0, 13},
        {QString(), 0, 13},
        {Variant::Missing{}, 0, 13},
        {Variant::Error{5}, 0, 13},
        {Variant::Array{}, 0, 13},
        {Variant::Null{}, 0, 94},
        {ObjectRef(), 0, 91},
    };
    for (const Row& row : rows) {
        int number = 0;
        EXPECT_EQ(FailureNumber([&] { number = Convert<qint16>::From(row.value); }), row.failure)
            << row.value.ToText().toStdString();
        EXPECT_EQ(number, row.number) << row.value.ToText().toStdString();
    }
    EXPECT_EQ(Convert<quint8>::From(u"255"_s), 255);
    EXPECT_EQ(FailureNumber([] { Convert<quint8>::From(qint16(-1)); }), 6);
    EXPECT_EQ(Convert<qint64>::From(std::numeric_limits<qint64>::max()), std::numeric_limits<qint64>::max());
}

TEST(Conversion, OtherTypes)
{
    for (const auto& [text, is] :
         {std::pair{u"true"_s, true}, {u"FALSE"_s, false}, {u"#TRUE#"_s, true}, {u"0.0"_s, false}})
        EXPECT_EQ(Convert<bool>::From(text), is) << text.toStdString();
    EXPECT_EQ(FailureNumber([] { Convert<bool>::From(u"yes"_s); }), 13);
    EXPECT_EQ(Convert<QString>::From(-0.5), u"-0.5"_s);
    EXPECT_EQ(FailureNumber([] { Convert<ObjectRef>::From(qint16(1)); }), 424);
    EXPECT_FALSE(Convert<ObjectRef>::From(ObjectRef()));
    EXPECT_EQ(Convert<QDateTime>::From(2.25), QDateTime(QDate(1900, 1, 1), QTime(6, 0), Qt::UTC));
    EXPECT_EQ(FailureNumber([] { Convert<QDateTime>::From(1e12); }), 6);
    EXPECT_EQ(FailureNumber([] { Convert<QDateTime>::From(u"soon"_s); }), 13);
    EXPECT_EQ(Convert<std::optional<int>>::From(Variant::Missing{}), std::nullopt);
}

// What fits comes back as it went, by way of a number of the wider kinds or of text.
TEST(Conversion, EveryRouteOfANumberGivesTheSame)
{
    std::mt19937 random(5);
    for (int i = 0; i < 2000; ++i) {
        const auto number = static_cast<qint32>(random() >> (random() % 32)) * (random() % 2 ? 1 : -1);
        const double fromText = Convert<double>::From(Variant(number).ToText());
        EXPECT_EQ(Convert<qint32>::From(fromText), number);
        EXPECT_EQ(Convert<qint32>::From(qint64(number)), number);
        EXPECT_EQ(Variant(double(number)).ToInteger(), number);
        const bool fits = number >= -32768 && number <= 32767;
        EXPECT_EQ(FailureNumber([&] { Convert<qint16>::From(number); }), fits ? 0 : 6) << number;
    }
}

} // namespace

} // namespace kestrune
