#pragma once

// A main window and session windows without a toolkit. A session window holds a real emulator control on a fake
// line and a real ChildLogic, so what a session asks of its window happens as it would on a screen.

#include <emulator/control/ctlemulator.h>
#include <ports/application.h>
#include <ports/linepanels.h>
#include <ports/menutools.h>
#include <ports/sessionwindow.h>
#include <sessions/childlogic.h>
#include <sessions/session.h>

#include "fakeclipboard.h"
#include "fakeline.h"

#include <algorithm>
#include <map>
#include <memory>
#include <vector>

namespace kestrune {

class FakeMenuTools : public MenuTools
{
public:
    QVariant GetToolProperty(int id, ToolProperty property) const override
    {
        const auto found = tools.find(id);
        return found == tools.end() ? QVariant() : found->second.value(property);
    }
    void SetToolProperty(int id, ToolProperty property, const QVariant& value) override { tools[id][property] = value; }
    QString Caption(int id) const { return GetToolProperty(id, ToolProperty::Caption).toString(); }

    std::map<int, QHash<ToolProperty, QVariant>> tools;
};

class FakeLinePanels : public LinePanels
{
public:
    LinePanel Shown() const override { return shown; }
    void ShowReconnect(const QString& what) override { Show(LinePanel::Reconnect, what); }
    void ShowConfirm(const QString& what) override { Show(LinePanel::Confirm, what); }
    void ShowSecrets(const LineQuestion& question, bool mayKeep) override
    {
        Show(LinePanel::Secrets, question.text);
        offersKeeping = mayKeep;
    }
    void SetCanResume(bool on) override { canResume = on; }
    void Hide() override { shown = LinePanel::None; }
    void TakeFocus() override { ++focused; }
    void ShowHelp(const QString& what) override { help = what; }

    LinePanel shown = LinePanel::None;
    QString text, help;
    bool canResume = false;
    bool offersKeeping = false;
    int focused = 0;

private:
    void Show(LinePanel panel, const QString& what)
    {
        shown = panel;
        text = what;
    }
};

class FakeMainWindow;

class FakeSessionWindow : public SessionWindow
{
public:
    FakeSessionWindow(ApplicationPort& application, FakeMainWindow& frame, const EmulatorPorts& ports)
        : frame_(frame), emulator(std::make_unique<ctlEmulator>(ports))
    {
        constexpr int closeTool = 104;
        tools.SetToolProperty(closeTool, ToolProperty::Enabled, true);
        tools.SetToolProperty(closeTool, ToolProperty::Visible, true);
        tools.SetToolProperty(closeTool, ToolProperty::Action, QStringLiteral("[#104]"));
        logic = std::make_unique<ChildLogic>(application, *this);
        place.state = application.InitChildWindowState();
    }

    ctlEmulator& Emulator() override { return *emulator; }
    MenuTools& Tools() override { return tools; }
    LinePanels& Panels() override { return panels; }
    void SetTag(const QString& id) override { tag = id; }
    QString Tag() const override { return tag; }
    quintptr Handle() const override { return tag.toULongLong(); }
    void ChangeCaption(const QString& text) override { title = text; }
    QString Title() const override { return title; }
    bool ChangeIcon(const QString& path) override
    {
        icon = path;
        return !path.isEmpty();
    }
    WindowPlace Place() const override { return place; }
    void Move(int left, int top, int width, int height) override
    {
        place = {left, top, width, height, place.state};
        logic->Resized();
    }
    void SetState(int state) override
    {
        place.state = state;
        logic->Resized();
    }
    int State() const override { return place.state; }
    bool IsVisible() const override { return visible; }
    bool IsEnabled() const override { return enabled; }
    void SetVisible(bool on) override;
    void ShowInactive() override { visible = true; }
    void Activate() override;
    void RunActivation() override { logic->Activated(); }
    void RunResize() override { logic->Resized(); }
    void TakeFocus() override { ++focused; }
    void TakeWindowFocus() override { focusIsOnWindow = true; }
    bool FocusIsOnWindow() const override { return focusIsOnWindow; }
    void SetCanClose(bool on) override { canClose = on; }
    bool ShowPopup(const QString& band) override
    {
        popups.push_back(band);
        return true;
    }
    void RefreshMenu() override { logic->RefreshMenu(); }
    void SetMenuDirty() override { logic->SetMenuDirty(); }
    bool IgnoreEvents() const override { return logic->IgnoreEvents(); }
    void SetIgnoreEvents(bool on) override { logic->SetIgnoreEvents(on); }
    bool IsClosing() const override { return logic->IsClosing(); }
    void SetClosing() override { logic->SetClosing(); }
    void Unload() override;
    void PostClose() override { logic->PostClose(); }
    void PostTransfer(const TransferRequest& request) override { logic->PostTransfer(request); }

private:
    FakeMainWindow& frame_;

public:
    std::unique_ptr<ctlEmulator> emulator;
    FakeMenuTools tools;
    FakeLinePanels panels;
    std::unique_ptr<ChildLogic> logic;
    QString tag, title, icon;
    WindowPlace place{0, 0, 640, 400, 0};
    bool visible = false;
    bool enabled = true;
    bool canClose = true;
    bool focusIsOnWindow = false;
    bool modalDialogUp = false; // showing fails as it does while a modal dialog is up
    int focused = 0;
    bool unloaded = false;
    std::vector<QString> popups;
};

class FakeMainWindow : public MainWindow
{
public:
    FakeMainWindow(ApplicationPort& application, const EmulatorPorts& ports) : application_(application), ports_(ports)
    {}

    SessionWindow* NewSessionWindow(clsSession&) override
    {
        windows.push_back(std::make_unique<FakeSessionWindow>(application_, *this, ports_));
        return windows.back().get();
    }
    SessionWindow* ActiveChild() const override { return active; }
    void UpdateNoActiveSession() override { ++emptied; }
    void RefreshCaption() override {}
    void RefreshSessionBar() override {}
    void CheckState() override {}
    void TakeFocus() override {}
    bool ClipboardHasText() const override { return ports_.clipboard.HasText(Clipboard::Kind::Standard); }
    QStringList FontNames() const override { return fonts; }
    WindowPlace Place() const override { return place; }
    void Move(int left, int top, int width, int height) override { place = {left, top, width, height, place.state}; }
    void SetState(int state) override { place.state = state; }
    int State() const override { return place.state; }
    bool IsVisible() const override { return true; }
    void SetVisible(bool) override {}
    void Activate() override {}
    void Arrange(int) override {}
    void RunEventsOnce() override
    {
        if (duringEvents)
            duringEvents();
    }
    MenuTools& Tools() override { return tools; }
    quintptr Handle() const override { return 0; }

    FakeSessionWindow& Window(const clsSession& session) const
    {
        return static_cast<FakeSessionWindow&>(*session.frmSession());
    }

    void Forget(const SessionWindow* window)
    {
        if (active != window)
            return;
        const auto next = std::find_if(windows.rbegin(), windows.rend(),
                                       [window](const auto& w) { return w.get() != window && w->visible; });
        active = next == windows.rend() ? nullptr : next->get();
    }

private:
    ApplicationPort& application_;
    EmulatorPorts ports_;

public:
    std::vector<std::unique_ptr<FakeSessionWindow>> windows; // unloaded ones too: their callers may be on the stack
    FakeSessionWindow* active = nullptr;
    WindowPlace place{10, 20, 800, 600, 0};
    QStringList fonts{QStringLiteral("Cantarell"), QStringLiteral("DejaVu Sans Mono"), QStringLiteral("Serif")};
    FakeMenuTools tools;
    int emptied = 0;
    std::function<void()> duringEvents; // what arrives while the message loop runs
};

inline void FakeSessionWindow::SetVisible(bool on)
{
    if (on && modalDialogUp)
        throw Failure(ErrorNumber::ModalDialogUp, QStringLiteral("A modal dialog is up"));
    visible = on;
    if (on)
        frame_.active = this;
    else
        frame_.Forget(this);
}

inline void FakeSessionWindow::Activate()
{
    if (place.state == 1)
        place.state = 0;
    visible = true;
    frame_.active = this;
    logic->Activated();
}

inline void FakeSessionWindow::Unload()
{
    if (std::exchange(unloaded, true))
        return;
    logic->SetClosing();
    logic->Unloaded();
    visible = false;
    frame_.Forget(this);
}

} // namespace kestrune
