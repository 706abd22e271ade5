#pragma once

// What fills a session's window: the terminal view, and the function bar on the side where the control wants it.

#include <emulator/view/functionbar.h>
#include <emulator/view/terminalview.h>

namespace kestrune {

class TerminalPane : public QWidget
{
    Q_OBJECT

public:
    explicit TerminalPane(ctlEmulator& emulator, QWidget* parent = nullptr); // emulator outlives the pane

    TerminalView& View() const { return *view_; }
    FunctionBar& Bar() const { return *bar_; }
    QSize sizeHint() const override; // that of the view, and the bar

protected:
    void resizeEvent(QResizeEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void Arrange();

    TerminalView* view_; // children
    FunctionBar* bar_;
};

} // namespace kestrune
