#pragma once

// What the mouse does in a terminal view: reports to a host that asks for them, else selection, paste, scrolling.
// Shift always means this side.

#include "screencanvas.h"
#include "selectiongesture.h"

#include <QElapsedTimer>
#include <QMouseEvent>
#include <QTimer>
#include <QWheelEvent>

namespace kestrune {

class PointerInput
{
public:
    PointerInput(ctlEmulator& emulator, QWidget& host, ScreenCanvas& canvas);

    void Press(const QMouseEvent& event);
    void Move(const QMouseEvent& event);
    void Release(const QMouseEvent& event);
    void Wheel(const QWheelEvent& event);
    void OpenMenu(QPoint at); // on the desktop
    void FollowModes();       // the host may have asked for reports, or for none: pointer shape and tracking

private:
    TextPlace PlaceAt(QPointF position) const;
    bool HostWantsMouse(Qt::KeyboardModifiers modifiers) const;
    bool Report(emu::MouseKind kind, emu::MouseButton button, const QPointF& position, Qt::KeyboardModifiers modifiers);
    void ScrollWhileSelecting();
    bool AnswerFromTable(const QMouseEvent& event); // false: nothing in the mouse table is for this click
    void CountClick(const QMouseEvent& event);

    ctlEmulator& emulator_;
    QWidget& host_;
    ScreenCanvas& canvas_;
    SelectionGesture gesture_;
    emu::MouseButton reported_ = emu::MouseButton::None; // the button whose press the host knows of
    emu::Position lastReport_{-1, -1};
    int clicks_ = 0;
    QElapsedTimer sinceClick_;
    QPointF lastClick_;
    QPointF lastMove_;
    QTimer scroll_; // while the pointer is held above or below the text
    int wheelRest_ = 0;
};

} // namespace kestrune
