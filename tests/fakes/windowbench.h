#pragma once

// The whole shell with its real main window, menus and session windows, offscreen: what a user does is a click or a key
// in a real widget. Hosts, clock, people and pieces stay what the test says.

#include <app/mdiparntform.h>
#include <emulator/control/ctlemulator.h>
#include <emulator/view/terminalview.h>
#include <menubar/sessionbar.h>
#include <sessions/mdichild.h>

#include "print.h"
#include "shellbench.h"

#include <QAction>
#include <QApplication>
#include <QMenu>
#include <QMenuBar>
#include <QTest>
#include <QToolBar>
#include <QToolButton>
#include <QWindow>

namespace kestrune {

class WindowBench : public ShellBench
{
public:
    WindowBench() = default;
    ~WindowBench() override
    {
        while (QWidget* popup = QApplication::activePopupWidget())
            popup->close();
        if (main && main->Application() != nullptr)
            for (const auto& session : main->Application()->Sessions().All())
                session->Delete();
        Settle();
        if (main)
            main->Release();
    }

    // The running program, its window in front.
    frmMdiParent& Open()
    {
        Run();
        window->resize(1000, 700);
        QApplication::setActiveWindow(window);
        Settle();
        return *window;
    }
    std::shared_ptr<clsSession> OpenSession(const QString& name = QStringLiteral("a.orcf"))
    {
        auto session = Application().Sessions().Add(SessionFile(name), 0);
        lines.Current().Connect();
        Settle();
        lines.Current().TakeSent();
        return session;
    }
    static frmMdiChild& WindowOf(const clsSession& session)
    {
        return dynamic_cast<frmMdiChild&>(*session.frmSession());
    }
    // The menu that is drawn now.
    taMenuBar& Menu() const
    {
        auto* child = dynamic_cast<frmMdiChild*>(window->ActiveChild());
        return child != nullptr ? child->Menu() : window->Menu();
    }
    void Settle()
    {
        for (int turn = 0; turn < 3; ++turn) {
            clock.RunPosted();
            QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
            QCoreApplication::processEvents();
        }
    }

    // --- what a user does

    // A key as the window system reports it: shortcuts and access keys have their turn first.
    void Press(Qt::Key key, Qt::KeyboardModifiers modifiers = {})
    {
        QTest::keyClick(window->windowHandle(), key, modifiers);
        Settle();
    }
    // Opens the menus on the way to the tool and chooses it there. False: it is not to be seen, or greyed.
    bool Choose(int id)
    {
        for (const MenuBand& band : Menu().Bands())
            if (band.type == BandType::MainMenu && ChooseIn(window->menuBar()->actions(), band.tools, id))
                return true;
        return false;
    }
    // The tool in the popup that is up.
    bool ChooseInPopup(const taMenuBar& menu, const QString& band, int id)
    {
        auto* popup = qobject_cast<QMenu*>(QApplication::activePopupWidget());
        const MenuBand* of = popup != nullptr ? menu.Band(band) : nullptr;
        return of != nullptr && ChooseInMenu(*popup, of->tools, id);
    }
    bool ClickOnToolBar(int id)
    {
        auto* bar = window->findChild<QToolBar*>(QStringLiteral("Toolbar"));
        const MenuTool* tool = Menu().Tool(QStringLiteral("Toolbar"), id);
        for (QAction* action : bar->actions())
            if (auto* button = qobject_cast<QToolButton*>(bar->widgetForAction(action));
                button != nullptr && tool != nullptr && action->text() == tool->caption && action->isEnabled()) {
                QTest::mouseClick(button, Qt::LeftButton);
                Settle();
                return true;
            }
        return false;
    }
    // The action of a tool in the real menu bar, as it is after the menus on its way were opened; null: not to be seen.
    QAction* ActionOf(int id)
    {
        QAction* found = nullptr;
        for (const MenuBand& band : Menu().Bands())
            if (band.type == BandType::MainMenu && found == nullptr)
                found = Find(window->menuBar()->actions(), band.tools, id, nullptr);
        CloseMenus();
        return found;
    }
    void CloseMenus() const
    {
        constexpr int deepest = 8; // sub-menus within each other, and the bar
        for (int level = 0; level < deepest; ++level)
            if (QWidget* popup = QApplication::activePopupWidget())
                QTest::keyClick(popup, Qt::Key_Escape);
            else if (window->menuBar()->hasFocus() || window->menuBar()->activeAction() != nullptr)
                QTest::keyClick(window->menuBar(), Qt::Key_Escape);
    }

    frmMdiParent* window = nullptr;
    bool ended = false; // the window has gone

protected:
    std::unique_ptr<FrameWindow> MakeFrame(Kestrune& application) override
    {
        auto made = std::make_unique<frmMdiParent>(
            application, frmMdiParent::Parts{
                             [this] { return std::make_unique<ctlEmulator>(Ports()); }, [this] { ended = true; }, {}});
        window = made.get();
        main->SetExit([logic = &made->Logic()] { logic->EndFrame(CloseCode::Code); });
        return made;
    }

private:
    // The action that shows this tool, among those of one menu or bar; opened: the menu that it stands in.
    static QAction* Find(const QList<QAction*>& actions, const std::vector<MenuTool>& tools, int id, QMenu** opened)
    {
        for (const MenuTool& tool : tools) {
            const bool isIt = tool.key == id;
            const bool inside = HasTool(tool.tools, id) || HasTool(tool.tools, PlaceholderOf(id));
            if (!isIt && !inside)
                continue;
            for (QAction* action : actions) {
                if (action->text() != tool.caption || !action->isVisible())
                    continue;
                if (isIt)
                    return action;
                QMenu* menu = action->menu();
                if (menu == nullptr || !action->isEnabled())
                    return nullptr;
                menu->popup(QPoint(0, 0));
                if (opened != nullptr)
                    *opened = menu;
                return Find(menu->actions(), tool.tools, id, opened);
            }
        }
        return nullptr;
    }
    // Items of these lists are made when their menu opens, behind a tool that stands for them.
    static int PlaceholderOf(int id)
    {
        const bool recent = id > ToolId::RecentFirst && id < ToolId::RecentEnd;
        const bool isWindow = id > ToolId::WindowFirst && id < ToolId::WindowEnd;
        return recent ? ToolId::RecentFirst : isWindow ? ToolId::WindowFirst : id;
    }
    static bool HasTool(const std::vector<MenuTool>& tools, int id)
    {
        return std::any_of(tools.begin(), tools.end(),
                           [id](const MenuTool& tool) { return tool.key == id || HasTool(tool.tools, id); });
    }
    bool ChooseIn(const QList<QAction*>& actions, const std::vector<MenuTool>& tools, int id)
    {
        QMenu* menu = nullptr;
        QAction* action = Find(actions, tools, id, &menu);
        return Take(menu, action);
    }
    bool ChooseInMenu(QMenu& menu, const std::vector<MenuTool>& tools, int id)
    {
        QMenu* in = &menu;
        QAction* action = Find(menu.actions(), tools, id, &in);
        return Take(in, action);
    }
    bool Take(QMenu* menu, QAction* action)
    {
        const bool can = menu != nullptr && action != nullptr && action->isEnabled();
        if (can) {
            menu->setActiveAction(action);
            QTest::keyClick(menu, Qt::Key_Return);
        }
        CloseMenus();
        Settle();
        return can;
    }
};

} // namespace kestrune
