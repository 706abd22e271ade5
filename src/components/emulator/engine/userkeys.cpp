#include "userkeys.h"

#include "fields.h"
#include "hexpairs.h"

#include <algorithm>
#include <charconv>
#include <iterator>

namespace kestrune::emu {
namespace {

struct KeyNumber
{
    int number;
    Key key;
};
constexpr KeyNumber kKeyNumbers[] = {
    {11, Key::F1},  {12, Key::F2},  {13, Key::F3},  {14, Key::F4},  {15, Key::F5},  {17, Key::F6},  {18, Key::F7},
    {19, Key::F8},  {20, Key::F9},  {21, Key::F10}, {23, Key::F11}, {24, Key::F12}, {25, Key::F13}, {26, Key::F14},
    {28, Key::F15}, {29, Key::F16}, {31, Key::F17}, {32, Key::F18}, {33, Key::F19}, {34, Key::F20},
};

// Parameter Pm, from 0 on.
constexpr uint8_t kModifiersOf[] = {Modifier::Shift, Modifier::None, Modifier::Shift, Modifier::Alt,
                                    Modifier::Alt | Modifier::Shift};

int NumberOr(std::string_view digits, int missing)
{
    int value = missing;
    std::from_chars(digits.data(), digits.data() + digits.size(), value);
    return value;
}

} // namespace

bool UserKeys::Take(std::string_view body, size_t space)
{
    const size_t bar = body.find_first_not_of("0123456789;");
    if (bar == body.npos || body[bar] != '|')
        return false;
    std::string_view head = body.substr(0, bar);
    std::string_view pairs = body.substr(bar + 1);
    const int clearing = NumberOr(TakeField(head), 0);
    const int locking = NumberOr(TakeField(head), 0);
    const int modifier = NumberOr(TakeField(head), 0);
    if (locked_ || modifier >= int(std::size(kModifiersOf)))
        return true;
    if (clearing == 0)
        Clear();
    bool sound = true;
    while (sound && !pairs.empty())
        Define(TakeField(pairs), kModifiersOf[modifier], space, sound);
    locked_ = locking == 0;
    return true;
}

void UserKeys::Define(std::string_view pair, uint8_t modifiers, size_t space, bool& sound)
{
    const int number = NumberOr(TakeField(pair, '/'), 0);
    const std::optional<std::string> bytes = FromHexPairs(pair);
    const auto* row = std::find_if(std::begin(kKeyNumbers), std::end(kKeyNumbers),
                                   [&](const KeyNumber& candidate) { return candidate.number == number; });
    sound = bytes && row != std::end(kKeyNumbers);
    if (!sound)
        return;
    const Place place{row->key, modifiers};
    if (const auto old = keys_.find(place); old != keys_.end()) {
        held_ -= old->second.size();
        keys_.erase(old);
    }
    if (!bytes->empty() && held_ + bytes->size() <= space) {
        held_ += bytes->size();
        keys_.emplace(place, *bytes);
    }
}

const std::string* UserKeys::Find(const KeyPress& press) const
{
    const auto found = keys_.find({press.key, press.modifiers});
    return found == keys_.end() ? nullptr : &found->second;
}

void UserKeys::Clear()
{
    keys_.clear();
    held_ = 0;
    locked_ = false;
}

} // namespace kestrune::emu
