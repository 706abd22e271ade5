#pragma once

// Paints single rows of a terminal in device pixels. Glyphs stand on the grid whatever the font says; runs of
// one style go out in one call.

#include "gridfont.h"
#include "roworder.h"
#include "textsearch.h"
#include <emulator/control/colorscheme.h>

#include <emulator/engine/terminal.h>

#include <QPainter>

#include <vector>

namespace kestrune {

struct RowLook
{
    int selectedFirst = 0; // columns first to one past the last are selected
    int selectedLast = 0;
    std::vector<TextSearch::Span> found; // by a search
    bool blinkHidden = false;            // blinking text is in its dark phase
};

class RowPainter
{
public:
    RowPainter(const emu::Terminal& screen, GridFont& font, const ColorScheme& colors)
        : screen_(screen), font_(font), colors_(colors)
    {}

    // The upper left corner of the row at x, y.
    void PaintRow(QPainter& painter, int row, int x, int y, const RowLook& look);
    // One cell in the colours of a block cursor.
    void PaintCursorCell(QPainter& painter, int row, int col, int x, int y);
    CellColors ColorsAt(int row, int col) const;
    // Text that is not on the screen: what an input method is composing. It stands further left when it would
    // pass rightEdge.
    void PaintText(QPainter& painter, const QString& text, int x, int y, int rightEdge, QRgb foreground,
                   QRgb background);
    bool HasBlink(int row) const;
    // What has no background colour of its own is left as it is: a picture is behind it.
    void LetBackdropShow(bool on) { backdropShows_ = on; }

private:
    struct Run
    {
        int first;
        int last; // one past
        const emu::Style* style;
        CellColors colors;
    };

    emu::RowView InShownOrder(const emu::RowView& view, const RowOrder& order);
    void CollectRuns(const emu::RowView& view, const RowOrder& order, const RowLook& look);
    void PaintBackground(QPainter& painter, const Run& run, int x, int y) const;
    void PaintGlyphs(QPainter& painter, const emu::RowView& view, const Run& run, int x, int y);
    void PaintLines(QPainter& painter, const Run& run, int x, int y) const;
    void PaintOddCell(QPainter& painter, const emu::Cell& cell, Joints joints, const QRect& where, int variant,
                      QRgb color);
    void PaintEmoji(QPainter& painter, const QString& text, const QRect& where, QRgb color);
    void PaintShaped(QPainter& painter, const GridFont::Shaped& shaped, const QRect& where, QRgb color) const;
    Joints JointsAt(const emu::RowView& view, int col) const;
    void FlushGlyphs(QPainter& painter, int variant, QRgb color);

    const emu::Terminal& screen_;
    GridFont& font_;
    const ColorScheme& colors_;
    bool backdropShows_ = false;
    bool arranged_ = false; // the row at hand has text that runs to the left
    std::vector<emu::Cell> arrangedCells_;
    std::vector<Run> runs_; // kept, so that painting a row allocates nothing
    QVector<quint32> glyphs_;
    QVector<QPointF> places_;
};

} // namespace kestrune
