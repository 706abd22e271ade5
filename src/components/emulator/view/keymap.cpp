#include "keymap.h"

#include <algorithm>
#include <array>

namespace kestrune {

namespace {

using emu::Key;

struct KeyRow
{
    int qt; // Qt::Key
    bool pad;
    Key key;
    int code; // virtual key, 0: none
};

// Rows of the number pad first: with NumLock off its keys are the editing keys, which the rows below serve.
constexpr std::array kKeys{
    KeyRow{Qt::Key_0, true, Key::Pad0, 96},
    KeyRow{Qt::Key_1, true, Key::Pad1, 97},
    KeyRow{Qt::Key_2, true, Key::Pad2, 98},
    KeyRow{Qt::Key_3, true, Key::Pad3, 99},
    KeyRow{Qt::Key_4, true, Key::Pad4, 100},
    KeyRow{Qt::Key_5, true, Key::Pad5, 101},
    KeyRow{Qt::Key_Clear, true, Key::Pad5, 12},
    KeyRow{Qt::Key_6, true, Key::Pad6, 102},
    KeyRow{Qt::Key_7, true, Key::Pad7, 103},
    KeyRow{Qt::Key_8, true, Key::Pad8, 104},
    KeyRow{Qt::Key_9, true, Key::Pad9, 105},
    KeyRow{Qt::Key_Asterisk, true, Key::PadStar, 106},
    KeyRow{Qt::Key_Plus, true, Key::PadPlus, 107},
    KeyRow{Qt::Key_Comma, true, Key::PadComma, 108},
    KeyRow{Qt::Key_Minus, true, Key::PadMinus, 109},
    KeyRow{Qt::Key_Period, true, Key::PadDot, 110},
    KeyRow{Qt::Key_Slash, true, Key::PadSlash, 111},
    KeyRow{Qt::Key_Enter, true, Key::PadEnter, 13},
    KeyRow{Qt::Key_Return, false, Key::Enter, 13},
    KeyRow{Qt::Key_Enter, false, Key::Enter, 13},
    KeyRow{Qt::Key_Backspace, false, Key::Backspace, 8},
    KeyRow{Qt::Key_Tab, false, Key::Tab, 9},
    KeyRow{Qt::Key_Backtab, false, Key::Tab, 9},
    KeyRow{Qt::Key_Escape, false, Key::Escape, 27},
    KeyRow{Qt::Key_Up, false, Key::Up, 38},
    KeyRow{Qt::Key_Down, false, Key::Down, 40},
    KeyRow{Qt::Key_Right, false, Key::Right, 39},
    KeyRow{Qt::Key_Left, false, Key::Left, 37},
    KeyRow{Qt::Key_Home, false, Key::Home, 36},
    KeyRow{Qt::Key_End, false, Key::End, 35},
    KeyRow{Qt::Key_PageUp, false, Key::PageUp, 33},
    KeyRow{Qt::Key_PageDown, false, Key::PageDown, 34},
    KeyRow{Qt::Key_Insert, false, Key::Insert, 45},
    KeyRow{Qt::Key_Delete, false, Key::Delete, 46},
    KeyRow{Qt::Key_Pause, false, Key::Pause, 19},
    KeyRow{Qt::Key_Cancel, false, Key::Break, 3},
    KeyRow{Qt::Key_Menu, false, Key::Menu, 93},
};

constexpr uint8_t operator+(Key key, int offset) { return uint8_t(int(key) + offset); }

const KeyRow* RowFor(int qt, bool pad)
{
    const auto* row =
        std::find_if(kKeys.begin(), kKeys.end(), [=](const KeyRow& r) { return r.qt == qt && (!r.pad || pad); });
    return row == kKeys.end() ? nullptr : row;
}

int CodeBase(uint8_t modifiers)
{
    return ((modifiers & emu::Modifier::Shift) != 0 ? 1000 : 0) +
           ((modifiers & emu::Modifier::Control) != 0 ? 2000 : 0) + ((modifiers & emu::Modifier::Alt) != 0 ? 4000 : 0);
}

// The key's letter on a Latin keyboard, by its place: control characters have no others. X11 and Wayland number
// the places alike; where they are not known there is no letter.
QString LatinText(const QKeyEvent& event)
{
    struct KeyRowOfPlaces
    {
        quint32 first; // scan code of the leftmost key
        QLatin1StringView letters;
    };
    static constexpr std::array kPlaces{KeyRowOfPlaces{24, QLatin1StringView("qwertyuiop[]")},
                                        KeyRowOfPlaces{38, QLatin1StringView("asdfghjkl;'")},
                                        KeyRowOfPlaces{52, QLatin1StringView("zxcvbnm,./")}};
    for (const KeyRowOfPlaces& row : kPlaces)
        if (const quint32 at = event.nativeScanCode() - row.first; at < quint32(row.letters.size()))
            return QString(row.letters[qsizetype(at)]);
    return {};
}

// What the key types without Control and Alt. With Control down the event's own text is a control character.
QString PlainText(const QKeyEvent& event)
{
    QString text = event.text();
    if (event.modifiers().testFlag(Qt::ControlModifier) && (text.isEmpty() || text[0] > QChar(0x7F)) &&
        event.key() > 0xFF)
        return LatinText(event);
    const bool isControl = text.size() == 1 && (text[0] < u' ' || text[0] == QChar(0x7F));
    if (!text.isEmpty() && !isControl)
        return text;
    const int key = event.key();
    if (key < 0x20 || key > 0xFF)
        return {};
    const QChar character{char16_t(key)}; // Qt names letters by their capitals
    return (event.modifiers() & Qt::ShiftModifier) != 0 ? QString(character) : QString(character).toLower();
}

} // namespace

uint8_t MapModifiers(Qt::KeyboardModifiers modifiers)
{
    uint8_t mapped = emu::Modifier::None;
    for (const auto& [qt, ours] :
         {std::pair{Qt::ShiftModifier, emu::Modifier::Shift}, std::pair{Qt::AltModifier, emu::Modifier::Alt},
          std::pair{Qt::ControlModifier, emu::Modifier::Control}, std::pair{Qt::MetaModifier, emu::Modifier::Meta}})
        if ((modifiers & qt) != 0)
            mapped = uint8_t(mapped | ours);
    return mapped;
}

std::optional<MappedKey> MapKey(const QKeyEvent& event)
{
    MappedKey mapped;
    mapped.press.modifiers = MapModifiers(event.modifiers());
    const int key = event.key();
    if (key == Qt::Key_Backtab)
        mapped.press.modifiers = uint8_t(mapped.press.modifiers | emu::Modifier::Shift);
    const int base = CodeBase(mapped.press.modifiers);

    if (key >= Qt::Key_F1 && key <= Qt::Key_F20) {
        mapped.press.key = Key(Key::F1 + (key - Qt::Key_F1));
        mapped.code = base + 112 + (key - Qt::Key_F1);
        return mapped;
    }
    if (const KeyRow* row = RowFor(key, (event.modifiers() & Qt::KeypadModifier) != 0)) {
        mapped.press.key = row->key;
        mapped.code = base + row->code;
        mapped.press.text = event.text().toStdString();
        return mapped;
    }
    const QString text = PlainText(event);
    if (text.isEmpty())
        return std::nullopt;
    // AltGr comes as Control and Alt on some platforms; what it types is typed text.
    const bool altGr = event.modifiers().testFlag(Qt::ControlModifier) && event.modifiers().testFlag(Qt::AltModifier) &&
                       !event.text().isEmpty() && event.text()[0].isPrint();
    if (altGr)
        mapped.press.modifiers &= emu::Modifier::Shift;
    mapped.press.text = text.toStdString();
    if ((key >= Qt::Key_0 && key <= Qt::Key_9) || (key >= Qt::Key_A && key <= Qt::Key_Z) || key == Qt::Key_Space)
        mapped.code = base + key;
    return mapped;
}

} // namespace kestrune
