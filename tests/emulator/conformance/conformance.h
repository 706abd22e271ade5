#pragma once

// One case of conformance: from which DEC model to which a function is there, what a host sends, and what is seen
// then. A model that does not have the function has to take it without any effect, and so has a later one that was
// told to be that model (DECSCL).

#include <emulator/engine/bench.h>

#include <gtest/gtest.h>

#include <span>
#include <string>

namespace kestrune::emu::conformance {

enum class Model
{
    Vt100,
    Vt220,
    Vt320,
    Vt420
};
inline constexpr Model kFirst = Model::Vt100;
inline constexpr Model kLast = Model::Vt420;

inline int TypeOf(Model model)
{
    constexpr int kTypes[] = {Type::Vt100, Type::Vt220, Type::Vt320, Type::Vt420};
    return kTypes[int(model)];
}

inline Model Before(Model model) { return Model(int(model) - 1); }

// Five rows of ten columns, each cell with a letter of its own.
//   ABCDEFGHIJ
//   KLMNOPQRST
//   UVWXYZabcd
//   efghijklmn
//   opqrstuvwx
inline const std::string kLetters = "ABCDEFGHIJ\r\nKLMNOPQRST\r\nUVWXYZabcd\r\nefghijklmn\r\nopqrstuvwx\x1b[H";
inline constexpr const char* kLetterRows = "ABCDEFGHIJ|KLMNOPQRST|UVWXYZabcd|efghijklmn|opqrstuvwx";

struct Case
{
    const char* name;
    Model from;        // the first model that has it
    std::string setup; // what every model takes
    std::string act;   // the function itself: without an effect before `from`
    std::string rows;  // joined by '|'
    Position cursor;   // col, row
    std::string replies = {};
};

inline Bench Fresh(Model model)
{
    TerminalOptions options;
    options.size = {10, 5};
    return Bench(options, TypeOf(model));
}

inline void ExpectHas(const Case& test, Model model)
{
    Bench bench = Fresh(model);
    bench.HostSays(test.setup).Replies();
    bench.HostSays(test.act);
    const std::string where = std::string(test.name) + " on " + std::string(bench.terminal.CurrentPersonality().name);
    EXPECT_EQ(bench.Rows(), test.rows) << where;
    EXPECT_EQ(bench.terminal.Cursor().col, test.cursor.col) << where;
    EXPECT_EQ(bench.terminal.Cursor().row, test.cursor.row) << where;
    EXPECT_EQ(bench.Replies(), test.replies) << where;
}

inline void ExpectLacks(const Case& test, Model model, const std::string& before)
{
    Bench with = Fresh(model);
    Bench without = Fresh(model);
    with.HostSays(before + test.setup + test.act);
    without.HostSays(before + test.setup);
    EXPECT_EQ(with.Everything(), without.Everything())
        << test.name << (before.empty() ? " on " : " after DECSCL on ") << with.terminal.CurrentPersonality().name;
}

inline void RunCases(std::span<const Case> cases)
{
    for (const Case& test : cases)
        for (int number = int(kFirst); number <= int(kLast); ++number) {
            const auto model = Model(number);
            if (model >= test.from)
                ExpectHas(test, model);
            else
                ExpectLacks(test, model, {});
            if (model >= test.from && test.from > kFirst)
                ExpectLacks(test, model, "\x1b[6" + std::to_string(1 + int(Before(test.from))) + "\"p");
        }
}

} // namespace kestrune::emu::conformance
