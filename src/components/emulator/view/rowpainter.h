#pragma once

// Paints single rows of a terminal in device pixels. Glyphs stand on the grid whatever the font says; runs of
// one style go out in one call.

#include "colorscheme.h"
#include "gridfont.h"

#include <emulator/engine/terminal.h>

#include <QPainter>

#include <vector>

namespace kestrune {

struct RowLook
{
    int selectedFirst = 0; // columns first to one past the last are selected
    int selectedLast = 0;
    bool blinkHidden = false; // blinking text is in its dark phase
};

class RowPainter
{
public:
    RowPainter(const emu::Terminal& screen, GridFont& font, const ColorScheme& colors)
        : screen_(screen), font_(font), colors_(colors)
    {}

    // The upper left corner of the row at x, y.
    void PaintRow(QPainter& painter, int row, int x, int y, const RowLook& look);
    // One cell in colours of its own: a block cursor.
    void PaintCell(QPainter& painter, int row, int col, int x, int y, QRgb foreground, QRgb background);
    // Text that is not on the screen: what an input method is composing. Returns its width in pixels.
    int PaintText(QPainter& painter, const QString& text, int x, int y, QRgb foreground, QRgb background);
    bool HasBlink(int row) const;

private:
    struct Run
    {
        int first;
        int last; // one past
        const emu::Style* style;
        CellColors colors;
    };

    void CollectRuns(const emu::RowView& view, const RowLook& look);
    void PaintBackground(QPainter& painter, const Run& run, int x, int y) const;
    void PaintGlyphs(QPainter& painter, const emu::RowView& view, const Run& run, int x, int y);
    void PaintLines(QPainter& painter, const Run& run, int x, int y) const;
    void PaintOddCell(QPainter& painter, const emu::Cell& cell, const QRect& where, int variant, QRgb color);
    void FlushGlyphs(QPainter& painter, int variant, QRgb color);

    const emu::Terminal& screen_;
    GridFont& font_;
    const ColorScheme& colors_;
    std::vector<Run> runs_; // kept, so that painting a row allocates nothing
    QVector<quint32> glyphs_;
    QVector<QPointF> places_;
};

} // namespace kestrune
