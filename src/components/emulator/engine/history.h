#pragma once

// Lines that have left the top of the screen, packed: one byte a character for Latin-1 text, two or four for
// other text, and one entry for each stretch of equal style. A plain line of 78 characters takes 86 bytes.
// Lines lie one after the other in blocks; each block has its own list of the styles and clusters that it names,
// so a line can be unpacked without the rest and old blocks are reused whole.

#include "interned.h"
#include "page.h"

#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <span>
#include <unordered_map>
#include <vector>

namespace kestrune::emu {

// Where cells' numbers mean something. Unpacking may need new numbers.
class CellNames
{
public:
    virtual ~CellNames() = default;
    virtual const Style& StyleOf(StyleId id) const = 0;
    virtual std::u32string_view ClusterOf(uint32_t text) const = 0;
    virtual StyleId StyleIdFor(const Style& style) = 0;
    virtual uint32_t ClusterFor(std::u32string_view points) = 0;
};

class History
{
public:
    explicit History(CellNames& names) : names_(names) {}

    void SetLimit(int rows); // 0 to 1,000,000; drops the oldest
    int Limit() const { return limit_; }
    int Count() const { return int(end_ - first_); }
    uint64_t Pushed() const { return pushed_; }
    void Push(const Row& row);
    void PushText(std::span<const uint8_t> text); // a line of plain ASCII
    void Clear();

    // index 0 is the oldest line. The row stays as it is until 512 others have been asked for, or the history
    // changes.
    const Row& At(int index);
    void DropNewest(); // it went back to the screen
    // The lines of `other`, which has the same names, in place of those from `index` on. All lines get new numbers;
    // there may be more than the limit afterwards.
    void ReplaceFrom(int index, History& other);
    // The numbers of styles that stand in rows handed out by At change after a sweep unless they are kept.
    template <typename Visit>
    void VisitLooks(Visit&& visit) const
    {
        for (const Look& look : looks_)
            if (look.serial != kNone)
                visit(look.row);
    }
    // The styles that lines still kept were written in, once or more each.
    void VisitStyles(const std::function<void(const Style&)>& visit) const;
    void ForgetNumbers(); // style and cluster numbers were given up by a sweep

private:
    struct Block
    {
        std::unique_ptr<uint8_t[]> bytes;
        size_t fill = 0;
        uint64_t first = 0;
        std::vector<uint16_t> offsets;
        std::vector<Style> styles;
        std::vector<std::u32string> clusters;
    };
    struct Look
    {
        uint64_t serial = kNone;
        std::vector<Cell> cells;
        Row row;
    };
    struct LocalId
    {
        uint32_t epoch = 0;
        uint16_t id = 0;
    };
    static constexpr uint64_t kNone = ~uint64_t(0);
    static constexpr size_t kBlockBytes = 65536; // offsets take two bytes

    Block& RoomFor(size_t bytes)
    {
        return newest_ != nullptr && newest_->fill + bytes <= kBlockBytes ? *newest_ : NewBlock();
    }
    Block& NewBlock();
    void PushPlain(const Row& row);
    void LineAdded()
    {
        ++end_;
        if (Count() > limit_)
            DropOldest();
    }
    void PushAny(const Row& row);
    void DropOldest();
    uint16_t LocalStyle(Block& block, StyleId id);
    uint32_t LocalCluster(Block& block, uint32_t text);
    uint8_t* PackRuns(Block& block, std::span<const Cell> cells, uint8_t* to, uint16_t& count);
    void Unpack(const Block& block, uint64_t serial, Look& look);
    const Block& BlockOf(uint64_t serial) const;
    void CutFrom(int index);
    void Renumber(uint64_t shift);
    void StartEpoch();

    CellNames& names_;
    int limit_ = 0;
    // Lines have serial numbers [first_, end_) that never come twice.
    uint64_t first_ = 0;
    uint64_t end_ = 0;
    uint64_t pushed_ = 0;
    std::deque<Block> blocks_;
    Block* newest_ = nullptr; // the last of them
    Block spare_;
    uint32_t epoch_ = 1; // of the numbers below, which are the newest block's
    std::vector<LocalId> localStyles_;
    std::unordered_map<uint32_t, uint32_t> localClusters_;
    std::vector<Look> looks_;
};

} // namespace kestrune::emu
