#include "history.h"

#include "widths.h"

#include <algorithm>
#include <cstring>

namespace kestrune::emu {
namespace {

constexpr size_t kLooks = 512;

// A packed line: this, the characters, the runs. A run covers characters (a wide one counts once) of one style. How
// wide a character is follows from the character.
struct Head
{
    uint16_t characters;
    uint16_t runs; // 0: all in the block's style 0
    uint8_t unit;  // bytes a character
    uint8_t wraps;
    LineSize size;
};
constexpr size_t kHeadBytes = 6;

struct Run
{
    uint16_t style;
    uint16_t length;
};
constexpr size_t kRunBytes = 4;

// In whole words: fields written one by one and copied at once would wait for each other.
void Write(uint8_t* to, const Head& head)
{
    const uint32_t first = head.characters | (uint32_t(head.runs) << 16);
    const auto second = uint16_t(head.unit | (unsigned(head.wraps) << 8) | (unsigned(head.size) << 9));
    std::memcpy(to, &first, sizeof first);
    std::memcpy(to + sizeof first, &second, sizeof second);
}

Head ReadHead(const uint8_t* from)
{
    uint32_t first = 0;
    uint16_t second = 0;
    std::memcpy(&first, from, sizeof first);
    std::memcpy(&second, from + sizeof first, sizeof second);
    return {uint16_t(first), uint16_t(first >> 16), uint8_t(second), uint8_t((second >> 8) & 1), LineSize(second >> 9)};
}

uint8_t* Write(uint8_t* to, Run run)
{
    const uint32_t word = run.style | (uint32_t(run.length) << 16);
    std::memcpy(to, &word, sizeof word);
    return to + kRunBytes;
}

Run ReadRun(const uint8_t* from)
{
    uint32_t word = 0;
    std::memcpy(&word, from, sizeof word);
    return {uint16_t(word), uint16_t(word >> 16)};
}

int TrimmedLength(const Row& row)
{
    int length = row.used;
    if (!row.wraps)
        while (length > 0 && row.cells[length - 1].style == 0 && row.cells[length - 1].flags == 0 &&
               (row.cells[length - 1].text == 0 || row.cells[length - 1].text == U' '))
            --length;
    return length;
}

struct Shape
{
    uint32_t texts = 0; // all bits seen
    bool plain = true;  // style 0
};

Shape ShapeOf(std::span<const Cell> cells)
{
    uint32_t texts = 0;
    uint32_t styles = 0;
    for (const Cell& cell : cells) {
        texts |= cell.text;
        styles |= cell.style;
    }
    return {texts, styles == 0};
}

// One unit for each character; the second halves of wide ones are left out.
template <typename Unit>
uint8_t* PackTexts(uint8_t* to, std::span<const Cell> cells)
{
    for (const Cell& cell : cells) {
        const auto unit = Unit(cell.text);
        std::memcpy(to, &unit, sizeof unit);
        to += cell.flags & Cell::WideTail ? 0 : sizeof unit;
    }
    return to;
}

uint32_t ReadUnit(const uint8_t* from, size_t unit)
{
    uint32_t text = 0;
    std::memcpy(&text, from, unit); // little endian
    return text;
}

} // namespace

void History::SetLimit(int rows)
{
    limit_ = std::clamp(rows, 0, 1'000'000);
    while (Count() > limit_)
        DropOldest();
    if (limit_ == 0) {
        spare_ = Block{};
        std::vector<Look>().swap(looks_);
    }
}

void History::Clear()
{
    blocks_.clear();
    newest_ = nullptr;
    first_ = end_;
    StartEpoch();
}

void History::StartEpoch()
{
    ++epoch_;
    localClusters_.clear();
}

void History::ForgetNumbers()
{
    StartEpoch();
    localStyles_.clear();
}

void History::DropOldest()
{
    ++first_;
    Block& oldest = blocks_.front();
    if (first_ - oldest.first < oldest.offsets.size())
        return;
    if (blocks_.size() == 1) {
        newest_ = nullptr;
        StartEpoch();
    }
    spare_ = std::move(oldest);
    blocks_.pop_front();
}

History::Block& History::NewBlock()
{
    blocks_.push_back(std::move(spare_));
    spare_ = Block{};
    newest_ = &blocks_.back();
    Block& block = *newest_;
    if (block.bytes == nullptr)
        block.bytes.reset(new uint8_t[kBlockBytes]);
    block.fill = 0;
    block.first = end_;
    block.offsets.clear();
    block.styles.assign(1, Style{});
    block.clusters.clear();
    StartEpoch();
    return block;
}

uint16_t History::LocalStyle(Block& block, StyleId id)
{
    if (id == 0)
        return 0;
    if (id >= localStyles_.size())
        localStyles_.resize(size_t(id) + 1);
    LocalId& local = localStyles_[id];
    if (local.epoch != epoch_) {
        local = {epoch_, uint16_t(block.styles.size())};
        block.styles.push_back(names_.StyleOf(id));
    }
    return local.id;
}

uint32_t History::LocalCluster(Block& block, uint32_t text)
{
    const auto [at, isNew] = localClusters_.try_emplace(text, uint32_t(block.clusters.size()));
    if (isNew)
        block.clusters.emplace_back(names_.ClusterOf(text));
    return at->second | Cell::ClusterBit;
}

void History::Push(const Row& row)
{
    ++pushed_;
    if (limit_ == 0)
        return;
    if (row.plain && row.size == LineSize::Normal)
        PushPlain(row);
    else
        PushAny(row);
    LineAdded();
}

void History::PushText(std::span<const uint8_t> text)
{
    ++pushed_;
    if (limit_ == 0)
        return;
    size_t length = text.size();
    while (length != 0 && text[length - 1] == ' ')
        --length;
    Block& block = RoomFor(kHeadBytes + length);
    uint8_t* const start = block.bytes.get() + block.fill;
    Write(start, {uint16_t(length), 0, 1, 0, LineSize::Normal});
    std::memcpy(start + kHeadBytes, text.data(), length);
    block.offsets.push_back(uint16_t(block.fill));
    block.fill += kHeadBytes + length;
    LineAdded();
}

// Most lines by far.
void History::PushPlain(const Row& row)
{
    auto length = size_t(row.used);
    const auto endsBlank = [&] { // one test, so that short lines and empty ones take the same way
        return (length != 0) & ((row.cells[length - (length != 0)].text & ~uint32_t{U' '}) == 0);
    };
    if (!row.wraps)
        while (endsBlank())
            --length;
    Block& block = RoomFor(kHeadBytes + length + kPackedAtOnce);
    uint8_t* const start = block.bytes.get() + block.fill;
    Write(start, {uint16_t(length), 0, 1, row.wraps, LineSize::Normal});
    PackBytes(start + kHeadBytes, row.cells, length);
    block.offsets.push_back(uint16_t(block.fill));
    block.fill += kHeadBytes + length;
}

void History::PushAny(const Row& row)
{
    const std::span<const Cell> cells(row.cells, size_t(TrimmedLength(row)));
    const Shape shape = ShapeOf(cells);
    const size_t unit = shape.texts <= 0xFF ? 1 : shape.texts <= 0xFFFF ? 2 : 4;
    Block& block = RoomFor(kHeadBytes + cells.size() * (unit + kRunBytes));
    block.offsets.push_back(uint16_t(block.fill));
    uint8_t* const start = block.bytes.get() + block.fill;
    uint8_t* to = start + kHeadBytes;

    if (unit == 1) {
        to = PackTexts<uint8_t>(to, cells);
    } else if (unit == 2) {
        to = PackTexts<uint16_t>(to, cells);
    } else {
        for (const Cell& cell : cells) {
            const uint32_t text = cell.text & Cell::ClusterBit ? LocalCluster(block, cell.text) : cell.text;
            std::memcpy(to, &text, sizeof text);
            to += cell.flags & Cell::WideTail ? 0 : sizeof text;
        }
    }
    const auto textBytes = size_t(to - start) - kHeadBytes;
    Head head{uint16_t(textBytes >> (unit >> 1)), 0, uint8_t(unit), row.wraps, row.size};

    if (!shape.plain)
        to = PackRuns(block, cells, to, head.runs);
    Write(start, head);
    block.fill += size_t(to - start);
}

uint8_t* History::PackRuns(Block& block, std::span<const Cell> cells, uint8_t* to, uint16_t& count)
{
    const Cell* at = cells.data();
    const Cell* const end = at + cells.size();
    while (at != end) {
        const StyleId style = at->style;
        uint16_t length = 0;
        for (; at != end && at->style == style; ++at)
            length = uint16_t(length + (at->flags & Cell::WideTail ? 0 : 1));
        if (length == 0)
            continue;
        to = Write(to, Run{LocalStyle(block, style), length});
        ++count;
    }
    return to;
}

const History::Block& History::BlockOf(uint64_t serial) const
{
    const auto after = std::upper_bound(blocks_.begin(), blocks_.end(), serial,
                                        [](uint64_t value, const Block& block) { return value < block.first; });
    return *std::prev(after);
}

const Row& History::At(int index)
{
    if (looks_.empty())
        looks_.resize(kLooks);
    const uint64_t serial = first_ + uint64_t(index);
    Look& look = looks_[serial % kLooks];
    if (look.serial != serial)
        Unpack(BlockOf(serial), serial, look);
    return look.row;
}

void History::Unpack(const Block& block, uint64_t serial, Look& look)
{
    const uint8_t* from = block.bytes.get() + block.offsets[serial - block.first];
    const Head head = ReadHead(from);
    const uint8_t* texts = from + kHeadBytes;
    const uint8_t* runs = texts + size_t(head.characters) * head.unit;

    // Asking for a number may start a sweep, which must see what this row already names.
    look.cells.clear();
    look.cells.reserve(size_t(head.characters) * 2 + kPackedAtOnce);
    look.serial = serial;
    look.row.cells = look.cells.data();
    const auto put = [&](Cell cell) {
        look.cells.push_back(cell);
        look.row.used = int(look.cells.size());
    };
    look.row.used = 0;
    Run run{0, head.characters};
    for (int r = 0; r < std::max<int>(head.runs, 1); ++r) {
        if (head.runs != 0) {
            run = ReadRun(runs);
            runs += kRunBytes;
        }
        const StyleId style = names_.StyleIdFor(block.styles[run.style]);
        for (int i = 0; i < run.length; ++i, texts += head.unit) {
            const uint32_t text = ReadUnit(texts, head.unit);
            const bool isCluster = (text & Cell::ClusterBit) != 0;
            const std::u32string* cluster = isCluster ? &block.clusters[text & ~Cell::ClusterBit] : nullptr;
            const bool isWide = text != 0 && WidthOf(isCluster ? cluster->front() : char32_t(text)) == 2;
            put(Cell{0, style, isWide ? Cell::Wide : uint16_t(0)});
            look.cells.back().text = isCluster ? names_.ClusterFor(*cluster) : text;
            if (isWide)
                put(Cell{0, style, Cell::WideTail});
        }
    }
    look.cells.resize(look.cells.size() + kPackedAtOnce); // as rows of a page have room for whole steps
    look.row.generation = (uint64_t(1) << 63) | serial;
    look.row.wraps = head.wraps != 0;
    look.row.plain = head.unit == 1 && head.runs == 0;
    look.row.size = head.size;
}

void History::CutFrom(int index)
{
    const uint64_t serial = first_ + uint64_t(index);
    while (!blocks_.empty() && (blocks_.back().first >= serial || index == 0))
        blocks_.pop_back();
    end_ = serial;
    if (blocks_.empty())
        return;
    Block& last = blocks_.back();
    const auto kept = size_t(serial - last.first);
    if (kept < last.offsets.size())
        last.fill = last.offsets[kept];
    last.offsets.resize(std::min(kept, last.offsets.size()));
}

void History::Renumber(uint64_t shift)
{
    first_ += shift;
    end_ += shift;
    for (Block& block : blocks_)
        block.first += shift;
    for (Look& look : looks_)
        look.serial = kNone;
}

void History::ReplaceFrom(int index, History& other)
{
    constexpr uint64_t apart = 1 << 21; // more than there are lines: nobody finds an old line under a new number
    const uint64_t shift = end_ - first_ + apart;
    const uint64_t lost = other.blocks_.empty() ? 0 : other.first_ - other.blocks_.front().first;
    CutFrom(lost == 0 ? index : 0); // those above are even older than what the other has lost
    first_ += lost;
    for (Block& block : other.blocks_) {
        block.first = end_;
        end_ += block.offsets.size();
        blocks_.push_back(std::move(block));
    }
    other.Clear();
    newest_ = blocks_.empty() ? nullptr : &blocks_.back();
    Renumber(shift);
    pushed_ += apart;
    ForgetNumbers();
}

void History::DropNewest()
{
    Block& newest = blocks_.back();
    newest.fill = newest.offsets.back();
    newest.offsets.pop_back();
    if (newest.offsets.empty()) {
        blocks_.pop_back();
        newest_ = blocks_.empty() ? nullptr : &blocks_.back();
        StartEpoch();
    }
    --pushed_;
    // The next line to be pushed is another one, so no number may be used again: all move on.
    const uint64_t shift = end_ - first_;
    --end_;
    Renumber(shift);
}

void History::VisitStyles(const std::function<void(const Style&)>& visit) const
{
    for (const Block& block : blocks_) {
        std::vector<bool> seen(block.styles.size(), false);
        for (size_t line = size_t(std::max(first_, block.first) - block.first); line < block.offsets.size(); ++line) {
            const uint8_t* from = block.bytes.get() + block.offsets[line];
            const Head head = ReadHead(from);
            from += kHeadBytes + size_t(head.characters) * head.unit;
            for (int i = 0; i < head.runs; ++i, from += kRunBytes)
                seen[ReadRun(from).style] = true;
        }
        for (size_t id = 1; id < seen.size(); ++id)
            if (seen[id])
                visit(block.styles[id]);
    }
}

} // namespace kestrune::emu
