#include <app/affinity.h>
#include <app/commandline.h>
#include <app/ormain.h>
#include <fakes/print.h>

#include <gtest/gtest.h>

namespace kestrune {

using namespace Qt::StringLiterals;

namespace {

TEST(CommandLine, FirstArgumentOfARawText)
{
    const std::pair<QString, QString> rows[] = {
        {u""_s, u""_s},
        {u"a.orcf"_s, u"a.orcf"_s},
        {u"my file.orcf"_s, u"my"_s},                     // no quotes: cut at the first blank
        {u"\"my file.orcf\" other"_s, u"my file.orcf"_s}, // with quotes: all between the first two
        {u"\"my file.orcf"_s, u"my file.orcf"_s},         // the second one is missing
        {u"\"\" b"_s, u""_s},
        {u" a"_s, u""_s}, // looked at untrimmed
    };
    for (const auto& [text, first] : rows)
        EXPECT_EQ(CommandLine::FromText(text).FirstArgument(), first) << text.toStdString();
}

struct ArgumentCase
{
    QStringList arguments;
    QString first;
    QString text;
};

TEST(CommandLine, FilesAmongArguments)
{
    const ArgumentCase rows[] = {
        {{}, u""_s, u""_s},
        {{u"my file.orcf"_s}, u"my file.orcf"_s, u"\"my file.orcf\""_s},
        {{u"a.orcf"_s, u"b.orcf"_s}, u"a.orcf"_s, u"a.orcf b.orcf"_s},
        {{u"-x.orcf"_s}, u"-x.orcf"_s, u"-x.orcf"_s},
        {{u"--"_s, u"--x.orcf"_s}, u"--x.orcf"_s, u"--x.orcf"_s},
        {{u"--automation"_s, u"a"_s}, u"a"_s, u"a"_s},
        {{u"Приём \"1\".orcf"_s}, u"Приём \"1\".orcf"_s, u"\"Приём \"1\".orcf\""_s},
    };
    for (const ArgumentCase& row : rows) {
        const CommandLine line = CommandLine::FromArguments(row.arguments);
        EXPECT_EQ(line.FirstArgument(), row.first);
        EXPECT_EQ(line.Text(), row.text);
        EXPECT_FALSE(line.Immediate());
    }
}

TEST(CommandLine, OptionsAnswerAtOnce)
{
    const auto answer = [](const QString& option) { return *CommandLine::FromArguments({option}).Immediate(); };
    EXPECT_TRUE(answer(u"--help"_s).text.startsWith(u"Usage: kestrune"_s));
    EXPECT_FALSE(answer(u"--help"_s).isError);
    EXPECT_TRUE(answer(u"--version"_s).text.startsWith(u"Kestrune "_s));
    EXPECT_TRUE(answer(u"--nonsense"_s).isError);
    EXPECT_TRUE(answer(u"--nonsense"_s).text.contains(u"'--nonsense'"_s));
}

TEST(CommandLine, WordsOfTheSystem)
{
    EXPECT_TRUE(CommandLine::FromText(u"  /SETTINGS "_s).Is(u"/settings"_s));
    EXPECT_FALSE(CommandLine::FromText(u"/settings x"_s).Is(u"/settings"_s));
    EXPECT_TRUE(CommandLine::FromText(u"/Migrate=5"_s).KeyIs(u"/migrate"_s));
    EXPECT_EQ(CommandLine::FromText(u"/migrate=5=6"_s).Value(), u"5=6"_s);
    EXPECT_TRUE(CommandLine::FromText(u"/migrate"_s).KeyIs(u"/migrate"_s));
    EXPECT_EQ(CommandLine::FromText(u"/migrate"_s).Value(), u""_s);
    EXPECT_FALSE(CommandLine::FromText(u"/migrated=1"_s).KeyIs(u"/migrate"_s));
}

TEST(Affinity, DrawWalksTheMask)
{
    struct Row
    {
        std::vector<int> permitted;
        double random;
        std::optional<std::uint64_t> mask;
    };
    const Row rows[] = {
        {{}, 0.5, {}},
        {{3}, 0.5, {}},       // one: nothing to choose
        {{0, 1}, 0.0, 0b10},  // r = 0 passes the first
        {{0, 1}, 0.99, 0b01}, // r = 1 stops at once
        {{0, 1, 2, 3}, 0.0, 0b0010},
        {{0, 1, 2, 3}, 0.25, 0b0001},
        {{0, 1, 2, 3}, 0.5, 0b0010},
        {{0, 1, 2, 3}, 0.999, 0b0100}, // never the last
        {{4, 5}, 0.5, {}},             // ends on one that is not permitted
    };
    for (const Row& row : rows)
        EXPECT_EQ(ThreadAffinity(AnyProcessor, row.permitted, row.random), row.mask) << row.random;
}

TEST(Affinity, OtherArgumentsSelect)
{
    const std::vector<int> permitted{0, 2, 31};
    const std::uint64_t all = 0b101 | (std::uint64_t{1} << 31);
    const std::pair<int, std::optional<std::uint64_t>> rows[] = {
        {0, all}, {1, 1}, {3, 4}, {2, {}}, {32, std::uint64_t{1} << 31}, {31, {}}, {33, {}}, {-2, {}}};
    for (const auto& [argument, mask] : rows)
        EXPECT_EQ(ThreadAffinity(argument, permitted, 0), mask) << argument;
}

TEST(ToolbarImages, ByColourDepth)
{
    EXPECT_EQ(ToolbarImages(32), (std::array{8210, 8211, 8212, 8213, 8214, 8215, 8216, 8217, 8211}));
    for (const int depth : {0, 1, 8, 24})
        EXPECT_EQ(ToolbarImages(depth)[0], 8110) << depth;
    EXPECT_EQ(ToolbarImages(16)[8], 8111);
}

TEST(BracketedScript, OneStatementALine)
{
    const std::pair<QString, QString> rows[] = {
        {u"[a][b]"_s, u"a\r\nb\r\n"_s},
        {u"x[a]y[b]z"_s, u"a\r\nb\r\n"_s},
        {u"[MsgBox \"a]b\"]"_s, u"MsgBox \"a]b\"\r\n"_s},
        {u"[open end"_s, u"open end\r\n"_s},
        {u"[a \"]"_s, u"a \"]\r\n"_s}, // the quote has no partner
        {u"no brackets"_s, u""_s},
        {u"[]"_s, u"\r\n"_s},
    };
    for (const auto& [command, script] : rows)
        EXPECT_EQ(BracketedScript(command), script) << command.toStdString();
    EXPECT_TRUE(IsAsynchronous(u"[a]& "_s));
    EXPECT_FALSE(IsAsynchronous(u"[a & b]"_s));
}

} // namespace

} // namespace kestrune
