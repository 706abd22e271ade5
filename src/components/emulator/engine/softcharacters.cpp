#include "softcharacters.h"

#include <algorithm>
#include <charconv>
#include <optional>
#include <utility>

namespace kestrune::emu {
namespace {

constexpr uint8_t kFirstByte = 0x20;
constexpr char32_t kSecondSet = 0x80; // from the first set's points to the second's
constexpr size_t kMostIntermediates = 2;
constexpr int kLatestLevel = 4;

// What the models' cells measure in dots, and how much of one a text character takes.
struct CellSize
{
    int width80;
    int width132;
    int text80;
    int text132;
    int height;
};
constexpr CellSize kCells[] = {{10, 6, 8, 5, 10}, {15, 9, 12, 7, 12}, {10, 6, 8, 5, 16}}; // level 2, 3, 4

const CellSize& CellOf(int level) { return kCells[std::clamp(level, 2, kLatestLevel) - 2]; }

// Pcmw 2, 3 and 4 are matrices of the VT200 family.
constexpr int kOldWidths[] = {5, 6, 7};
constexpr int kOldHeight = 10;

// Pss: how many columns and lines a set is drawn for. More lines on the same glass make lower cells.
struct SetSize
{
    int number;
    bool for132;
    int height; // 0: as the model has it
};
constexpr SetSize kSetSizes[] = {{0, false, 0},  {1, false, 0},  {2, true, 0}, {11, false, 10},
                                 {12, true, 10}, {21, false, 8}, {22, true, 8}};

// The parameters in their order, -1 where one is missing.
enum Field : uint8_t
{
    Pfn,  // which set is loaded
    Pcn,  // the first place
    Pe,   // what is erased before
    Pcmw, // width of the matrix
    Pss,  // columns and lines of the screen
    Pt,   // text or full cell
    Pcmh, // height of the matrix
    Pcss, // 94 or 96 places
    FieldCount
};
using Fields = std::array<int, FieldCount>;

bool IsSixel(char byte) { return byte >= '?' && byte <= '~'; }

} // namespace

struct SoftCharacters::Request
{
    enum class Erasing : uint8_t // Pe
    {
        SameWidth,
        OnlyLoaded,
        All
    };

    size_t set = 0;
    size_t first = 0; // shape to begin with
    Erasing erasing = Erasing::SameWidth;
    int width = 0; // of the matrix, in dots
    int height = 0;
    int cellWidth = 0;
    bool for132 = false;
    bool wide96 = false;
    std::string name;

    static std::optional<Request> From(std::string_view head, std::string_view& text, int level);

private:
    bool TakeSize(const Fields& fields, int level);
    bool TakeName(std::string_view& text);
};

bool SoftCharacters::Request::TakeSize(const Fields& fields, int level)
{
    const auto* size = std::find_if(std::begin(kSetSizes), std::end(kSetSizes),
                                    [&](const SetSize& row) { return row.number == std::max(fields[Pss], 0); });
    const int matrix = std::max(fields[Pcmw], 0);
    if (size == std::end(kSetSizes) || matrix == 1 || matrix > SoftGlyph::MostWide || fields[Pt] > 2 ||
        fields[Pcmh] > SoftGlyph::MostHigh)
        return false;
    const CellSize& cell = CellOf(level);
    const bool isText = fields[Pt] != 2;
    const int modelWidth = size->for132 ? cell.width132 : cell.width80;
    const bool isOld = matrix >= 2 && matrix < 2 + int(std::size(kOldWidths));
    if (isOld)
        width = kOldWidths[matrix - 2];
    else if (matrix != 0)
        width = matrix;
    else
        width = !isText ? modelWidth : size->for132 ? cell.text132 : cell.text80;
    height = fields[Pcmh] > 0 ? fields[Pcmh] : isOld ? kOldHeight : size->height != 0 ? size->height : cell.height;
    cellWidth = isText ? std::max(modelWidth, width) : width;
    for132 = size->for132;
    return true;
}

// Up to two intermediates and a final, as in the sequence that designates the set.
bool SoftCharacters::Request::TakeName(std::string_view& text)
{
    size_t length = 0;
    while (length < text.size() && text[length] >= ' ' && text[length] < '0')
        ++length;
    if (length > kMostIntermediates || length >= text.size() || text[length] > '~')
        return false;
    name = text.substr(0, length + 1);
    text.remove_prefix(length + 1);
    return true;
}

std::optional<SoftCharacters::Request> SoftCharacters::Request::From(std::string_view head, std::string_view& text,
                                                                     int level)
{
    Fields fields{};
    fields.fill(-1);
    const char* at = head.data();
    const char* const end = head.data() + head.size();
    for (int& field : fields) {
        at = std::from_chars(at, end, field).ptr; // too large a number counts as none
        at += at != end && *at == ';' ? 1 : 0;
    }
    Request request;
    request.wide96 = fields[Pcss] == 1;
    const int first = request.wide96 ? 0 : 1;
    const int last = request.wide96 ? 95 : 94;
    const int sets = level >= kLatestLevel ? 2 : 1;
    if (at != end || fields[Pfn] > sets || fields[Pcn] > last || fields[Pe] > 2 || fields[Pcss] > 1 ||
        !request.TakeSize(fields, level) || !request.TakeName(text))
        return std::nullopt;
    request.set = fields[Pfn] == 2 ? 1 : 0; // 0 and 1 are the same one
    request.first = size_t(std::max(fields[Pcn], first));
    request.erasing = Request::Erasing(std::max(fields[Pe], 0));
    return request;
}

SoftCharacters::SoftCharacters()
{
    // Names for private use, ISO 2022. Reports have these and not the host's, who could write anything with its own.
    sets_[0].set.designator = " @";
    sets_[1].set.designator = " A";
    for (Set& set : sets_)
        set.set.kind = CharacterSet::Kind::Set94;
}

bool SoftCharacters::Take(std::string_view body, int level)
{
    const size_t mark = body.find_first_not_of("0123456789;");
    if (mark == body.npos || body[mark] != '{')
        return false;
    std::string_view text = body.substr(mark + 1);
    if (const auto request = Request::From(body.substr(0, mark), text, level))
        Load(*request, text);
    return true;
}

void SoftCharacters::Load(const Request& request, std::string_view sixels)
{
    Set& set = sets_[request.set];
    set.name = request.name;
    set.set.kind = request.wide96 ? CharacterSet::Kind::Set96 : CharacterSet::Kind::Set94;
    Shapes& shapes = set.shapes[request.for132 ? 1 : 0];
    if (request.erasing == Request::Erasing::All)
        set.shapes = {};
    else if (request.erasing == Request::Erasing::SameWidth)
        shapes.clear();
    shapes.resize(kShapes);
    ++changes_;
    if (std::none_of(sixels.begin(), sixels.end(), IsSixel))
        return; // to erase alone

    const size_t end = request.wide96 ? kShapes : kShapes - 1;
    const int margin = (request.cellWidth - request.width) / 2;
    SoftGlyph glyph{request.cellWidth, request.height, {}};
    const SoftGlyph blank = glyph;
    int col = 0;
    int top = 0;
    size_t place = request.first;
    bool isOpen = false; // a separator behind the last shape begins no other
    for (const char byte : sixels) {
        if (place >= end)
            return;
        isOpen = byte != ';';
        if (byte == ';') {
            shapes[place++] = std::exchange(glyph, blank);
            col = top = 0;
        } else if (byte == '/') {
            col = 0;
            top = std::min(top + 6, request.height);
        } else if (IsSixel(byte)) {
            for (int bit = 0; bit < 6 && top + bit < request.height && col < request.width; ++bit)
                if (((byte - '?') >> bit) & 1)
                    glyph.SetDot(margin + col, top + bit);
            col = std::min(col + 1, request.width);
        }
    }
    if (isOpen && place < end)
        shapes[place] = glyph;
}

void SoftCharacters::Clear()
{
    for (Set& set : sets_) {
        set.name.clear();
        set.shapes = {};
    }
    ++changes_;
}

const CharacterSet* SoftCharacters::Find(std::string_view designator, bool wide96) const
{
    for (const Set& set : sets_)
        if (!set.name.empty() && set.name == designator && (set.set.kind == CharacterSet::Kind::Set96) == wide96)
            return &set.set;
    return nullptr;
}

const CharacterSet* SoftCharacters::FindReported(std::string_view designator, bool wide96) const
{
    for (const Set& set : sets_)
        if (set.set.designator == designator && (set.set.kind == CharacterSet::Kind::Set96) == wide96)
            return &set.set;
    return nullptr;
}

char32_t SoftCharacters::PointFor(const CharacterSet& set, uint8_t byte) const
{
    const bool is94 = set.kind == CharacterSet::Kind::Set94;
    if (is94 && (byte == 0x20 || byte == 0x7F))
        return byte;
    const char32_t point = FirstSoftPoint + (&set == &sets_[1].set ? kSecondSet : 0) + byte;
    return GlyphOf(point, false) != nullptr ? point : ErrorPoint;
}

const SoftGlyph* SoftCharacters::GlyphOf(char32_t point, bool for132) const
{
    const char32_t place = point - FirstSoftPoint;
    const Set& set = sets_[place >= kSecondSet ? 1 : 0];
    const size_t shape = (place & 0x7F) - kFirstByte;
    if (!IsSoftPoint(point) || shape >= kShapes)
        return nullptr;
    for (const bool wide : {for132, !for132})
        if (const Shapes& shapes = set.shapes[wide ? 1 : 0]; !shapes.empty() && shapes[shape].IsLoaded())
            return &shapes[shape];
    return nullptr;
}

} // namespace kestrune::emu
