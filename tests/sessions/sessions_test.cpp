#include "bench.h"

namespace kestrune {
namespace {

using namespace Qt::StringLiterals;

TEST(Sessions, HiddenIsABitSetWithOneSpecialValue)
{
    struct Case
    {
        int hidden;
        bool shown, onLine, titles;
    };
    const Case cases[] = {
        {0, true, true, true},        {1, false, true, true},        {2, true, false, true},
        {3, false, false, true},      {-1, false, true, true},       {0x4000, true, true, false},
        {0x4001, false, true, false}, {0x4003, false, false, false},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.hidden);
        SessionBench bench;
        const QString file = bench.SessionFile(u"a.orcf"_s);
        const auto other = bench.sessions.Add(file);
        const auto session = bench.sessions.Add(file, -1, 5, row.hidden);
        EXPECT_EQ(session->Visible(), row.shown);
        EXPECT_EQ(session->Emulator().OnLine(), row.onLine);
        EXPECT_EQ(other->frmSession()->Title(), row.titles ? u"a (1)"_s : u"a"_s);
        EXPECT_EQ(session->Emulator().InputMode(), 5);
    }
}

TEST(Sessions, StateComesFromTheCallElseFromTheApplication)
{
    SessionBench bench;
    bench.initState = 2;
    EXPECT_EQ(bench.sessions.Add()->WindowState(), 2);
    EXPECT_EQ(bench.sessions.Add({}, 0)->WindowState(), 0);
}

TEST(Sessions, ItemCountsFromZeroOrTakesAnId)
{
    SessionBench bench;
    const auto first = bench.sessions.Add();
    const auto second = bench.sessions.Add();
    EXPECT_EQ(bench.sessions.Item(0), first);
    EXPECT_EQ(bench.sessions.Item(u"1"_s), first);
    bench.sessions.Remove(u"1"_s);
    EXPECT_TRUE(first->Terminated());
    EXPECT_EQ(bench.sessions.Item(0), second);
    EXPECT_THROW(bench.sessions.Item(u"1"_s), Failure);
    EXPECT_THROW(bench.sessions.Item(1), Failure);
    EXPECT_EQ(bench.sessions.Count(), 1);
    EXPECT_NO_THROW(bench.sessions.Remove(u"99"_s));
}

TEST(Sessions, MoveKeepsAllAndNumbersThemAnew)
{
    SessionBench bench;
    const QString file = bench.SessionFile(u"a.orcf"_s);
    for (int i = 0; i < 3; ++i)
        bench.sessions.Add(file);
    const auto order = [&] {
        QStringList ids;
        for (const auto& session : bench.sessions.All())
            ids.append(session->Id() + u' ' + session->frmSession()->Title());
        return ids;
    };
    const std::pair<std::pair<QString, QString>, QStringList> rows[] = {
        {{u"3"_s, u"1"_s}, {u"3 a (1)"_s, u"1 a (2)"_s, u"2 a (3)"_s}},
        {{u"3"_s, {}}, {u"1 a (1)"_s, u"2 a (2)"_s, u"3 a (3)"_s}},
        {{u"1"_s, u"99"_s}, {u"2 a (1)"_s, u"3 a (2)"_s, u"1 a (3)"_s}},
        {{u"2"_s, u"2"_s}, {u"2 a (1)"_s, u"3 a (2)"_s, u"1 a (3)"_s}},
        {{u"99"_s, u"2"_s}, {u"2 a (1)"_s, u"3 a (2)"_s, u"1 a (3)"_s}},
    };
    for (const auto& [move, ids] : rows) {
        bench.sessions.MoveBefore(move.first, move.second);
        EXPECT_EQ(order(), ids) << move.first.toStdString() << " before " << move.second.toStdString();
    }
}

TEST(Sessions, LastOneGoneEndsTheProgramOrEmptiesTheWindow)
{
    for (const bool autoClose : {true, false}) {
        SessionBench bench;
        bench.autoClose = autoClose;
        bench.sessions.Add();
        bench.sessions.Add();
        bench.sessions.Remove(0);
        EXPECT_TRUE(bench.terminations.empty());
        bench.sessions.Remove(0);
        EXPECT_EQ(bench.terminations, autoClose ? std::vector{0} : std::vector<int>{});
        EXPECT_EQ(bench.frame.emptied, autoClose ? 0 : 1);
        EXPECT_TRUE(bench.sessionEnded);
    }
}

TEST(Sessions, CloneClaimsTheSameFileAndChanges)
{
    SessionBench bench;
    const QString file = bench.SessionFile(u"a.orcf"_s);
    const auto session = bench.sessions.Add(file);
    session->SetCaption(u"Mine"_s);
    session->Settings().Set(u"NormCols"_s, qint32(100));
    const auto clone = bench.sessions.AddClone(session.get());
    EXPECT_EQ(clone->FileName(), file);
    EXPECT_TRUE(clone->Changed());
    EXPECT_EQ(clone->Settings().Integer(Setting("NormCols")), 100);
    EXPECT_EQ(clone->Settings().Text(Setting("HostName")), u"host.example"_s);
    EXPECT_EQ(clone->frmSession()->Title(), u"Mine (2)"_s);
    EXPECT_EQ(session->frmSession()->Title(), u"Mine (1)"_s);
    EXPECT_TRUE(clone->Emulator().OnLine());
    EXPECT_TRUE(clone->Visible());
    EXPECT_EQ(bench.sessions.AddClone(nullptr), nullptr);
    const auto quiet = bench.sessions.AddClone(session.get(), -1, 0, AddHidden::OnlyNotShown);
    EXPECT_FALSE(quiet->Visible());
    EXPECT_TRUE(quiet->Emulator().OnLine());
}

// The message loop runs while a session is being added: another client may end it there.
TEST(Sessions, SessionEndedWhileItIsAddedStaysEnded)
{
    SessionBench bench;
    bench.frame.duringEvents = [&] { bench.sessions.Remove(0); };
    const auto session = bench.sessions.Add(bench.SessionFile(u"a.orcf"_s));
    EXPECT_TRUE(session->Terminated());
    EXPECT_EQ(bench.sessions.Count(), 0);
    EXPECT_EQ(bench.lines.current, nullptr);
}

} // namespace
} // namespace kestrune
