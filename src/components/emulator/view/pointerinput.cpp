#include "pointerinput.h"

#include "keymap.h"

#include <emulator/control/mousereply.h>

#include <QApplication>
#include <QMenu>
#include <QStyleHints>
#include <QToolTip>

#include <algorithm>
#include <cmath>

namespace kestrune {

namespace {

constexpr int kScrollMilliseconds = 40;
constexpr int kWheelNotch = 120; // eighths of a degree
constexpr int kRowsANotch = 3;

emu::MouseButton MapButton(Qt::MouseButton button)
{
    switch (button) {
    case Qt::LeftButton:
        return emu::MouseButton::Left;
    case Qt::MiddleButton:
        return emu::MouseButton::Middle;
    case Qt::RightButton:
        return emu::MouseButton::Right;
    default:
        return emu::MouseButton::None;
    }
}

int EventButton(Qt::MouseButton button) // as the control's events number them
{
    return button == Qt::LeftButton ? 1 : button == Qt::RightButton ? 2 : 4;
}

} // namespace

PointerInput::PointerInput(ctlEmulator& emulator, QWidget& host, ScreenCanvas& canvas,
                           std::function<void(const QString& target)> openLink)
    : emulator_(emulator), host_(host), canvas_(canvas), openLink_(std::move(openLink)), gesture_(emulator)
{
    host_.setMouseTracking(true); // links are shown under a pointer with no button down
    scroll_.setInterval(kScrollMilliseconds);
    QObject::connect(&scroll_, &QTimer::timeout, &host_, [this] { ScrollWhileSelecting(); });
}

bool PointerInput::HostWantsMouse(Qt::KeyboardModifiers modifiers) const
{
    return emulator_.Screen().Modes().mouse != emu::MouseReport::None && emulator_.RowsBack() == 0 &&
           !modifiers.testFlag(Qt::ShiftModifier);
}

bool PointerInput::Report(emu::MouseKind kind, emu::MouseButton button, const QPointF& position,
                          Qt::KeyboardModifiers modifiers)
{
    const TextPlace place = canvas_.PlaceAt(position);
    lastReport_ = {place.cell, place.row};
    return emulator_.SendMouse({kind, button, MapModifiers(modifiers), place.cell, place.row});
}

void PointerInput::CountClick(const QMouseEvent& event)
{
    const bool again = clicks_ > 0 && sinceClick_.isValid() &&
                       sinceClick_.elapsed() < QApplication::doubleClickInterval() &&
                       (event.position() - lastClick_).manhattanLength() < QApplication::startDragDistance();
    clicks_ = again ? clicks_ + 1 : 1;
    lastClick_ = event.position();
    sinceClick_.start();
}

// With Shift the text can still be selected.
bool PointerInput::AnswerFromTable(const QMouseEvent& event)
{
    if (emulator_.MouseTable().empty() || event.modifiers().testFlag(Qt::ShiftModifier))
        return false;
    const TextPlace place = canvas_.PlaceAt(event.position());
    const bool twice = event.type() == QEvent::MouseButtonDblClick;
    const auto reply = MouseReply(emulator_, {EventButton(event.button()), twice, place.cell, place.row});
    if (reply)
        emulator_.TypeText(*reply);
    return reply.has_value();
}

QString PointerInput::MenuFromTable(const QMouseEvent& event) const
{
    if (event.modifiers().testFlag(Qt::ShiftModifier))
        return {};
    const TextPlace place = canvas_.PlaceAt(event.position());
    return MouseReply(emulator_, {MenuButton, false, place.cell, place.row}).value_or(QString());
}

void PointerInput::Press(const QMouseEvent& event)
{
    lastMove_ = event.position();
    emit emulator_.MouseDown(EventButton(event.button()), MapModifiers(event.modifiers()), int(event.position().x()),
                             int(event.position().y()));
    if (HostWantsMouse(event.modifiers())) {
        const emu::MouseButton button = MapButton(event.button());
        if (Report(emu::MouseKind::Press, button, event.position(), event.modifiers())) {
            reported_ = button;
            return;
        }
    }
    if (AnswerFromTable(event))
        return;
    switch (event.button()) {
    case Qt::LeftButton:
        pressedLink_ = LinkUnder(event.position(), event.modifiers());
        if (pressedLink_)
            return;
        if (event.modifiers().testFlag(Qt::ShiftModifier)) {
            clicks_ = 0;
            gesture_.Extend(canvas_.PlaceAt(event.position()));
            return;
        }
        CountClick(event);
        gesture_.Press(canvas_.PlaceAt(event.position()), clicks_, event.modifiers().testFlag(Qt::AltModifier));
        return;
    case Qt::MiddleButton:
        emulator_.PastePrimary();
        return;
    case Qt::RightButton:
        OpenMenu(event.globalPosition().toPoint(), MenuFromTable(event));
        return;
    default:
        return;
    }
}

void PointerInput::Move(const QMouseEvent& event)
{
    lastMove_ = event.position();
    if (held_ != event.modifiers() || held_.testFlag(Qt::ControlModifier)) {
        held_ = event.modifiers();
        ShowLink();
    }
    if (gesture_.IsActive()) {
        gesture_.Extend(canvas_.PlaceAt(event.position()));
        const bool outside = event.position().y() < 0 || event.position().y() >= host_.height();
        if (outside != scroll_.isActive())
            outside ? scroll_.start() : scroll_.stop();
        return;
    }
    const emu::MouseReport wanted = emulator_.Screen().Modes().mouse;
    const bool dragged = reported_ != emu::MouseButton::None && wanted != emu::MouseReport::Click;
    if (!dragged && !(wanted == emu::MouseReport::Motion && HostWantsMouse(event.modifiers())))
        return;
    const TextPlace place = canvas_.PlaceAt(event.position());
    if (lastReport_ != emu::Position{place.cell, place.row})
        Report(emu::MouseKind::Move, reported_, event.position(), event.modifiers());
}

void PointerInput::Release(const QMouseEvent& event)
{
    scroll_.stop();
    if (reported_ != emu::MouseButton::None) {
        Report(emu::MouseKind::Release, std::exchange(reported_, emu::MouseButton::None), event.position(),
               event.modifiers());
        return;
    }
    if (event.button() != Qt::LeftButton)
        return;
    gesture_.Release();
    // Pressed and let go on the same link; a drag away from it changes one's mind.
    if (const auto pressed = std::exchange(pressedLink_, std::nullopt);
        pressed && LinkUnder(event.position(), event.modifiers()) == pressed)
        openLink_(pressed->target);
}

std::optional<Link> PointerInput::LinkUnder(QPointF position, Qt::KeyboardModifiers modifiers) const
{
    if (!modifiers.testFlag(Qt::ControlModifier) || HostWantsMouse(modifiers))
        return std::nullopt;
    const TextPlace place = canvas_.PlaceAt(position);
    return LinkAt(emulator_.Screen(), place.row, place.cell);
}

void PointerInput::ShowLink()
{
    const auto link = host_.underMouse() ? LinkUnder(lastMove_, held_) : std::nullopt;
    canvas_.SetLink(link ? link->spans : std::vector<LinkSpan>{});
    FollowPointer(link.has_value());
}

void PointerInput::ControlKey(bool down)
{
    held_.setFlag(Qt::ControlModifier, down);
    ShowLink();
}

bool PointerInput::ShowTip(const QHelpEvent& event)
{
    const TextPlace place = canvas_.PlaceAt(event.pos());
    const auto link = LinkAt(emulator_.Screen(), place.row, place.cell);
    if (!link) {
        QToolTip::hideText();
        return false;
    }
    QToolTip::showText(event.globalPos(),
                       QCoreApplication::translate("TerminalView", "%1\nCtrl+click opens it").arg(link->target),
                       &host_);
    return true;
}

void PointerInput::ScrollWhileSelecting()
{
    if (!gesture_.IsActive()) {
        scroll_.stop();
        return;
    }
    const double beyond = lastMove_.y() < 0 ? -lastMove_.y() : lastMove_.y() - host_.height();
    const int rows = 1 + int(beyond * host_.devicePixelRatioF() / canvas_.CellHeight());
    emulator_.ScrollTo(emulator_.RowsBack() + (lastMove_.y() < 0 ? rows : -rows));
    gesture_.Extend(canvas_.PlaceAt(lastMove_));
}

void PointerInput::Wheel(const QWheelEvent& event)
{
    wheelRest_ += event.angleDelta().y();
    const int notches = wheelRest_ / kWheelNotch;
    const int rows = wheelRest_ * kRowsANotch / kWheelNotch;
    const bool up = event.angleDelta().y() > 0;
    const bool toHost = HostWantsMouse(event.modifiers());
    const int steps = toHost ? notches : rows;
    wheelRest_ -= toHost ? notches * kWheelNotch : rows * kWheelNotch / kRowsANotch;

    if (toHost) {
        for (int i = 0; i < std::abs(steps); ++i)
            Report(emu::MouseKind::Press, up ? emu::MouseButton::WheelUp : emu::MouseButton::WheelDown,
                   event.position(), event.modifiers());
    } else if (emulator_.Screen().Modes().alternateScreen && emulator_.RowsBack() == 0 &&
               !event.modifiers().testFlag(Qt::ShiftModifier) && emulator_.Connected()) {
        // A full-screen program has no history: it scrolls by its own keys.
        for (int i = 0; i < std::abs(steps); ++i)
            emulator_.TypeKey({up ? emu::Key::Up : emu::Key::Down, emu::Modifier::None, {}});
    } else if (steps != 0) {
        emulator_.ScrollTo(emulator_.RowsBack() + steps);
    }
}

void PointerInput::OpenMenu(QPoint at, const QString& band)
{
    bool handled = false;
    emit emulator_.ContextMenu(band.isEmpty() ? 2 : MenuButton, at.x(), at.y(), band, &handled);
    if (handled)
        return;
    auto* menu = new QMenu(&host_);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    auto* copy = menu->addAction(QObject::tr("&Copy"), &host_, [this] { emulator_.Copy(); });
    copy->setEnabled(emulator_.SelectedArea().has_value());
    auto* paste = menu->addAction(QObject::tr("&Paste"), &host_, [this] { emulator_.Paste(); });
    paste->setEnabled(emulator_.CanPaste());
    menu->addAction(QObject::tr("Select &All"), &host_,
                    [this] { emulator_.SetSelection(0, -emulator_.Screen().HistoryCount()); });
    menu->popup(at);
}

void PointerInput::FollowPointer(bool onLink)
{
    const bool hosts = emulator_.Screen().Modes().mouse != emu::MouseReport::None;
    const Qt::CursorShape shape = onLink ? Qt::PointingHandCursor : hosts ? Qt::ArrowCursor : Qt::IBeamCursor;
    if (host_.cursor().shape() != shape)
        host_.setCursor(shape);
}

void PointerInput::FollowModes()
{
    if (held_.testFlag(Qt::ControlModifier))
        ShowLink(); // other text may stand under the pointer
    else
        FollowPointer(false);
}

} // namespace kestrune
