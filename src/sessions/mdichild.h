#pragma once

// The child window of one session inside the main window's area: the emulator's view and nothing else to see. It
// owns the session's emulator control and menu, tells ChildLogic what happens to it, and does what the port asks.

#include <ports/sessionwindow.h>

#include <QMdiSubWindow>

#include <memory>

namespace kestrune {

class ApplicationPort;
class ChildLogic;
class LineFactory;
class TerminalView;

class frmMdiChild final : public QMdiSubWindow, public SessionWindow
{
    Q_OBJECT
public:
    // Hidden until the session shows it. The control comes from outside because only the program's start knows
    // which lines there are; so does the menu, which the main window draws while this window is the active one.
    frmMdiChild(ApplicationPort& application, std::unique_ptr<ctlEmulator> emulator, std::unique_ptr<MenuTools> tools);
    ~frmMdiChild() override;

    TerminalView& View() const { return *view_; }
    ChildLogic& Logic() const { return *logic_; }
    bool CanClose() const;

    // --- SessionWindow
    ctlEmulator& Emulator() override;
    MenuTools& Tools() override;
    void SetTag(const QString& id) override { tag_ = id; }
    QString Tag() const override { return tag_; }
    quintptr Handle() const override;
    void ChangeCaption(const QString& text) override;
    QString Title() const override { return title_; }
    bool ChangeIcon(const QString& path) override;
    WindowPlace Place() const override;
    void Move(int left, int top, int width, int height) override;
    void SetState(int state) override;
    int State() const override;
    bool IsVisible() const override;
    bool IsEnabled() const override;
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

    // Asked before the main window closes; false: this session stays.
    bool QueryUnload(int mode);

signals:
    void Ended(); // it is about to go; forget it
    void PopupWanted(const QString& band);

protected:
    void closeEvent(QCloseEvent* event) override;
    void changeEvent(QEvent* event) override;
    void moveEvent(QMoveEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void showEvent(QShowEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    std::unique_ptr<ctlEmulator> emulator_;
    std::unique_ptr<MenuTools> tools_;
    TerminalView* view_ = nullptr; // a child widget
    std::unique_ptr<ChildLogic> logic_;
    QString tag_;
    QString title_;
    WindowPlace normalPlace_; // the restored position, kept while maximised or minimised
    bool unloaded_ = false;
};

} // namespace kestrune
