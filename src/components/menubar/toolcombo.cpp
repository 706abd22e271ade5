#include "toolcombo.h"

#include <menubar/barlayout.h>
#include <menubar/icons.h>

namespace kestrune {

namespace {

constexpr int LeastEntryLength = 10; // in letters

} // namespace

ToolCombo::ToolCombo(QWidget* parent) : QComboBox(parent)
{
    setFocusPolicy(Qt::NoFocus); // the keyboard stays with the session
    setSizeAdjustPolicy(QComboBox::AdjustToContents);
    setMinimumContentsLength(LeastEntryLength);
    connect(this, &QComboBox::activated, this, [this](int entry) { emit Chosen(itemData(entry).toInt()); });
}

void ToolCombo::Fill(const MenuTool& tool)
{
    QString label = tool.caption;
    label.remove(QLatin1Char('&'));
    setAccessibleName(label);
    setPlaceholderText(label);
    setMinimumWidth(tool.width / TwipsPerPixel);
    setMinimumContentsLength(tool.width > 0 ? 0 : LeastEntryLength);
    clear();
    int current = -1;
    for (std::size_t i = 0; i < tool.tools.size(); ++i) {
        const MenuTool& entry = tool.tools[i];
        if (!entry.visible)
            continue;
        if (entry.checked)
            current = count();
        addItem(ToolIcon(entry), QString(entry.caption).remove(QLatin1Char('&')), static_cast<int>(i));
    }
    setCurrentIndex(current);
}

void ToolCombo::showPopup()
{
    emit Opening();
    QComboBox::showPopup();
}

} // namespace kestrune
