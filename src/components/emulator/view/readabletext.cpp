#include "readabletext.h"

#include <QChar>

#include <algorithm>

namespace kestrune {

ReadableText::ReadableText(const emu::Terminal& screen, int rowsBack)
    : firstRow_(-rowsBack), pushed_(int64_t(screen.HistoryPushed()) - rowsBack)
{
    const auto append = [this](char32_t point, int column) {
        for (const char16_t unit : QChar::fromUcs4(point)) {
            text_ += QChar(unit);
            columns_.push_back(column);
        }
    };
    const emu::Position cursor = screen.Cursor();
    const int rows = screen.ScreenSize().rows;
    for (int line = 0; line < rows; ++line) {
        const int row = firstRow_ + line;
        const qsizetype start = text_.size();
        starts_.push_back(int(start));
        const auto cells = screen.Row(row).cells;
        const int least = row == cursor.row ? cursor.col : 0;
        for (int column = 0; column < std::max(least, int(cells.size())); ++column) {
            const emu::Cell cell = column < int(cells.size()) ? cells[size_t(column)] : emu::Cell{};
            if ((cell.flags & emu::Cell::WideTail) != 0)
                continue;
            if ((cell.text & emu::Cell::ClusterBit) != 0)
                for (const char32_t point : screen.ClusterOf(cell.text))
                    append(point, column);
            else
                append(cell.text != 0 ? char32_t(cell.text) : U' ', column);
        }
        while (text_.size() > start && text_.endsWith(u' ') && columns_.back() >= least) {
            text_.chop(1);
            columns_.pop_back();
        }
        append(U'\n', screen.ScreenSize().cols);
    }
    const bool inSight = cursor.row - firstRow_ < rows;
    cursor_ = inSight ? OffsetOf(cursor) : int(text_.size());
}

int ReadableText::OffsetOf(emu::Position at) const
{
    if (starts_.empty())
        return 0;
    const auto line = size_t(std::clamp(at.row - firstRow_, 0, int(starts_.size()) - 1));
    const int end = line + 1 < starts_.size() ? starts_[line + 1] : int(text_.size());
    const auto found = std::lower_bound(columns_.begin() + starts_[line], columns_.begin() + end - 1, at.col);
    return int(found - columns_.begin());
}

emu::Position ReadableText::PlaceOf(int offset) const
{
    if (starts_.empty())
        return {};
    offset = std::clamp(offset, 0, int(text_.size()) - 1);
    const auto line = std::upper_bound(starts_.begin(), starts_.end(), offset) - starts_.begin() - 1;
    return {columns_[size_t(offset)], firstRow_ + int(line)};
}

QString ReadableText::TextFrom(int64_t pushed) const
{
    const int64_t gone = pushed - pushed_;
    if (gone <= 0)
        return text_;
    return gone < int64_t(starts_.size()) ? text_.mid(starts_[size_t(gone)]) : QString();
}

TextChange ChangeBetween(const QString& before, const QString& after)
{
    const qsizetype shorter = std::min(before.size(), after.size());
    qsizetype head = 0;
    while (head < shorter && before[head] == after[head])
        ++head;
    qsizetype tail = 0;
    while (tail < shorter - head && before[before.size() - 1 - tail] == after[after.size() - 1 - tail])
        ++tail;
    return {int(head), before.mid(head, before.size() - head - tail), after.mid(head, after.size() - head - tail)};
}

} // namespace kestrune
