#pragma once

// What a terminal view shows, and when: the grid of cells in device pixels, which rows have to be painted again,
// the cursor, and the signs laid over the text. Nothing is painted more often than once a frame.

#include "backdrop.h"
#include "glide.h"
#include "gridfont.h"
#include "links.h"
#include "picturelayer.h"
#include "roworder.h"
#include "rowpainter.h"
#include "selectiongesture.h"
#include <emulator/control/colorscheme.h>

#include <emulator/control/ctlemulator.h>

#include <QElapsedTimer>
#include <QTimer>
#include <QWidget>

#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace kestrune {

class ScreenCanvas
{
public:
    // frameShown runs after each frame: the place for what follows the screen without being painted here.
    ScreenCanvas(ctlEmulator& emulator, QWidget& host, std::function<void()> frameShown);

    // --- what happened
    void ScreenChanged();
    void KeyWasTyped() { echoExpected_ = true; }
    void LookChanged(); // font, colours, the picture behind the text, or resolution
    void PicturesChanged();
    void FocusChanged();
    void Flash();                       // the visible bell
    void ShowSign(const QString& text); // a line over the text that goes by itself
    void SetPreedit(const QString& text);
    using Marks = std::function<std::vector<TextSearch::Span>(int row)>;
    void SetMarks(Marks marks) { marks_ = std::move(marks); } // what a search has found
    void MarksChanged();
    void SetLink(std::vector<LinkSpan> spans); // underlined; empty: none
    void SetZoom(double points);
    // A screen of fixed size is shown whole in the room: in a font that is as small as that takes, with ScaleFont also
    // as large. No size: the user's font again.
    void FitFont(std::optional<emu::Size> screen, QSize room);
    double Points() const;

    void Paint(QPainter& painter, const QRegion& region);

    // --- the grid; widget coordinates unless a name says otherwise
    emu::Size FitInto(QSize available) const; // beside the status line
    QSize SizeFor(int cols, int rows) const;  // with it
    QSize GridPixels(emu::Size grid) const;   // device pixels
    QRect CellRect(int col, int row) const;
    QRect CursorRect() const;
    TextPlace PlaceAt(QPointF position) const;             // the nearest one
    int CellWidth() const { return font_->CellWidth(); }   // device pixels
    int CellHeight() const { return font_->CellHeight(); } // device pixels
    QFont Font() const;
    QRgb RoleColor(int role) const { return scheme_.Role(role); }
    bool HasPreedit() const { return !preedit_.isEmpty(); }

private:
    struct PaintedRow
    {
        uint64_t generation = 0;
        int selectedFirst = 0;
        int selectedLast = 0;
        std::vector<TextSearch::Span> found;
        bool blinkHidden = false;
        bool hasBlink = false;
    };
    struct PaintedCursor
    {
        QRect where;
        emu::CursorShape shape{};
        bool operator==(const PaintedCursor&) const = default;
    };

    struct RowShape
    {
        RowOrder order;
        int scale; // cells of a column: 2 in rows of double width
    };

    RowShape ShapeOf(int row) const;
    QRect DeviceCell(int col, int row) const;
    QRect CursorCell() const; // device pixels; all of a wide character
    QRect FromDevice(const QRect& rect) const;
    void RebuildFont();
    void Frame();
    void FollowLines();
    qint64 FramePause() const; // milliseconds
    void Invalidate();
    void BlinkTurn();
    void KeepBlinking();
    bool BlinkingRowsShown() const;
    RowLook LookOf(int line) const;
    bool IsStale(int line) const;
    QRect LineRect(int line) const;
    int LineCount() const;     // of the screen and the status line
    int RowOf(int line) const; // the status line stays when the history is looked at
    bool CursorShown() const;
    void PaintGliding(QPainter& painter, RowPainter& rows);
    void PaintOverRows(QPainter& painter, RowPainter& rows);
    void PaintPictures(QPainter& painter);
    void PaintLine(QPainter& painter, RowPainter& rows, int line);
    void PaintCursor(QPainter& painter, RowPainter& rows);
    void PaintBar(QPainter& painter, const QRect& cell, emu::CursorShape shape, const QColor& color) const;
    void PaintLink(QPainter& painter) const;
    void PaintSigns(QPainter& painter) const;
    void PaintSign(QPainter& painter, const QString& text, Qt::Edge edge) const;
    int Margin() const; // device pixels

    ctlEmulator& emulator_;
    QWidget& host_;
    std::function<void()> frameShown_;
    std::unique_ptr<GridFont> font_;
    ColorScheme scheme_;
    Backdrop backdrop_;
    PictureLayer pictures_;
    double ratio_ = 0;  // device pixels in a pixel
    double zoom_ = 0;   // points more than the settings say
    double fitted_ = 0; // points for a screen of fixed size; 0: none
    std::vector<PaintedRow> painted_;
    PaintedCursor paintedCursor_;
    uint64_t softGlyphs_ = 0; // their changes up to the last frame
    int shownBack_ = 0;
    Glide glide_;
    int paintedOffset_ = 0;    // of the glide
    uint64_t linesPushed_ = 0; // when the glide was last told
    bool echoExpected_ = false;
    bool blinkHidden_ = false;
    bool flashing_ = false;
    QString sign_;
    QString preedit_;
    Marks marks_;
    std::vector<LinkSpan> link_;
    QElapsedTimer sinceFrame_;
    qint64 paintTime_ = 0; // of the last frame, in milliseconds
    QElapsedTimer held_;   // since the host began a synchronised update
    QTimer frame_;
    QTimer blink_;
    QTimer flash_;
    QTimer signEnd_;
};

} // namespace kestrune
