// Keys, mouse, focus and paste: the bytes that go to the host under each mode.

#include "bench.h"

#include <gtest/gtest.h>

namespace kestrune::emu {
namespace {

struct KeyCase
{
    const char* name;
    int type;
    const char* modes;
    KeyPress press;
    std::string bytes;
};

KeyPress Typed(const char* text, uint8_t modifiers = 0) { return {Key::Text, modifiers, text}; }
KeyPress Pressed(Key key, uint8_t modifiers = 0) { return {key, modifiers, {}}; }

TEST(EngineInput, Keys)
{
    using namespace Modifier;
    const KeyCase cases[] = {
        {"text", Type::Vt220, "", Typed("ä"), "ä"},
        {"Control letter", Type::Vt220, "", Typed("c", Control), "\x03"},
        {"Control space", Type::Vt220, "", Typed(" ", Control), std::string(1, '\0')},
        {"Control digits", Type::Vt220, "", Typed("3", Control), "\x1b"},
        {"Control 8", Type::Vt220, "", Typed("8", Control), "\x7f"},
        {"Control bracket", Type::Vt220, "", Typed("]", Control), "\x1d"},
        {"Alt text", Type::Vt220, "", Typed("x", Alt), "\x1bx"},
        {"Alt Control letter", Type::Vt220, "", Typed("x", Alt | Control), "\x1b\x18"},
        {"Enter", Type::Vt220, "", Pressed(Key::Enter), "\r"},
        {"Enter in new line mode", Type::Vt220, "\x1b[20h", Pressed(Key::Enter), "\r\n"},
        {"Escape", Type::Vt220, "", Pressed(Key::Escape), "\x1b"},
        {"Backspace", Type::Vt220, "", Pressed(Key::Backspace), "\x7f"},
        {"Backspace with DECBKM", Type::Vt220, "\x1b[?67h", Pressed(Key::Backspace), "\b"},
        {"Backspace of a VT100", Type::Vt100, "", Pressed(Key::Backspace), "\b"},
        {"Up", Type::Vt220, "", Pressed(Key::Up), "\x1b[A"},
        {"Up with DECCKM", Type::Vt220, "\x1b[?1h", Pressed(Key::Up), "\x1bOA"},
        {"Up with Control", Type::Vt220, "", Pressed(Key::Up, Control), "\x1b[A"},
        {"Up with Alt", Type::Vt220, "", Pressed(Key::Up, Alt), "\x1b\x1b[A"},
        {"Up in VT52 mode", Type::Vt220, "\x1b[?2l", Pressed(Key::Up),
         "\x1b"
         "A"},
        {"Home", Type::Vt220, "", Pressed(Key::Home), "\x1b[1~"},
        {"Delete", Type::Vt220, "", Pressed(Key::Delete), "\x1b[3~"},
        {"Delete of a VT100", Type::Vt100, "", Pressed(Key::Delete), "\x7f"},
        {"F1", Type::Vt220, "", Pressed(Key::F1), "\x1bOP"},
        {"F12", Type::Vt220, "", Pressed(Key::F12), "\x1b[24~"},
        {"F12 in level 1", Type::Vt420, "\x1b[61\"p", Pressed(Key::F12), "\b"},
        {"F13 in level 1", Type::Vt220, "\x1b[61\"p", Pressed(Key::F13), "\n"},
        {"F6 in level 1", Type::Vt220, "\x1b[61\"p", Pressed(Key::F6), ""},
        {"F6 back in level 2", Type::Vt220, "\x1b[61\"p\x1b[62\"p", Pressed(Key::F6), "\x1b[17~"},
        {"F20 by Shift", Type::Vt220, "", Pressed(Key::F10, Shift), "\x1b[34~"},
        {"F6 is not a VT100's", Type::Vt100, "", Pressed(Key::F6), ""},
        {"Shift Tab", Type::Vt220, "", Pressed(Key::Tab, Shift), "\x1b[Z"},
        {"keypad numeric", Type::Vt220, "", Pressed(Key::Pad5), "5"},
        {"keypad application", Type::Vt220, "\x1b=", Pressed(Key::Pad5), "\x1bOu"},
        {"keypad back to numeric", Type::Vt220, "\x1b=\x1b>", Pressed(Key::Pad5), "5"},
        {"keypad Enter application", Type::Vt220, "\x1b=", Pressed(Key::PadEnter), "\x1bOM"},
        {"keypad in VT52 mode", Type::Vt220, "\x1b[?2l\x1b=", Pressed(Key::Pad5), "\x1b?u"},
        {"PF4", Type::Vt220, "", Pressed(Key::PadPf4), "\x1bOS"},
        {"Linux F1", Type::Linux, "", Pressed(Key::F1), "\x1b[[A"},
        {"Linux F5", Type::Linux, "", Pressed(Key::F5), "\x1b[[E"},
        {"Linux F6", Type::Linux, "", Pressed(Key::F6), "\x1b[17~"},
        {"Linux Shift F1", Type::Linux, "", Pressed(Key::F1, Shift), "\x1b[25~"},
        {"Linux End", Type::Linux, "", Pressed(Key::End), "\x1b[4~"},
        {"keyboard locked", Type::Vt220, "\x1b[2h", Typed("x"), ""},
    };
    for (const KeyCase& test : cases) {
        Bench bench(4, 10, test.type);
        EXPECT_EQ(bench.HostSays(test.modes).terminal.KeyBytes(test.press), test.bytes) << test.name;
    }
}

TEST(EngineInput, BackspaceFollowsTheOptions)
{
    TerminalOptions options = Utf8Options(4, 10);
    options.backspace = BackspaceKey::Bs;
    Bench bench(options);
    EXPECT_EQ(bench.terminal.KeyBytes(Pressed(Key::Backspace)), "\b");
    options.backspace = BackspaceKey::Del;
    bench.terminal.SetOptions(options);
    EXPECT_EQ(bench.terminal.KeyBytes(Pressed(Key::Backspace)), "\x7f");
}

TEST(EngineInput, EightBitFormsAndApplicationModesFollowTheOptions)
{
    TerminalOptions options;
    options.eightBitReplies = true;
    Bench bench(options);
    EXPECT_EQ(bench.terminal.KeyBytes(Pressed(Key::Up)), "\x9b"
                                                         "A");
    EXPECT_EQ(bench.HostSays("\x1b[5n").Replies(), "\x9b"
                                                   "0n");
    EXPECT_EQ(bench.HostSays("\x1b F\x1b[5n").Replies(), "\x1b[0n"); // the host may choose
    EXPECT_EQ(Bench(options, Type::Vt100).HostSays("\x1b[5n").Replies(), "\x1b[0n");
    options.eightBitReplies = false;
    options.ignoreApplicationModes = true;
    Bench plain(options);
    plain.HostSays("\x1b[?1h\x1b=");
    EXPECT_EQ(plain.terminal.KeyBytes(Pressed(Key::Up)), "\x1b[A");
    EXPECT_EQ(plain.terminal.KeyBytes(Pressed(Key::Pad5)), "5");
    EXPECT_TRUE(plain.terminal.Modes().applicationCursor); // the host's questions are answered as it knows them
}

TEST(EngineInput, Mouse)
{
    const MouseAction press{MouseKind::Press, MouseButton::Left, 0, 3, 1};
    const MouseAction release{MouseKind::Release, MouseButton::Left, 0, 3, 1};
    const MouseAction wheel{MouseKind::Press, MouseButton::WheelDown, Modifier::Control, 3, 1};
    const MouseAction drag{MouseKind::Move, MouseButton::Left, 0, 3, 1};
    const MouseAction move{MouseKind::Move, MouseButton::None, 0, 3, 1};
    const MouseAction far{MouseKind::Press, MouseButton::Right, Modifier::Shift, 299, 1};
    const struct
    {
        const char* name;
        int type;
        const char* modes;
        MouseAction action;
        const char* bytes;
    } cases[] = {
        {"not asked for", Type::Vt220, "", press, ""},
        {"X10 press", Type::Linux, "\x1b[?9h", press, "\x1b[M $\""},
        {"X10 has no release", Type::Linux, "\x1b[?9h", release, ""},
        {"mode 9 is not mouse on DEC types", Type::Vt220, "\x1b[?9h", press, ""},
        {"press", Type::Vt220, "\x1b[?1000h", press, "\x1b[M $\""},
        {"release", Type::Vt220, "\x1b[?1000h", release, "\x1b[M#$\""},
        {"no drag in click mode", Type::Vt220, "\x1b[?1000h", drag, ""},
        {"drag", Type::Vt220, "\x1b[?1002h\x1b[?1006h", drag, "\x1b[<32;4;2M"},
        {"no motion in drag mode", Type::Vt220, "\x1b[?1002h", move, ""},
        {"motion", Type::Vt220, "\x1b[?1003h\x1b[?1006h", move, "\x1b[<35;4;2M"},
        {"SGR release", Type::Vt220, "\x1b[?1000;1006h", release, "\x1b[<0;4;2m"},
        {"SGR wheel with Control", Type::Vt220, "\x1b[?1000;1006h", wheel, "\x1b[<81;4;2M"},
        {"decimals", Type::Vt220, "\x1b[?1000;1015h", press, "\x1b[32;4;2M"},
        {"UTF-8", Type::Vt220, "\x1b[?1000;1005h", far, "\x1b[M&\xc5\x8c\""},
        {"too far for bytes", Type::Vt220, "\x1b[?1000h", far, ""},
        {"the last mode counts", Type::Vt220, "\x1b[?1000h\x1b[?1003h\x1b[?1003l", press, ""},
    };
    for (const auto& test : cases) {
        Bench bench(4, 300, test.type);
        EXPECT_EQ(bench.HostSays(test.modes).terminal.MouseBytes(test.action), test.bytes) << test.name;
    }
}

TEST(EngineInput, Focus)
{
    Bench bench(4, 10);
    EXPECT_EQ(bench.terminal.FocusBytes(true), "");
    bench.HostSays("\x1b[?1004h");
    EXPECT_EQ(bench.terminal.FocusBytes(true) + bench.terminal.FocusBytes(false), "\x1b[I\x1b[O");
}

TEST(EngineInput, Paste)
{
    const struct
    {
        const char* modes;
        const char* text;
        const char* bytes;
    } cases[] = {
        {"", "a\tb", "a\tb"},
        {"", "one\ntwo\r\nthree\rfour", "one\rtwo\rthree\rfour"},
        {"",
         "a\x1b[2Jb\x03"
         "c\x7f",
         "a[2Jbc"},
        {"",
         "a\xc2\x9b"
         "2Jb",
         "a2Jb"},
        {"\x1b[?2004h", "ä", "\x1b[200~ä\x1b[201~"},
        {"\x1b[?2004h", "a\x1b[201~rm\n", "\x1b[200~arm\r\x1b[201~"},
        {"\x1b[?2004h", "a\x1b[20\x1b[201~1~b", "\x1b[200~ab\x1b[201~"},
        {"\x1b[?2004h",
         "a\xc2\x9b"
         "201~b",
         "\x1b[200~ab\x1b[201~"},
    };
    for (const auto& test : cases) {
        Bench bench(4, 10);
        EXPECT_EQ(bench.HostSays(test.modes).terminal.PasteBytes(test.text), test.bytes) << test.text;
    }
}

} // namespace
} // namespace kestrune::emu
