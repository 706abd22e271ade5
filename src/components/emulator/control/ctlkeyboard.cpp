// The members of ctlEmulator about the function bar and about keys that are not simply sent.

#include "ctlemulator.h"

#include "functionkeys.h"

#include <utility>

namespace kestrune {

void ctlEmulator::BreakKey()
{
    constexpr char interrupt = 0x03;
    const auto send = [this](char byte) {
        if (MayType())
            Typed(std::string_view(&byte, 1), QString(QLatin1Char(byte)), 0);
    };
    switch (BreakKeyAction(settings_.Integer(Setting("BreakKeyAction")))) {
    case BreakKeyAction::None:
        return;
    case BreakKeyAction::Interrupt:
        return send(interrupt);
    case BreakKeyAction::Character: {
        const int character = settings_.Integer(Setting("SSHBreakCharacter"));
        return send(character > 0 && character < 0x100 ? char(character) : interrupt);
    }
    case BreakKeyAction::Signal:
        break;
    }
    Break();
}

void ctlEmulator::SetTrackKeyboardState(bool on)
{
    if (std::exchange(trackKeyboardState_, on) != on)
        emit FuncBarChanged();
}

void ctlEmulator::SetFuncBarPos(int pos)
{
    if (std::exchange(funcBarPos_, pos) != pos)
        emit FuncBarChanged();
}

void ctlEmulator::SetFuncBarStyle(int style)
{
    if (std::exchange(funcBarStyle_, style) != style)
        emit FuncBarChanged();
}

void ctlEmulator::SetFuncBarBank(int bank)
{
    if (std::exchange(funcBarBank_, bank) != bank)
        emit FuncBarChanged();
}

} // namespace kestrune
