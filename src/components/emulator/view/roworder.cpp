#include "roworder.h"

#include <QChar>

#include <algorithm>
#include <numeric>
#include <utility>

namespace kestrune {

namespace {

constexpr char32_t kFirstRightToLeft = 0x590; // below it no character runs to the left

using Types = std::vector<QChar::Direction>;

bool IsNeutral(QChar::Direction type)
{
    return type == QChar::DirON || type == QChar::DirWS || type == QChar::DirB || type == QChar::DirS ||
           type == QChar::DirBN;
}

// Numbers count as text that runs to the left where neutrals ask for their neighbours (rules N0 and N1).
QChar::Direction StrongSide(QChar::Direction type)
{
    return type == QChar::DirEN || type == QChar::DirAN ? QChar::DirR : type;
}

// Rules W1 to W3 and W7 in their order; each looks back only.
void ResolveMarksAndNumbers(Types& types)
{
    QChar::Direction previous = QChar::DirL;
    for (auto& type : types) {
        if (type == QChar::DirNSM)
            type = previous;
        previous = type;
    }
    QChar::Direction strong = QChar::DirL;
    for (auto& type : types) {
        if (type == QChar::DirL || type == QChar::DirR || type == QChar::DirAL)
            strong = type;
        else if (type == QChar::DirEN && strong == QChar::DirAL)
            type = QChar::DirAN;
    }
    std::replace(types.begin(), types.end(), QChar::DirAL, QChar::DirR);
}

// Rules W4 to W6: what stands in or beside numbers belongs to them.
void ResolveSeparators(Types& types)
{
    for (size_t i = 1; i + 1 < types.size(); ++i) {
        const bool between = types[i - 1] == types[i + 1];
        const bool separates =
            (types[i] == QChar::DirES && types[i - 1] == QChar::DirEN) ||
            (types[i] == QChar::DirCS && (types[i - 1] == QChar::DirEN || types[i - 1] == QChar::DirAN));
        if (between && separates)
            types[i] = types[i - 1];
    }
    for (size_t first = 0; first < types.size(); ++first) {
        if (types[first] != QChar::DirET)
            continue;
        size_t last = first;
        while (last < types.size() && types[last] == QChar::DirET)
            ++last;
        const bool ofNumber =
            (first > 0 && types[first - 1] == QChar::DirEN) || (last < types.size() && types[last] == QChar::DirEN);
        std::fill(types.begin() + long(first), types.begin() + long(last), ofNumber ? QChar::DirEN : QChar::DirON);
        first = last - 1;
    }
    QChar::Direction strong = QChar::DirL;
    for (auto& type : types) {
        if (type == QChar::DirES || type == QChar::DirCS)
            type = QChar::DirON;
        if (type == QChar::DirL || type == QChar::DirR)
            strong = type;
        else if (type == QChar::DirEN && strong == QChar::DirL)
            type = QChar::DirL; // W7
    }
}

// Rule N0: both brackets of a pair run the same way.
void ResolveBrackets(std::span<const char32_t> text, Types& types)
{
    std::vector<std::pair<char32_t, size_t>> open; // the bracket that closes it, and where it stands
    std::vector<std::pair<size_t, size_t>> pairs;
    for (size_t i = 0; i < text.size(); ++i) {
        if (types[i] != QChar::DirON || !QChar::hasMirrored(text[i]))
            continue;
        if (QChar::category(text[i]) == QChar::Punctuation_Open) {
            open.emplace_back(QChar::mirroredChar(text[i]), i);
        } else if (QChar::category(text[i]) == QChar::Punctuation_Close) {
            const auto match =
                std::find_if(open.rbegin(), open.rend(), [&](const auto& bracket) { return bracket.first == text[i]; });
            if (match == open.rend())
                continue;
            pairs.emplace_back(match->second, i);
            open.erase(match.base() - 1, open.end());
        }
    }
    std::sort(pairs.begin(), pairs.end());
    for (const auto& [first, last] : pairs) {
        bool rightToLeft = false, leftToRight = false;
        for (size_t i = first + 1; i < last; ++i) {
            rightToLeft = rightToLeft || StrongSide(types[i]) == QChar::DirR;
            leftToRight = leftToRight || types[i] == QChar::DirL;
        }
        if (!rightToLeft && !leftToRight)
            continue;
        auto before = std::find_if(std::make_reverse_iterator(types.begin() + long(first)), types.rend(),
                                   [](QChar::Direction type) { return !IsNeutral(type); });
        const bool afterLeft = before != types.rend() && StrongSide(*before) == QChar::DirR;
        types[first] = types[last] = !leftToRight && afterLeft ? QChar::DirR : QChar::DirL;
    }
}

// Rules N1 and N2.
void ResolveNeutrals(Types& types)
{
    for (size_t first = 0; first < types.size();) {
        if (!IsNeutral(types[first])) {
            ++first;
            continue;
        }
        size_t last = first;
        while (last < types.size() && IsNeutral(types[last]))
            ++last;
        const auto before = first > 0 ? StrongSide(types[first - 1]) : QChar::DirL;
        const auto after = last < types.size() ? StrongSide(types[last]) : QChar::DirL;
        std::fill(types.begin() + long(first), types.begin() + long(last), before == after ? before : QChar::DirL);
        first = last;
    }
}

bool RunsToTheLeft(char32_t point)
{
    if (point < kFirstRightToLeft)
        return false;
    const auto direction = QChar::direction(point);
    return direction == QChar::DirR || direction == QChar::DirAL || direction == QChar::DirAN;
}

} // namespace

std::vector<uint8_t> BidiLevels(std::span<const char32_t> text)
{
    Types types;
    types.reserve(text.size());
    for (const char32_t point : text)
        types.push_back(QChar::direction(point));
    ResolveMarksAndNumbers(types);
    ResolveSeparators(types);
    ResolveBrackets(text, types);
    ResolveNeutrals(types);
    std::vector<uint8_t> levels;
    levels.reserve(types.size());
    for (const auto type : types)
        levels.push_back(type == QChar::DirR ? 1 : type == QChar::DirL ? 0 : 2); // I1
    return levels;
}

RowOrder::RowOrder(const emu::Terminal& screen, const emu::RowView& view)
{
    const auto cells = view.cells;
    if (std::none_of(cells.begin(), cells.end(),
                     [&](const emu::Cell& cell) { return RunsToTheLeft(FirstPoint(screen, cell)); }))
        return;
    std::vector<char32_t> text; // one for each character, wide or not
    std::vector<int> columns;   // where it begins
    for (int column = 0; column < int(cells.size()); ++column) {
        if ((cells[size_t(column)].flags & emu::Cell::WideTail) != 0 && !columns.empty())
            continue;
        text.push_back(FirstPoint(screen, cells[size_t(column)]));
        columns.push_back(column);
    }
    const std::vector<uint8_t> levels = BidiLevels(text);
    std::vector<size_t> order(text.size());
    std::iota(order.begin(), order.end(), size_t(0));
    for (const int level : {2, 1}) // rule L2
        for (size_t first = 0; first < order.size(); ++first) {
            size_t last = first;
            while (last < order.size() && levels[order[last]] >= level)
                ++last;
            std::reverse(order.begin() + long(first), order.begin() + long(last));
            first = std::max(first, last);
        }
    shown_.resize(cells.size());
    counted_.resize(cells.size());
    levels_.resize(cells.size());
    int shown = 0;
    for (const size_t character : order) {
        const int end = character + 1 < columns.size() ? columns[character + 1] : int(cells.size());
        for (int column = columns[character]; column < end; ++column, ++shown) {
            shown_[size_t(column)] = shown;
            counted_[size_t(shown)] = column;
            levels_[size_t(column)] = levels[character];
        }
    }
}

int RowOrder::ColumnShown(int column) const
{
    return column >= 0 && column < int(shown_.size()) ? shown_[size_t(column)] : column;
}

int RowOrder::ColumnCounted(int shown) const
{
    return shown >= 0 && shown < int(counted_.size()) ? counted_[size_t(shown)] : shown;
}

bool RowOrder::RunsLeft(int column) const
{
    return column >= 0 && column < int(levels_.size()) && levels_[size_t(column)] % 2 != 0;
}

void RowOrder::Arrange(std::span<const emu::Cell> cells, std::vector<emu::Cell>& arranged) const
{
    arranged.assign(cells.begin(), cells.end());
    for (size_t column = 0; column < std::min(cells.size(), shown_.size()); ++column) {
        emu::Cell cell = cells[column];
        if (levels_[column] % 2 != 0 && (cell.text & emu::Cell::ClusterBit) == 0)
            cell.text = QChar::mirroredChar(cell.text);
        arranged[size_t(shown_[column])] = cell;
    }
}

Joints JointsOf(char32_t before, char32_t point, char32_t after)
{
    const auto joinsForward = [](char32_t c) {
        const auto type = QChar::joiningType(c);
        return type == QChar::Joining_Dual || type == QChar::Joining_Left || type == QChar::Joining_Causing;
    };
    const auto joinsBack = [](char32_t c) {
        const auto type = QChar::joiningType(c);
        return type == QChar::Joining_Dual || type == QChar::Joining_Right || type == QChar::Joining_Causing;
    };
    return {joinsForward(before) && joinsBack(point), joinsForward(point) && joinsBack(after)};
}

char32_t FirstPoint(const emu::Terminal& screen, const emu::Cell& cell)
{
    if ((cell.text & emu::Cell::ClusterBit) == 0)
        return cell.text != 0 ? char32_t(cell.text) : U' ';
    const auto cluster = screen.ClusterOf(cell.text);
    return cluster.empty() ? U' ' : cluster.front();
}

} // namespace kestrune
