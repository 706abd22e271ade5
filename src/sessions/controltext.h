#pragma once

// Control characters written in plain text: "^M" is a carriage return, "^?" delete, "^^" a caret, "\x" x with its
// high bit set, "\^x" a control character with its high bit set, "\\" a backslash. A caret or backslash with
// nothing behind it is dropped.

#include <QString>

namespace kestrune {

QString ArrowToCtrl(const QString& text);

} // namespace kestrune
