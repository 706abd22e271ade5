#pragma once

// A main window that draws a menu, and shorthands for finding what it draws.

#include <menubar/menubarview.h>

#include <gtest/gtest.h>

#include <QAction>
#include <QCoreApplication>
#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>
#include <QStatusBar>
#include <QTest>
#include <QToolBar>
#include <QToolButton>

#include "fakes/print.h"
#include "menus/menuparts.h"

namespace kestrune {

struct ViewBench
{
    explicit ViewBench(MenuBarView::Surroundings surroundings = {})
        : view(new MenuBarView(window, std::move(surroundings)))
    {
        window.resize(800, 400);
        QObject::connect(&model, &taMenuBar::ToolClick, &window, [this](const QString& band, const MenuTool& tool) {
            clicks.append(band + u' ' + tool.action);
        });
        view->Show(&model);
        window.show();
        Settle();
    }
    ~ViewBench() { view->Show(nullptr); }

    void Add(MenuBand band)
    {
        EXPECT_TRUE(model.AddBand(std::move(band)));
        Settle();
    }
    static void Settle()
    {
        for (int turn = 0; turn < 3; ++turn) { // a layout asks for a paint
            QCoreApplication::sendPostedEvents();
            QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
            QCoreApplication::processEvents();
        }
    }
    QToolBar* Bar(const QString& key) const { return window.findChild<QToolBar*>(key); }
    // The tool's button by its text without the access key.
    QToolButton* Button(const QString& bar, const QString& text) const
    {
        for (QAction* action : Bar(bar)->actions())
            if (action->iconText() == text)
                return qobject_cast<QToolButton*>(Bar(bar)->widgetForAction(action));
        return nullptr;
    }
    QMenu* Menu(int index) const { return window.menuBar()->actions().value(index)->menu(); }
    // What a person sees of a list of actions: "-" for a line, the keys in brackets.
    static QStringList Seen(const QWidget& widget)
    {
        QStringList seen;
        for (const QAction* action : widget.actions())
            if (action->isVisible())
                seen.append(action->isSeparator() ? QStringLiteral("-") : action->text());
        return seen;
    }

    QMainWindow window;
    taMenuBar model;
    MenuBarView* view;
    QStringList clicks;
};

inline MenuTool Titled(int key, const QString& caption, std::vector<MenuTool> tools = {})
{
    MenuTool tool = ToolOf(key, QStringLiteral("[#%1]").arg(key));
    tool.caption = caption;
    tool.type = tools.empty() ? ToolType::Normal : ToolType::SubMenu;
    tool.tools = std::move(tools);
    return tool;
}

} // namespace kestrune
