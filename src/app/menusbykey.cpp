#include <app/menusbykey.h>

#include <QAction>
#include <QMainWindow>
#include <QMenuBar>
#include <QShortcut>

#include <algorithm>

namespace kestrune {

void OpenMenusByKey(QMainWindow& window)
{
    auto* keys = new QShortcut(QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_M), &window);
    QObject::connect(keys, &QShortcut::activated, &window, [&window] {
        const QList<QAction*> menus = window.menuBar()->actions();
        const auto first = std::find_if(menus.begin(), menus.end(), [](const QAction* menu) {
            return menu->isVisible() && menu->isEnabled() && menu->menu() != nullptr;
        });
        if (first != menus.end())
            window.menuBar()->setActiveAction(*first);
    });
}

} // namespace kestrune
