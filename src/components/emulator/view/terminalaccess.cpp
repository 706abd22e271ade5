#include "terminalaccess.h"

#include <emulator/view/terminalview.h>

namespace kestrune {

using namespace Qt::StringLiterals;

namespace {

constexpr int kPauseMilliseconds = 150; // between two words about the screen

QAccessibleInterface* MakeAccess(const QString&, QObject* object)
{
    auto* view = qobject_cast<TerminalView*>(object);
    return view ? new TerminalAccess(*view) : nullptr; // Qt's registry owns it
}

ReadableText TextShown(const TerminalView& view) { return {view.Emulator().Screen(), view.Emulator().RowsBack()}; }

} // namespace

void InstallTerminalAccess()
{
    static const bool installed = [] {
        QAccessible::installFactory(MakeAccess);
        return true;
    }();
    (void)installed;
}

TerminalAccess::TerminalAccess(TerminalView& view) : QAccessibleWidget(&view, QAccessible::Terminal) {}

TerminalView& TerminalAccess::View() const { return *static_cast<TerminalView*>(widget()); }
ReadableText TerminalAccess::Now() const { return TextShown(View()); }

void* TerminalAccess::interface_cast(QAccessible::InterfaceType type)
{
    if (type == QAccessible::TextInterface)
        return static_cast<QAccessibleTextInterface*>(this);
    return QAccessibleWidget::interface_cast(type);
}

QString TerminalAccess::text(QAccessible::Text kind) const
{
    return kind == QAccessible::Name ? QCoreApplication::translate("TerminalView", "Terminal")
                                     : QAccessibleWidget::text(kind);
}

int TerminalAccess::selectionCount() const { return View().Emulator().SelectedArea() ? 1 : 0; }

void TerminalAccess::selection(int index, int* start, int* end) const
{
    const auto area = index == 0 ? View().Emulator().SelectedArea() : std::nullopt;
    const ReadableText now = Now();
    *start = area ? now.OffsetOf({area->left, area->top}) : 0;
    *end = area ? now.OffsetOf({area->right + 1, area->bottom}) : 0;
}

void TerminalAccess::addSelection(int start, int end) { setSelection(0, start, end); }
void TerminalAccess::removeSelection(int) { View().Emulator().ClearSelection(); }

void TerminalAccess::setSelection(int, int start, int end)
{
    if (end <= start)
        return;
    const ReadableText now = Now();
    const emu::Position first = now.PlaceOf(start);
    const emu::Position last = now.PlaceOf(end - 1);
    View().Emulator().SetSelection(SelectionArea{first.col, first.row, last.col, last.row, false});
}

int TerminalAccess::cursorPosition() const { return Now().CursorOffset(); }
QString TerminalAccess::text(int start, int end) const { return Now().Text().mid(start, end - start); }
int TerminalAccess::characterCount() const { return int(Now().Text().size()); }

QRect TerminalAccess::characterRect(int offset) const
{
    const emu::Position at = Now().PlaceOf(offset);
    const QRect cell = View().CellRect(at.col, at.row);
    return {View().mapToGlobal(cell.topLeft()), cell.size()};
}

int TerminalAccess::offsetAtPoint(const QPoint& point) const
{
    const QPoint local = View().mapFromGlobal(point);
    const auto [cols, rows] = View().Emulator().Screen().ScreenSize();
    const int top = -View().Emulator().RowsBack();
    for (int row = top; row < top + rows; ++row)
        for (int col = 0; col < cols; ++col)
            if (View().CellRect(col, row).contains(local))
                return Now().OffsetOf({col, row});
    return -1;
}

QString TerminalAccess::attributes(int offset, int* start, int* end) const
{
    const ReadableText now = Now();
    const emu::Terminal& screen = View().Emulator().Screen();
    const auto styleAt = [&](int at) {
        const emu::Position place = now.PlaceOf(at);
        const auto cells = screen.Row(place.row).cells;
        return place.col < int(cells.size()) ? cells[size_t(place.col)].style : emu::StyleId(0);
    };
    const int count = int(now.Text().size());
    const emu::StyleId id = styleAt(offset);
    *start = *end = offset;
    while (*start > 0 && styleAt(*start - 1) == id)
        --*start;
    while (*end < count && styleAt(*end) == id)
        ++*end;
    const emu::Style& style = screen.StyleOf(id);
    QString named;
    const auto add = [&](uint16_t attribute, const QString& text) {
        if ((style.attributes & attribute) != 0)
            named += text;
    };
    add(emu::Attr::Bold, u"font-weight:bold;"_s);
    add(emu::Attr::Italic, u"font-style:italic;"_s);
    add(emu::Attr::Strike, u"text-line-through-type:single;"_s);
    if (style.underline != emu::Underline::None)
        named += u"text-underline-style:solid;"_s;
    return named;
}

ScreenAnnouncer::ScreenAnnouncer(TerminalView& view, Speaker speak) : view_(view), speak_(speak)
{
    pause_.setSingleShot(true);
    QObject::connect(&pause_, &QTimer::timeout, &view_, [this] { Tell(); });
}

void ScreenAnnouncer::FrameShown()
{
    if (!pause_.isActive())
        pause_.start(kPauseMilliseconds);
}

void ScreenAnnouncer::Tell()
{
    ReadableText now = TextShown(view_);
    if (std::exchange(started_, true)) {
        const QString kept = told_.TextFrom(now.Pushed());
        if (const auto gone = told_.Text().size() - kept.size(); gone > 0) {
            QAccessibleTextRemoveEvent event(&view_, 0, told_.Text().left(gone));
            speak_(&event);
        }
        if (const TextChange change = ChangeBetween(kept, now.Text()); change != TextChange{change.at, {}, {}}) {
            QAccessibleTextUpdateEvent event(&view_, change.at, change.removed, change.inserted);
            speak_(&event);
        }
    }
    if (now.CursorOffset() != told_.CursorOffset()) {
        QAccessibleTextCursorEvent event(&view_, now.CursorOffset());
        speak_(&event);
    }
    told_ = std::move(now);
}

} // namespace kestrune
