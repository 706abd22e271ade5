#include "textsearch.h"

#include <algorithm>

namespace kestrune {

using namespace Qt::StringLiterals;

namespace {

// Steps of the expression engine for one match. A pattern that tries everything ends instead of hanging.
constexpr auto kMatchLimit = "(*LIMIT_MATCH=100000)"_L1;

QString PatternOf(const SearchQuery& query)
{
    QString pattern = query.regularExpression ? query.text : QRegularExpression::escape(query.text);
    if (query.wholeWord)
        pattern = u"\\b(?:"_s + pattern + u")\\b"_s;
    return kMatchLimit + pattern;
}

} // namespace

QString TextSearch::Start(const SearchQuery& query)
{
    older_.clear();
    newer_.clear();
    current_.reset();
    on_ = false;
    if (query.text.isEmpty())
        return {};
    expression_ =
        QRegularExpression(PatternOf(query), QRegularExpression::UseUnicodePropertiesOption |
                                                 (query.matchCase ? QRegularExpression::NoPatternOption
                                                                  : QRegularExpression::CaseInsensitiveOption));
    if (!expression_.isValid())
        return expression_.errorString();
    on_ = true;
    start_ = olderNext_ = newerNext_ = Base();
    screenSeen_ = false;
    return {};
}

void TextSearch::SearchLine(int row, std::vector<Hit>& found)
{
    found.clear();
    ReadLogicalLine(screen_, row, line_);
    auto matches = expression_.globalMatch(line_.text);
    while (matches.hasNext()) {
        const auto match = matches.next();
        if (match.capturedLength() == 0)
            continue;
        const CellPlace first = line_.places[size_t(match.capturedStart())];
        CellPlace last = line_.places[size_t(match.capturedEnd() - 1)];
        if (const auto cells = screen_.Row(last.row).cells;
            last.column < int(cells.size()) && (cells[size_t(last.column)].flags & emu::Cell::Wide) != 0)
            ++last.column;
        found.push_back({Base() + first.row, first.column, Base() + last.row, last.column});
    }
}

// History above the place where the search began.
bool TextSearch::StepOlder(int& lines)
{
    const int64_t oldest = Base() - screen_.HistoryCount();
    for (; lines > 0 && olderNext_ > oldest && !IsFull(); --lines) {
        const int64_t row = olderNext_ - 1;
        SearchLine(int(row - Base()), found_);
        olderNext_ = Base() + line_.top;
        // What stands below the row, in a line that is read in several pieces, has been found already; so has what the
        // other side took of a line that goes on below the place.
        for (auto hit = found_.rbegin(); hit != found_.rend(); ++hit) {
            const Hit* below = !older_.empty() ? &older_.back() : !newer_.empty() ? &newer_.front() : nullptr;
            if (hit->row <= row && (!below || hit->EndsBefore(*below)))
                older_.push_back(*hit);
        }
    }
    return olderNext_ > oldest && !IsFull();
}

// History that has been added since, then the screen, which the host can change.
bool TextSearch::StepNewer(int& lines)
{
    const int64_t top = Base();
    if (newerNext_ == top && screenSeen_ && generation_ == screen_.Generation())
        return false;
    const auto redo = std::min(newerNext_, top);
    while (!newer_.empty() && newer_.back().lastRow >= redo)
        newer_.pop_back();
    if (newerNext_ > top) // a taller screen took lines back
        newerNext_ = top;
    int64_t row = newerNext_;
    const int64_t end = top + screen_.ScreenSize().rows;
    while (row < end && !IsFull() && (lines > 0 || row >= top)) { // the screen is always looked at whole
        SearchLine(int(row - top), found_);
        for (const Hit& hit : found_)
            if (newer_.empty() || newer_.back().EndsBefore(hit))
                newer_.push_back(hit);
        row = top + line_.bottom + 1;
        if (row <= top)
            newerNext_ = row;
        --lines;
    }
    screenSeen_ = row >= end || IsFull();
    if (screenSeen_)
        newerNext_ = top;
    generation_ = screen_.Generation();
    return !screenSeen_;
}

// What the history has lost is found no more.
void TextSearch::ForgetLost()
{
    const int64_t oldest = Base() - screen_.HistoryCount();
    while (!older_.empty() && older_.back().row < oldest)
        older_.pop_back();
    while (!newer_.empty() && newer_.front().row < oldest)
        newer_.pop_front();
    newerNext_ = std::max(newerNext_, oldest);
    olderNext_ = std::max(olderNext_, oldest);
    start_ = std::max(start_, oldest);
}

bool TextSearch::Step(int lines)
{
    if (!on_)
        return false;
    ForgetLost();
    const bool moreBelow = StepNewer(lines);
    const bool moreAbove = StepOlder(lines);
    if (current_) {
        const int index = IndexOf(*current_);
        if (index >= Count() || At(index) != *current_)
            current_.reset(); // overwritten
    }
    return moreBelow || moreAbove;
}

const TextSearch::Hit& TextSearch::At(int index) const
{
    const auto older = int(older_.size());
    return index < older ? older_[size_t(older - 1 - index)] : newer_[size_t(index - older)];
}

template <typename Before>
int TextSearch::FirstIndex(Before&& before) const
{
    int low = 0;
    int high = Count();
    while (low < high) {
        const int middle = low + (high - low) / 2;
        if (before(At(middle)))
            low = middle + 1;
        else
            high = middle;
    }
    return low;
}

int TextSearch::IndexOf(const Hit& hit) const
{
    return FirstIndex([&](const Hit& other) { return other < hit; });
}

int TextSearch::CurrentNumber() const { return current_ ? IndexOf(*current_) + 1 : 0; }

bool TextSearch::Move(int by)
{
    if (Count() == 0)
        return false;
    const int index = current_ ? IndexOf(*current_) + by : by < 0 ? Count() - 1 : 0;
    const bool round = index < 0 || index >= Count();
    current_ = At((index + Count()) % Count());
    return round;
}

std::vector<TextSearch::Span> TextSearch::SpansOf(int row) const
{
    std::vector<Span> spans;
    if (!on_)
        return spans;
    const int64_t wanted = Base() + row;
    const int cols = screen_.ScreenSize().cols;
    int index = FirstIndex([wanted](const Hit& hit) { return hit.lastRow < wanted; });
    for (; index < Count() && At(index).row <= wanted; ++index) {
        const Hit& hit = At(index);
        const int last = hit.lastRow == wanted ? hit.lastColumn + 1 : cols;
        spans.push_back({hit.row == wanted ? hit.column : 0, last, current_ == hit});
    }
    return spans;
}

} // namespace kestrune
