#pragma once

// What the mouse does in a terminal view: reports to a host that asks for them, else selection, paste, scrolling.
// Shift always means this side.

#include "screencanvas.h"
#include "selectiongesture.h"

#include <QElapsedTimer>
#include <QHelpEvent>
#include <QMouseEvent>
#include <QTimer>
#include <QWheelEvent>

#include <functional>
#include <optional>

namespace kestrune {

class PointerInput
{
public:
    // openLink: the user has asked for a link by Ctrl and a click.
    PointerInput(ctlEmulator& emulator, QWidget& host, ScreenCanvas& canvas,
                 std::function<void(const QString& target)> openLink);

    void Press(const QMouseEvent& event);
    void Move(const QMouseEvent& event);
    void Release(const QMouseEvent& event);
    void Wheel(const QWheelEvent& event);
    void OpenMenu(QPoint at,
                  const QString& band = {}); // on the desktop; band: of the menu bar, empty for the usual one
    void ControlKey(bool down);
    bool ShowTip(const QHelpEvent& event); // where a link leads; false: there is none
    void FollowModes(); // the host may have asked for reports, or for none: pointer shape and tracking

private:
    bool HostWantsMouse(Qt::KeyboardModifiers modifiers) const;
    bool Report(emu::MouseKind kind, emu::MouseButton button, const QPointF& position, Qt::KeyboardModifiers modifiers);
    void ScrollWhileSelecting();
    bool AnswerFromTable(const QMouseEvent& event);        // false: nothing in the mouse table is for this click
    QString MenuFromTable(const QMouseEvent& event) const; // the band; empty: the usual one
    std::optional<Link> LinkUnder(QPointF position, Qt::KeyboardModifiers modifiers) const;
    void ShowLink();
    void FollowPointer(bool onLink);
    void CountClick(const QMouseEvent& event);

    ctlEmulator& emulator_;
    QWidget& host_;
    ScreenCanvas& canvas_;
    std::function<void(const QString&)> openLink_;
    SelectionGesture gesture_;
    Qt::KeyboardModifiers held_;
    std::optional<Link> pressedLink_;
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
