#pragma once

// Control characters in text that people read and edit: "^M" is CR, "^?" is DEL, "^^" a caret; a backslash
// sets the high bit of what follows, two backslashes are one. Function keys and mouse tables are kept so.

#include <QString>

namespace kestrune {

QString EncodeControls(const QString& text);
// A caret or backslash at the very end, with nothing behind it, is dropped.
QString DecodeControls(const QString& text);

} // namespace kestrune
