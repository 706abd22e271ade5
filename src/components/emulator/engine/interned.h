#pragma once

// What cells name by a number: styles, clusters of several code points, hyperlinks. Equal things get one number.
// The numbers are few, so what no cell names any more is given up by a sweep: the owner marks what is in use.

#include <emulator/engine/cell.h>

#include <cstddef>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace kestrune::emu {

class StyleTable
{
public:
    static constexpr size_t Max = 65535;
    static constexpr uint32_t Full = 0xFFFFFFFFu;
    static constexpr size_t kFirstSweep = 4096;

    StyleTable();
    uint32_t Intern(const Style& style); // the id, or Full
    // Few numbers in use are quick to find, so the table asks for a sweep long before it must have one.
    bool WantsSweep() const { return Live() >= sweepAt_; }
    const Style& At(StyleId id) const { return styles_[id]; }
    size_t Size() const { return styles_.size(); }
    size_t Live() const { return styles_.size() - free_.size(); }
    void Keep(const std::vector<bool>& inUse); // by id; id 0 always stays

private:
    size_t Bucket(const Style& style) const;
    void Rehash(size_t buckets);

    std::vector<Style> styles_;
    std::vector<StyleId> free_;
    size_t sweepAt_ = kFirstSweep;
    std::vector<StyleId> buckets_; // open addressing; 0 is an empty bucket, the plain style is never looked up
};

class ClusterTable
{
public:
    static constexpr size_t Max = 65536;
    static constexpr size_t MaxPoints = 24; // code points of one cluster; more marks are dropped
    static constexpr uint32_t Full = 0;

    uint32_t Intern(std::u32string_view points); // with Cell::ClusterBit, or Full
    std::u32string_view At(uint32_t text) const;
    size_t Size() const { return texts_.size(); }
    size_t Live() const { return texts_.size() - free_.size(); }
    void Keep(const std::vector<bool>& inUse);

private:
    std::vector<std::u32string> texts_;
    std::vector<uint32_t> free_;
    std::unordered_map<std::u32string, uint32_t> ids_;
};

class LinkTable
{
public:
    static constexpr size_t Max = 4096;
    static constexpr size_t MaxLength = 2083;

    // Cells with the same target and the same id given by the host are one link. 0: none to be had.
    uint16_t Intern(std::string_view target, std::string_view hostId);
    std::string_view At(uint16_t link) const; // empty for 0
    size_t Live() const { return targets_.size() - free_.size(); }
    bool IsFull() const { return free_.empty() && targets_.size() >= Max; }
    void Keep(const std::vector<bool>& inUse); // sized Max + 1, by link

private:
    std::vector<std::string> targets_{std::string()};
    std::vector<uint16_t> free_;
    std::unordered_map<std::string, uint16_t> ids_;
};

} // namespace kestrune::emu
