#pragma once

// Keys as menu files write them: "Ctrl+F5", "Shift+Ctrl+F1", "Shift+Insert", "Alt+Bksp".

#include <QKeySequence>
#include <QString>

namespace kestrune {

// Empty: the text names no key.
QKeySequence KeysOfShortcut(const QString& written);

} // namespace kestrune
