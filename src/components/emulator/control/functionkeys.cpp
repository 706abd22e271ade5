#include "functionkeys.h"

#include <emulator/control/keynotation.h>

#include <QCoreApplication>
#include <QStringList>

#include <array>

namespace kestrune {

namespace {

constexpr int kCodeOfF1 = 112;
constexpr int kLabels = 10000;

struct BankBit
{
    int bit; // of bank - 1, thousands of the code
    uint8_t modifier;
    const char* name;
};

// In the order in which the names stand on a menu.
constexpr std::array kBankBits{
    BankBit{2, emu::Modifier::Control, QT_TRANSLATE_NOOP("FunctionKeys", "Ctrl")},
    BankBit{4, emu::Modifier::Alt, QT_TRANSLATE_NOOP("FunctionKeys", "Alt")},
    BankBit{1, emu::Modifier::Shift, QT_TRANSLATE_NOOP("FunctionKeys", "Shift")},
};

int BitsOf(int bank) { return bank >= 1 && bank <= FunctionBankCount ? bank - 1 : 0; }

} // namespace

int FunctionBankOf(uint8_t modifiers)
{
    int bits = 0;
    for (const BankBit& row : kBankBits)
        bits |= (modifiers & row.modifier) != 0 ? row.bit : 0;
    return bits + 1;
}

uint8_t FunctionBankModifiers(int bank)
{
    uint8_t modifiers = emu::Modifier::None;
    for (const BankBit& row : kBankBits)
        if ((BitsOf(bank) & row.bit) != 0)
            modifiers = uint8_t(modifiers | row.modifier);
    return modifiers;
}

int FunctionKeyCode(int number, int bank) { return BitsOf(bank) * 1000 + kCodeOfF1 + number - 1; }

QString FunctionBankName(int bank)
{
    QStringList names;
    for (const BankBit& row : kBankBits)
        if ((BitsOf(bank) & row.bit) != 0)
            names << QCoreApplication::translate("FunctionKeys", row.name);
    return names.join(u'+');
}

emu::KeyPress FunctionKey(int number, int bank)
{
    return {emu::Key(int(emu::Key::F1) + number - 1), FunctionBankModifiers(bank), {}};
}

QString FunctionLabel(const EmulatorSettings& settings, int number, int bank)
{
    const int code = FunctionKeyCode(number, bank);
    if (QString label = settings.FKeys(code + kLabels); !label.isEmpty())
        return label;
    QString text = settings.FKeys(code);
    while (text.endsWith(u'\r') || text.endsWith(u'\n'))
        text.chop(1);
    return EncodeControls(text);
}

emu::KeyPress MappedUpperFunctionKey(const emu::KeyPress& key)
{
    const bool mapped = key.key >= emu::Key::F1 && key.key <= emu::Key::F10 && key.modifiers == emu::Modifier::Shift;
    return mapped ? emu::KeyPress{emu::Key(int(key.key) + 10), emu::Modifier::None, {}} : key;
}

} // namespace kestrune
