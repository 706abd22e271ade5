#include <support/ordlst.h>

#include <algorithm>

namespace kestrune {

void OrderedList::Reset()
{
    keys_.clear();
    cursor_ = 0;
}

void OrderedList::Add(std::int32_t key)
{
    keys_.insert(keys_.begin(), key);
    cursor_ = 0;
}

void OrderedList::Remove(std::int32_t key)
{
    if (const auto at = std::find(keys_.begin(), keys_.end(), key); at != keys_.end())
        keys_.erase(at);
}

void OrderedList::SetTop(std::int32_t key)
{
    const auto at = std::find(keys_.begin(), keys_.end(), key);
    if (at == keys_.end())
        return;
    std::rotate(keys_.begin(), at, at + 1);
    cursor_ = 0;
}

std::int32_t OrderedList::NextKey()
{
    if (keys_.empty())
        return -1;
    cursor_ = cursor_ + 1 >= keys_.size() ? 0 : cursor_ + 1;
    return keys_[cursor_];
}

} // namespace kestrune
