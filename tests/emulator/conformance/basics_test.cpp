// What the DEC terminals share, on each of them.

#include "conformance.h"

namespace kestrune::emu::conformance {
namespace {

using enum Model;

const Case kMotion[] = {
    {"CUP", Vt100, kLetters, "\x1b[3;4H*", "ABCDEFGHIJ|KLMNOPQRST|UVW*YZabcd|efghijklmn|opqrstuvwx", {4, 2}},
    {"CUP beyond the edge", Vt100, kLetters, "\x1b[99;99H", kLetterRows, {9, 4}},
    {"CUU stops at the top margin", Vt100, "\x1b[2;4r\x1b[3;3H", "\x1b[9A", "", {2, 1}},
    {"CUU from above the margin goes to the top", Vt100, "\x1b[3;4r\x1b[2;3H", "\x1b[9A", "", {2, 0}},
    {"CUD stops at the bottom margin", Vt100, "\x1b[2;4r\x1b[3;3H", "\x1b[9B", "", {2, 3}},
    {"CUD from below the margin goes to the end", Vt100, "\x1b[2;3r\x1b[4;3H", "\x1b[9B", "", {2, 4}},
    {"CUF CUB", Vt100, "\x1b[2;5H", "\x1b[2C\x1b[D", "", {5, 1}},
    {"CUF zero is one", Vt100, "\x1b[2;5H", "\x1b[0C", "", {5, 1}},
    {"IND",
     Vt100,
     kLetters + "\x1b[5;3H",
     "\x1b"
     "D",
     "KLMNOPQRST|UVWXYZabcd|efghijklmn|opqrstuvwx",
     {2, 4}},
    {"RI", Vt100, kLetters + "\x1b[1;3H", "\x1bM", "|ABCDEFGHIJ|KLMNOPQRST|UVWXYZabcd|efghijklmn", {2, 0}},
    {"NEL",
     Vt100,
     "\x1b[2;5H",
     "\x1b"
     "E",
     "",
     {0, 2}},
    {"IND at the bottom margin",
     Vt100,
     kLetters + "\x1b[2;3r\x1b[3;1H",
     "\x1b"
     "D",
     "ABCDEFGHIJ|UVWXYZabcd||efghijklmn|opqrstuvwx",
     {0, 2}},
    {"IND below the region does not scroll",
     Vt100,
     kLetters + "\x1b[2;3r\x1b[5;1H",
     "\x1b"
     "D",
     kLetterRows,
     {0, 4}},
    {"DECSTBM needs two lines", Vt100, kLetters + "\x1b[3;3H", "\x1b[3;3r", kLetterRows, {2, 2}},
    {"DECSTBM homes", Vt100, "\x1b[3;3H", "\x1b[2;4r", "", {0, 0}},
    {"DECOM", Vt100, "\x1b[2;4r\x1b[5;5H", "\x1b[?6h\x1b[9;2H*", "||| *", {2, 3}},
    {"DECSC and DECRC",
     Vt100,
     "\x1b[3;4H\x1b"
     "7\x1b[H",
     "\x1b"
     "8",
     "",
     {3, 2}},
    {"HT goes to the next stop and the edge", Vt100, "", "\ta\tb", "        ab", {9, 0}},
    {"HTS and TBC", Vt100, "\x1b[3g\x1b[1;4H\x1bH\r", "\tx", "   x", {4, 0}},
    {"controls inside a sequence", Vt100, kLetters, "\x1b[2\n;4H", kLetterRows, {3, 1}},
};

const Case kText[] = {
    {"wrap waits at the edge", Vt100, "", "0123456789", "0123456789", {9, 0}},
    {"wrap at the next character", Vt100, "", "0123456789x", "0123456789|x", {1, 1}},
    {"CUB from a waiting wrap", Vt100, "0123456789", "\x1b[Dx", "01234567x9", {9, 0}},
    {"no wrap", Vt100, "\x1b[?7l", "0123456789xy", "012345678y", {9, 0}},
    {"IRM",
     Vt100,
     kLetters + "\x1b[2;3H\x1b[4h",
     "**",
     "ABCDEFGHIJ|KL**MNOPQR|UVWXYZabcd|efghijklmn|opqrstuvwx",
     {4, 1}},
};

const Case kErasing[] = {
    {"ED below", Vt100, kLetters + "\x1b[2;3H", "\x1b[J", "ABCDEFGHIJ|KL", {2, 1}},
    {"ED above", Vt100, kLetters + "\x1b[2;3H", "\x1b[1J", "|   NOPQRST|UVWXYZabcd|efghijklmn|opqrstuvwx", {2, 1}},
    {"ED all", Vt100, kLetters + "\x1b[2;3H", "\x1b[2J", "", {2, 1}},
    {"EL right", Vt100, kLetters + "\x1b[2;3H", "\x1b[K", "ABCDEFGHIJ|KL|UVWXYZabcd|efghijklmn|opqrstuvwx", {2, 1}},
    {"EL left",
     Vt100,
     kLetters + "\x1b[2;3H",
     "\x1b[1K",
     "ABCDEFGHIJ|   NOPQRST|UVWXYZabcd|efghijklmn|opqrstuvwx",
     {2, 1}},
    {"IL", Vt100, kLetters + "\x1b[2;4r\x1b[3;3H", "\x1b[L", "ABCDEFGHIJ|KLMNOPQRST||UVWXYZabcd|opqrstuvwx", {0, 2}},
    {"IL outside the margins", Vt100, kLetters + "\x1b[2;4r\x1b[5;3H", "\x1b[L", kLetterRows, {2, 4}},
    {"DL", Vt100, kLetters + "\x1b[2;4r\x1b[3;3H", "\x1b[M", "ABCDEFGHIJ|KLMNOPQRST|efghijklmn||opqrstuvwx", {0, 2}},
    {"ICH", Vt100, kLetters + "\x1b[2;3H", "\x1b[2@", "ABCDEFGHIJ|KL  MNOPQR|UVWXYZabcd|efghijklmn|opqrstuvwx", {2, 1}},
    {"DCH", Vt100, kLetters + "\x1b[2;3H", "\x1b[2P", "ABCDEFGHIJ|KLOPQRST|UVWXYZabcd|efghijklmn|opqrstuvwx", {2, 1}},
    {"ECH", Vt100, kLetters + "\x1b[2;3H", "\x1b[2X", "ABCDEFGHIJ|KL  OPQRST|UVWXYZabcd|efghijklmn|opqrstuvwx", {2, 1}},
    {"DECSED leaves what is protected", Vt220, "ab\x1b[1\"qcd\x1b[0\"qef", "\x1b[?2J", "  cd", {6, 0}},
    {"DECSEL leaves what is protected", Vt220, "ab\x1b[1\"qcd\x1b[0\"qef", "\x1b[?1K", "  cd", {6, 0}},
    {"ED takes what is protected", Vt100, "ab\x1b[1\"qcd\x1b[0\"qef", "\x1b[2J", "", {6, 0}},
    {"DECALN",
     Vt100,
     kLetters + "\x1b[2;3r\x1b[2;3H",
     "\x1b#8",
     "EEEEEEEEEE|EEEEEEEEEE|EEEEEEEEEE|EEEEEEEEEE|EEEEEEEEEE",
     {0, 0}},
};

const Case kResets[] = {
    {"DECSTR keeps text and cursor",
     Vt220,
     kLetters + "\x1b[2;3r\x1b[2;2H\x1b[4h",
     "\x1b[!p",
     "ABCDEFGHIJ|KLMNOPQRST|UVWXYZabcd|efghijklmn|opqrstuvwx",
     {1, 1}},
    {"RIS",
     Vt100,
     kLetters + "\x1b[2;3r\x1b[?6h",
     "\x1b"
     "c*",
     "*",
     {1, 0}},
};

TEST(Conformance, Motion) { RunCases(kMotion); }
TEST(Conformance, Text) { RunCases(kText); }
TEST(Conformance, ErasingAndEditing) { RunCases(kErasing); }
TEST(Conformance, Resets) { RunCases(kResets); }

// Addresses are a character above space; there is no wrap and there are no margins.
TEST(Conformance, Vt52)
{
    const struct
    {
        const char* name;
        std::string bytes;
        const char* rows;
        Position cursor;
        const char* reply;
    } cases[] = {
        {"address", "\x1bY!#x", "|   x", {4, 1}, ""},
        {"row beyond the screen stays", "\x1bY\"#\x1bYz!x", "|| x", {2, 2}, ""},
        {"column beyond the screen is the last", "\x1bY!\x7e*", "|         *", {9, 1}, ""},
        {"up down right left",
         "\x1bY\"\"\x1b"
         "A\x1b"
         "C\x1b"
         "C\x1b"
         "B\x1b"
         "Dx",
         "||   x",
         {4, 2},
         ""},
        {"home", "ab\x1bHx", "xb", {1, 0}, ""},
        {"reverse line feed scrolls", "ab\x1bI", "|ab", {2, 0}, ""},
        {"erase to the end of the line", "abc\x1bY !\x1bK", "a", {1, 0}, ""},
        {"erase to the end of the screen", "ab\r\ncd\x1bY !\x1bJ", "a", {1, 0}, ""},
        {"no wrap", "0123456789xy", "012345678y", {9, 0}, ""},
        {"identity", "\x1bZ", "", {0, 0}, "\x1b/"},
    };
    for (const auto& test : cases) {
        Bench own(5, 10, Type::Vt52);
        Bench asMode(5, 10, Type::Vt420);
        asMode.HostSays("\x1b[?7l\x1b[?2l");
        for (Bench* bench : {&own, &asMode}) {
            bench->HostSays(test.bytes);
            EXPECT_EQ(bench->Rows(), test.rows) << test.name;
            EXPECT_EQ(bench->terminal.Cursor().col, test.cursor.col) << test.name;
            EXPECT_EQ(bench->terminal.Cursor().row, test.cursor.row) << test.name;
            EXPECT_EQ(bench->Replies().substr(0, 2), test.reply) << test.name;
        }
    }
}

} // namespace
} // namespace kestrune::emu::conformance
