#pragma once

// Finds text in the screen and its history. It works in slices from the newest line to the oldest, so that a
// million lines never hold anything up, and follows the screen while the host writes. Hits keep their places
// while the screen scrolls. Text is found across soft-wrapped rows.

#include <emulator/view/logicalline.h>

#include <QRegularExpression>

#include <deque>
#include <optional>
#include <utility>
#include <vector>

namespace kestrune {

struct SearchQuery
{
    QString text;
    bool matchCase = false;
    bool wholeWord = false;
    bool regularExpression = false;
    bool operator==(const SearchQuery&) const = default;
};

class TextSearch
{
public:
    static constexpr int MostHits = 100000;

    // Rows count as emu::Terminal::HistoryPushed does: they name the same line for as long as it exists.
    struct Hit
    {
        int64_t row = 0;
        int column = 0;
        int64_t lastRow = 0;
        int lastColumn = 0; // belongs to the hit
        // NOLINTNEXTLINE(modernize-use-nullptr): the comparison with 0 is the compiler's own
        auto operator<=>(const Hit&) const = default;
        bool EndsBefore(const Hit& other) const
        {
            return std::pair(lastRow, lastColumn) < std::pair(other.row, other.column);
        }
    };
    struct Span // columns of one row, first to one past the last
    {
        int first = 0;
        int last = 0;
        bool current = false;
        bool operator==(const Span&) const = default;
    };

    explicit TextSearch(const emu::Terminal& screen) : screen_(screen) {}

    // Drops what was found. Empty text finds nothing. Returns why a regular expression is not one, else nothing.
    QString Start(const SearchQuery& query);
    void Stop() { Start({}); }
    bool IsOn() const { return on_; }
    // Looks at no more than this many lines. False: there is nothing left to look at for now.
    bool Step(int lines);

    int Count() const { return int(older_.size() + newer_.size()); }
    bool IsFull() const { return Count() >= MostHits; } // there may be more
    int CurrentNumber() const;                          // from 1, counted from the oldest hit found; 0: none
    std::optional<Hit> Current() const { return current_; }
    // To the next hit upwards or downwards, round at the ends. True: it went round.
    bool MoveToOlder() { return Move(-1); }
    bool MoveToNewer() { return Move(1); }
    std::vector<Span> SpansOf(int row) const; // of the screen or the history as it is now

private:
    int64_t Base() const { return int64_t(screen_.HistoryPushed()); }
    const Hit& At(int index) const;
    template <typename Before>
    int FirstIndex(Before&& before) const; // of the first hit that is not before; hits never overlap
    int IndexOf(const Hit& hit) const;
    bool Move(int by);
    void ForgetLost();
    void SearchLine(int row, std::vector<Hit>& found);
    bool StepNewer(int& lines);
    bool StepOlder(int& lines);

    const emu::Terminal& screen_;
    QRegularExpression expression_;
    bool on_ = false;
    LogicalLine line_;
    int64_t start_ = 0;       // where older and newer meet
    int64_t olderNext_ = 0;   // rows from here up are still to be looked at
    int64_t newerNext_ = 0;   // rows of the history from here down are still to be looked at
    uint64_t generation_ = 0; // of the screen when it was last looked at
    bool screenSeen_ = false;
    std::deque<Hit> older_; // descending
    std::deque<Hit> newer_; // ascending
    std::vector<Hit> found_;
    std::optional<Hit> current_;
};

} // namespace kestrune
