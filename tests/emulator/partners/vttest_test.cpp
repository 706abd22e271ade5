// Every menu of vttest that belongs to one of our models, walked through as a person would. vttest judges reports
// itself; what it says of them is checked here, and that it always finds its way back. The pictures, which it leaves
// to a person's eyes, are written to the folder that KESTRUNE_VTTEST_PICTURES names.

#include <emulator/partners/programrun.h>

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

namespace kestrune::emu::partners {
namespace {

constexpr ScreenSize kScreen{80, 24};
constexpr int kMostPages = 60; // of one test
constexpr int kMostDepth = 5;

struct Model
{
    int type;
    const char* term;
    const char* menus; // items of the main menu, as vttest numbers them
};
constexpr Model kModels[] = {
    {Type::Vt100, "vt100", "1 2 3 4 6 7 8 9"},
    {Type::Vt220, "vt220", "1 2 3 4 6 7 8 9 11"},
    {Type::Vt320, "vt320", "1 2 3 4 6 7 8 9 11"},
    {Type::Vt420, "vt420", "1 2 3 4 6 7 8 9 11"},
};

void PrintTo(const Model& model, std::ostream* out) { *out << model.term; }

// Titles of what is not walked: choices that the next test asks for again, keys that nobody presses here, printers, and
// what other terminals have. docs/terminals.md says what of it the DEC models have and we lack.
constexpr const char* kLeftOut[] = {
    "Specify",      "keyboard", "Keyboard", "KeyBoard", "Printer", "VT520",  "XTERM", "Soft Character",
    "User-Defined", "Locator",  "mouse",    "Reset",    "setup",   "window", "Tek",
};

class Walker
{
public:
    explicit Walker(const Model& model)
        : model_(model), run_("/tmp", "exec vttest 24x80.132", model.type, model.term, kScreen)
    {
        if (const char* folder = std::getenv("KESTRUNE_VTTEST_PICTURES"))
            pictures_.open(std::string(folder) + '/' + model.term + ".txt");
    }
    void Walk()
    {
        Settle();
        std::istringstream items(model_.menus);
        for (std::string item; std::getline(items, item, ' ');)
            Enter(item, "main " + item, 0);
    }
    std::string Complaints() const { return complaints_; }
    int Pictures() const { return count_; }

private:
    // Menus and prompts are known by their words.
    static bool IsMenu(const std::string& screen) { return screen.find("Enter choice number (") != screen.npos; }
    static bool IsPrompt(const std::string& screen)
    {
        return IsMenu(screen) || screen.find("<RETURN>") != screen.npos || screen.find("<return>") != screen.npos;
    }
    static std::string Title(const std::string& screen)
    {
        const size_t at = screen.find("Menu ");
        return at == screen.npos ? "VT100 test program" : screen.substr(at, screen.find('\n', at) - at);
    }
    // Items of a menu as number and title.
    static std::vector<std::pair<std::string, std::string>> Items(const std::string& screen)
    {
        std::vector<std::pair<std::string, std::string>> items;
        std::istringstream lines(screen);
        for (std::string line; std::getline(lines, line);) { // "  12. Title"; a star in place of the dot
            const size_t first = line.find_first_not_of(' ');
            const size_t end = first == line.npos ? line.npos : line.find_first_not_of("0123456789", first);
            if (first == 0 || end == line.npos || end == first || line.size() < end + 3 ||
                (line[end] != '.' && line[end] != '*') || line[end + 1] != ' ')
                continue;
            if (const std::string number = line.substr(first, end - first); number != "0")
                items.emplace_back(number, line.substr(end + 2));
        }
        return items;
    }
    static bool IsLeftOut(const std::string& title)
    {
        for (const char* word : kLeftOut)
            if (title.find(word) != title.npos)
                return true;
        return false;
    }

    void Settle() { screen_ = run_.UntilQuiet(IsPrompt); }
    void Press(const std::string& keys)
    {
        run_.Type(keys);
        Settle();
    }
    void Enter(const std::string& item, const std::string& path, int depth)
    {
        const std::string home = Title(screen_);
        Press(item + '\r');
        for (int page = 0; page < kMostPages && !(IsMenu(screen_) && Title(screen_) == home); ++page) {
            if (IsMenu(screen_)) {
                if (depth == kMostDepth)
                    complaints_ += path + ": too deep\n";
                for (const auto& [number, title] : Items(screen_))
                    if (depth < kMostDepth && !IsLeftOut(title))
                        Enter(number, path + '/' + title, depth + 1);
                Press("0\r");
            } else {
                Judge(path);
                Press("\r");
            }
        }
        if (!IsMenu(screen_) || Title(screen_) != home)
            complaints_ += path + ": does not come back\n" + screen_;
    }
    void Judge(const std::string& path)
    {
        ++count_;
        if (pictures_.is_open())
            pictures_ << "=== " << path << '\n' << screen_ << '\n';
        std::istringstream lines(screen_);
        for (std::string line; std::getline(lines, line);)
            for (const char* word : {"bad format", "failed", "FAIL", "rror", "not ok", "Unknown", "unexpected"})
                if (line.find(word) != line.npos && !IsOfLaterModel(path + line))
                    complaints_ += path + ": " + line + '\n';
    }
    // vttest offers every question to every model; one that came later does not get an answer from an earlier one.
    bool IsOfLaterModel(const std::string& question) const
    {
        std::string own = model_.term; // "vt220"
        for (const char* later : {"VT220", "VT320", "VT420", "VT510", "VT520"})
            if (question.find(later) != question.npos && own.substr(2) < std::string(later).substr(2))
                return true;
        return false;
    }

    Model model_;
    ProgramRun run_;
    std::string screen_;
    std::string complaints_;
    std::ofstream pictures_;
    int count_ = 0;
};

class Vttest : public testing::TestWithParam<Model>
{};

TEST_P(Vttest, HasNothingToComplainOf)
{
    Walker walker(GetParam());
    walker.Walk();
    EXPECT_EQ(walker.Complaints(), "");
    EXPECT_GT(walker.Pictures(), 50);
}

INSTANTIATE_TEST_SUITE_P(Model, Vttest, testing::ValuesIn(kModels),
                         [](const auto& test) { return std::string(test.param.term); });

} // namespace
} // namespace kestrune::emu::partners
