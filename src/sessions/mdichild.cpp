#include <sessions/mdichild.h>

#include <emulator/control/ctlemulator.h>
#include <emulator/view/terminalpane.h>
#include <menubar/tamenubar.h>
#include <ports/application.h>
#include <ports/questions.h>
#include <sessions/childlogic.h>
#include <sessions/sessionmark.h>
#include <sessions/tools.h>

#include "menukeys.h"
#include "sessionpanels.h"

#include <QAction>
#include <QApplication>
#include <QCloseEvent>
#include <QDesktopServices>
#include <QKeyEvent>
#include <QMdiArea>
#include <QMenu>
#include <QUrl>

#include <array>

namespace kestrune {

using namespace Qt::StringLiterals;

namespace {

constexpr std::array WindowStates = {Qt::WindowNoState, Qt::WindowMinimized, Qt::WindowMaximized};

int StateNumber(Qt::WindowStates states)
{
    if (states & Qt::WindowMinimized)
        return WindowMinimised;
    return states & Qt::WindowMaximized ? WindowMaximised : WindowNormal;
}

constexpr int TabKeyCode = 9, ControlKeyCode = 17; // the platform's numbers

struct PlatformKey
{
    int key = 0;   // the platform's code
    int shift = 0; // 1 shift, 2 control, 4 alt
};

PlatformKey FromKeyEvent(const QKeyEvent& event)
{
    PlatformKey key;
    if (event.key() == Qt::Key_Tab || event.key() == Qt::Key_Backtab)
        key.key = TabKeyCode;
    else if (event.key() == Qt::Key_Control)
        key.key = ControlKeyCode;
    const Qt::KeyboardModifiers modifiers = event.modifiers();
    key.shift = (modifiers & Qt::ShiftModifier ? 1 : 0) | (modifiers & Qt::ControlModifier ? 2 : 0) |
                (modifiers & Qt::AltModifier ? 4 : 0);
    return key;
}

} // namespace

frmMdiChild::frmMdiChild(ApplicationPort& application, std::unique_ptr<ctlEmulator> emulator,
                         std::unique_ptr<taMenuBar> menu)
    : application_(application), emulator_(std::move(emulator)), menu_(std::move(menu)),
      pane_(new TerminalPane(*emulator_)), view_(&pane_->View()),
      logic_(std::make_unique<ChildLogic>(application, *this)), mark_(std::make_unique<SessionMark>(*emulator_))
{
    setWidget(pane_);
    panels_ = new SessionPanels(*this, *view_); // a new child is an event for this window
    setAttribute(Qt::WA_DeleteOnClose, false);  // it goes by Unload
    TakeOverSystemMenu();
    view_->installEventFilter(this);
    connect(view_, &TerminalView::LinkActivated, this, &frmMdiChild::OpenLink);
    ChangeIcon({});
    SetState(application.InitChildWindowState());
    connect(this, &QMdiSubWindow::windowStateChanged, this, &frmMdiChild::StateChanged);
    connect(panels_, &SessionPanels::Pressed, this, [this](LineButton button) { logic_->PanelPressed(button); });
    connect(panels_, &SessionPanels::SecretsTyped, this,
            [this](const auto& take, bool remember) { logic_->SecretsTyped(take(), remember); });
}

frmMdiChild::~frmMdiChild()
{
    disconnect(this, nullptr, this, nullptr); // the base class still reports states while it goes
    view_->removeEventFilter(this);
    logic_.reset();
    mark_.reset();
    delete panels_; // before the terminal that it watches
    delete pane_;
}

void frmMdiChild::OpenLink(const QString& target, bool mustAsk)
{
    Questions& ask = application_.Ask();
    const auto owner = quintptr(winId());
    const QPointer self(this);
    const auto say = [&](const QString& text, int flags) {
        return ask.MsgBox({.text = text + u"\n\n"_s + target, .flags = flags, .title = {}, .owner = owner});
    };
    if (mustAsk && say(tr("Open this with the program that the desktop has for it?"),
                       MsgFlag::OkCancel + MsgFlag::Question) != MsgResult::Ok)
        return;
    if (self && !QDesktopServices::openUrl(QUrl(target))) // the session may have gone while the box was up
        say(tr("The desktop has no program that opens this:"), MsgFlag::Exclamation);
}

// The keys of the system menu's entries belong to the host.
void frmMdiChild::TakeOverSystemMenu()
{
    for (QAction* action : systemMenu()->actions()) {
        if (action->shortcut() == QKeySequence(QKeySequence::Close))
            closeAction_ = action;
        action->setShortcut({});
    }
}

MenuTools& frmMdiChild::Tools() { return *menu_; }
LinePanels& frmMdiChild::Panels() { return *panels_; }

// --- title and icon

void frmMdiChild::ChangeCaption(const QString& text)
{
    title_ = text;
    QString shown = text;
    setWindowTitle(shown.replace(u"[*]"_s, u"[*][*]"_s)); // the toolkit's mark for "modified", doubled: plain text
    if (isMaximized())
        application_.Frame()->RefreshCaption();
}

bool frmMdiChild::ChangeIcon(const QString& path)
{
    const QPixmap picture = path.isEmpty() ? QPixmap() : QPixmap(path);
    setWindowIcon(picture.isNull() ? QApplication::windowIcon() : QIcon(picture));
    application_.Frame()->RefreshSessionBar();
    return !picture.isNull();
}

// --- place and state

WindowPlace frmMdiChild::Place() const
{
    const QRect place = normalPlace_.isValid() ? normalPlace_ : geometry();
    return {place.left(), place.top(), place.width(), place.height(), State()};
}

void frmMdiChild::Move(int left, int top, int width, int height)
{
    normalPlace_ = QRect(left, top, width, height);
    if (State() == WindowNormal)
        setGeometry(normalPlace_);
}

int frmMdiChild::State() const { return isVisible() ? StateNumber(windowState()) : hiddenState_; }

void frmMdiChild::SetState(int state)
{
    hiddenState_ = state;
    if (isVisible())
        setWindowState((windowState() & Qt::WindowActive) | WindowStates[size_t(state)]);
}

void frmMdiChild::FollowToMaximised()
{
    const IgnoringEvents notRecorded(*this);
    SetState(WindowMaximised);
}

void frmMdiChild::FollowToNormal()
{
    const IgnoringEvents notRecorded(*this);
    setEnabled(false); // the toolkit hides and shows it for the change: it would take the front
    SetState(WindowNormal);
    setEnabled(true);
}

void frmMdiChild::KeepNormalPlace()
{
    if (isVisible() && State() == WindowNormal && !isShaded())
        normalPlace_ = geometry();
}

void frmMdiChild::StateChanged(Qt::WindowStates before, Qt::WindowStates now)
{
    if (unloaded_)
        return;
    if (isVisible() && StateNumber(before) != StateNumber(now)) {
        hiddenState_ = StateNumber(now);
        if (hiddenState_ == WindowNormal && normalPlace_.isValid())
            setGeometry(normalPlace_); // it may have been moved while maximised
        logic_->Resized();
    }
    if ((now & Qt::WindowActive) && !(before & Qt::WindowActive)) {
        logic_->MdiActivated();
        RunActivation();
    }
}

void frmMdiChild::SetVisible(bool on)
{
    if (!on) {
        hiddenState_ = State();
        hide();
        return;
    }
    if (isVisible())
        return;
    const int state = hiddenState_;
    if (normalPlace_.isValid())
        setGeometry(normalPlace_);
    if (state == WindowMaximised)
        showMaximized();
    else
        showNormal();
}

void frmMdiChild::ShowInactive()
{
    setAttribute(Qt::WA_ShowWithoutActivating);
    SetVisible(true);
    setAttribute(Qt::WA_ShowWithoutActivating, false);
}

void frmMdiChild::Activate()
{
    if (!isVisible() || State() == WindowMinimised)
        showNormal();
    if (QMdiArea* area = mdiArea())
        area->setActiveSubWindow(this);
}

void frmMdiChild::RunActivation()
{
    logic_->FrameActivated();
    logic_->Activated();
}

void frmMdiChild::RunResize() { logic_->Resized(); }

void frmMdiChild::moveEvent(QMoveEvent* event)
{
    QMdiSubWindow::moveEvent(event);
    KeepNormalPlace();
    if (isVisible() && !unloaded_)
        logic_->Resized();
}

void frmMdiChild::resizeEvent(QResizeEvent* event)
{
    QMdiSubWindow::resizeEvent(event);
    KeepNormalPlace();
    if (isVisible() && !unloaded_)
        logic_->Resized();
}

// --- focus and keys

void frmMdiChild::TakeFocus()
{
    if (panels_->Shown() != LinePanel::None)
        panels_->TakeFocus();
    else
        view_->setFocus(Qt::OtherFocusReason);
}

void frmMdiChild::TakeWindowFocus() { setFocus(Qt::OtherFocusReason); }

bool frmMdiChild::FocusIsOnWindow() const { return QApplication::focusWidget() == this; }

bool frmMdiChild::event(QEvent* event)
{
    if (!unloaded_ && event->type() == QEvent::WindowActivate)
        logic_->FrameActivated();
    if (!unloaded_ && event->type() == QEvent::WindowDeactivate && logic_->FrameDeactivated())
        return true;
    return QMdiSubWindow::event(event);
}

bool frmMdiChild::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == view_ && !unloaded_) {
        if (event->type() == QEvent::ShortcutOverride && MenusTake(*menu_, *static_cast<QKeyEvent*>(event))) {
            event->ignore(); // the terminal must not claim it
            return true;
        }
        if (event->type() == QEvent::KeyPress) {
            const PlatformKey key = FromKeyEvent(*static_cast<QKeyEvent*>(event));
            if (key.key != 0 && logic_->KeyDown(key.key, key.shift))
                return true;
        } else if (event->type() == QEvent::KeyRelease) {
            logic_->KeyUp(FromKeyEvent(*static_cast<QKeyEvent*>(event)).key);
        }
    }
    return QMdiSubWindow::eventFilter(watched, event);
}

// --- menu

void frmMdiChild::SetCanClose(bool on)
{
    if (closeAction_)
        closeAction_->setEnabled(on);
}

bool frmMdiChild::ShowPopup(const QString& band)
{
    if (!menu_->Band(band))
        return false;
    emit PopupWanted(band);
    return true;
}

void frmMdiChild::RefreshMenu() { logic_->RefreshMenu(); }
void frmMdiChild::SetMenuDirty() { logic_->SetMenuDirty(); }

// --- state of the logic

bool frmMdiChild::IgnoreEvents() const { return logic_->IgnoreEvents(); }
void frmMdiChild::SetIgnoreEvents(bool on) { logic_->SetIgnoreEvents(on); }
bool frmMdiChild::IsClosing() const { return logic_->IsClosing(); }
void frmMdiChild::SetClosing() { logic_->SetClosing(); }
void frmMdiChild::PostClose() { logic_->PostClose(); }
void frmMdiChild::PostTransfer(const TransferRequest& request) { logic_->PostTransfer(request); }

// --- end

bool frmMdiChild::QueryUnload(int mode) { return logic_->CloseQuery(static_cast<UnloadMode>(mode)); }

void frmMdiChild::closeEvent(QCloseEvent* event)
{
    event->ignore();
    if (!unloaded_ && logic_->CanClose())
        logic_->CloseQuery(UnloadMode::CloseBox);
}

void frmMdiChild::Unload()
{
    if (unloaded_)
        return;
    unloaded_ = true;
    logic_->SetClosing();
    logic_->Unloaded();
    hide();
    emit Ended();
    deleteLater();
}

} // namespace kestrune
