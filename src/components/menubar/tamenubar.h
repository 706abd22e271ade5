#pragma once

// The menus, toolbars and panels of one window: bands that hold tools. The main window has one and each session
// window has one; the main window shows those of the active session, or its own when no session is open. This is
// the model; menubarview.h draws it. The commands of the tools are texts that the window's owner understands.

#include <ports/menutools.h>

#include <QObject>
#include <QString>

#include <functional>
#include <vector>

namespace kestrune {

enum class BandType : int
{
    Popup = 1,
    MainMenu = 2,
    ToolBar = 4,
    StatusBar = 8,
    SessionBar = 16
};

enum class ToolType : int
{
    Normal = 1,
    SubMenu = 2,
    Toggle = 3,
    Panel = 9
};

struct MenuTool
{
    int key = 0; // the tool's id; decimal text in files
    ToolType type = ToolType::Normal;
    QString caption; // & marks the access key
    bool enabled = true;
    bool visible = true;
    bool checked = false;
    bool beginGroup = false;
    bool spring = false; // a panel that takes the room that is left
    QString shortcut;    // "Ctrl+F5"
    QString toolTipText;
    QString image;  // a name that the view knows a picture for; empty: none
    QString widest; // a panel's longest text, to keep its width; empty: fits its contents
    QString action; // the command
    std::vector<MenuTool> tools;
};

struct MenuBand
{
    QString key; // unique, compared without regard to case
    BandType type = BandType::Popup;
    QString title;
    bool visible = true;
    bool largeIcons = true;
    quintptr tag = 0; // free for the owner: the tab popup keeps the window handle of its session here
    std::vector<MenuTool> tools;
};

class taMenuBar : public QObject, public MenuTools
{
    Q_OBJECT

public:
    explicit taMenuBar(QObject* parent = nullptr) : QObject(parent) {}

    const std::vector<MenuBand>& Bands() const { return bands_; }
    bool AddBand(MenuBand band); // false: the key stands already
    void RemoveBands();
    const MenuBand* Band(const QString& key) const;
    void SetBandVisible(const QString& key, bool on);
    void SetBandTag(const QString& key, quintptr tag);
    void SetLargeIcons(bool on); // of every toolbar

    // Every tool, depth first in band order; change() may change what it is given.
    void EachTool(const std::function<void(MenuTool&)>& change);
    const MenuTool* Tool(int key) const; // the first with that key

    // Asks the owner to bring the sub-tools of one tool up to date, which is about to show them.
    const MenuTool* OpenTool(const QString& band, int key);

    // By id. Reading looks at keys alone; writing changes every tool of the id on every band.
    QVariant GetToolProperty(int id, ToolProperty property) const override;
    void SetToolProperty(int id, ToolProperty property, const QVariant& value) override;

signals:
    void BandsChanged();                     // anything but the state of single tools
    void ToolChanged(int key);               // caption, check mark, state ... of the tools of this key
    void CommandStateChanged(int key);       // the enabled or visible state of a tool was written
    void BandOpen(kestrune::MenuTool& tool); // its sub-tools may be changed before they are shown
    void ToolClick(const QString& band, const kestrune::MenuTool& tool);

private:
    std::vector<MenuBand> bands_;
};

// The number in an action of the form "[#id]" or "[#id#name]", by its numeric prefix; 0: not a command.
int CommandId(const QString& action);

} // namespace kestrune
