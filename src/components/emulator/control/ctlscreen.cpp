// The members of ctlEmulator that read and change the screen, its history and its selection.

#include "ctlemulator.h"

#include "heldselection.h"
#include "screenblock.h"
#include "screentext.h"

#include <dispatch/failure.h>

#include <algorithm>
#include <array>

namespace kestrune {

using namespace Qt::StringLiterals;

namespace {

[[noreturn]] void RaiseBadArgument(const QString& text)
{
    throw Failure(ErrorNumber::InvalidCall, text, u"ctlEmulator"_s);
}

struct AttributeBit
{
    int bit;
    uint16_t attribute;
};
constexpr std::array kAttributeBits{AttributeBit{1, emu::Attr::Invisible}, AttributeBit{2, emu::Attr::Blink},
                                    AttributeBit{4, emu::Attr::Reverse}, AttributeBit{16, emu::Attr::Dim},
                                    AttributeBit{32, emu::Attr::Bold}};

} // namespace

int ctlEmulator::Rows() const { return terminal_->ScreenSize().rows; }
int ctlEmulator::Cols() const { return terminal_->ScreenSize().cols; }
int ctlEmulator::Row() const { return terminal_->Cursor().row; }
int ctlEmulator::col() const { return terminal_->Cursor().col; }
int ctlEmulator::Page() const { return terminal_->Page(); }
void ctlEmulator::SetRow(int row) { Locate(col(), row); }
void ctlEmulator::SetCol(int column) { Locate(column, Row()); }

void ctlEmulator::SetPage(int page)
{
    if (page < 0 || page >= terminal_->PageCount())
        RaiseBadArgument(tr("There is no page %1.").arg(page));
    terminal_->SetPage(page);
    AfterChange();
}

void ctlEmulator::SetColor(int attribute)
{
    if (attribute < 0 || attribute >= AttributeCount)
        RaiseBadArgument(tr("A colour is 0 to %1, not %2.").arg(AttributeCount - 1).arg(attribute));
    color_ = attribute;
}

emu::Style ctlEmulator::StyleFor(int color) const
{
    const int value = color == Present ? color_ : color;
    if (value < 0 || value >= AttributeCount)
        RaiseBadArgument(tr("A colour is 0 to %1, not %2.").arg(AttributeCount - 1).arg(value));
    emu::Style style;
    for (const AttributeBit& row : kAttributeBits)
        if ((value & row.bit) != 0)
            style.attributes = uint16_t(style.attributes | row.attribute);
    if ((value & 8) != 0)
        style.underline = emu::Underline::Single;
    return style;
}

void ctlEmulator::Emulate(const QString& text)
{
    terminal_->Receive(terminal_->EncodeText(text.toStdString()));
    AfterChange();
}

void ctlEmulator::SetText(const QString& text, int column, int row, int color)
{
    const emu::Position at{column == Present ? col() : column, row == Present ? Row() : row};
    if (at.col < 0 || at.col >= Cols() || at.row < 0 || at.row >= Rows())
        RaiseBadArgument(tr("There is no column %1, row %2 on the screen.").arg(at.col).arg(at.row));
    terminal_->PutText(at, text.toStdString(), StyleFor(color));
    AfterChange();
}

void ctlEmulator::Clear(int left, int top, int right, int bottom, int color)
{
    const emu::Position from{std::clamp(left, 0, Cols() - 1), std::clamp(top, 0, Rows() - 1)};
    const emu::Position to{right < 0 ? Cols() - 1 : std::min(right, Cols() - 1),
                           bottom < 0 ? Rows() - 1 : std::min(bottom, Rows() - 1)};
    terminal_->EraseArea(from, to, StyleFor(color));
    AfterChange();
}

void ctlEmulator::Locate(int column, int row, int page)
{
    if (page != Present)
        SetPage(page);
    terminal_->MoveCursor({std::clamp(column, 0, Cols() - 1), std::clamp(row, 0, Rows() - 1)});
    AfterChange();
}

QString ctlEmulator::GetText(int column, int row, int cols, bool noProtect) const
{
    const int from = column == ToEdge ? 0 : std::max(column, 0);
    const int line = row == ToEdge ? Row() : row;
    const int count = cols == ToEdge ? Cols() - from : std::min(cols, Cols() - from);
    if (line < -terminal_->HistoryCount() || line >= Rows() || count <= 0)
        return {};
    if (!noProtect)
        return QString::fromStdString(terminal_->TextOf(line, from, count));
    QString text;
    for (int c = from; c < from + count; ++c) {
        const auto cells = terminal_->Row(line).cells;
        const bool isProtected = c < int(cells.size()) &&
                                 (terminal_->StyleOf(cells[size_t(c)].style).attributes & emu::Attr::Protected) != 0;
        text += isProtected ? u" "_s : QString::fromStdString(terminal_->TextOf(line, c, 1));
    }
    return text;
}

// The present page may be the alternate screen, which is no page of memory.
void ctlEmulator::OnPage(int page, const std::function<void()>& act) const
{
    if (page != Present && (page < 0 || page >= terminal_->PageCount()))
        RaiseBadArgument(tr("There is no page %1.").arg(page));
    if (page == Present || page == Page())
        act();
    else
        terminal_->OnPage(page, act);
}

Variant ctlEmulator::GetBlock(int left, int top, int right, int bottom, int page) const
{
    const auto edge = [](int value, int last) { return value < 0 ? last : std::min(value, last); };
    const emu::Position from{std::clamp(left, 0, Cols() - 1), std::clamp(top, 0, Rows() - 1)};
    const emu::Position to{edge(right, Cols() - 1), edge(bottom, Rows() - 1)};
    Variant block;
    OnPage(page, [&] { block = MakeObject<ScreenBlock>(*terminal_, from, to); });
    return block;
}

void ctlEmulator::SetBlock(const Variant& block, int page)
{
    const ObjectRef object = block.Resolved().ToObject();
    const auto* kept = dynamic_cast<const ScreenBlock*>(object.Get());
    if (!kept)
        throw Failure(ErrorNumber::TypeMismatch, tr("This is no block that GetBlock has made."), u"ctlEmulator"_s);
    OnPage(page, [&] { kept->PutOn(*terminal_); });
    AfterChange();
}

void ctlEmulator::Resize(int cols, int rows, int pixelWidth, int pixelHeight)
{
    const TerminalSize before = size_;
    size_.pixelWidth = pixelWidth;
    size_.pixelHeight = pixelHeight;
    ResizeScreen({cols, rows});
    const auto [nowCols, nowRows] = terminal_->ScreenSize();
    size_.cols = nowCols;
    size_.rows = nowRows;
    if (line_ && !(size_ == before))
        line_->Resize(size_);
    AfterChange();
}

// What is selected and what is looked at stay on their text when lines are wrapped anew.
void ctlEmulator::ResizeScreen(emu::Size size)
{
    const auto selected = selection_->Area(*terminal_);
    const SelectionArea area = selected.value_or(SelectionArea{});
    std::array places{emu::Position{0, -scrollback_}, emu::Position{area.left, area.top},
                      emu::Position{area.right, area.bottom}};
    const bool onAlternate = terminal_->Modes().alternateScreen;
    if (!terminal_->Resize(size, places))
        return;
    const auto& [top, from, to] = places;
    scrollback_ = scrollback_ > 0 ? std::max(0, -top.row) : 0;
    if (!selected || area.block || onAlternate) // a rectangle does not stand on lines
        selection_->Clear();
    else
        selection_->Set(*terminal_, {from.col, from.row, std::min(to.col, size.cols - 1), to.row, false});
}

int ctlEmulator::ScrMode() const { return terminal_->Modes().extended ? 1 : 0; }

void ctlEmulator::SetScrMode(int mode)
{
    if (mode != 0 && mode != 1)
        RaiseBadArgument(tr("There is no screen mode %1.").arg(mode));
    terminal_->ShowExtended(mode == 1);
    AfterChange();
}

bool ctlEmulator::ScrollsSmoothly() const
{
    switch (settings_.Integer(Setting("ScrollMode"))) {
    case 0:
        return true;
    case 1:
        return false;
    }
    return terminal_->Modes().smoothScroll;
}

// --- history

void ctlEmulator::ScrollTo(int rowsBack)
{
    const int to = std::clamp(rowsBack, 0, terminal_->HistoryCount());
    if (std::exchange(scrollback_, to) != to)
        emit ScreenChanged();
}

void ctlEmulator::SetHistoryVisible(bool on)
{
    if (on != HistoryVisible())
        ScrollTo(on ? Rows() - 1 : 0);
}

void ctlEmulator::ScrollHistory(int command)
{
    const int page = std::max(1, Rows() - 1); // one row of the last page stays in sight
    switch (ScrollCommand(command)) {
    case ScrollCommand::LineUp:
        return ScrollTo(scrollback_ + 1);
    case ScrollCommand::LineDown:
        return ScrollTo(scrollback_ - 1);
    case ScrollCommand::PageUp:
        return ScrollTo(scrollback_ + page);
    case ScrollCommand::PageDown:
        return ScrollTo(scrollback_ - page);
    case ScrollCommand::Top:
        return ScrollTo(terminal_->HistoryCount());
    case ScrollCommand::Bottom:
        return ScrollTo(0);
    }
    RaiseBadArgument(tr("There is no scroll command %1.").arg(command));
}

// --- selection

SelectionArea ctlEmulator::Resolve(int left, int top, int right, int bottom) const
{
    const auto inRows = [this](int row) { return std::clamp(row, -terminal_->HistoryCount(), Rows() - 1); };
    SelectionArea area{std::clamp(left, 0, Cols() - 1), inRows(top),
                       right == ToEdge ? Cols() - 1 : std::clamp(right, 0, Cols() - 1),
                       bottom == ToEdge ? Rows() - 1 : inRows(bottom), CopySelMode() == 1};
    if (area.bottom < area.top) {
        std::swap(area.top, area.bottom);
        std::swap(area.left, area.right);
    }
    if ((area.block || area.top == area.bottom) && area.right < area.left)
        std::swap(area.left, area.right);
    return area;
}

void ctlEmulator::SetSelection(int left, int top, int right, int bottom)
{
    SetSelection(Resolve(left, top, right, bottom));
}

void ctlEmulator::SetSelection(const SelectionArea& area)
{
    selection_->Set(*terminal_, area);
    emit ScreenChanged();
}

void ctlEmulator::ClearSelection()
{
    selection_->Clear();
    emit ScreenChanged();
}

std::optional<SelectionArea> ctlEmulator::SelectedArea() const { return selection_->Area(*terminal_); }

ctlEmulator::Columns ctlEmulator::SelectedColumns(int row) const
{
    const auto area = SelectedArea();
    const ColumnSpan columns = area ? ColumnsOf(*area, row, Cols()) : ColumnSpan{};
    return {columns.first, columns.last};
}

bool ctlEmulator::GetSelection(int& left, int& top, int& right, int& bottom) const
{
    const SelectionArea area = SelectedArea().value_or(SelectionArea{});
    left = area.left;
    top = area.top;
    right = area.right;
    bottom = area.bottom;
    return SelectedArea().has_value();
}

QString ctlEmulator::Selection() const
{
    const auto area = SelectedArea();
    return area ? TextOfArea(*terminal_, *area) : QString();
}

SelectionArea ctlEmulator::WordAt(int column, int row) const { return WordOn(*terminal_, column, row); }
SelectionArea ctlEmulator::LineAt(int row) const { return LineOn(*terminal_, row); }

} // namespace kestrune
