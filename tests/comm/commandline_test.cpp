#include <comm/commandline.h>

#include <gtest/gtest.h>

namespace kestrune::comm {

namespace {

TEST(CommandLine, FollowsTheShellsRulesForWordsAndQuotes)
{
    struct Case
    {
        const char* line;
        std::vector<std::string> words;
    };
    const std::vector<Case> cases{
        {"", {}},
        {" \t ", {}},
        {"ls -l", {"ls", "-l"}},
        {"  ls\t-l  ", {"ls", "-l"}},
        {"sh -c 'echo $HOME; ls | wc'", {"sh", "-c", "echo $HOME; ls | wc"}},
        {R"(a "b c" d)", {"a", "b c", "d"}},
        {R"(a\ b 'c'"d"e)", {"a b", "cde"}},
        {R"('' "")", {"", ""}},
        {R"("\"\\\$\`\n")", {R"("\$`\n)"}},
        {R"('it'\''s')", {"it's"}},
        {"a;b $(c) `d` *", {"a;b", "$(c)", "`d`", "*"}},
    };
    for (const Case& c : cases)
        EXPECT_EQ(SplitCommandLine(c.line), c.words) << c.line;
}

TEST(CommandLine, RefusesWhatIsNotFinished)
{
    for (const char* line : {"echo 'a", "echo \"a", "echo \"a\\", "echo \\", "'"})
        EXPECT_EQ(SplitCommandLine(line), std::nullopt) << line;
}

} // namespace

} // namespace kestrune::comm
