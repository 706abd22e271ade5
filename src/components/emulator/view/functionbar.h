#pragma once

// A row of buttons F1 to F12 with what the keys are for, along one side of a terminal. A click types the key. The
// first button goes on to the next bank; the right button of the mouse offers all of them.

#include <emulator/control/ctlemulator.h>

#include <QWidget>

#include <array>

namespace kestrune {

class FunctionBarButton;

class FunctionBar : public QWidget
{
    Q_OBJECT

public:
    explicit FunctionBar(ctlEmulator& emulator, QWidget* parent = nullptr); // emulator outlives the bar

    bool IsWanted() const { return emulator_.FuncBarBank() != 0; }
    Qt::Edge Edge() const; // of the terminal
    int Thickness() const; // pixels, away from the edge
    int ShownBank() const; // as in functionkeys.h
    // The modifiers that are down, for a bar that follows the keyboard.
    void SetModifiers(uint8_t modifiers);

protected:
    void resizeEvent(QResizeEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void changeEvent(QEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;

private:
    bool IsUpright() const;
    void FillButtons();
    void PlaceButtons();
    void NextBank();

    ctlEmulator& emulator_;
    uint8_t modifiers_ = 0;
    FunctionBarButton* bank_;
    std::array<FunctionBarButton*, 12> keys_{}; // children
};

} // namespace kestrune
