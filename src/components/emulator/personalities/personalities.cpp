#include <emulator/personalities/personalities.h>

#include "dectypes.h"
#include "pctypes.h"

#include <string>

namespace kestrune::emu {
namespace {

constexpr const Personality* kTypes[] = {
    &types::kTty,   &types::kVt52,  &types::kVt220,      &types::kAnsi,         &types::kVt100,
    &types::kVt320, &types::kVt420, &types::kScoConsole, &types::kLinuxConsole, &types::kLanpar,
};

consteval bool InOrderOfNumbers()
{
    for (size_t i = 1; i < std::size(kTypes); ++i)
        if (kTypes[i - 1]->number >= kTypes[i]->number)
            return false;
    return true;
}
static_assert(InOrderOfNumbers(), "two types with one number, or out of order");

} // namespace

const Personality* FindPersonality(int number)
{
    for (const Personality* type : kTypes)
        if (type->number == number)
            return type;
    return nullptr;
}

const Personality* FindPersonality(std::string_view emulation)
{
    const auto plain = [](std::string_view name) {
        std::string out;
        for (const char c : name)
            if (c != ' ' && c != '-' && c != '_')
                out += c >= 'a' && c <= 'z' ? char(c - 32) : c;
        return out;
    };
    const std::string wanted = plain(emulation);
    if (wanted == "LANPAR") // its type's name begins with the model that it is like
        return &types::kLanpar;
    for (const Personality* type : kTypes)
        if (plain(type->name) == wanted)
            return type;
    return nullptr;
}

std::span<const Personality* const> AllPersonalities() { return kTypes; }

} // namespace kestrune::emu
