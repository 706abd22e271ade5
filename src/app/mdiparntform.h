#pragma once

// The main window: the area of the session windows, the bars, the row of session tabs. What it decides stands in
// mdiparnt.h; here it is shown.

#include <app/mdiparnt.h>
#include <menubar/tamenubar.h>
#include <ports/keyboardlocks.h>

#include <QMainWindow>
#include <QPointer>

#include <functional>
#include <memory>

class QMdiArea;

namespace kestrune {

class EmptyPage;
class frmMdiChild;
class Kestrune;
class MenuBarView;
class SessionTabs;

class frmMdiParent : public QMainWindow, public FrameWindow
{
    Q_OBJECT

public:
    struct Parts
    {
        std::function<std::unique_ptr<ctlEmulator>()> makeEmulator; // a control for a new session
        std::function<void()> shutDown;                             // when the frame has gone
        ReadKeyboardLocks keyboardLocks;                            // for panels of the status line
    };

    frmMdiParent(Kestrune& application, Parts parts);
    ~frmMdiParent() override;

    MdiParent& Logic() { return *logic_; }
    void RestoreBars(const QString& places); // as GlobalId::BarPlaces keeps them

    // --- MainWindow
    SessionWindow* NewSessionWindow(clsSession& session) override;
    SessionWindow* ActiveChild() const override;
    void UpdateNoActiveSession() override;
    void RefreshCaption() override { logic_->RefreshCaption(); }
    void RefreshSessionBar() override;
    void CheckState() override { logic_->CheckState(); }
    void TakeFocus() override;
    bool ClipboardHasText() const override;
    QStringList FontNames() const override;
    WindowPlace Place() const override;
    void Move(int left, int top, int width, int height) override;
    void SetState(int state) override;
    int State() const override;
    bool IsVisible() const override { return isVisible(); }
    void SetVisible(bool on) override { setVisible(on); }
    void Activate() override;
    void Arrange(int style) override;
    void RunEventsOnce() override;
    MenuTools& Tools() override { return menu_; }
    quintptr Handle() const override { return static_cast<quintptr>(winId()); }

    // --- FrameWindow
    taMenuBar& Menu() override { return menu_; }
    void ShowPopup(const QString& band) override;
    void SetCaption(const QString& text) override { logic_->SetTitle(text); }
    bool ChangeIcon(const QString& path) override;
    void PostLeave(Leave request) override { logic_->PostLeave(request); }
    bool IsClosing() const override { return logic_->IsClosing(); }
    void ApplyBar(Bar bar, bool visible) override;
    void ApplyLargeIcons(bool on) override;
    void ShowNotice(const QString& line) override;
    bool RenameTab(clsSession& session) override;
    void ShowAbout() override;
    void RecentFilesChanged() override;
    ScreenArea PrimaryScreen() const override;
    ScreenArea VirtualScreen() const override;
    bool IsForeground() const override;
    void SetTitleText(const QString& text) override;
    void SetCloseEnabled(bool on) override { closeEnabled_ = on; }
    bool FocusIsOnFrame() const override;
    bool FocusActiveChild() override;
    bool QueryUnloadChildren() override;

protected:
    void changeEvent(QEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    void moveEvent(QMoveEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void BuildBars();
    void BarsMoved();
    void BandVisibleWanted(const QString& band, bool on);
    void BuildSessionBar();
    void ConnectMenu(taMenuBar& menu, frmMdiChild* child);
    void RunTool(const frmMdiChild* child, const QString& band, const MenuTool& tool);
    frmMdiChild* ActiveWindow() const;
    QList<frmMdiChild*> Windows() const; // in the order of the sessions
    void ActiveWindowChanged();
    void KeepMaximised(frmMdiChild* changed);
    void FillSessionBar();
    void ShowRightPage();
    void RunCommand(int id);

    Kestrune& application_;
    Parts parts_;
    taMenuBar menu_;
    std::unique_ptr<MdiParent> logic_;
    MenuBarView* bars_; // these are child objects of the window
    EmptyPage* emptyPage_;
    QMdiArea* area_;
    SessionTabs* tabs_;
    bool closeEnabled_ = true;
    bool following_ = false;  // a window takes over the state of the one in front
    bool maximised_ = false;  // the window in front is, or was when there was one
    bool barPending_ = false; // the tabs are filled again at the end of the turn
};

} // namespace kestrune
