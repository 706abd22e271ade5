#include "screenblock.h"

#include <dispatch/failure.h>

#include <algorithm>
#include <utility>

namespace kestrune {

ScreenBlock::ScreenBlock(const emu::Terminal& screen, emu::Position from, emu::Position to)
{
    for (int row = from.row; row <= to.row; ++row) {
        const emu::RowView view = screen.Row(row);
        if (from.col == 0 && to.col == screen.ScreenSize().cols - 1)
            rows_.push_back({row, view.size});
        const auto cellAt = [cells = view.cells](int col) {
            return col < int(cells.size()) ? cells[size_t(col)] : emu::Cell{};
        };
        const auto isEmpty = [&](int col) {
            return cellAt(col).text == 0 && (cellAt(col).flags & emu::Cell::WideTail) == 0;
        };
        for (int first = from.col; first <= to.col;) {
            int last = first + 1;
            while (last <= to.col && cellAt(last).style == cellAt(first).style && isEmpty(last) == isEmpty(first))
                ++last;
            emu::Style style = screen.StyleOf(cellAt(first).style);
            const std::string link(screen.LinkOf(std::exchange(style.link, uint16_t(0))));
            runs_.push_back({{first, row},
                             last - first,
                             style,
                             link,
                             isEmpty(first) ? std::string() : screen.TextOf(row, first, last - first)});
            first = last;
        }
    }
}

void ScreenBlock::PutOn(emu::Terminal& screen) const
{
    const emu::Size size = screen.ScreenSize();
    for (const WholeRow& row : rows_)
        if (row.row < size.rows)
            screen.SetLineSize(row.row, row.size);
    for (const Run& run : runs_) {
        if (run.at.row >= size.rows || run.at.col >= size.cols)
            continue;
        emu::Style style = run.style;
        if (!run.link.empty())
            style.link = screen.LinkTo(run.link);
        screen.EraseArea(run.at, {std::min(run.at.col + run.cols, size.cols) - 1, run.at.row}, style);
        if (!run.text.empty())
            screen.PutText(run.at, run.text, style);
    }
}

Variant ScreenBlock::Invoke(MemberId, quint8, const CallArguments&)
{
    throw Failure(ErrorNumber::NoSuchMember, QStringLiteral("Object doesn't support this property or method"),
                  ClassName());
}

} // namespace kestrune
