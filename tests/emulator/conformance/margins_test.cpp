// Left and right margins, and every function that heeds them (VT420).

#include "conformance.h"

namespace kestrune::emu::conformance {
namespace {

using enum Model;

// Rows 2 to 4, columns 3 to 7: MNOPQ, WXYZa and ghijk.
const std::string kBox = kLetters + "\x1b[?69h\x1b[3;7s\x1b[2;4r";

// What has another meaning, or none to speak of, without left and right margins: on the VT420 alone.
const Case kHeeding[] = {
    {"SU", Vt420, kBox, "\x1b[S", "ABCDEFGHIJ|KLWXYZaRST|UVghijkbcd|ef     lmn|opqrstuvwx", {0, 0}},
    {"SD", Vt420, kBox, "\x1b[T", "ABCDEFGHIJ|KL     RST|UVMNOPQbcd|efWXYZalmn|opqrstuvwx", {0, 0}},
    {"SU of more than there is",
     Vt420,
     kBox,
     "\x1b[9S",
     "ABCDEFGHIJ|KL     RST|UV     bcd|ef     lmn|opqrstuvwx",
     {0, 0}},
    {"IL", Vt420, kBox, "\x1b[3;4H\x1b[L", "ABCDEFGHIJ|KLMNOPQRST|UV     bcd|efWXYZalmn|opqrstuvwx", {2, 2}},
    {"DL", Vt420, kBox, "\x1b[2;3H\x1b[M", "ABCDEFGHIJ|KLWXYZaRST|UVghijkbcd|ef     lmn|opqrstuvwx", {2, 1}},
    {"IL left of the margins", Vt420, kBox, "\x1b[2;1H\x1b[L", kLetterRows, {0, 1}},
    {"DL right of the margins", Vt420, kBox, "\x1b[2;8H\x1b[M", kLetterRows, {7, 1}},
    {"ICH", Vt420, kBox, "\x1b[3;4H\x1b[2@", "ABCDEFGHIJ|KLMNOPQRST|UVW  XYbcd|efghijklmn|opqrstuvwx", {3, 2}},
    {"DCH", Vt420, kBox, "\x1b[3;4H\x1b[2P", "ABCDEFGHIJ|KLMNOPQRST|UVWZa  bcd|efghijklmn|opqrstuvwx", {3, 2}},
    {"ICH outside", Vt420, kBox, "\x1b[3;9H\x1b[@", kLetterRows, {8, 2}},
    {"DCH outside", Vt420, kBox, "\x1b[3;2H\x1b[P", kLetterRows, {1, 2}},
    {"IRM", Vt420, kBox, "\x1b[3;4H\x1b[4h*", "ABCDEFGHIJ|KLMNOPQRST|UVW*XYZbcd|efghijklmn|opqrstuvwx", {4, 2}},
    {"text wraps at the right margin",
     Vt420,
     kBox,
     "\x1b[2;6H123",
     "ABCDEFGHIJ|KLMNO12RST|UV3XYZabcd|efghijklmn|opqrstuvwx",
     {3, 2}},
    {"wrap in the last line scrolls",
     Vt420,
     kBox,
     "\x1b[4;7H12",
     "ABCDEFGHIJ|KLWXYZaRST|UVghij1bcd|ef2    lmn|opqrstuvwx",
     {3, 3}},
    {"text from the left stops at the right margin",
     Vt420,
     kBox,
     "\x1b[2;1H12345678",
     "ABCDEFGHIJ|1234567RST|UV8XYZabcd|efghijklmn|opqrstuvwx",
     {3, 2}},
    {"text from the right goes to the edge",
     Vt420,
     kBox,
     "\x1b[2;9H123",
     "ABCDEFGHIJ|KLMNOPQR12|UV3XYZabcd|efghijklmn|opqrstuvwx",
     {3, 2}},
    {"CR", Vt420, kBox, "\x1b[3;5H\r", kLetterRows, {2, 2}},
    {"CR left of the margins", Vt420, kBox, "\x1b[3;2H\r", kLetterRows, {0, 2}},
    {"BS", Vt420, kBox, "\x1b[3;4H\b\b\b", kLetterRows, {2, 2}},
    {"CUF", Vt420, kBox, "\x1b[3;4H\x1b[9C", kLetterRows, {6, 2}},
    {"CUF from the right of them", Vt420, kBox, "\x1b[3;8H\x1b[9C", kLetterRows, {9, 2}},
    {"CUB", Vt420, kBox, "\x1b[3;4H\x1b[9D", kLetterRows, {2, 2}},
    {"CUB from the left of them", Vt420, kBox, "\x1b[3;2H\x1b[9D", kLetterRows, {0, 2}},
    {"HT", Vt420, kBox, "\x1b[3;4H\t", kLetterRows, {6, 2}},
    {"LF outside does not scroll", Vt420, kBox, "\x1b[4;1H\n", kLetterRows, {0, 3}},
    {"RI outside does not scroll", Vt420, kBox, "\x1b[2;9H\x1bM", kLetterRows, {8, 1}},
    {"DECOM", Vt420, kBox, "\x1b[?6h\x1b[2;2H\x1b[6n", kLetterRows, {3, 2}, "\x1b[2;2R"},
    {"DECOM keeps the cursor inside", Vt420, kBox, "\x1b[?6h\x1b[9;9H", kLetterRows, {6, 3}},
    {"DECOM and CUU keep the column", Vt420, kBox, "\x1b[?6h\x1b[2;2H\x1b[A", kLetterRows, {3, 1}},
    {"EL does not heed them",
     Vt420,
     kBox,
     "\x1b[3;4H\x1b[K",
     "ABCDEFGHIJ|KLMNOPQRST|UVW|efghijklmn|opqrstuvwx",
     {3, 2}},
    {"ED does not heed them", Vt420, kBox, "\x1b[3;4H\x1b[J", "ABCDEFGHIJ|KLMNOPQRST|UVW", {3, 2}},
    {"DECALN opens them", Vt420, kBox, "\x1b#8\x1b[2J\x1b[1;9H123", "        12|3", {1, 1}},
    {"DECLRMM off opens them",
     Vt420,
     kBox,
     "\x1b[?69l\x1b[3;4H\x1b[2@",
     "ABCDEFGHIJ|KLMNOPQRST|UVW  XYZab|efghijklmn|opqrstuvwx",
     {3, 2}},
    {"DECSTR opens them",
     Vt420,
     kBox,
     "\x1b[!p\x1b[3;4H\x1b[2@",
     "ABCDEFGHIJ|KLMNOPQRST|UVW  XYZab|efghijklmn|opqrstuvwx",
     {3, 2}},
    {"DECSLRM needs DECLRMM",
     Vt420,
     kLetters,
     "\x1b[3;4H\x1b[3;7s\x1b[@",
     "ABCDEFGHIJ|KLMNOPQRST|UVW XYZabc|efghijklmn|opqrstuvwx",
     {3, 2}},
    {"DECSLRM needs two columns", Vt420, kLetters + "\x1b[?69h\x1b[3;4H", "\x1b[5;5s", kLetterRows, {3, 2}},
    {"a line feed in the box is no history",
     Vt420,
     kLetters + "\x1b[?69h\x1b[1;7s\x1b[5;1H",
     "\n",
     "KLMNOPQHIJ|UVWXYZaRST|efghijkbcd|opqrstulmn|       vwx",
     {0, 4}},
    {"DECDWL is ignored",
     Vt420,
     kBox,
     "\x1b#6\x1b[1;9H*",
     "ABCDEFGH*J|KLMNOPQRST|UVWXYZabcd|efghijklmn|opqrstuvwx",
     {9, 0}},
};

// New with the VT420.
const Case kNew[] = {
    {"DECIC", Vt420, kBox + "\x1b[3;4H", "\x1b[2'}", "ABCDEFGHIJ|KLM  NORST|UVW  XYbcd|efg  hilmn|opqrstuvwx", {3, 2}},
    {"DECIC of more than there is",
     Vt420,
     kBox + "\x1b[3;4H",
     "\x1b[99'}",
     "ABCDEFGHIJ|KLM    RST|UVW    bcd|efg    lmn|opqrstuvwx",
     {3, 2}},
    {"DECIC outside", Vt420, kBox + "\x1b[3;8H", "\x1b[2'}", kLetterRows, {7, 2}},
    {"DECDC", Vt420, kBox + "\x1b[3;4H", "\x1b[2'~", "ABCDEFGHIJ|KLMPQ  RST|UVWZa  bcd|efgjk  lmn|opqrstuvwx", {3, 2}},
    {"DECDC on the whole screen",
     Vt420,
     kLetters,
     "\x1b['~",
     "BCDEFGHIJ|LMNOPQRST|VWXYZabcd|fghijklmn|pqrstuvwx",
     {0, 0}},
    {"DECBI moves",
     Vt420,
     kBox + "\x1b[3;5H",
     "\x1b"
     "6",
     kLetterRows,
     {3, 2}},
    {"DECBI at the margin",
     Vt420,
     kBox + "\x1b[3;3H",
     "\x1b"
     "6",
     "ABCDEFGHIJ|KL MNOPRST|UV WXYZbcd|ef ghijlmn|opqrstuvwx",
     {2, 2}},
    {"DECBI at the edge outside",
     Vt420,
     kBox + "\x1b[3;1H",
     "\x1b"
     "6",
     kLetterRows,
     {0, 2}},
    {"DECFI moves",
     Vt420,
     kBox + "\x1b[3;5H",
     "\x1b"
     "9",
     kLetterRows,
     {5, 2}},
    {"DECFI at the margin",
     Vt420,
     kBox + "\x1b[3;7H",
     "\x1b"
     "9",
     "ABCDEFGHIJ|KLNOPQ RST|UVXYZa bcd|efhijk lmn|opqrstuvwx",
     {6, 2}},
    {"DECFI at the edge outside",
     Vt420,
     kBox + "\x1b[3;10H",
     "\x1b"
     "9",
     kLetterRows,
     {9, 2}},
};

TEST(Conformance, SideMarginsAreHeeded)
{
    for (const Case& test : kHeeding)
        ExpectHas(test, Vt420);
}

TEST(Conformance, Columns) { RunCases(kNew); }

// A wide character that loses one half becomes blank, wherever an edge cuts it.
TEST(Conformance, EdgesCutWideCharacters)
{
    const std::string box = "\x1b[?69h\x1b[3;6s";
    const struct
    {
        const char* name;
        std::string bytes;
        const char* rows;
    } cases[] = {
        {"scrolled out at the left edge", "a中文b\r\nc\x1b[?69h\x1b[3;6s\x1b[S", "a|c"},
        {"ICH over the right margin", "abcde中f" + box + "\x1b[1;3H\x1b[@", "ab cde f"},
        {"DCH from the right margin", "abcde中f" + box + "\x1b[1;3H\x1b[P", "abde   f"},
    };
    for (const auto& test : cases) {
        Bench bench(3, 10, Type::Vt420);
        EXPECT_EQ(bench.HostSays(test.bytes).Rows(), test.rows) << test.name;
    }
}

} // namespace
} // namespace kestrune::emu::conformance
