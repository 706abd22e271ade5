#include "input.h"

#include <algorithm>
#include <optional>

namespace kestrune::emu {
namespace {

bool Applies(KeyWhen when, const Machine& machine)
{
    const Modes& modes = machine.Switches();
    const bool counts = !machine.IgnoresApplicationModes();
    switch (when) {
    case KeyWhen::Always:
        return true;
    case KeyWhen::ApplicationCursor:
        return counts && modes.Has(Mode::CursorKeys);
    case KeyWhen::ApplicationKeypad:
        return counts && modes.Has(Mode::NumericKeypad);
    }
    return false;
}

std::span<const KeyTable> Keyboard(const Machine& machine)
{
    const Personality& type = machine.Type();
    if (machine.IsVt52() && !type.vt52Keys.empty())
        return type.vt52Keys;
    return machine.Level() == 1 && !type.level1Keys.empty() ? type.level1Keys : type.keys;
}

std::optional<std::string_view> FindKey(const Machine& machine, Key key, uint8_t modifiers)
{
    for (const KeyTable table : Keyboard(machine))
        for (const KeyRow& row : table)
            if (row.key == key && row.modifiers == modifiers && Applies(row.when, machine))
                return row.bytes;
    return std::nullopt;
}

// A key that a type has no form for with a modifier sends what it sends without.
std::optional<std::string_view> FindKeyOrPlain(const Machine& machine, Key key, uint8_t modifiers)
{
    const uint8_t tries[] = {modifiers, uint8_t(modifiers & ~Modifier::Control), uint8_t(modifiers & ~Modifier::Shift),
                             Modifier::None};
    for (const uint8_t mask : tries)
        if (const auto bytes = FindKey(machine, key, mask))
            return bytes;
    return std::nullopt;
}

// What Control makes of a character, as the keyboards of the DEC terminals do; nothing for most others.
std::optional<char> ControlCode(char32_t point)
{
    struct Pair
    {
        char32_t typed;
        char code;
    };
    static constexpr Pair kPairs[] = {
        {U' ', 0x00}, {U'2', 0x00}, {U'3', 0x1B}, {U'4', 0x1C}, {U'5', 0x1D},
        {U'6', 0x1E}, {U'7', 0x1F}, {U'8', 0x7F}, {U'/', 0x1F}, {U'?', 0x7F},
    };
    for (const Pair& pair : kPairs)
        if (pair.typed == point)
            return pair.code;
    if ((point >= U'@' && point <= U'_') || (point >= U'a' && point <= U'z'))
        return char(point & 0x1F);
    return std::nullopt;
}

std::string TypedText(const Machine& machine, const KeyPress& press)
{
    std::string out = TextToBytes(machine, press.text);
    if (press.modifiers & Modifier::Control) {
        const std::u32string points = FromUtf8(press.text);
        if (points.size() == 1)
            if (const std::optional<char> code = ControlCode(points.front()))
                out = std::string(1, *code);
    }
    if (!out.empty() && (press.modifiers & Modifier::Alt))
        out.insert(0, 1, '\x1b');
    return out;
}

std::string BackspaceBytes(const Machine& machine, uint8_t modifiers)
{
    // Control gives the other one of the two.
    const bool bs = machine.Switches().Has(Mode::BackspaceSendsBs) != ((modifiers & Modifier::Control) != 0);
    std::string out(1, bs ? '\b' : '\x7f');
    if (modifiers & Modifier::Alt)
        out.insert(0, 1, '\x1b');
    return out;
}

struct Report // of one mouse action
{
    int button; // as the protocols number it, modifiers included
    int col;    // from 1
    int row;
    bool release;
};

// The old form: three bytes above 32. Places from 224 on cannot be said and are not reported.
std::string InBytes(const Report& report)
{
    constexpr int kMost = 255 - 32;
    if (report.col > kMost || report.row > kMost)
        return {};
    const int button = report.release ? (report.button & ~3) | 3 : report.button;
    return "\x1b[M" + std::string{char(32 + button), char(32 + report.col), char(32 + report.row)};
}

std::string InUtf8(const Report& report)
{
    const int button = report.release ? (report.button & ~3) | 3 : report.button;
    std::string out = "\x1b[M";
    for (const int value : {button, report.col, report.row})
        AppendUtf8(out, char32_t(32 + value));
    return out;
}

std::string InDecimals(const Report& report)
{
    const int button = report.release ? (report.button & ~3) | 3 : report.button;
    return "\x1b[" + std::to_string(32 + button) + ';' + std::to_string(report.col) + ';' + std::to_string(report.row) +
           'M';
}

std::string InSgrForm(const Report& report)
{
    return "\x1b[<" + std::to_string(report.button) + ';' + std::to_string(report.col) + ';' +
           std::to_string(report.row) + (report.release ? 'm' : 'M');
}

int ButtonCode(MouseButton button)
{
    switch (button) {
    case MouseButton::Left:
        return 0;
    case MouseButton::Middle:
        return 1;
    case MouseButton::Right:
        return 2;
    case MouseButton::WheelUp:
        return 64;
    case MouseButton::WheelDown:
        return 65;
    case MouseButton::None:
        break;
    }
    return 3;
}

bool IsReported(const Modes& modes, const MouseAction& action)
{
    const bool isWheel = action.button == MouseButton::WheelUp || action.button == MouseButton::WheelDown;
    switch (action.kind) {
    case MouseKind::Press:
        return action.button != MouseButton::None;
    case MouseKind::Release:
        return !isWheel && !modes.Has(Mode::MouseX10);
    case MouseKind::Move:
        return modes.Has(Mode::MouseMotion) || (modes.Has(Mode::MouseDrag) && action.button != MouseButton::None);
    }
    return false;
}

std::u32string WithoutPasteMarks(std::u32string text)
{
    for (const std::u32string_view mark : {std::u32string_view(U"\x1b[201~"), std::u32string_view(U"\u009b201~")})
        for (size_t at = text.find(mark); at != text.npos;) {
            text.erase(at, mark.size());
            at = text.find(mark, at - std::min(at, mark.size())); // one may have closed up round another
        }
    return text;
}

} // namespace

std::string KeyToBytes(const Machine& machine, const KeyPress& press)
{
    const Modes& modes = machine.Switches();
    if (modes.Has(Mode::KeyboardAction))
        return {};
    if (press.key == Key::Text)
        return TypedText(machine, press);
    if (press.key == Key::Backspace)
        return BackspaceBytes(machine, press.modifiers);

    if (machine.Speaks(Dialect::Vt220))
        if (const std::string* defined = machine.FunctionKeys().Find(press))
            return *defined;

    const auto plain = uint8_t(press.modifiers & (Modifier::Shift | Modifier::Control));
    const std::optional<std::string_view> bytes = FindKeyOrPlain(machine, press.key, plain);
    if (!bytes)
        return {};
    std::string out = machine.InSentForm(*bytes);
    if (out == "\r" && modes.Has(Mode::NewLine))
        out += '\n';
    if (press.modifiers & Modifier::Alt)
        out.insert(0, 1, '\x1b');
    return out;
}

std::string MouseToBytes(const Machine& machine, const MouseAction& action)
{
    const Modes& modes = machine.Switches();
    if (machine.View().mouse == MouseReport::None || !IsReported(modes, action))
        return {};
    const Screen& screen = machine.Display();
    Report report{ButtonCode(action.button), std::clamp(action.col, 0, screen.ScreenExtent().cols - 1) + 1,
                  std::clamp(action.row, 0, screen.WindowRows() - 1) + screen.WindowTop() + 1,
                  action.kind == MouseKind::Release};
    if (modes.Has(Mode::MouseX10))
        return InBytes(report);
    report.button += action.kind == MouseKind::Move ? 32 : 0;
    report.button += action.modifiers & Modifier::Shift ? 4 : 0;
    report.button += action.modifiers & Modifier::Alt ? 8 : 0;
    report.button += action.modifiers & Modifier::Control ? 16 : 0;
    if (modes.Has(Mode::MouseSgr))
        return InSgrForm(report);
    if (modes.Has(Mode::MouseDecimal))
        return InDecimals(report);
    return modes.Has(Mode::MouseUtf8) ? InUtf8(report) : InBytes(report);
}

std::string FocusToBytes(const Machine& machine, bool gained)
{
    if (!machine.Switches().Has(Mode::FocusReports))
        return {};
    return machine.InSentForm(gained ? "\x1b[I" : "\x1b[O");
}

std::string PasteToBytes(const Machine& machine, std::string_view utf8)
{
    std::string out;
    char32_t before = 0;
    for (const char32_t point : WithoutPasteMarks(FromUtf8(utf8))) {
        const bool secondOfLineEnd = point == U'\n' && before == U'\r';
        before = point;
        if (point == U'\r' || (point == U'\n' && !secondOfLineEnd))
            out += '\r';
        else if (point == U'\t' || (point >= 0x20 && !(point >= 0x7F && point < 0xA0)))
            out += machine.Encoded(point);
    }
    if (!machine.Switches().Has(Mode::BracketedPaste))
        return out;
    return machine.InSentForm("\x1b[200~") + out + machine.InSentForm("\x1b[201~");
}

std::string TextToBytes(const Machine& machine, std::string_view utf8)
{
    std::string out;
    for (const char32_t point : FromUtf8(utf8))
        out += machine.Encoded(point);
    return out;
}

} // namespace kestrune::emu
