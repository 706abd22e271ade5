#pragma once

// The child window of one session inside the main window's area: the emulator's view, and panels
// over it while the line needs the user. It
// owns the session's emulator control and menu, tells ChildLogic what happens to it, and does what its port asks.

#include <ports/sessionwindow.h>

#include <QMdiSubWindow>
#include <QPointer>

#include <memory>

class QAction;

namespace kestrune {

class ApplicationPort;
class ChildLogic;
class SessionMark;
class SessionPanels;
class taMenuBar;
class TerminalPane;
class TerminalView;

class frmMdiChild final : public QMdiSubWindow, public SessionWindow
{
    Q_OBJECT

public:
    // Hidden until the session shows it. The control comes from outside, because only the program's start knows
    // which lines there are; so does the menu, which the main window draws while this window is the active one.
    // The caller puts the window into its area.
    frmMdiChild(ApplicationPort& application, std::unique_ptr<ctlEmulator> emulator, std::unique_ptr<taMenuBar> menu);
    ~frmMdiChild() override;

    TerminalView& View() const { return *view_; }
    taMenuBar& Menu() const { return *menu_; }
    SessionMark& Mark() const { return *mark_; }
    // Asked before the main window closes, with the mode of its close query; false: this session stays.
    bool QueryUnload(int mode);

    // --- SessionWindow
    ctlEmulator& Emulator() override { return *emulator_; }
    MenuTools& Tools() override;
    LinePanels& Panels() override;
    void SetTag(const QString& id) override { tag_ = id; }
    QString Tag() const override { return tag_; }
    quintptr Handle() const override { return tag_.toULongLong(); } // the toolkit's views have none of their own
    void ChangeCaption(const QString& text) override;
    QString Title() const override { return title_; }
    bool ChangeIcon(const QString& path) override;
    WindowPlace Place() const override;
    void Move(int left, int top, int width, int height) override;
    void SetState(int state) override;
    // The state of the window in front is taken over; nobody did it to this one, so it is not recorded.
    void FollowToMaximised();
    void FollowToNormal();
    int State() const override;
    bool IsVisible() const override { return isVisible(); }
    bool IsEnabled() const override { return isEnabled(); }
    void SetVisible(bool on) override;
    void ShowInactive() override;
    void Activate() override;
    void RunActivation() override;
    void RunResize() override;
    void TakeFocus() override;
    void TakeWindowFocus() override;
    bool FocusIsOnWindow() const override;
    void SetCanClose(bool on) override;
    bool ShowPopup(const QString& band) override;
    void RefreshMenu() override;
    void SetMenuDirty() override;
    bool IgnoreEvents() const override;
    void SetIgnoreEvents(bool on) override;
    bool IsClosing() const override;
    void SetClosing() override;
    void Unload() override;
    void PostClose() override;
    void PostTransfer(const TransferRequest& request) override;

signals:
    void Ended(); // it is about to go; forget it
    void PopupWanted(const QString& band);

protected:
    void closeEvent(QCloseEvent* event) override;
    bool event(QEvent* event) override;
    void moveEvent(QMoveEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void TakeOverSystemMenu();
    void OpenLink(const QString& target, bool mustAsk);
    void StateChanged(Qt::WindowStates before, Qt::WindowStates now);
    void KeepNormalPlace();

    ApplicationPort& application_;
    std::unique_ptr<ctlEmulator> emulator_;
    std::unique_ptr<taMenuBar> menu_;
    TerminalPane* pane_ = nullptr;    // a child widget; goes before the emulator does
    TerminalView* view_ = nullptr;    // in the pane
    SessionPanels* panels_ = nullptr; // a child too
    std::unique_ptr<ChildLogic> logic_;
    std::unique_ptr<SessionMark> mark_;
    QPointer<QAction> closeAction_; // of the system menu
    QString tag_;
    QString title_;
    QRect normalPlace_;   // the restored position, kept while maximised or minimised
    int hiddenState_ = 0; // the state that the first show brings
    bool unloaded_ = false;
};

} // namespace kestrune
