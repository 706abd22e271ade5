#pragma once

// Tools of a menu bar by id, as sessions and the main window change and read them.

#include <QString>
#include <QVariant>

namespace kestrune {

enum class ToolProperty
{
    Caption = 2,
    Checked = 3,
    Enabled = 5,
    Action = 7,
    ToolTipText = 10,
    Visible = 11,
    Shortcut = 12
};

enum class BandProperty
{
    Visible = 11,
    LargeIcons = 13
};

class MenuTools
{
public:
    virtual ~MenuTools() = default;
    virtual QVariant GetToolProperty(int id, ToolProperty property) const = 0; // unknown id: an invalid value
    virtual void SetToolProperty(int id, ToolProperty property, const QVariant& value) = 0; // unknown id: nothing
};

} // namespace kestrune
