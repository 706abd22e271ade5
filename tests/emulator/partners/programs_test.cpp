// Full-screen programs mean to show the same picture on any terminal. Each is run under every terminal type, at
// 80 by 24, made larger, and made smaller again, and its screen compared with what the same program shows in another
// emulator under that one's own type. Boxes count as lines and corners, since not every type can draw them.

#include <emulator/partners/programrun.h>
#include <emulator/partners/referencescreen.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>
#include <vector>

namespace kestrune::emu::partners {
namespace {

constexpr ScreenSize kUsual{80, 24}, kLarge{132, 43};
constexpr int kFileLines = 120;

struct HostType
{
    int number;
    const char* term;
};
// The typewriter is not among them: full-screen programs refuse it.
constexpr HostType kTypes[] = {
    {Type::Vt52, "vt52"},   {Type::Vt100, "vt100"},  {Type::Vt220, "vt220"}, {Type::Vt320, "vt320"},
    {Type::Vt420, "vt420"}, {Type::Ansi, "ansi"},    {Type::Sco, "scoansi"}, {Type::Sco, "ansi"},
    {Type::Linux, "linux"}, {Type::Lanpar, "vt220"},
};

struct Program
{
    const char* name;
    const char* command; // in its folder
    const char* marker;  // when this is seen it has started
    const char* keys;    // typed then
    const char* after;   // what they lead to
    const char* rows;    // only rows with one of these, separated by '|'; nullptr: all, the rest changes with time
    std::string_view notUnder = {};   // entries whose terminals cannot show it as the program writes it, after spaces
    std::string_view notResized = {}; // and those where that goes for a new size only
};

void PrintTo(const Program& program, std::ostream* out) { *out << program.name; }

// A VT52 has neither corners nor vertical lines. tmux counts on wrapping, which a VT52 does not do, and on staying in
// the last column, where the PC consoles wrap at once and scroll. nano asks for bracketed paste after each new size,
// whatever the terminal; a VT52 shows it. vim takes every VT52 for one with the insertion and deletion of lines of a
// later home computer, and has to be told.
constexpr Program kPrograms[] = {
    {"vim", "vim -u NONE -N -n -c \"if &term == \\\"vt52\\\" | set t_al= t_dl= | endif\" text", "Line 1 ",
     "Gddix\x1bggOinserted at the top\x1b:3d\r", "inserted at the top", nullptr},
    {"less", "less text", "Line 1 ", "/Line 77\r", "Line 77 ", nullptr},
    {"nano", "nano -I text", "Line 1 ", "typed \x0e\x0e\x0b", "typed Line 1", nullptr, {}, " vt52"},
    {"dialog", "dialog --no-shadow --title Choice --menu \"Choose one\" 15 40 5 one first two second three third",
     "second", "t", "third", nullptr},
    {"mc", "mc -u -a files other", "beta", "\t\t\x0e", "gamma", nullptr},
    {"mc with lines", "mc -u files other", "beta", "\t\t\x0e", "gamma", nullptr, " vt52"},
    {"htop", "htop", "PID", "", "F1", "PID USER|F1Help"},
    {"tmux", "tmux -L inner -f inner.conf new-session \"cat text; sh -i\"", "Line 120", "echo typ''ed\r", "typed",
     nullptr, " vt52 ansi scoansi"},
};

bool Names(std::string_view entries, const char* term)
{
    return (std::string(entries) + ' ').find(std::string(" ") + term + ' ') != std::string::npos;
}

std::string Plain(const std::string& utf8)
{
    static const std::map<std::string, char> kDrawn = {
        {"─", '-'}, {"│", '|'}, {"┌", '+'}, {"┐", '+'}, {"└", '+'}, {"┘", '+'}, {"├", '+'}, {"┤", '+'}, {"┬", '+'},
        {"┴", '+'}, {"┼", '+'}, {"⎺", '-'}, {"⎻", '-'}, {"⎼", '-'}, {"⎽", '-'}, {"═", '-'}, {"║", '|'},
    };
    std::string out;
    for (size_t at = 0; at < utf8.size();) {
        const auto lead = uint8_t(utf8[at]);
        const size_t length = lead < 0x80 ? 1 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
        const auto drawn = kDrawn.find(utf8.substr(at, length));
        if (drawn != kDrawn.end())
            out += drawn->second;
        else
            out += utf8.substr(at, length);
        at += length;
    }
    return out;
}

// Rows to be compared, blanks at their ends cut, as one text.
std::string Compared(const std::string& screen, const char* rows)
{
    std::vector<std::string> wanted;
    std::istringstream names(rows == nullptr ? "" : rows);
    for (std::string name; std::getline(names, name, '|');)
        wanted.push_back(name);
    std::istringstream lines(Plain(screen));
    std::string out;
    for (std::string line; std::getline(lines, line);) {
        line.erase(line.find_last_not_of(' ') + 1);
        bool isWanted = wanted.empty();
        for (const std::string& name : wanted)
            isWanted = isWanted || line.find(name) != line.npos;
        if (isWanted)
            out += line + '\n';
    }
    out.erase(out.find_last_not_of('\n') + 1);
    return out + '\n';
}

class Workplace
{
public:
    Workplace()
    {
        std::string name = "/tmp/kestrune-programs-XXXXXX";
        if (mkdtemp(name.data()) == nullptr)
            throw std::runtime_error("no temporary folder");
        folder_ = name;
        namespace fs = std::filesystem;
        const fs::path work = folder_ / "work"; // what programs look at; their own files lie beside it
        for (const fs::path& sub : {work / "files", work / "other", folder_ / ".config/mc"})
            fs::create_directories(sub);
        std::ofstream text(work / "text");
        for (int i = 1; i <= kFileLines; ++i)
            text << "Line " << i << " of a file, with\ta tab" << (i % 10 == 0 ? std::string(70, 'x') : "") << '\n';
        for (const char* file : {"files/alpha", "files/beta", "other/gamma", "other/delta"})
            std::ofstream(work / file) << "x\n";
        // Hints and free space change from run to run.
        std::ofstream(folder_ / ".config/mc/ini") << "[Layout]\nmessage_visible=0\nfree_space=0\n";
        std::ofstream(work / "inner.conf")
            << "set -g destroy-unattached on\nset -g status-right ''\nset -g status-left 'inner '\n"
               "set -g automatic-rename off\nset -g window-status-current-format 'one'\n";
        text.close();
        for (const auto& entry : fs::recursive_directory_iterator(work))
            fs::last_write_time(entry, fs::file_time_type() - std::chrono::hours(24 * 365 * 150));
        fs::last_write_time(work, fs::file_time_type() - std::chrono::hours(24 * 365 * 150));
    }
    Workplace(const Workplace&) = delete;
    Workplace& operator=(const Workplace&) = delete;
    ~Workplace()
    {
        // Programs that are just ending may still write what they remember.
        std::error_code error;
        for (int tries = 0; tries < 50 && (tries == 0 || error); ++tries) {
            poll(nullptr, 0, tries == 0 ? 0 : 100);
            std::filesystem::remove_all(folder_, error);
        }
    }
    std::string Folder() const { return folder_.string(); }
    std::string In(const std::string& command) const
    {
        return "cd " + Folder() + "/work && PS1=: exec env -u COLORTERM LC_ALL=C " + command;
    }

private:
    std::filesystem::path folder_;
};

// Drives either side through the same story and tells of each scene: what it is called, and the program's marker.
template <typename Screen, typename Scene>
void Play(const Program& program, bool resized, Screen& screen, Scene&& scene)
{
    scene("started", program.marker);
    screen.Type(program.keys);
    scene("after its keys", program.after);
    if (!resized)
        return;
    screen.Resize(kLarge);
    scene("made larger", program.after);
    screen.Resize(kUsual);
    scene("made smaller", program.after);
}

class Programs : public testing::TestWithParam<Program>
{
protected:
    std::map<std::string, std::string> Expected(const Program& program)
    {
        Workplace place;
        ReferenceScreen reference(place.Folder(), place.In(program.command), kUsual);
        std::map<std::string, std::string> scenes;
        Play(program, true, reference, [&](const char* scene, const char* marker) {
            scenes[scene] = Compared(WithoutFolder(reference.Settled(marker), place), program.rows);
        });
        return scenes;
    }
    // The name of the temporary folder, which mc and vim may show, is as long in each run.
    static std::string WithoutFolder(std::string text, const Workplace& place)
    {
        const std::string folder = place.Folder().substr(place.Folder().rfind('/') + 1);
        for (size_t at = text.find(folder); at != text.npos; at = text.find(folder))
            text.replace(at, folder.size(), std::string(folder.size(), '*'));
        return text;
    }
};

TEST_P(Programs, ShowTheSameUnderEveryType)
{
    const Program& program = GetParam();
    const auto expected = Expected(program);
    for (const HostType& type : kTypes) {
        if (Names(program.notUnder, type.term))
            continue;
        Workplace place;
        ProgramRun run(place.Folder(), place.In(program.command), type.number, type.term, kUsual);
        Play(program, !Names(program.notResized, type.term), run, [&](const char* scene, const char*) {
            const std::string& wanted = expected.at(scene);
            const auto shown = [&](const std::string& screen) {
                return Compared(WithoutFolder(screen, place), program.rows);
            };
            const std::string screen = run.Until([&](const std::string& now) { return shown(now) == wanted; });
            EXPECT_EQ(shown(screen), wanted) << "type " << type.number << " as " << type.term << ", " << scene;
        });
    }
}

INSTANTIATE_TEST_SUITE_P(Real, Programs, testing::ValuesIn(kPrograms), [](const auto& test) {
    std::string name = test.param.name;
    std::erase(name, ' ');
    return name;
});

// The comparison can see: another file is another screen.
TEST(ProgramsComparison, SeesADifference)
{
    Workplace place;
    ProgramRun run(place.Folder(), place.In("less text"), Type::Vt220, "vt220", kUsual);
    const std::string screen = run.Until([](const std::string& now) { return now.find("Line 20") != now.npos; });
    std::string other = screen;
    other.replace(other.find("Line 20"), 7, "Line 2O");
    EXPECT_NE(Compared(screen, nullptr), Compared(other, nullptr));
    EXPECT_EQ(Compared("┌─┐ \n", nullptr), Compared("+-+\n\n", nullptr));
    EXPECT_EQ(Compared("a\nPID USER\nb\n", "PID|F1"), "PID USER\n");
}

} // namespace
} // namespace kestrune::emu::partners
