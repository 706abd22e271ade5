#pragma once

// The rows that a terminal shows as one text, for assistive tools: rows end in a line feed and have no blanks at
// their end, but as far as the cursor. What changed between two of them is what there is to say.

#include <emulator/engine/terminal.h>

#include <QString>

#include <vector>

namespace kestrune {

class ReadableText
{
public:
    ReadableText() = default;
    // rowsBack: how far the view stands back in the history.
    ReadableText(const emu::Terminal& screen, int rowsBack);

    const QString& Text() const { return text_; }
    // Rows as they are counted on the screen, below 0 in the history. Clamped to what there is.
    int OffsetOf(emu::Position at) const;
    emu::Position PlaceOf(int offset) const;
    int CursorOffset() const { return cursor_; } // the end of the text while the cursor is not in sight

    // The text without what has scrolled off its top by then.
    QString TextFrom(int64_t pushed) const;
    int64_t Pushed() const { return pushed_; } // HistoryPushed of the first row shown

private:
    QString text_;
    std::vector<int> starts_;  // offset of each row
    std::vector<int> columns_; // of each UTF-16 unit
    int firstRow_ = 0;
    int64_t pushed_ = 0;
    int cursor_ = 0;
};

struct TextChange
{
    int at = 0;
    QString removed;
    QString inserted;
    bool operator==(const TextChange&) const = default;
};
TextChange ChangeBetween(const QString& before, const QString& after);

} // namespace kestrune
