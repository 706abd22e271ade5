#pragma once

// What a terminal does to its screen: text placed at the cursor, cursor motion, margins, tabs, editing, erasing,
// scrolling, pages of memory, the alternate screen, the status line below and the history above. Operations carry the
// names that ECMA-48 and the DEC manuals give them. It knows nothing of bytes from the host and answers nothing.

#include "charsets.h"
#include "history.h"
#include "interned.h"
#include "modes.h"
#include "page.h"
#include "runs.h"

#include <array>
#include <functional>
#include <memory>

namespace kestrune::emu {

struct CharsetState
{
    std::array<const CharacterSet*, 4> g{};
    int gl = 0;
    int gr = 2;
};

struct CursorState // what DECSC keeps
{
    int row = 0;
    int col = 0;
    bool pendingWrap = false;
    Style pen;
    CharsetState charsets;
    bool origin = false;
    bool autoWrap = true;
    int page = 0;
};

enum class Erase : uint8_t
{
    ToEnd,
    ToStart,
    All
};
struct Area // rows and columns from 0; bottom and right are past the last
{
    int top = 0;
    int left = 0;
    int bottom = 0;
    int right = 0;
};
enum class ChangeExtent : uint8_t // of a change of renditions (DECSACE)
{
    Stream,
    Rectangle
};
enum class Selective : uint8_t // DECSED and DECSEL leave protected cells alone
{
    No,
    Yes
};

enum class WrappedLines : uint8_t // when the width changes
{
    AsTheyAre,
    WrappedAnew
};

class LineWrapper;

// Told when the cursor leaves a line by a line feed or a wrap, for auto print.
class LineWatcher
{
public:
    virtual ~LineWatcher() = default;
    virtual void LineLeft(int row) = 0;
};

class Screen final : public CellNames
{
public:
    Screen(Size size, Modes& modes);

    // --- text
    void WriteBytes(std::span<const uint8_t> run); // 0x20..0x7E as they are
    void WritePoints(std::span<const char32_t> run);
    // Whole lines of plain text, each with its CR and LF, as many from the front as need not come to the screen. The
    // rest is to be written as ever.
    LinesTaken TakeLines(std::span<const uint8_t> bytes);
    void Repeat(int count); // the last character once more (REP)

    // --- cursor
    const CursorState& Cursor() const { return cursor_; }
    Style& Pen(); // to be changed freely; the next character takes it
    CharsetState& Charsets() { return cursor_.charsets; }
    void MoveTo(int row, int col); // from 0, relative to the margins in origin mode
    void MoveToRow(int row);
    void MoveToColumn(int col);
    void MoveUp(int count);
    void MoveDown(int count);
    void MoveLeft(int count);
    void MoveRight(int count);
    void CarriageReturn();
    void Backspace();
    void Index(); // down, scrolls at the bottom margin
    void ReverseIndex();
    void LineFeed(); // Index as a control from the host: a line has ended
    void SaveCursor();
    void RestoreCursor();
    void PutCursor(const CursorState& state); // with the modes that it carries; a place beyond the margins is moved in
    int RowForHost() const;                   // from 0, relative to the margins in origin mode
    int ColumnForHost() const;

    // --- tabs
    void Tab(int count);
    void BackTab(int count);
    void SetTab();
    void ClearTab();
    void ClearTabs();
    void ResetTabs();
    std::vector<int> TabStops() const;
    void SetTabStops(std::span<const int> cols); // these alone; columns beyond the screen are passed over

    // --- margins and scrolling
    void SetMargins(int top, int bottom);                     // rows from 0, bottom included; the cursor goes home
    void ResetMargins();                                      // all four
    void AllowSideMargins(bool on);                           // DECLRMM; either way they go back to the edges
    void SetSideMargins(int left, int right);                 // columns from 0, right included; the cursor goes home
    void SetWindow(int top, int left, int bottom, int right); // all four, the cursor stays
    int TopMargin() const { return top_; }
    int BottomMargin() const { return bottom_ - 1; }
    int LeftMargin() const { return left_; }
    int RightMargin() const { return right_ - 1; }
    void ScrollUp(int count);
    void ScrollDown(int count);

    // --- editing and erasing
    void InsertLines(int count);
    void DeleteLines(int count);
    void InsertColumns(int count); // DECIC, DECDC: in all lines between the margins
    void DeleteColumns(int count);
    void BackIndex(); // DECBI, DECFI: a column left or right, at the margin the columns move instead
    void ForwardIndex();
    void InsertCharacters(int count);
    void DeleteCharacters(int count);
    void EraseCharacters(int count);
    void EraseLine(Erase what, Selective selective);
    void EraseDisplay(Erase what, Selective selective);
    void EraseHistory() { history_.Clear(); }
    void Align(); // DECALN
    void SetLineSize(LineSize size);

    // --- rectangles; they never move the cursor
    Area Addressable() const; // what the host can address: the margins in origin mode, else all
    void CopyArea(const Area& area, int fromPage, Position to, int toPage); // pages from 0, clamped
    void FillArea(const Area& area, char32_t point);                        // in the pen's rendition
    void EraseArea(const Area& area, Selective selective);
    // From its first to its last place as text runs, or as a rectangle. The protection stays.
    void ChangeArea(const Area& area, ChangeExtent extent, const std::function<void(Style&)>& change);
    uint16_t ChecksumOf(const Area& area, int page); // sum of characters and renditions, as DECRQCRA has it

    // --- pages of memory, numbered from 0. Text, cursor and erasing work on the active one; what leaves the top of
    // the first goes into the history. The alternate screen and the status line are none of them: while the host
    // works there, GoToPage does nothing.
    static constexpr int MostPages = 32;
    void SetPageCount(int count); // clamped; what stands on pages that go is lost
    int PageCount() const { return pageCount_; }
    int ActivePage() const { return active_; }
    int ShownPage() const { return shown_; }
    // What act does and sees is on that page of memory, clamped.
    void OnPage(int page, const std::function<void()>& act);
    const Page* UsedPage(int page) const; // nullptr: nobody has been there
    void GoToPage(int page); // clamped; the cursor keeps its place, and the display follows when it is coupled
    void ShowActivePage();

    // --- the part of a page that is shown, where a host has made pages longer than the screen
    void ShowRows(int rows); // so many; all of the page when it has no more
    int WindowTop() const { return windowTop_; }
    int WindowRows() const { return windowRows_ == 0 ? ScreenExtent().rows : windowRows_; }
    void Pan(int lines);       // down, or up when negative, as far as the page goes
    void FollowCursor();       // into sight, unless the host has uncoupled it (DECVCCM)
    void AppendRows(int rows); // all pages become so long, by blank rows below; nothing where they are

    // --- the status line: rows below the screen that have a cursor, margins and a rendition of their own
    void SetStatusRows(int rows); // 0: none; what stands there is lost when the number changes
    int StatusRows() const { return status_ == nullptr ? 0 : status_->Extent().rows; }
    void SelectStatusLine(bool on); // all operations work there until it is left; nothing without such rows
    bool IsOnStatusLine() const { return onStatus_; }
    void ClearStatusLine();
    void PutIndicator(std::u32string_view text); // over the first of those rows, in reverse video
    // Runs `act` on the screen itself, wherever the host is working.
    template <typename Act>
    void OnScreen(Act&& act)
    {
        const bool wasOnStatus = onStatus_;
        SelectStatusLine(false);
        act();
        SelectStatusLine(wasOnStatus);
    }

    // --- whole screen
    void SwitchPage(bool alternate);
    bool IsAlternate() const { return isAlternate_; }
    void ClearAlternate() { alternate_->FillRows(0, alternate_->Extent().rows, 0); }
    // followed: places, as RowAt counts rows, that move with their text when lines are wrapped anew. True: they were.
    bool Resize(Size size, WrappedLines lines, std::span<Position> followed = {});
    void ClearPage(); // blank and home, in the pen's background
    void HardReset();
    void SoftReset();

    // --- from a program on this side; all places lie inside the screen
    void PlaceText(Position at, std::u32string_view points, const Style& style); // stops at the end of the row
    void PlaceBlanks(Position from, Position to, const Style& style);            // both corners in it
    void PlaceLineSize(int row, LineSize size);
    void PlaceCursor(Position to);
    bool IsBlankRow(int row) const;

    void SetWrapStyle(WrapStyle style) { wrapStyle_ = style; }
    void SetWatcher(LineWatcher* watcher) { watcher_ = watcher; }

    // --- reading
    Size Extent() const { return page_->Extent(); }       // of what the host works on
    Size ScreenExtent() const { return main_->Extent(); } // of a page
    // As it is shown: row 0 is the window's first; those above lead to the history, those from its last on are the
    // status line.
    const Row& RowAt(int row);
    const Row& HostRow(int row) { return P().At(row); } // of what the host works on
    const CursorState& ScreenCursor() const { return onStatus_ ? aside_.cursor : cursor_; }
    const History& Scrollback() const { return history_; }
    History& Scrollback() { return history_; }
    LinkTable& Links() { return links_; }
    uint64_t& Clock() { return clock_; }
    int TakeHistoryAdded(); // lines since the last call
    uint16_t LinkFor(std::string_view target, std::string_view hostId);

    // --- CellNames
    const Style& StyleOf(StyleId id) const override { return styles_.At(id); }
    std::u32string_view ClusterOf(uint32_t text) const override { return clusters_.At(text); }
    StyleId StyleIdFor(const Style& style) override;
    uint32_t ClusterFor(std::u32string_view points) override;

private:
    Page& P() { return *page_; }
    int Columns() const { return page_->Columns(cursor_.row); }
    int Top() const { return modes_.Has(Mode::Origin) ? top_ : 0; }
    int Bottom() const { return modes_.Has(Mode::Origin) ? bottom_ : Extent().rows; }
    int Left() const { return modes_.Has(Mode::Origin) ? left_ : 0; }
    int Right() const { return modes_.Has(Mode::Origin) ? right_ : Extent().cols; }
    // Where text from the cursor on has to wrap.
    int Limit() const
    {
        const int columns = Columns();
        return cursor_.col < right_ ? std::min(right_, columns) : columns;
    }
    int LineStart() const { return cursor_.col >= left_ ? left_ : Left(); } // where CR goes
    bool IsNarrowed() const { return left_ != 0 || right_ != Extent().cols; }
    bool InSideMargins() const;
    bool InMargins() const;
    void MoveLinesUp(int top, int bottom, int count);
    void MoveLinesDown(int top, int bottom, int count);
    void ShiftColumns(int from, int count);
    StyleId PenId();
    // Erased cells keep the background only. The DEC types have no colours, so for their hosts this is the normal
    // rendition; hosts that send colours count on it.
    StyleId BlankId();
    void WrapNow();
    void Advance(int columns);
    bool StartCharacter(int width);
    void WritePoint(char32_t point);
    bool JoinBefore(char32_t point, uint8_t traits);
    void EraseSpan(int row, int from, int to, Selective selective);
    void PushToHistory(int count);
    bool PassesLinesOn();
    void CollapsePendingWrap() { cursor_.pendingWrap = false; }
    void Sweep();
    void MarkRow(const Row& row, std::vector<bool>& styles, std::vector<bool>& clusters) const;
    void ResizeMain(Size size, CursorState& cursor);
    void ReflowMain(Size size, CursorState& cursor, std::span<Position> followed);
    int OldestToShow(bool isFull) const;
    static void ResizeRows(Page& page, Size size, CursorState& cursor);
    void ResizeOthers(Size size);
    Page& MemoryPage(int number);
    void KeepInSight()
    {
        if (windowRows_ != 0)
            FollowCursor();
    }
    CursorState& Saved() { return saved_[onStatus_ ? 2 : size_t(isAlternate_)]; }
    CursorState Fresh() const;

    struct Place // where the host works, as far as the status line has its own
    {
        CursorState cursor;
        Area margins;
    };

    Modes& modes_;
    uint64_t clock_ = 0;
    StyleTable styles_;
    ClusterTable clusters_;
    LinkTable links_;
    History history_{*this};
    std::unique_ptr<Page> main_;
    std::unique_ptr<Page> alternate_;
    std::vector<std::unique_ptr<Page>> others_; // pages of memory from the second on, each made when it is first used
    std::unique_ptr<Page> status_;
    Page* page_ = nullptr;      // where the host works
    Page* shownPage_ = nullptr; // above the status line
    int pageCount_ = 1;
    int active_ = 0;
    int shown_ = 0;
    int windowTop_ = 0;  // the page's first row that is shown
    int windowRows_ = 0; // 0: all
    bool isAlternate_ = false;
    bool onStatus_ = false;
    Place aside_; // of the two places, status line and screen, the one where the host does not work

    CursorState cursor_;
    std::array<CursorState, 3> saved_; // main, alternate, status line
    StyleId penId_ = 0;
    StyleId blankId_ = 0;
    StyleId newestStyle_ = 0; // given out, but perhaps in no cell yet
    bool penChanged_ = false;
    Color blankBackground_; // of blankId_
    int top_ = 0;
    int bottom_ = 0; // past the last row of the region
    int left_ = 0;
    int right_ = 0; // past the last column of the region
    std::vector<bool> tabs_;
    WrapStyle wrapStyle_ = WrapStyle::Pending;
    LineWatcher* watcher_ = nullptr;
    char32_t lastPoint_ = 0;
    int historyAdded_ = 0;
    std::vector<std::span<const uint8_t>> newestLines_; // TakeLines'
    LineWrapper* wrapper_ = nullptr;                    // while lines are wrapped anew
    struct
    {
        uint64_t pushed = ~uint64_t(0); // the history's count afterwards
        int rows = 0;                   // in the history that the screen may show again
    } reflowed_;
    uint32_t refusalsUntilSweep_ = 0;
};

} // namespace kestrune::emu
