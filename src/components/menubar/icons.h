#pragma once

// Line pictures of the program's commands, drawn in the text colour of the palette at any size.

#include <menubar/tamenubar.h>

#include <QIcon>

namespace kestrune {

QIcon LineIcon(const QString& name); // an unknown name gives a null icon

enum class ToolState
{
    Normal,
    Checked
};

// The picture of a tool: the program's own under its number, or one from a file. Null: the tool has none, or none that
// can be read.
QIcon ToolIcon(const MenuTool& tool, ToolState state = ToolState::Normal);

} // namespace kestrune
