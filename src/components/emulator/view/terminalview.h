#pragma once

// The window onto an emulator control: paints its screen and history, and hands it keys, mouse, paste and the
// number of cells that fit. Painting follows the screen at most once a frame, whatever the host sends.
//
// All keys belong to the host but these, and each of them only while no text is given to it in the settings'
// function keys: Ctrl+Tab (the window's), Shift+Ins and Ctrl+Shift+V paste, Ctrl+Ins and Ctrl+Shift+C copy,
// Shift+PgUp, Shift+PgDn, Ctrl+Shift+Home and Ctrl+Shift+End history, Ctrl and plus, minus or 0 the size of the
// text, Ctrl+Shift+F find, the menu key. Shortcuts of actions in the window come first, so the menus decide about every
// other key; Alt and a letter never opens a menu.

#include <emulator/control/ctlemulator.h>

#include <QWidget>

#include <memory>

namespace kestrune {

class TerminalView : public QWidget
{
    Q_OBJECT

public:
    explicit TerminalView(ctlEmulator& emulator, QWidget* parent = nullptr); // emulator outlives the view
    ~TerminalView() override;

    ctlEmulator& Emulator() const;
    QSize sizeHint() const override;             // the normal grid of the settings
    QSize SizeForGrid(int cols, int rows) const; // pixels, margins and scroll bar included
    void Zoom(int steps);                        // points; 0: back to the size of the settings
    QRect CellRect(int col, int row) const;      // of a row as it is shown now, widget coordinates
    void Find();                                 // opens the bar

signals:
    // The user has asked for a link by Ctrl and a click. mustAsk: show the target and ask before it is opened.
    void LinkActivated(const QString& target, bool mustAsk);

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void keyReleaseEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;
    void changeEvent(QEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void inputMethodEvent(QInputMethodEvent* event) override;
    QVariant inputMethodQuery(Qt::InputMethodQuery query) const override;
    bool focusNextPrevChild(bool next) override;

private:
    class Parts;

    void ApplyGrid();
    void UpdateScrollBar();
    bool RunViewKey(const QKeyEvent& event, int code);

    ctlEmulator& emulator_;
    std::unique_ptr<Parts> parts_;
};

} // namespace kestrune
