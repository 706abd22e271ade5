#include "screencanvas.h"

#include <emulator/control/contrast.h>

#include <QGuiApplication>
#include <QStyleHints>

#include <algorithm>
#include <cmath>

namespace kestrune {

namespace {

constexpr int kFrameMilliseconds = 16;
constexpr int kLongestHold = 150; // a host that never ends its synchronised update
constexpr int kFlashMilliseconds = 90;
constexpr int kSignMilliseconds = 1600;
constexpr double kDefaultPoints = 11;
constexpr double kLeastPoints = 5, kMostPoints = 72;
constexpr double kLeastFitted = 3, kFitStep = 0.25;
constexpr double kMarginPixels = 6;

emu::CursorShape Steady(emu::CursorShape shape)
{
    switch (shape) {
    case emu::CursorShape::BlinkBlock:
        return emu::CursorShape::Block;
    case emu::CursorShape::BlinkUnderline:
        return emu::CursorShape::UnderlineBar;
    case emu::CursorShape::BlinkBar:
        return emu::CursorShape::Bar;
    case emu::CursorShape::Block:
    case emu::CursorShape::UnderlineBar:
    case emu::CursorShape::Bar:
        break;
    }
    return shape;
}

bool Blinks(emu::CursorShape shape) { return Steady(shape) != shape; }

} // namespace

ScreenCanvas::ScreenCanvas(ctlEmulator& emulator, QWidget& host, std::function<void()> frameShown)
    : emulator_(emulator), host_(host), frameShown_(std::move(frameShown))
{
    for (QTimer* timer : {&frame_, &flash_, &signEnd_})
        timer->setSingleShot(true);
    frame_.setTimerType(Qt::PreciseTimer);
    QObject::connect(&frame_, &QTimer::timeout, &host_, [this] { Frame(); });
    QObject::connect(&blink_, &QTimer::timeout, &host_, [this] { BlinkTurn(); });
    QObject::connect(&flash_, &QTimer::timeout, &host_, [this] {
        flashing_ = false;
        host_.update();
    });
    QObject::connect(&signEnd_, &QTimer::timeout, &host_, [this] {
        sign_.clear();
        host_.update();
    });
    LookChanged();
}

// --- font and grid

double ScreenCanvas::Points() const
{
    const double points = emulator_.Settings().Number(Setting("FontSize"));
    return std::clamp((points > 0 ? points : kDefaultPoints) + zoom_, kLeastPoints, kMostPoints);
}

void ScreenCanvas::RebuildFont()
{
    ratio_ = host_.devicePixelRatioF();
    const double points = fitted_ > 0 ? fitted_ : Points();
    const double pixels = points * host_.logicalDpiY() / 72 * ratio_;
    font_ = std::make_unique<GridFont>(emulator_.Settings().Text(Setting("FontName")), pixels,
                                       emulator_.Settings().Boolean(Setting("BoldFont")));
}

void ScreenCanvas::LookChanged()
{
    RebuildFont();
    scheme_.Load(emulator_.Settings(), emulator_.DesktopGround());
    scheme_.Follow(emulator_.Screen());
    backdrop_.Load(emulator_.Settings());
    Invalidate();
}

void ScreenCanvas::PicturesChanged()
{
    pictures_.Set(emulator_.Pictures());
    host_.update();
}

void ScreenCanvas::SetZoom(double points)
{
    zoom_ = 0;
    zoom_ = std::clamp(points, kLeastPoints - Points(), kMostPoints - Points());
    LookChanged();
}

void ScreenCanvas::FitFont(std::optional<emu::Size> screen, QSize room)
{
    const double before = fitted_ > 0 ? fitted_ : Points();
    double points = Points();
    if (screen) {
        fitted_ = points;
        RebuildFont();
        const QSize needed = SizeFor(screen->cols, screen->rows);
        const double scale = std::min(double(room.width()) / needed.width(), double(room.height()) / needed.height());
        const bool grows = emulator_.Settings().Boolean(Setting("ScaleFont"));
        points = std::clamp(points * (grows ? scale : std::min(scale, 1.0)), kLeastFitted, kMostPoints);
        // Cells are whole pixels, so that the estimate may be a little too large.
        for (fitted_ = points; fitted_ > kLeastFitted; fitted_ = std::max(kLeastFitted, fitted_ - kFitStep)) {
            RebuildFont();
            const QSize size = SizeFor(screen->cols, screen->rows);
            if (size.width() <= room.width() && size.height() <= room.height())
                break;
        }
        points = fitted_;
    }
    fitted_ = screen ? points : 0;
    if (screen || points != before)
        LookChanged();
}

int ScreenCanvas::LineCount() const { return emulator_.Screen().ScreenSize().rows + emulator_.Screen().StatusRows(); }

int ScreenCanvas::RowOf(int line) const
{
    return line < emulator_.Screen().ScreenSize().rows ? line - emulator_.RowsBack() : line;
}

int ScreenCanvas::Margin() const { return int(std::lround(kMarginPixels * ratio_)); }

emu::Size ScreenCanvas::FitInto(QSize available) const
{
    const int width = int(available.width() * ratio_) - 2 * Margin();
    const int height = int(available.height() * ratio_) - 2 * Margin();
    const int rows = height / font_->CellHeight() - emulator_.Screen().StatusRows();
    return {std::max(1, width / font_->CellWidth()), std::max(1, rows)};
}

QSize ScreenCanvas::GridPixels(emu::Size grid) const
{
    return {grid.cols * font_->CellWidth(), grid.rows * font_->CellHeight()};
}

QSize ScreenCanvas::SizeFor(int cols, int rows) const
{
    const QSize pixels = GridPixels({cols, rows + emulator_.Screen().StatusRows()}) + QSize(2 * Margin(), 2 * Margin());
    return {int(std::ceil(pixels.width() / ratio_)), int(std::ceil(pixels.height() / ratio_))};
}

QRect ScreenCanvas::DeviceCell(int col, int row) const
{
    const RowShape shape = ShapeOf(row);
    const int width = font_->CellWidth() * shape.scale;
    return {Margin() + shape.order.ColumnShown(col) * width,
            Margin() + (row + emulator_.RowsBack()) * font_->CellHeight(), width, font_->CellHeight()};
}

QRect ScreenCanvas::FromDevice(const QRect& rect) const
{
    return QRectF(QPointF(rect.topLeft()) / ratio_, QSizeF(rect.size()) / ratio_).toAlignedRect();
}

QRect ScreenCanvas::CellRect(int col, int row) const { return FromDevice(DeviceCell(col, row)); }

ScreenCanvas::RowShape ScreenCanvas::ShapeOf(int row) const
{
    const emu::Terminal& screen = emulator_.Screen();
    if (row < -screen.HistoryCount() || row >= screen.ScreenSize().rows)
        return {RowOrder(screen, {}), 1};
    const emu::RowView view = screen.Row(row);
    return {RowOrder(screen, view), view.size == emu::LineSize::Normal ? 1 : 2};
}

TextPlace ScreenCanvas::PlaceAt(QPointF position) const
{
    const auto [cols, rows] = emulator_.Screen().ScreenSize();
    const QPointF device = position * ratio_ - QPointF(Margin(), Margin());
    const int line = std::clamp(int(std::floor(device.y() / CellHeight())), 0, rows - 1);
    TextPlace place;
    place.row = line - emulator_.RowsBack();
    const RowShape shape = ShapeOf(place.row);
    const double column = device.x() / CellWidth() / shape.scale;
    const int shown = std::clamp(int(std::floor(column)), 0, cols - 1);
    place.cell = shape.order.ColumnCounted(shown);
    const bool leftHalf = column - shown < 0.5;
    place.boundary = place.cell + (leftHalf == shape.order.RunsLeft(place.cell) ? 1 : 0);
    return place;
}

QRect ScreenCanvas::CursorCell() const
{
    const auto at = emulator_.Screen().Cursor();
    QRect cell = DeviceCell(at.col, at.row);
    const auto cells = emulator_.Screen().Row(at.row).cells;
    if (at.col < int(cells.size()) && (cells[size_t(at.col)].flags & emu::Cell::Wide) != 0)
        cell.setWidth(2 * cell.width());
    return cell;
}

QRect ScreenCanvas::CursorRect() const { return FromDevice(CursorCell()); }

QRect ScreenCanvas::LineRect(int line) const
{
    const int height = font_->CellHeight();
    const QRect cell = FromDevice({Margin(), Margin() + line * height, font_->CellWidth(), height});
    return {0, cell.top(), host_.width(), cell.height()};
}

QFont ScreenCanvas::Font() const
{
    QFont font = font_->Font(0);
    font.setPixelSize(std::max(1, int(font.pixelSize() / ratio_)));
    return font;
}

// --- when to paint

void ScreenCanvas::ScreenChanged()
{
    FollowLines();
    if (!host_.isVisible())
        return;
    // What a key brings back is shown at once; one more frame for a key press costs nothing, whatever the flood.
    if (std::exchange(echoExpected_, false)) {
        frame_.start(0);
        return;
    }
    if (frame_.isActive())
        return;
    const qint64 since = sinceFrame_.isValid() ? sinceFrame_.elapsed() : FramePause();
    frame_.start(int(std::max<qint64>(0, FramePause() - since)));
}

// A screen that is slow to paint leaves the host as much time as it takes itself.
qint64 ScreenCanvas::FramePause() const { return std::max<qint64>(kFrameMilliseconds, 2 * paintTime_); }

// Smooth scroll is for a screen whose lines go up as a whole, as into the history.
void ScreenCanvas::FollowLines()
{
    const uint64_t pushed = emulator_.Screen().HistoryPushed();
    const auto lines = int64_t(pushed - std::exchange(linesPushed_, pushed));
    if (emulator_.ScrollsSmoothly() && emulator_.RowsBack() == 0 && host_.isVisible())
        glide_.LinesMoved(lines, font_->CellHeight());
    else
        glide_.Stop();
}

RowLook ScreenCanvas::LookOf(int line) const
{
    RowLook look;
    look.blinkHidden = blinkHidden_;
    if (line >= emulator_.Screen().ScreenSize().rows)
        return look;
    const int row = RowOf(line);
    if (const auto columns = emulator_.SelectedColumns(row); columns.first < columns.last) {
        look.selectedFirst = columns.first;
        look.selectedLast = columns.last;
    }
    if (marks_)
        look.found = marks_(row);
    return look;
}

bool ScreenCanvas::IsStale(int line) const
{
    const PaintedRow& was = painted_[size_t(line)];
    const RowLook look = LookOf(line);
    return was.generation != emulator_.Screen().Row(RowOf(line)).generation ||
           was.selectedFirst != look.selectedFirst || was.selectedLast != look.selectedLast ||
           was.found != look.found || (was.hasBlink && was.blinkHidden != blinkHidden_);
}

void ScreenCanvas::Frame()
{
    const emu::Terminal& screen = emulator_.Screen();
    if (!screen.Modes().synchronizedUpdate) {
        held_.invalidate();
    } else if (!held_.isValid() || held_.elapsed() < kLongestHold) {
        if (!held_.isValid())
            held_.start();
        frame_.start(kFrameMilliseconds);
        return;
    }
    glide_.Advance(double(sinceFrame_.isValid() ? sinceFrame_.elapsed() : 0));
    sinceFrame_.start();
    if (glide_.Offset() != 0)
        frame_.start(int(FramePause()));
    if (glide_.Offset() != paintedOffset_)
        host_.update();
    const int rows = LineCount();
    const bool shapesChanged = std::exchange(softGlyphs_, screen.SoftGlyphChanges()) != screen.SoftGlyphChanges();
    if (scheme_.Follow(screen) || shapesChanged || int(painted_.size()) != rows) {
        Invalidate();
    } else {
        for (int line = 0; line < rows; ++line)
            if (IsStale(line))
                host_.update(LineRect(line));
    }
    const PaintedCursor cursor{CursorShown() ? CursorRect() : QRect(), screen.Modes().cursor};
    if (!(cursor == paintedCursor_)) {
        blinkHidden_ = false; // a cursor that moves is seen
        host_.update(paintedCursor_.where);
        host_.update(cursor.where);
    }
    if (std::exchange(shownBack_, emulator_.RowsBack()) != emulator_.RowsBack())
        host_.update(); // the sign that says so, too
    KeepBlinking();
    frameShown_();
}

void ScreenCanvas::MarksChanged()
{
    for (int line = 0; line < int(painted_.size()); ++line)
        if (painted_[size_t(line)].found != LookOf(line).found)
            host_.update(LineRect(line));
}

void ScreenCanvas::SetLink(std::vector<LinkSpan> spans)
{
    if (spans == link_)
        return;
    std::swap(spans, link_);
    for (const auto* changed : {&spans, &link_})
        for (const LinkSpan& span : *changed)
            host_.update(LineRect(span.row + emulator_.RowsBack()));
}

void ScreenCanvas::Invalidate()
{
    painted_.assign(size_t(LineCount()), {});
    host_.update();
}

void ScreenCanvas::FocusChanged()
{
    blinkHidden_ = false;
    KeepBlinking();
    host_.update(CursorRect());
}

bool ScreenCanvas::BlinkingRowsShown() const
{
    return std::any_of(painted_.begin(), painted_.end(), [](const PaintedRow& row) { return row.hasBlink; });
}

void ScreenCanvas::KeepBlinking()
{
    const int period = QGuiApplication::styleHints()->cursorFlashTime() / 2; // 0: the user wants no blinking
    const bool cursorBlinks = host_.hasFocus() && CursorShown() && Blinks(emulator_.Screen().Modes().cursor);
    const bool wanted = period > 0 && host_.isVisible() && (cursorBlinks || BlinkingRowsShown());
    if (wanted && !blink_.isActive())
        blink_.start(period);
    else if (!wanted)
        blink_.stop();
    if (!wanted)
        blinkHidden_ = false;
}

void ScreenCanvas::BlinkTurn()
{
    blinkHidden_ = !blinkHidden_;
    host_.update(CursorRect());
    for (int line = 0; line < int(painted_.size()); ++line)
        if (painted_[size_t(line)].hasBlink)
            host_.update(LineRect(line));
    KeepBlinking();
}

void ScreenCanvas::Flash()
{
    flashing_ = true;
    flash_.start(kFlashMilliseconds);
    host_.update();
}

void ScreenCanvas::ShowSign(const QString& text)
{
    sign_ = text;
    signEnd_.start(kSignMilliseconds);
    host_.update();
}

void ScreenCanvas::SetPreedit(const QString& text)
{
    preedit_ = text;
    host_.update(LineRect(emulator_.Screen().Cursor().row + emulator_.RowsBack()));
}

// --- painting, in device pixels

void ScreenCanvas::Paint(QPainter& painter, const QRegion& region)
{
    QElapsedTimer painting;
    painting.start();
    if (host_.devicePixelRatioF() != ratio_)
        LookChanged(); // moved to a screen of another resolution
    const emu::Terminal& screen = emulator_.Screen();
    if (scheme_.Follow(screen))
        Invalidate(); // this part is painted in the new colours already
    const int rows = LineCount();
    painted_.resize(size_t(rows));

    painter.scale(1 / ratio_, 1 / ratio_);
    const auto toDevice = [this](const QRect& r) {
        return QRectF(QPointF(r.topLeft()) * ratio_, QSizeF(r.size()) * ratio_).toAlignedRect();
    };
    const QRect grid(QPoint(Margin(), Margin()), GridPixels({screen.ScreenSize().cols, rows}));
    QRegion outside;
    for (const QRect& rect : region)
        outside += toDevice(rect);
    const QRect dirty = outside.boundingRect();
    if (backdrop_.IsOn())
        backdrop_.Paint(painter, (QSizeF(host_.size()) * ratio_).toSize(), dirty, scheme_.Background());
    outside -= grid;
    for (const QRect& rect : outside)
        if (!backdrop_.IsOn())
            painter.fillRect(rect, QColor(scheme_.Background()));

    RowPainter rowPainter(screen, *font_, scheme_);
    rowPainter.LetBackdropShow(backdrop_.IsOn());
    const int first = std::max(0, (dirty.top() - Margin()) / font_->CellHeight());
    const int last = std::min(rows - 1, (dirty.bottom() - Margin()) / font_->CellHeight());
    paintedOffset_ = glide_.Offset();
    const bool glides = paintedOffset_ != 0;
    const int still = glides ? screen.ScreenSize().rows : 0; // the status line stays where it is
    for (int line = std::max(first, still); line <= last; ++line)
        if (region.intersects(LineRect(line)))
            PaintLine(painter, rowPainter, line);
    if (glides)
        PaintGliding(painter, rowPainter);
    else
        PaintOverRows(painter, rowPainter);
    PaintSigns(painter);
    paintTime_ = painting.elapsed();
}

void ScreenCanvas::PaintGliding(QPainter& painter, RowPainter& rows)
{
    const emu::Terminal& screen = emulator_.Screen();
    const int height = font_->CellHeight();
    const QRect grid(QPoint(Margin(), Margin()), GridPixels(screen.ScreenSize()));
    painter.save();
    painter.setClipRect(grid);
    painter.translate(0, glide_.Offset());
    if (screen.HistoryCount() > 0)
        rows.PaintRow(painter, -1, grid.left(), grid.top() - height, LookOf(-1));
    else if (!backdrop_.IsOn())
        painter.fillRect(grid.left(), grid.top() - height, grid.width(), height, QColor(scheme_.Background()));
    for (int line = 0; line < screen.ScreenSize().rows; ++line)
        PaintLine(painter, rows, line);
    PaintOverRows(painter, rows);
    painter.restore();
}

void ScreenCanvas::PaintOverRows(QPainter& painter, RowPainter& rows)
{
    PaintPictures(painter);
    PaintLink(painter);
    PaintCursor(painter, rows);
}

void ScreenCanvas::PaintLine(QPainter& painter, RowPainter& rows, int line)
{
    const int row = RowOf(line);
    const RowLook look = LookOf(line);
    rows.PaintRow(painter, row, Margin(), Margin() + line * font_->CellHeight(), look);
    painted_[size_t(line)] = {emulator_.Screen().Row(row).generation,
                              look.selectedFirst,
                              look.selectedLast,
                              look.found,
                              blinkHidden_,
                              rows.HasBlink(row)};
}

void ScreenCanvas::PaintPictures(QPainter& painter)
{
    if (pictures_.IsEmpty())
        return;
    const QPoint origin(Margin(), Margin() + emulator_.RowsBack() * font_->CellHeight());
    pictures_.Paint(painter, origin, {font_->CellWidth(), font_->CellHeight()},
                    QColor(scheme_.Role(PaletteRole::Foreground)), font_->LineWidth());
}

void ScreenCanvas::PaintLink(QPainter& painter) const
{
    for (const LinkSpan& span : link_)
        for (int column = span.first; column < span.last; ++column) {
            const QRect cell = DeviceCell(column, span.row);
            painter.fillRect(cell.left(), cell.top() + font_->UnderlineTop(), cell.width(), font_->LineWidth(),
                             QColor(scheme_.Role(PaletteRole::Cursor)));
        }
}

bool ScreenCanvas::CursorShown() const
{
    const emu::Terminal& screen = emulator_.Screen();
    return screen.Modes().cursorVisible && screen.Cursor().row + emulator_.RowsBack() < screen.ScreenSize().rows;
}

void ScreenCanvas::PaintCursor(QPainter& painter, RowPainter& rows)
{
    const emu::Terminal& screen = emulator_.Screen();
    const emu::Position at = screen.Cursor();
    const emu::CursorShape shape = screen.Modes().cursor;
    paintedCursor_ = {CursorShown() ? CursorRect() : QRect(), shape};
    const QRect cell = CursorCell();
    if (!preedit_.isEmpty()) {
        const QRgb paper = scheme_.Role(PaletteRole::Selection);
        rows.PaintText(painter, preedit_, cell.left(), cell.top(), Margin() + GridPixels(screen.ScreenSize()).width(),
                       LegibleOn(paper, scheme_.Role(PaletteRole::Foreground)), paper);
        return;
    }
    if (!CursorShown())
        return;
    const QColor color(scheme_.Cursor(rows.ColorsAt(at.row, at.col)).background);
    const int line = font_->LineWidth();
    if (!host_.hasFocus()) { // an outline: keys go elsewhere
        for (const QRect& edge : {QRect(cell.left(), cell.top(), cell.width(), line),
                                  QRect(cell.left(), cell.bottom() + 1 - line, cell.width(), line),
                                  QRect(cell.left(), cell.top(), line, cell.height()),
                                  QRect(cell.right() + 1 - line, cell.top(), line, cell.height())})
            painter.fillRect(edge, color);
    } else if (!(Blinks(shape) && blinkHidden_)) {
        if (Steady(shape) == emu::CursorShape::Block)
            rows.PaintCursorCell(painter, at.row, at.col, Margin(), cell.top());
        else
            PaintBar(painter, cell, Steady(shape), color);
    }
}

void ScreenCanvas::PaintBar(QPainter& painter, const QRect& cell, emu::CursorShape shape, const QColor& color) const
{
    const int width = std::max(2, int(std::lround(1.5 * ratio_)));
    if (shape == emu::CursorShape::Bar)
        painter.fillRect(cell.left(), cell.top(), width, cell.height(), color);
    else
        painter.fillRect(cell.left(), cell.bottom() + 1 - width, cell.width(), width, color);
}

void ScreenCanvas::PaintSigns(QPainter& painter) const
{
    if (const int back = emulator_.RowsBack(); back > 0)
        PaintSign(painter, QCoreApplication::translate("TerminalView", "History: %1 rows back").arg(back),
                  Qt::BottomEdge);
    if (!sign_.isEmpty())
        PaintSign(painter, sign_, Qt::TopEdge);
    if (flashing_) {
        QColor light(scheme_.Role(PaletteRole::Foreground));
        light.setAlphaF(0.15F);
        painter.fillRect(0, 0, int(host_.width() * ratio_) + 1, int(host_.height() * ratio_) + 1, light);
    }
}

void ScreenCanvas::PaintSign(QPainter& painter, const QString& text, Qt::Edge edge) const
{
    QFont font = host_.font();
    font.setPixelSize(int(std::lround(host_.fontInfo().pixelSize() * ratio_)));
    const QFontMetrics metrics(font);
    const int pad = metrics.height() / 2;
    const QSize size(metrics.horizontalAdvance(text) + 3 * pad, metrics.height() + pad);
    const int x = (int(host_.width() * ratio_) - size.width()) / 2;
    const int y = edge == Qt::TopEdge ? 2 * Margin() : int(host_.height() * ratio_) - size.height() - 2 * Margin();
    const QRect where(QPoint(x, y), size);
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(scheme_.Role(PaletteRole::Cursor)));
    painter.drawRoundedRect(where, size.height() / 2.0, size.height() / 2.0);
    painter.setFont(font);
    painter.setPen(QColor(scheme_.Role(PaletteRole::CursorText)));
    painter.drawText(where, Qt::AlignCenter, text);
    painter.restore();
}

} // namespace kestrune
