#pragma once

// User-defined keys (DECUDK): what a host lets function keys send. They go out when the user presses the key and
// never otherwise: no report tells what they hold. VT220 programmer reference, chapter 3.

#include <emulator/engine/keys.h>

#include <cstddef>
#include <map>
#include <string>
#include <string_view>
#include <utility>

namespace kestrune::emu {

class UserKeys
{
public:
    // The string between DCS and ST: "Pc;Pl;Pm|key/hex;key/hex". A pair that is malformed ends it; those before it
    // hold. `space` is how many bytes all definitions may have together; one that does not fit is left out.
    // Returns false when it is no such string.
    bool Take(std::string_view body, size_t space);
    // What the key sends; nullptr: it has no definition.
    const std::string* Find(const KeyPress& press) const;
    bool IsLocked() const { return locked_; } // until the terminal is reset
    void Clear();                             // forgets and unlocks

private:
    using Place = std::pair<Key, uint8_t>; // key, modifiers
    void Define(std::string_view pair, uint8_t modifiers, size_t space, bool& sound);

    std::map<Place, std::string> keys_;
    size_t held_ = 0; // bytes of all definitions
    bool locked_ = false;
};

} // namespace kestrune::emu
