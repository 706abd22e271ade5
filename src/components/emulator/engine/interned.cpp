#include "interned.h"

#include <algorithm>

namespace kestrune::emu {
namespace {

size_t HashOf(const Style& style)
{
    const uint64_t colors = (uint64_t(style.foreground.value) << 32) | style.background.value;
    const uint64_t rest = (uint64_t(style.underlineColor.value) << 32) | (uint64_t(style.attributes) << 16) |
                          uint64_t(style.link) | (uint64_t(style.underline) << 28);
    uint64_t hash = (colors ^ (rest * 0x9E3779B97F4A7C15u)) * 0xD6E8FEB86659FD93u;
    hash ^= hash >> 32;
    return size_t(hash * 0xD6E8FEB86659FD93u >> 20);
}

} // namespace

StyleTable::StyleTable() : styles_(1) { Rehash(256); }

size_t StyleTable::Bucket(const Style& style) const
{
    const size_t mask = buckets_.size() - 1;
    size_t bucket = HashOf(style) & mask;
    while (buckets_[bucket] != 0 && !(styles_[buckets_[bucket]] == style))
        bucket = (bucket + 1) & mask;
    return bucket;
}

uint32_t StyleTable::Intern(const Style& style)
{
    if (style == styles_[0])
        return 0;
    size_t bucket = Bucket(style);
    if (buckets_[bucket] != 0)
        return buckets_[bucket];
    if (free_.empty() && styles_.size() > Max)
        return Full;
    if (Live() * 2 > buckets_.size()) {
        Rehash(buckets_.size() * 2);
        bucket = Bucket(style);
    }
    StyleId id = 0;
    if (free_.empty()) {
        id = StyleId(styles_.size());
        styles_.push_back(style);
    } else {
        id = free_.back();
        free_.pop_back();
        styles_[id] = style;
    }
    buckets_[bucket] = id;
    return id;
}

void StyleTable::Rehash(size_t buckets)
{
    std::vector<bool> unused(styles_.size(), false);
    for (const StyleId id : free_)
        unused[id] = true;
    buckets_.assign(buckets, 0);
    for (size_t id = 1; id < styles_.size(); ++id)
        if (!unused[id])
            buckets_[Bucket(styles_[id])] = StyleId(id);
}

void StyleTable::Keep(const std::vector<bool>& inUse)
{
    free_.clear();
    for (size_t id = styles_.size(); id-- > 1;)
        if (!inUse[id])
            free_.push_back(StyleId(id));
    sweepAt_ = std::max(kFirstSweep, Live() * 2);
    Rehash(buckets_.size());
}

uint32_t ClusterTable::Intern(std::u32string_view points)
{
    std::u32string key(points.substr(0, MaxPoints));
    if (const auto found = ids_.find(key); found != ids_.end())
        return found->second | Cell::ClusterBit;
    uint32_t id = 0;
    if (!free_.empty()) {
        id = free_.back();
        free_.pop_back();
        texts_[id] = key;
    } else if (texts_.size() < Max) {
        id = uint32_t(texts_.size());
        texts_.push_back(key);
    } else {
        return Full;
    }
    ids_.emplace(std::move(key), id);
    return id | Cell::ClusterBit;
}

std::u32string_view ClusterTable::At(uint32_t text) const
{
    const uint32_t id = text & ~Cell::ClusterBit;
    return id < texts_.size() ? std::u32string_view(texts_[id]) : std::u32string_view();
}

void ClusterTable::Keep(const std::vector<bool>& inUse)
{
    for (auto at = ids_.begin(); at != ids_.end();) {
        if (inUse[at->second]) {
            ++at;
            continue;
        }
        std::u32string().swap(texts_[at->second]);
        free_.push_back(at->second);
        at = ids_.erase(at);
    }
}

uint16_t LinkTable::Intern(std::string_view target, std::string_view hostId)
{
    if (target.empty() || target.size() > MaxLength || hostId.size() > MaxLength)
        return 0;
    std::string key(hostId);
    key += '\n'; // cannot stand in either: controls are refused before
    key += target;
    if (const auto found = ids_.find(key); found != ids_.end())
        return found->second;
    if (IsFull())
        return 0;
    uint16_t link = 0;
    if (!free_.empty()) {
        link = free_.back();
        free_.pop_back();
        targets_[link] = target;
    } else {
        link = uint16_t(targets_.size());
        targets_.emplace_back(target);
    }
    ids_.emplace(std::move(key), link);
    return link;
}

std::string_view LinkTable::At(uint16_t link) const
{
    return link < targets_.size() ? std::string_view(targets_[link]) : std::string_view();
}

void LinkTable::Keep(const std::vector<bool>& inUse)
{
    for (auto at = ids_.begin(); at != ids_.end();) {
        if (inUse[at->second]) {
            ++at;
            continue;
        }
        targets_[at->second].clear();
        free_.push_back(at->second);
        at = ids_.erase(at);
    }
}

} // namespace kestrune::emu
