// What a host leaves in the terminal to be used later: definitions of function keys, and macros.

#include "bench.h"

#include <gtest/gtest.h>

namespace kestrune::emu {
namespace {

const KeyPress kShiftF6{Key::F6, Modifier::Shift, {}};
const std::string kAsShiftF6 = "\x1b[29~"; // F16, when nothing is defined

TEST(EngineUserKeys, Definitions)
{
    const struct
    {
        const char* name;
        int type;
        std::string bytes;
        std::string sent;
    } cases[] = {
        {"defined", Type::Vt220, "\x1bP0;1|17/4142\x1b\\", "AB"},
        {"digits in both cases", Type::Vt320, "\x1bP0;1|17/4a4B\x1b\\", "JK"},
        {"second of several", Type::Vt420, "\x1bP0;1|18/43;17/4142\x1b\\", "AB"},
        {"defined anew", Type::Vt220, "\x1bP0;1|17/41\x1b\\\x1bP1;1|17/42\x1b\\", "B"},
        {"others stay with 1", Type::Vt220, "\x1bP0;1|17/41\x1b\\\x1bP1;1|18/42\x1b\\", "A"},
        {"all are cleared with 0", Type::Vt220, "\x1bP0;1|17/41\x1b\\\x1bP0;1|18/42\x1b\\", kAsShiftF6},
        {"emptied", Type::Vt220, "\x1bP0;1|17/41\x1b\\\x1bP1;1|17/\x1b\\", kAsShiftF6},
        {"locked afterwards", Type::Vt220, "\x1bP0;0|17/41\x1b\\\x1bP0;1|17/42\x1b\\", "A"},
        {"locked when nothing is said", Type::Vt220, "\x1bP|17/41\x1b\\\x1bP|17/42\x1b\\", "A"},
        {"bad pair ends the string", Type::Vt220, "\x1bP0;1|18/4x;17/41\x1b\\", kAsShiftF6},
        {"those before a bad pair hold", Type::Vt220, "\x1bP0;1|17/41;18/4\x1b\\", "A"},
        {"no such key", Type::Vt220, "\x1bP0;1|99/41\x1b\\", kAsShiftF6},
        {"unshifted key", Type::Vt420, "\x1bP0;1;1|17/41\x1b\\", kAsShiftF6},
        {"not a VT100's", Type::Vt100, "\x1bP0;1|17/41\x1b\\", ""},
        {"not in level 1", Type::Vt420, "\x1bP0;1|17/41\x1b\\\x1b[61\"p", ""},
        {"more than there is room for", Type::Vt220, "\x1bP0;1|17/" + std::string(514, '4') + "\x1b\\", kAsShiftF6},
        {"just as much as there is", Type::Vt220, "\x1bP0;1|17/" + std::string(512, '4') + "\x1b\\",
         std::string(256, 'D')},
        {"VT420 has more room", Type::Vt420, "\x1bP0;1|17/" + std::string(514, '4') + "\x1b\\", std::string(257, 'D')},
        {"RIS forgets", Type::Vt220,
         "\x1bP|17/41\x1b\\\x1b"
         "c",
         kAsShiftF6},
        {"soft reset does not", Type::Vt220, "\x1bP|17/41\x1b\\\x1b[!p", "A"},
    };
    for (const auto& test : cases) {
        Bench bench(4, 10, test.type);
        EXPECT_EQ(bench.HostSays(test.bytes).terminal.KeyBytes(kShiftF6), test.sent) << test.name;
        EXPECT_EQ(bench.Rows(), "") << test.name;
    }
}

TEST(EngineUserKeys, UserMayLockThem)
{
    TerminalOptions options = Utf8Options(4, 10);
    options.lockFunctionKeys = true;
    Bench bench(options);
    EXPECT_EQ(bench.HostSays("\x1bP0;1|17/41\x1b\\\x1b[?25n").Replies(), "\x1b[?21n");
    EXPECT_EQ(bench.terminal.KeyBytes(kShiftF6), kAsShiftF6);

    Bench open(4, 10);
    EXPECT_EQ(open.HostSays("\x1b[?25n").Replies(), "\x1b[?20n");
    EXPECT_EQ(open.HostSays("\x1bP|17/41\x1b\\\x1b[?25n").Replies(), "\x1b[?21n");
}

TEST(EngineMacros, Invoked)
{
    const struct
    {
        const char* name;
        std::string bytes;
        const char* rows;
    } cases[] = {
        {"text", "\x1bP1;0;0!zab\x1b\\\x1b[1*zc", "abc"},
        {"pairs", "\x1bP1;0;1!z41421b5b43\x1b\\\x1b[1*zc", "AB c"},
        {"repeats", "\x1bP1;0;1!z41!3;4243;44\x1b\\\x1b[1*z", "ABCBCBCD"},
        {"repeat at the end needs no semicolon", "\x1bP1;0;1!z41!3;42\x1b\\\x1b[1*z", "ABBB"},
        {"bad digit leaves the old one", "\x1bP1;0;0!zab\x1b\\\x1bP1;0;1!z4g\x1b\\\x1b[1*z", "ab"},
        {"endless repeat is refused", "\x1bP1;0;1!z!999999999;41;\x1b\\\x1b[1*zx", "x"},
        {"one calls another", "\x1bP1;0;1!z611b5b322a7a62\x1b\\\x1bP2;0;0!z-\x1b\\\x1b[1*z", "a-b"},
        {"the rest of a sequence may follow", "\x1bP1;0;1!z1b5b32\x1b\\\x1b[1*zCx", "  x"},
        {"none defined", "\x1b[9*z\x1b[99*zx", "x"},
        {"all deleted", "\x1bP1;0;0!zab\x1b\\\x1bP2;1;0!zcd\x1b\\\x1b[1*z\x1b[2*z", "cd"},
        {"a macro defines none", "\x1bP1;0;1!z1b50323b303b30217a61621b5c\x1b\\\x1b[1*z\x1b[2*zx", "x"},
        {"RIS forgets",
         "\x1bP1;0;0!zab\x1b\\\x1b"
         "c\x1b[1*zx",
         "x"},
    };
    for (const auto& test : cases) {
        Bench bench(4, 10, Type::Vt420);
        EXPECT_EQ(bench.HostSays(test.bytes).Rows(), test.rows) << test.name;
        EXPECT_EQ(bench.Replies(), "") << test.name;
    }
    EXPECT_EQ(Bench(4, 10, Type::Vt320).HostSays("\x1bP1;0;0!zab\x1b\\\x1b[1*z").Rows(), "");
}

// One that calls itself, and a tower of those that call the next one many times, come to an end.
TEST(EngineMacros, ComeToAnEnd)
{
    Bench bench(4, 10, Type::Vt420);
    bench.HostSays("\x1bP1;0;1!z2a1b5b312a7a\x1b\\\x1b[1*z");
    EXPECT_EQ(bench.Rows(), "**********|******"); // as deep as they may go
    for (int id = 2; id < 20; ++id) {
        std::string calls;
        for (const char digit : std::to_string(id + 1))
            calls.append(1, '3').append(1, digit);
        bench.HostSays(std::string("\x1bP").append(std::to_string(id)) + ";0;1!z!50;1b5b" + calls + "2a7a;\x1b\\");
    }
    EXPECT_EQ(bench.HostSays("\x1b[2*z\x1b[2J\x1b[Hdone").Rows(), "done");
}

TEST(EngineMacros, Reports)
{
    Bench bench(4, 10, Type::Vt420);
    EXPECT_EQ(bench.HostSays("\x1b[?62n").Replies(), "\x1b[384*{");
    EXPECT_EQ(bench.HostSays("\x1bP1;0;0!z0123456789abcdef\x1b\\\x1b[?62n").Replies(), "\x1b[383*{");
    EXPECT_EQ(bench.HostSays("\x1bP1;1;0!zA\x1b\\\x1b[?63;7n").Replies(), "\x1bP7!~FFBF\x1b\\");
    // 6 KB are all there is: the second of two macros of 4 KB finds no room.
    const std::string large(4096, 'x');
    bench.HostSays("\x1bP1;1;0!z" + large + "\x1b\\\x1bP2;0;0!z" + large + "\x1b\\\x1b[?62n");
    EXPECT_EQ(bench.Replies(), "\x1b[128*{");
}

} // namespace
} // namespace kestrune::emu
