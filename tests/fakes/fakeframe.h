#pragma once

// The main window with no toolkit, on top of the one that sessions are tested with.

#include <automation/frame.h>
#include <automation/kestrune.h>

#include "fakemainwindow.h"

namespace kestrune {

class FakeFrame : public FrameWindow
{
public:
    FakeFrame(Kestrune& application, const EmulatorPorts& ports) : inner(application, ports) {}

    SessionWindow* NewSessionWindow(clsSession& session) override { return inner.NewSessionWindow(session); }
    SessionWindow* ActiveChild() const override { return inner.ActiveChild(); }
    void UpdateNoActiveSession() override { inner.UpdateNoActiveSession(); }
    void RefreshCaption() override {}
    void RefreshSessionBar() override {}
    void CheckState() override {}
    void TakeFocus() override { ++focusTaken; }
    bool ClipboardHasText() const override { return false; }
    QStringList FontNames() const override { return inner.FontNames(); }
    WindowPlace Place() const override { return inner.Place(); }
    void Move(int left, int top, int width, int height) override { inner.Move(left, top, width, height); }
    void SetState(int state) override { inner.SetState(state); }
    int State() const override { return inner.State(); }
    bool IsVisible() const override { return visible; }
    void SetVisible(bool on) override { visible = on; }
    void Activate() override { ++activations; }
    void Arrange(int style) override { arranged = style; }
    void RunEventsOnce() override { inner.RunEventsOnce(); }
    MenuTools& Tools() override { return menu; }
    quintptr Handle() const override { return 1; }

    taMenuBar& Menu() override { return menu; }
    void ShowPopup(const QString& band) override { popups.push_back(band); }
    void SetCaption(const QString& text) override { caption = text; }
    bool ChangeIcon(const QString&) override { return false; }
    void PostLeave(Leave request) override { leaves.push_back(request); }
    bool IsClosing() const override { return closing; }
    void ApplyBar(Bar bar, bool on) override { bars[bar] = on; }
    void ApplyLargeIcons(bool on) override { largeIcons = on; }
    void ShowNotice(const QString& line) override { notices.push_back(line); }
    bool RenameTab(clsSession&) override { return false; }
    void ShowAbout() override {}
    void RecentFilesChanged() override {}
    ScreenArea PrimaryScreen() const override { return {0, 0, 1600, 800}; }
    ScreenArea VirtualScreen() const override { return {0, 0, 1600, 800}; }
    bool IsForeground() const override { return foreground; }
    void SetTitleText(const QString& text) override { titleText = text; }
    void SetCloseEnabled(bool on) override { closeEnabled = on; }
    bool FocusIsOnFrame() const override { return focusIsOnFrame; }
    bool FocusActiveChild() override
    {
        ++focusTries;
        return acceptsFocus;
    }
    bool QueryUnloadChildren() override
    {
        ++childQueries;
        return childrenLetGo;
    }

    FakeMainWindow inner;
    taMenuBar menu;
    std::map<Bar, bool> bars;
    QString caption, titleText;
    QStringList notices, popups;
    std::vector<Leave> leaves;
    bool visible = false, closing = false, largeIcons = false, foreground = true, closeEnabled = true;
    bool focusIsOnFrame = false, acceptsFocus = true, childrenLetGo = true;
    int focusTaken = 0, focusTries = 0, activations = 0, arranged = -1, childQueries = 0;
};

} // namespace kestrune
