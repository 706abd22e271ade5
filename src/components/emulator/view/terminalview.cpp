#include "terminalview.h"

#include "droppedtext.h"
#include "finder.h"
#include "heldkey.h"
#include "keymap.h"
#include "pointerinput.h"
#include "screencanvas.h"
#include "terminalaccess.h"

#include <QAccessible>
#include <QContextMenuEvent>
#include <QDragEnterEvent>
#include <QInputMethodEvent>
#include <QMimeData>
#include <QPaintEvent>
#include <QPainter>
#include <QPointer>
#include <QScrollBar>

#include <array>

namespace kestrune {

using namespace Qt::StringLiterals;

namespace {

constexpr int kBarWidth = 12;
constexpr int kSettleMilliseconds = 60; // a window that is being dragged has settled when no resize came for this
constexpr int kSettled = 1000;          // after it was shown
constexpr int kQuietBell = 250;         // bells closer than this are one

// Desktops do not all say which of their schemes is a dark one; their colours do.
Ground GroundOf(const QPalette& desktop)
{
    const auto lightness = [&desktop](QPalette::ColorRole role) { return desktop.color(role).lightness(); };
    return lightness(QPalette::WindowText) > lightness(QPalette::Window) ? Ground::Dark : Ground::Light;
}

} // namespace

class TerminalView::Parts
{
public:
    Parts(ctlEmulator& emulator, TerminalView& view, std::function<void()> frameShown)
        : canvas(emulator, view, std::move(frameShown)),
          pointer(emulator, view, canvas,
                  [&view](const QString& target) { emit view.LinkActivated(target, UseOf(target) == LinkUse::Ask); }),
          bar(&view), finder(emulator, view, [this] { canvas.MarksChanged(); }), announcer(view)
    {
        bar.setCursor(Qt::ArrowCursor);
        bar.setFocusPolicy(Qt::NoFocus);
        canvas.SetMarks([this](int row) { return finder.SpansOf(row); });
        settle.setSingleShot(true);
        settle.setInterval(kSettleMilliseconds);
    }

    void StyleBar()
    {
        const QColor ink(canvas.RoleColor(PaletteRole::Foreground));
        const auto shade = [&ink](int alpha) {
            return u"rgba(%1,%2,%3,%4)"_s.arg(ink.red()).arg(ink.green()).arg(ink.blue()).arg(alpha);
        };
        bar.setStyleSheet(u"QScrollBar{background:%1;width:%2px;margin:0;border:0}"
                          "QScrollBar::handle{background:%3;min-height:24px;border-radius:4px;margin:2px}"
                          "QScrollBar::handle:hover{background:%4}"
                          "QScrollBar::add-line,QScrollBar::sub-line{height:0}"
                          "QScrollBar::add-page,QScrollBar::sub-page{background:none}"_s
                              .arg(QColor(canvas.RoleColor(PaletteRole::Background)).name())
                              .arg(kBarWidth)
                              .arg(shade(70), shade(130)));
    }

    ScreenCanvas canvas;
    PointerInput pointer;
    QScrollBar bar;
    Finder finder;
    ScreenAnnouncer announcer;
    QTimer settle;
    HeldKey held;
    QElapsedTimer sinceShown;
    QElapsedTimer sinceBell;
};

TerminalView::TerminalView(ctlEmulator& emulator, QWidget* parent) : QWidget(parent), emulator_(emulator)
{
    InstallTerminalAccess();
    setAttribute(Qt::WA_OpaquePaintEvent);
    setAttribute(Qt::WA_InputMethodEnabled);
    setFocusPolicy(Qt::StrongFocus);
    setCursor(Qt::IBeamCursor);
    setAcceptDrops(true);
    emulator.SetDesktopGround(GroundOf(palette()));
    parts_ = std::make_unique<Parts>(emulator, *this, [this] {
        UpdateScrollBar();
        parts_->pointer.FollowModes();
        parts_->finder.ScreenShown();
        if (QAccessible::isActive())
            parts_->announcer.FrameShown();
        if (hasFocus())
            updateMicroFocus();
    });
    parts_->StyleBar();

    connect(&emulator, &ctlEmulator::ScreenChanged, this, [this] { parts_->canvas.ScreenChanged(); });
    connect(&emulator, &ctlEmulator::KeyWasTyped, this, [this] { parts_->canvas.KeyWasTyped(); });
    connect(&emulator, &ctlEmulator::LookChanged, this, [this] {
        parts_->canvas.LookChanged();
        parts_->StyleBar();
        ApplyGrid();
    });
    connect(&emulator, &ctlEmulator::GridChanged, this, &TerminalView::ApplyGrid);
    connect(&emulator, &ctlEmulator::PicturesChanged, this, [this] { parts_->canvas.PicturesChanged(); });
    connect(&emulator, &ctlEmulator::Bell, this, [this] {
        if (!parts_->sinceBell.isValid() || parts_->sinceBell.elapsed() > kQuietBell)
            parts_->canvas.Flash();
        parts_->sinceBell.start();
    });
    connect(&emulator, &ctlEmulator::InputRefused, this, [this] {
        parts_->canvas.ShowSign(emulator_.LockKeyboard() ? tr("The keyboard is locked") : tr("Not connected"));
    });
    connect(&parts_->settle, &QTimer::timeout, this, &TerminalView::ApplyGrid);
    connect(&parts_->bar, &QScrollBar::valueChanged, this,
            [this](int value) { emulator_.ScrollTo(parts_->bar.maximum() - value); });
}

TerminalView::~TerminalView() = default;

ctlEmulator& TerminalView::Emulator() const { return emulator_; }

// --- size

QSize TerminalView::SizeForGrid(int cols, int rows) const
{
    return parts_->canvas.SizeFor(cols, rows) + QSize(kBarWidth, 0);
}

QSize TerminalView::sizeHint() const
{
    return SizeForGrid(emulator_.Settings().Integer(Setting("NormCols")),
                       emulator_.Settings().Integer(Setting("NormRows")));
}

QRect TerminalView::CellRect(int col, int row) const { return parts_->canvas.CellRect(col, row); }

void TerminalView::Zoom(int steps)
{
    const double now = parts_->canvas.Points();
    parts_->canvas.SetZoom(0);
    if (steps != 0)
        parts_->canvas.SetZoom(now + steps - parts_->canvas.Points());
    ApplyGrid();
}

void TerminalView::ApplyGrid()
{
    parts_->settle.stop();
    if (!isVisible())
        return; // the size is settled when it is shown
    const QSize room = size() - QSize(kBarWidth, 0);
    const emu::ModesView modes = emulator_.Screen().Modes();
    const bool isFixed = modes.extended || modes.rowsOfHost;
    parts_->canvas.FitFont(std::nullopt, room);
    const emu::Size grid = parts_->canvas.FitInto(room);
    const emu::Size screen = isFixed ? emulator_.Screen().ScreenSize() : grid;
    if (isFixed)
        parts_->canvas.FitFont(screen, room);
    const QSize pixels = parts_->canvas.GridPixels(screen);
    emulator_.Resize(grid.cols, grid.rows, pixels.width(), pixels.height());
}

void TerminalView::resizeEvent(QResizeEvent*)
{
    parts_->bar.setGeometry(width() - kBarWidth, 0, kBarWidth, height());
    parts_->finder.KeepPlace(width() - kBarWidth);
    // One resize is a window that finds its place; more of them come from someone who drags its edge.
    if (parts_->settle.isActive() && parts_->sinceShown.isValid() && parts_->sinceShown.elapsed() > kSettled) {
        const emu::Size grid = parts_->canvas.FitInto(size() - QSize(kBarWidth, 0));
        parts_->canvas.ShowSign(tr("%1 × %2").arg(grid.cols).arg(grid.rows));
    }
    parts_->settle.start();
}

void TerminalView::showEvent(QShowEvent*)
{
    emulator_.SetHwnd(effectiveWinId());
    parts_->sinceShown.start();
    ApplyGrid();
    UpdateScrollBar();
}

void TerminalView::UpdateScrollBar()
{
    QScrollBar& bar = parts_->bar;
    const QSignalBlocker blocker(bar);
    const int count = emulator_.Screen().HistoryCount();
    bar.setRange(0, count);
    bar.setPageStep(emulator_.Rows());
    bar.setValue(count - emulator_.RowsBack());
    bar.setVisible(count > 0); // its room is kept free, so that the grid does not change
}

void TerminalView::paintEvent(QPaintEvent* event)
{
    QPainter painter(this);
    parts_->canvas.Paint(painter, event->region());
}

// --- keys

namespace {

enum class ViewKey
{
    Paste,
    Copy,
    PageUp,
    PageDown,
    Top,
    Bottom,
    Larger,
    Smaller,
    UsualSize,
    Find
};

struct ViewKeyRow
{
    int key;
    Qt::KeyboardModifiers modifiers;
    ViewKey action;
};

const std::array kViewKeys{
    ViewKeyRow{Qt::Key_Insert, Qt::ShiftModifier, ViewKey::Paste},
    ViewKeyRow{Qt::Key_V, Qt::ControlModifier | Qt::ShiftModifier, ViewKey::Paste},
    ViewKeyRow{Qt::Key_Insert, Qt::ControlModifier, ViewKey::Copy},
    ViewKeyRow{Qt::Key_C, Qt::ControlModifier | Qt::ShiftModifier, ViewKey::Copy},
    ViewKeyRow{Qt::Key_PageUp, Qt::ShiftModifier, ViewKey::PageUp},
    ViewKeyRow{Qt::Key_PageDown, Qt::ShiftModifier, ViewKey::PageDown},
    ViewKeyRow{Qt::Key_Home, Qt::ControlModifier | Qt::ShiftModifier, ViewKey::Top},
    ViewKeyRow{Qt::Key_End, Qt::ControlModifier | Qt::ShiftModifier, ViewKey::Bottom},
    ViewKeyRow{Qt::Key_Plus, Qt::ControlModifier, ViewKey::Larger},
    ViewKeyRow{Qt::Key_Plus, Qt::ControlModifier | Qt::ShiftModifier, ViewKey::Larger},
    ViewKeyRow{Qt::Key_Equal, Qt::ControlModifier, ViewKey::Larger},
    ViewKeyRow{Qt::Key_Minus, Qt::ControlModifier, ViewKey::Smaller},
    ViewKeyRow{Qt::Key_0, Qt::ControlModifier, ViewKey::UsualSize},
    ViewKeyRow{Qt::Key_F, Qt::ControlModifier | Qt::ShiftModifier, ViewKey::Find},
};

} // namespace

bool TerminalView::RunViewKey(const QKeyEvent& event, int code)
{
    const auto modifiers = event.modifiers() & ~Qt::KeyboardModifiers(Qt::KeypadModifier);
    const auto row = std::find_if(kViewKeys.begin(), kViewKeys.end(), [&](const ViewKeyRow& r) {
        return r.key == event.key() && r.modifiers == modifiers;
    });
    if (row == kViewKeys.end() || (code != 0 && !emulator_.KeyFunction(code).isEmpty()))
        return false;
    switch (row->action) {
    case ViewKey::Paste:
        emulator_.Paste();
        break;
    case ViewKey::Copy:
        emulator_.Copy();
        break;
    case ViewKey::PageUp:
        emulator_.ScrollHistory(int(ScrollCommand::PageUp));
        break;
    case ViewKey::PageDown:
        emulator_.ScrollHistory(int(ScrollCommand::PageDown));
        break;
    case ViewKey::Top:
        emulator_.ScrollHistory(int(ScrollCommand::Top));
        break;
    case ViewKey::Bottom:
        emulator_.ScrollHistory(int(ScrollCommand::Bottom));
        break;
    case ViewKey::Larger:
        Zoom(1);
        break;
    case ViewKey::Smaller:
        Zoom(-1);
        break;
    case ViewKey::UsualSize:
        Zoom(0);
        break;
    case ViewKey::Find:
        Find();
        break;
    }
    return true;
}

bool TerminalView::event(QEvent* event)
{
    // Alt and a letter is the host's: without this the menu bar would take it for its mnemonics.
    if (event->type() == QEvent::ShortcutOverride) {
        const auto modifiers = static_cast<QKeyEvent*>(event)->modifiers();
        if (modifiers.testFlag(Qt::AltModifier) && !modifiers.testFlag(Qt::ControlModifier)) {
            event->accept();
            return true;
        }
    }
    if (event->type() == QEvent::ToolTip) {
        if (!parts_->pointer.ShowTip(static_cast<QHelpEvent&>(*event)))
            event->ignore();
        return true;
    }
    return QWidget::event(event);
}

void TerminalView::Find()
{
    parts_->finder.Open();
    parts_->finder.KeepPlace(width() - kBarWidth);
}

void TerminalView::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Control)
        parts_->pointer.ControlKey(true);
    const auto mapped = MapKey(*event);
    if (!mapped) {
        event->ignore();
        return;
    }
    const bool walks = mapped->press.key == emu::Key::Tab && (mapped->press.modifiers & emu::Modifier::Control) != 0;
    if (walks && emulator_.KeyFunction(mapped->code).isEmpty()) {
        event->ignore(); // the window goes through its sessions
        return;
    }
    if (RunViewKey(*event, mapped->code))
        return;
    if (!emulator_.Screen().Modes().autoRepeat && parts_->held.IsRepeat(*event))
        return;
    emulator_.TypeKey(mapped->press, mapped->code);
}

void TerminalView::keyReleaseEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Control)
        parts_->pointer.ControlKey(false);
    parts_->held.Released(*event);
    event->ignore();
}

bool TerminalView::focusNextPrevChild(bool) { return false; } // Tab is the host's

// --- input methods

void TerminalView::inputMethodEvent(QInputMethodEvent* event)
{
    parts_->canvas.SetPreedit(event->preeditString());
    emulator_.TypeText(event->commitString());
    event->accept();
}

QVariant TerminalView::inputMethodQuery(Qt::InputMethodQuery query) const
{
    switch (query) {
    case Qt::ImEnabled:
        return true;
    case Qt::ImCursorRectangle:
    case Qt::ImAnchorRectangle:
        return parts_->canvas.CursorRect();
    case Qt::ImCurrentSelection:
        return emulator_.Selection();
    case Qt::ImFont:
        return parts_->canvas.Font();
    case Qt::ImHints:
        return int(Qt::ImhNoAutoUppercase | Qt::ImhNoPredictiveText);
    default:
        return QWidget::inputMethodQuery(query);
    }
}

// --- mouse and focus

void TerminalView::mousePressEvent(QMouseEvent* event) { parts_->pointer.Press(*event); }
void TerminalView::mouseDoubleClickEvent(QMouseEvent* event) { parts_->pointer.Press(*event); }
void TerminalView::mouseMoveEvent(QMouseEvent* event) { parts_->pointer.Move(*event); }
void TerminalView::mouseReleaseEvent(QMouseEvent* event) { parts_->pointer.Release(*event); }
void TerminalView::wheelEvent(QWheelEvent* event)
{
    parts_->pointer.Wheel(*event);
    event->accept();
}

void TerminalView::contextMenuEvent(QContextMenuEvent* event)
{
    if (event->reason() == QContextMenuEvent::Keyboard) // the mouse has its own way, since a host may want it
        parts_->pointer.OpenMenu(mapToGlobal(parts_->canvas.CursorRect().bottomLeft()));
}

// --- drop

void TerminalView::dragEnterEvent(QDragEnterEvent* event)
{
    if (event->mimeData()->hasUrls() || event->mimeData()->hasText())
        event->acceptProposedAction();
}

void TerminalView::dropEvent(QDropEvent* event)
{
    const QMimeData& dropped = *event->mimeData();
    event->setDropAction(Qt::CopyAction); // nothing is taken away from where it came from
    event->accept();
    setFocus(Qt::MouseFocusReason);
    emulator_.PasteDropped(dropped.hasUrls() ? TextOfDroppedUrls(dropped.urls()) : dropped.text());
}

void TerminalView::changeEvent(QEvent* event)
{
    if (event->type() == QEvent::PaletteChange)
        emulator_.SetDesktopGround(GroundOf(palette()));
    QWidget::changeEvent(event);
}

void TerminalView::focusInEvent(QFocusEvent*)
{
    emulator_.SendFocus(true);
    parts_->canvas.FocusChanged();
}

void TerminalView::focusOutEvent(QFocusEvent*)
{
    emulator_.SendFocus(false);
    parts_->canvas.SetPreedit({});
    parts_->pointer.ControlKey(false); // its release goes elsewhere
    parts_->canvas.FocusChanged();
}

} // namespace kestrune
