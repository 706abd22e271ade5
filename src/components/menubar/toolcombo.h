#pragma once

// A combo box tool: its sub-tools are the entries, the checked one is the current.

#include <menubar/tamenubar.h>

#include <QComboBox>

namespace kestrune {

class ToolCombo : public QComboBox
{
    Q_OBJECT

public:
    explicit ToolCombo(QWidget* parent = nullptr);
    void Fill(const MenuTool& tool);

signals:
    void Opening();        // the entries may be brought up to date
    void Chosen(int tool); // the place of the sub-tool among all of them

protected:
    void showPopup() override;
};

} // namespace kestrune
