#pragma once

// Line pictures of the program's commands, drawn in the text colour of the palette at any size.

#include <QIcon>

namespace kestrune {

QIcon LineIcon(const QString& name); // an unknown name gives a null icon

} // namespace kestrune
