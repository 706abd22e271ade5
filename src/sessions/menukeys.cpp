#include "menukeys.h"

#include <menubar/tamenubar.h>

#include <QKeyEvent>
#include <QKeySequence>

namespace kestrune {

bool MenusTake(const taMenuBar& menu, const QKeyEvent& key)
{
    if (!key.modifiers().testFlag(Qt::AltModifier))
        return false;
    const QKeySequence pressed(QKeyCombination(key.modifiers() & ~Qt::KeypadModifier, Qt::Key(key.key())));
    return menu.AccessKeys() || menu.FindTool([&](const MenuTool& tool) {
        return tool.enabled && tool.visible && !tool.shortcut.isEmpty() && QKeySequence(tool.shortcut) == pressed;
    }) != nullptr;
}

} // namespace kestrune
