#pragma once

// The order in which session windows were last used, by session number, the latest first.

#include <cstddef>
#include <cstdint>
#include <vector>

namespace kestrune {

class OrderedList
{
public:
    void Reset();
    void Add(std::int32_t key);    // to the top
    void Remove(std::int32_t key); // unknown: nothing
    void SetTop(std::int32_t key); // unknown: nothing
    // The entry behind the last one given, from the top again at the end; -1 when empty. The first call after Add
    // or SetTop gives the second, so that "next session" toggles between the two used last.
    std::int32_t NextKey();
    std::size_t Count() const { return keys_.size(); }

private:
    std::vector<std::int32_t> keys_;
    std::size_t cursor_ = 0;
};

} // namespace kestrune
