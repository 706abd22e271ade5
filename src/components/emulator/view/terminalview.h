#pragma once

// The window onto an emulator control: paints its screen and history, and hands it keys, mouse, paste and the
// number of cells that fit. Painting follows the screen at most once a frame, whatever the host sends.

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

private:
    class Impl;
    std::unique_ptr<Impl> impl_;
};

} // namespace kestrune
