#include "rowpainter.h"

#include "boxdrawing.h"
#include "softdrawing.h"

#include <QGlyphRun>
#include <QPainterPath>

#include <algorithm>
#include <cmath>

namespace kestrune {

namespace {

constexpr double kLeastScale = 0.7;
constexpr char16_t kJoiner = 0x200D; // ZERO WIDTH JOINER

int VariantOf(const emu::Style& style)
{
    return ((style.attributes & emu::Attr::Bold) != 0 ? GridFont::Bold : 0) |
           ((style.attributes & emu::Attr::Italic) != 0 ? GridFont::Italic : 0);
}

bool IsBlank(const emu::Cell& cell)
{
    return cell.text == 0 || cell.text == U' ' || (cell.flags & emu::Cell::WideTail) != 0;
}

// Shown as a picture by default, or asked for as one (VARIATION SELECTOR-16).
bool IsEmoji(const emu::Cell& cell, const QString& text)
{
    const char32_t first = text.isEmpty() ? 0 : text.toUcs4().front();
    const bool wide = (cell.flags & emu::Cell::Wide) != 0;
    return text.contains(QChar(0xFE0F)) || (wide && first >= 0x1F000 && first <= 0x1FAFF) ||
           (wide && first >= 0x2300 && first <= 0x2BFF);
}

QString TextOfCell(const emu::Terminal& screen, const emu::Cell& cell)
{
    if ((cell.text & emu::Cell::ClusterBit) != 0) {
        const auto cluster = screen.ClusterOf(cell.text);
        return QString::fromUcs4(cluster.data(), qsizetype(cluster.size()));
    }
    const auto c = char32_t(cell.text);
    return QString::fromUcs4(&c, 1);
}

void DrawWave(QPainter& painter, const QRect& line, QRgb color)
{
    const double height = std::max(2.0, line.height() * 1.5);
    QPainterPath path(QPointF(line.left(), line.center().y()));
    const int waves = int(std::ceil(line.width() / height));
    for (int wave = 0; wave < waves; ++wave) {
        const double x = line.left() + wave * height;
        const bool up = wave % 2 == 0;
        path.quadTo(x + height / 2, line.center().y() + (up ? -height : height), x + height, line.center().y());
    }
    painter.save();
    painter.setClipRect(line.adjusted(0, -int(height), 0, int(height)), Qt::IntersectClip);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.strokePath(path, QPen(QColor(color), line.height()));
    painter.restore();
}

enum class TextMark
{
    None,
    Found,
    Current,
    Selected
};

TextMark MarkOf(int column, const RowLook& look)
{
    if (column >= look.selectedFirst && column < look.selectedLast)
        return TextMark::Selected;
    for (const TextSearch::Span& span : look.found)
        if (column >= span.first && column < span.last)
            return span.current ? TextMark::Current : TextMark::Found;
    return TextMark::None;
}

// Lines under a run, from its first pixel so that neighbouring runs join.
void DrawUnderline(QPainter& painter, emu::Underline kind, const QRect& line, QRgb color)
{
    const auto pieces = [&](int length, int gap) {
        for (int x = line.left(); x <= line.right(); x += length + gap)
            painter.fillRect(x, line.top(), std::min(length, line.right() + 1 - x), line.height(), QColor(color));
    };
    switch (kind) {
    case emu::Underline::None:
        return;
    case emu::Underline::Single:
        return pieces(line.width(), 0);
    case emu::Underline::Double:
        pieces(line.width(), 0);
        painter.fillRect(line.translated(0, -2 * line.height()), QColor(color));
        return;
    case emu::Underline::Curly:
        return DrawWave(painter, line, color);
    case emu::Underline::Dotted:
        return pieces(line.height(), line.height());
    case emu::Underline::Dashed:
        return pieces(line.height() * 4, line.height() * 3);
    }
}

// Double-width and double-height rows (DECDWL, DECDHL) are drawn as a plain row through a magnifying glass.
void Magnify(QPainter& painter, emu::LineSize size, int x, int y, int height)
{
    const double down = size == emu::LineSize::DoubleWidth ? 1 : 2;
    const int shift = size == emu::LineSize::DoubleBottom ? -height : 0;
    painter.translate(x, y + shift);
    painter.scale(2, down);
    painter.translate(-x, -y);
}

} // namespace

bool RowPainter::HasBlink(int row) const
{
    const auto cells = screen_.Row(row).cells;
    return std::any_of(cells.begin(), cells.end(), [this](const emu::Cell& cell) {
        return cell.style != 0 && (screen_.StyleOf(cell.style).attributes & emu::Attr::Blink) != 0;
    });
}

emu::RowView RowPainter::InShownOrder(const emu::RowView& view, const RowOrder& order)
{
    arranged_ = !order.IsPlain();
    if (!arranged_)
        return view;
    order.Arrange(view.cells, arrangedCells_);
    emu::RowView shown = view;
    shown.cells = arrangedCells_;
    return shown;
}

// view is in the order in which it is shown.
void RowPainter::CollectRuns(const emu::RowView& view, const RowOrder& order, const RowLook& look)
{
    runs_.clear();
    const int cols = screen_.ScreenSize().cols;
    const int used = std::min(cols, int(view.cells.size()));
    const auto styleAt = [&](int col) { return col < used ? view.cells[size_t(col)].style : emu::StyleId(0); };
    const auto markAt = [&](int shown) { return MarkOf(order.ColumnCounted(shown), look); };
    for (int first = 0; first < cols;) {
        const emu::StyleId id = styleAt(first);
        const TextMark mark = markAt(first);
        int last = first + 1;
        while (last < cols && styleAt(last) == id && markAt(last) == mark)
            ++last;
        Run run{first, last, &screen_.StyleOf(id), {}};
        run.colors = colors_.Of(*run.style);
        if (mark == TextMark::Selected)
            run.colors = colors_.Selected(run.colors);
        else if (mark != TextMark::None)
            run.colors = colors_.Found(run.colors, mark == TextMark::Current);
        const bool dark = look.blinkHidden && (run.style->attributes & emu::Attr::Blink) != 0;
        if (dark || (run.style->attributes & emu::Attr::Invisible) != 0)
            run.colors.foreground = run.colors.underline = run.colors.background;
        runs_.push_back(run);
        first = last;
    }
}

void RowPainter::PaintRow(QPainter& painter, int row, int x, int y, const RowLook& look)
{
    const emu::RowView counted = screen_.Row(row);
    const RowOrder order(screen_, counted);
    const emu::RowView view = InShownOrder(counted, order);
    const int width = screen_.ScreenSize().cols * font_.CellWidth();
    painter.save();
    painter.setClipRect(QRect(x, y, width, font_.CellHeight()), Qt::IntersectClip);
    if (view.size != emu::LineSize::Normal)
        Magnify(painter, view.size, x, y, font_.CellHeight());
    CollectRuns(view, order, look);
    // All backgrounds first: a glyph may lean over into the next run.
    for (const Run& run : runs_)
        PaintBackground(painter, run, x, y);
    for (const Run& run : runs_) {
        PaintGlyphs(painter, view, run, x, y);
        PaintLines(painter, run, x, y);
    }
    painter.restore();
}

void RowPainter::PaintBackground(QPainter& painter, const Run& run, int x, int y) const
{
    if (backdropShows_ && run.colors.background == colors_.Background())
        return;
    painter.fillRect(x + run.first * font_.CellWidth(), y, (run.last - run.first) * font_.CellWidth(),
                     font_.CellHeight(), QColor(run.colors.background));
}

void RowPainter::PaintGlyphs(QPainter& painter, const emu::RowView& view, const Run& run, int x, int y)
{
    if (run.colors.foreground == run.colors.background)
        return;
    const int variant = VariantOf(*run.style);
    const int end = std::min(run.last, int(view.cells.size()));
    for (int col = run.first; col < end; ++col) {
        const emu::Cell& cell = view.cells[size_t(col)];
        if (IsBlank(cell))
            continue;
        const bool wide = (cell.flags & emu::Cell::Wide) != 0;
        const Joints joints = arranged_ ? JointsAt(view, col) : Joints{};
        const bool simple = !wide && (cell.text & emu::Cell::ClusterBit) == 0 && !IsDrawnCharacter(cell.text) &&
                            !emu::IsSoftPoint(cell.text) && !joints.before && !joints.after;
        const quint32 glyph = simple ? font_.GlyphOf(variant, cell.text) : 0;
        const int left = x + col * font_.CellWidth();
        if (glyph != 0) {
            glyphs_.push_back(glyph);
            places_.push_back(QPointF(left, y + font_.Ascent()));
        } else {
            PaintOddCell(painter, cell, joints, {left, y, font_.CellWidth() * (wide ? 2 : 1), font_.CellHeight()},
                         variant, run.colors.foreground);
        }
    }
    FlushGlyphs(painter, variant, run.colors.foreground);
}

void RowPainter::FlushGlyphs(QPainter& painter, int variant, QRgb color)
{
    if (glyphs_.isEmpty())
        return;
    QGlyphRun glyphRun;
    glyphRun.setRawFont(font_.Raw(variant));
    glyphRun.setRawData(glyphs_.constData(), places_.constData(), int(glyphs_.size()));
    painter.setPen(QColor(color));
    painter.drawGlyphRun(QPointF(0, 0), glyphRun);
    glyphs_.clear();
    places_.clear();
}

// Characters of other fonts: in the middle of their cells, made smaller when they are wider.
void RowPainter::PaintOddCell(QPainter& painter, const emu::Cell& cell, Joints joints, const QRect& where, int variant,
                              QRgb color)
{
    if ((cell.text & emu::Cell::ClusterBit) == 0 && IsDrawnCharacter(cell.text)) {
        DrawCharacter(painter, cell.text, where, QColor(color));
        return;
    }
    if (const emu::SoftGlyph* glyph = screen_.SoftGlyphOf(cell.text)) {
        DrawSoftGlyph(painter, *glyph, where, QColor(color));
        return;
    }
    const QString text = TextOfCell(screen_, cell);
    if (IsEmoji(cell, text))
        return PaintEmoji(painter, text, where, color);
    // A joiner beside a letter gives it the form that it has inside a word.
    const QString joiner{QChar(kJoiner)};
    const QString joined = (joints.before ? joiner : QString()) + text + (joints.after ? joiner : QString());
    PaintShaped(painter, font_.Shape(joined, variant), where, color);
}

void RowPainter::PaintEmoji(QPainter& painter, const QString& text, const QRect& where, QRgb color)
{
    if (painter.deviceTransform().type() > QTransform::TxTranslate) // in a magnified row
        return PaintShaped(painter, font_.ShapeEmoji(text), where, color);
    painter.drawImage(where.topLeft(), font_.Emoji().Of(text, where.size(), color, [&](QPainter& picture) {
        PaintShaped(picture, font_.ShapeEmoji(text), QRect(QPoint(0, 0), where.size()), color);
    }));
}

void RowPainter::PaintShaped(QPainter& painter, const GridFont::Shaped& shaped, const QRect& where, QRgb color) const
{
    // Marks that a font cannot place stand beside their letter: better cut than too small to read.
    const double scale = std::clamp(where.width() / std::max(1.0, shaped.width), kLeastScale, 1.0);
    const double left = std::max(0.0, (where.width() - shaped.width * scale) / 2);
    painter.save();
    painter.setPen(QColor(color));
    painter.setClipRect(where, Qt::IntersectClip);
    painter.translate(where.left() + left, where.top() + font_.Ascent() - shaped.ascent * scale);
    painter.scale(scale, scale);
    for (const QGlyphRun& run : shaped.runs)
        painter.drawGlyphRun(QPointF(0, 0), run);
    painter.restore();
}

void RowPainter::PaintLines(QPainter& painter, const Run& run, int x, int y) const
{
    const QRect line(x + run.first * font_.CellWidth(), y + font_.UnderlineTop(),
                     (run.last - run.first) * font_.CellWidth(), font_.LineWidth());
    DrawUnderline(painter, run.style->underline, line, run.colors.underline);
    if ((run.style->attributes & emu::Attr::Strike) != 0)
        painter.fillRect(line.translated(0, -font_.Ascent() * 2 / 5), QColor(run.colors.foreground));
    if ((run.style->attributes & emu::Attr::Overline) != 0)
        painter.fillRect(line.left(), y, line.width(), line.height(), QColor(run.colors.foreground));
}

// Text of cursive scripts runs to the left: the letter before stands to the right.
Joints RowPainter::JointsAt(const emu::RowView& view, int col) const
{
    const auto pointAt = [&](int at) {
        return at >= 0 && at < int(view.cells.size()) ? FirstPoint(screen_, view.cells[size_t(at)]) : U' ';
    };
    return JointsOf(pointAt(col + 1), pointAt(col), pointAt(col - 1));
}

CellColors RowPainter::ColorsAt(int row, int col) const
{
    const emu::RowView view = screen_.Row(row);
    const bool written = col < int(view.cells.size());
    return colors_.Of(screen_.StyleOf(written ? view.cells[size_t(col)].style : emu::StyleId(0)));
}

void RowPainter::PaintCursorCell(QPainter& painter, int row, int col, int x, int y)
{
    const emu::RowView counted = screen_.Row(row);
    const RowOrder order(screen_, counted);
    const emu::RowView view = InShownOrder(counted, order);
    const int shown = order.ColumnShown(col);
    const bool written = shown < int(view.cells.size());
    const emu::Cell cell = written ? view.cells[size_t(shown)] : emu::Cell{};
    const int width = (cell.flags & emu::Cell::Wide) != 0 ? 2 : 1;
    Run run{shown, shown + width, &screen_.StyleOf(cell.style), colors_.Cursor(ColorsAt(row, col))};
    painter.save();
    if (view.size != emu::LineSize::Normal) {
        painter.setClipRect(QRect(x, y, screen_.ScreenSize().cols * font_.CellWidth(), font_.CellHeight()));
        Magnify(painter, view.size, x, y, font_.CellHeight());
    }
    PaintBackground(painter, run, x, y);
    if ((run.style->attributes & emu::Attr::Invisible) == 0) {
        PaintGlyphs(painter, view, run, x, y);
        PaintLines(painter, run, x, y);
    }
    painter.restore();
}

void RowPainter::PaintText(QPainter& painter, const QString& text, int x, int y, int rightEdge, QRgb foreground,
                           QRgb background)
{
    const double natural = QFontMetricsF(font_.Font(0)).horizontalAdvance(text);
    const int cells = std::max(1, int(std::ceil(natural / font_.CellWidth() - 0.01)));
    const int width = cells * font_.CellWidth();
    x = std::max(0, std::min(x, rightEdge - width));
    painter.fillRect(x, y, width, font_.CellHeight(), QColor(background));
    painter.setFont(font_.Font(0));
    painter.setPen(QColor(foreground));
    painter.drawText(QPointF(x, y + font_.Ascent()), text);
    painter.fillRect(x, y + font_.UnderlineTop(), width, font_.LineWidth(), QColor(foreground));
}

} // namespace kestrune
