#pragma once

// Bands and tools in a line.

#include <menubar/tamenubar.h>

namespace kestrune {

inline MenuTool ToolOf(int key, const QString& action = {})
{
    MenuTool tool;
    tool.key = key;
    tool.caption = QString::number(key);
    tool.action = action;
    return tool;
}

inline MenuBand BandOf(const QString& key, BandType type = BandType::Popup, std::vector<MenuTool> tools = {})
{
    MenuBand band;
    band.key = key;
    band.type = type;
    band.tools = std::move(tools);
    return band;
}

} // namespace kestrune
