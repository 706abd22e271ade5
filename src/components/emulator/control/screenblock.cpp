#include "screenblock.h"

#include <dispatch/failure.h>

#include <algorithm>

namespace kestrune {

ScreenBlock::ScreenBlock(const emu::Terminal& screen, emu::Position from, emu::Position to)
{
    for (int row = from.row; row <= to.row; ++row) {
        const auto cells = screen.Row(row).cells;
        const auto cellAt = [&](int col) { return col < int(cells.size()) ? cells[size_t(col)] : emu::Cell{}; };
        const auto isEmpty = [&](int col) {
            return cellAt(col).text == 0 && (cellAt(col).flags & emu::Cell::WideTail) == 0;
        };
        for (int first = from.col; first <= to.col;) {
            int last = first + 1;
            while (last <= to.col && cellAt(last).style == cellAt(first).style && isEmpty(last) == isEmpty(first))
                ++last;
            emu::Style style = screen.StyleOf(cellAt(first).style);
            style.link = 0; // its number is good for this terminal alone
            runs_.push_back({{first, row},
                             last - first,
                             style,
                             isEmpty(first) ? std::string() : screen.TextOf(row, first, last - first)});
            first = last;
        }
    }
}

void ScreenBlock::PutOn(emu::Terminal& screen) const
{
    const emu::Size size = screen.ScreenSize();
    for (const Run& run : runs_) {
        if (run.at.row >= size.rows || run.at.col >= size.cols)
            continue;
        screen.EraseArea(run.at, {std::min(run.at.col + run.cols, size.cols) - 1, run.at.row}, run.style);
        if (!run.text.empty())
            screen.PutText(run.at, run.text, run.style);
    }
}

Variant ScreenBlock::Invoke(MemberId, quint8, const CallArguments&)
{
    throw Failure(ErrorNumber::NoSuchMember, QStringLiteral("Object doesn't support this property or method"),
                  ClassName());
}

} // namespace kestrune
