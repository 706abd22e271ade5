#include "screentext.h"

#include <QChar>

#include <algorithm>

namespace kestrune {

ColumnSpan ColumnsOf(const SelectionArea& area, int row, int cols)
{
    if (row < area.top || row > area.bottom)
        return {};
    const bool fromLeft = !area.block && row > area.top;
    const bool toRight = !area.block && row < area.bottom;
    const int first = fromLeft ? 0 : std::clamp(area.left, 0, cols);
    const int last = toRight ? cols : std::clamp(area.right + 1, 0, cols);
    return {first, std::max(first, last)};
}

namespace {

void CutTrailingBlanks(QString& text, qsizetype from)
{
    qsizetype end = text.size();
    while (end > from && text[end - 1] == u' ')
        --end;
    text.truncate(end);
}

enum class CharacterClass
{
    Blank,
    Word,
    Other
};

CharacterClass ClassOf(uint32_t text)
{
    if (text == 0 || text == U' ')
        return CharacterClass::Blank;
    static constexpr std::u32string_view inWords = U"_-./~:@%+#?&=$";
    const bool word = (text & emu::Cell::ClusterBit) != 0 || QChar::isLetterOrNumber(char32_t(text)) ||
                      inWords.find(char32_t(text)) != std::u32string_view::npos;
    return word ? CharacterClass::Word : CharacterClass::Other;
}

uint32_t TextAt(const emu::RowView& row, int column)
{
    if (column >= int(row.cells.size()))
        return 0;
    const auto& cell = row.cells[size_t(column)];
    const bool tail = (cell.flags & emu::Cell::WideTail) != 0 && column > 0;
    return tail ? row.cells[size_t(column) - 1].text : cell.text;
}

} // namespace

QString TextOfArea(const emu::Terminal& screen, const SelectionArea& area)
{
    QString text;
    const int cols = screen.ScreenSize().cols;
    const int last = std::min(area.bottom, screen.ScreenSize().rows - 1);
    for (int row = std::max(area.top, -screen.HistoryCount()); row <= last; ++row) {
        const ColumnSpan columns = ColumnsOf(area, row, cols);
        const qsizetype start = text.size();
        text += QString::fromStdString(screen.TextOf(row, columns.first, columns.last - columns.first));
        const bool joined = !area.block && row < last && screen.Row(row).wraps;
        if (joined)
            continue;
        CutTrailingBlanks(text, start);
        if (row < last)
            text += u'\n';
    }
    return text;
}

SelectionArea WordOn(const emu::Terminal& screen, int column, int row)
{
    const emu::RowView view = screen.Row(row);
    const int cols = screen.ScreenSize().cols;
    column = std::clamp(column, 0, cols - 1);
    const CharacterClass wanted = ClassOf(TextAt(view, column));
    int left = column;
    int right = column;
    if (wanted != CharacterClass::Other) {
        while (left > 0 && ClassOf(TextAt(view, left - 1)) == wanted)
            --left;
        while (right + 1 < cols && ClassOf(TextAt(view, right + 1)) == wanted)
            ++right;
    }
    return {left, row, right, row, false};
}

SelectionArea LineOn(const emu::Terminal& screen, int row)
{
    int top = row;
    int bottom = row;
    while (top > -screen.HistoryCount() && screen.Row(top - 1).wraps)
        --top;
    while (bottom + 1 < screen.ScreenSize().rows && screen.Row(bottom).wraps)
        ++bottom;
    return {0, top, screen.ScreenSize().cols - 1, bottom, false};
}

} // namespace kestrune
