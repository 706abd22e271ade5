#include <dispatch/failure.h>
#include <fakes/print.h>
#include <support/ordlst.h>
#include <support/recentlist.h>

#include <gtest/gtest.h>

namespace kestrune {

using namespace Qt::StringLiterals;

namespace {

clsRecentList ListOf(const QString& letters, int size)
{
    clsRecentList list;
    list.SetListSize(size);
    for (auto it = letters.rbegin(); it != letters.rend(); ++it)
        list.AddItem(QString(*it));
    return list;
}

QString Entries(const clsRecentList& list)
{
    QString text;
    for (int i = 1; i <= list.ListCount(); ++i)
        text += list.ListItem(i);
    return text;
}

struct RecentCase
{
    const char* name;
    QString before;
    int size;
    void (*change)(clsRecentList&);
    QString after;
};

class RecentListTest : public testing::TestWithParam<RecentCase>
{};

TEST_P(RecentListTest, Changes)
{
    clsRecentList list = ListOf(GetParam().before, GetParam().size);
    GetParam().change(list);
    EXPECT_EQ(Entries(list), GetParam().after);
}

INSTANTIATE_TEST_SUITE_P(
    Cases, RecentListTest,
    testing::Values(RecentCase{"NewOneGoesToTheTop", u"bcd"_s, 4, [](auto& l) { l.AddItem(u"a"_s); }, u"abcd"_s},
                    RecentCase{"LastFallsOff", u"bcde"_s, 4, [](auto& l) { l.AddItem(u"a"_s); }, u"abcd"_s},
                    RecentCase{"KnownOneMoves", u"bcad"_s, 4, [](auto& l) { l.AddItem(u"a"_s); }, u"abcd"_s},
                    RecentCase{"NewSpellingReplacesTheOld", u"bad"_s, 4, [](auto& l) { l.AddItem(u"A"_s); }, u"Abd"_s},
                    RecentCase{"SizeZeroStaysEmpty", u""_s, 0, [](auto& l) { l.AddItem(u"a"_s); }, u""_s},
                    RecentCase{"SmallerSizeCuts", u"abcd"_s, 4, [](auto& l) { l.SetListSize(2); }, u"ab"_s},
                    RecentCase{"RemoveClosesTheGap", u"abcd"_s, 4, [](auto& l) { l.RemoveItem(u"B"_s); }, u"acd"_s},
                    RecentCase{"RemoveOfUnknown", u"ab"_s, 4, [](auto& l) { l.RemoveItem(u"x"_s); }, u"ab"_s},
                    RecentCase{"LoadLeavesOutEmptyAndCuts", u"x"_s, 2,
                               [](auto& l) {
                                   l.Load({u"a"_s, {}, u"b"_s, u"c"_s});
                               },
                               u"ab"_s},
                    RecentCase{"SetItem", u"abc"_s, 4, [](auto& l) { l.SetListItem(2, u"x"_s); }, u"axc"_s},
                    RecentCase{"Clear", u"abc"_s, 4, [](auto& l) { l.Clear(); }, u""_s}),
    [](const auto& each) { return std::string(each.param.name); });

TEST(RecentList, IndexOutsideRaises381)
{
    clsRecentList list = ListOf(u"ab"_s, 4);
    for (const int index : {-1, 0, 3}) {
        for (const bool write : {false, true}) {
            try {
                write ? list.SetListItem(index, u"x"_s) : void(list.ListItem(index));
                ADD_FAILURE() << index;
            } catch (const Failure& failure) {
                EXPECT_EQ(failure.Number(), ErrorNumber::BadIndex);
            }
        }
    }
}

TEST(RecentList, MaxListSizeIgnoresNothingToHold)
{
    clsRecentList list;
    EXPECT_EQ(list.MaxListSize(), 30);
    EXPECT_EQ(list.ListSize(), 4);
    list.SetMaxListSize(25);
    list.SetMaxListSize(0);
    list.SetMaxListSize(-3);
    EXPECT_EQ(list.MaxListSize(), 25);
}

// A walk: + adds, - removes, ^ puts on top, > asks for the next, which stands behind it.
struct OrderCase
{
    const char* name;
    const char* walk;
};

class OrderedListTest : public testing::TestWithParam<OrderCase>
{};

TEST_P(OrderedListTest, Walk)
{
    OrderedList list;
    for (const char* at = GetParam().walk; *at != '\0'; at += 2) {
        const int key = at[1] == '!' ? -1 : at[1] - '0';
        switch (*at) {
        case '+':
            list.Add(key);
            break;
        case '-':
            list.Remove(key);
            break;
        case '^':
            list.SetTop(key);
            break;
        case '>':
            ASSERT_EQ(list.NextKey(), key) << "at " << at;
            break;
        default:
            FAIL() << *at;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Cases, OrderedListTest,
                         testing::Values(OrderCase{"EmptyGivesMinusOne", ">!>!"}, OrderCase{"OneGivesItself", "+1>1>1"},
                                         OrderCase{"TogglesBetweenTheTwoUsedLast", "+1+2+3>2^2>3^3>2^2>3"},
                                         OrderCase{"WalksOnAndWraps", "+1+2+3>2>1>3>2"},
                                         OrderCase{"RemovedOneIsLeftOut", "+1+2+3-2>1>3"},
                                         OrderCase{"UnknownKeysChangeNothing", "+1+2-7^7>1>2"},
                                         OrderCase{"RemoveUnderTheCursor", "+1+2+3>2>1-1>3"},
                                         OrderCase{"EmptiedAgain", "+1-1>!"}),
                         [](const auto& each) { return std::string(each.param.name); });

} // namespace

} // namespace kestrune
