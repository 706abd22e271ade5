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

// The numbers are those that menu files hold and scripts see.
enum class BandType : qint16
{
    Popup = 1,
    MainMenu = 2,
    ToolBar = 4,
    StatusBar = 8,
    SessionBar = 16
};

enum class BandDock : qint16
{
    Normal = 0,
    Top = 1,
    Bottom = 2,
    Left = 3,
    Right = 4,
    Floating = 5
};

// What a bar shows of its tools. For a tool bar Icon, CaptionRight or CaptionBelow, for a session bar CaptionOnly or
// IconAndCaption, for every other band 0.
namespace BandStyle {
inline constexpr qint16 Icon = 0, CaptionRight = 8, CaptionBelow = 16, CaptionOnly = 0, IconAndCaption = 2;
} // namespace BandStyle

enum class IconSize : qint16 // never 0; only -1 counts as large
{
    Large = -1,
    Small = -2
};

enum class ToolType : qint16 // one family of numbers; what it means depends on the band
{
    Normal = 1,  // item, button
    SubMenu = 2, // sub-menu, dropdown button
    Toggle = 3,
    Group = 4,
    ComboBox = 5,
    Panel = 9, // the rest stand on status lines
    CapsLock = 10,
    NumLock = 11,
    ScrollLock = 12,
    Time = 13,
    Date = 14,
    TimeAndDate = 15
};

// A tool's style is the sum of one value of each group.
namespace ToolStyle {
inline constexpr qint16 ContentMask = 3, ContentNormal = 0, TextOnly = 1, IconOnly = 2, TextAndIcon = 3;
inline constexpr qint16 AlignMask = 12, AlignLeft = 0, AlignCenter = 4, AlignRight = 8;
inline constexpr qint16 SizeMask = 96, FixedWidth = 0, Spring = 32, FitContents = 64;
inline constexpr qint16 BorderMask = 384, Inset = 0, Raised = 128, NoBorder = 256;
inline constexpr qint16 Wrap = 512;
} // namespace ToolStyle

enum class ImageSource : qint16
{
    None = 0,
    Resource = 3, // the image's text is the number of one of the program's pictures
    File = 4      // it is a path
};

struct MenuTool
{
    int key = 0; // the tool's id, 1 or more; decimal text in files
    ToolType type = ToolType::Normal;
    qint16 style = 0;
    QString caption; // & marks the access key
    bool enabled = true;
    bool visible = true;
    bool checked = false;
    bool beginGroup = false; // a separator stands in front
    bool isDefault = false;  // the default item of its sub-menu
    QString shortcut;        // "Ctrl+F5"
    QString toolTipText;
    ImageSource imageSource = ImageSource::None;
    QString normalImage;
    QString checkedImage;
    int width = 0;  // least width of a panel, in twips
    QString action; // the command
    std::vector<MenuTool> tools;

    bool operator==(const MenuTool&) const = default;
};

struct MenuBand
{
    QString key; // unique, compared without regard to case
    BandType type = BandType::Popup;
    qint16 style = 0;
    QString title;
    BandDock dock = BandDock::Normal;
    bool locked = false; // the user cannot move it
    IconSize icons = IconSize::Large;
    bool enabled = true;
    bool visible = true;
    quintptr tag = 0; // free for the owner: the tab popup keeps the window handle of its session here
    std::vector<MenuTool> tools;

    bool operator==(const MenuBand&) const = default;
};

bool SameBandKey(const QString& one, const QString& other);

class taMenuBar : public QObject, public MenuTools
{
    Q_OBJECT

public:
    explicit taMenuBar(QObject* parent = nullptr) : QObject(parent) {}

    const std::vector<MenuBand>& Bands() const { return bands_; }
    const MenuBand* Band(const QString& key) const; // null: none
    [[nodiscard]] bool AddBand(MenuBand band);      // behind the others; false: the key stands already
    bool RemoveBand(const QString& key);            // false: there is none
    void RemoveBands() { SetBands({}); }
    void SetBands(std::vector<MenuBand> bands); // in place of all; of two with one key the first stays
    // change() may write every field but the key. False: there is no such band.
    bool ChangeBand(const QString& key, const std::function<void(MenuBand&)>& change);
    // The bands of that name, or, when the name is empty, of that type.
    void SetBandProperty(const QString& name, BandType type, BandProperty property, bool value);
    void SetBandTag(const QString& key, quintptr tag);
    void SetBandDock(const QString& key,
                     BandDock dock); // for the one that draws it: where it is, with no word to anyone

    // index: the place among its neighbours, from 0; anything else is the end. parent: the key of the tool that it
    // becomes a sub-tool of, 0 for the band itself. False: no such band or parent.
    bool AddTool(const QString& band, MenuTool tool, int parent = 0, int index = -1);
    bool RemoveTool(const QString& band, int key); // the first with that key; false: none

    // Every band; change() may write every field but the key.
    void EachBand(const std::function<void(MenuBand&)>& change);
    // Every tool, depth first in band order; change() may change what it is given.
    void EachTool(const std::function<void(MenuTool&)>& change);
    const MenuTool* FindTool(const std::function<bool(const MenuTool&)>& wanted) const; // in that order; null: none
    const MenuTool* Tool(int key) const; // the first with that key; null: none
    const MenuTool* Tool(const QString& band, int key) const;

    // Asks the owner to bring the sub-tools of one tool up to date, which is about to show them.
    const MenuTool* OpenTool(const QString& band, int key);

    // Whether Alt, and Alt with a letter, open menus also while a session has the keyboard; its host gets them if not.
    bool AccessKeys() const { return accessKeys_; }
    void SetAccessKeys(bool on) { accessKeys_ = on; }

    // By id. Reading looks at keys alone; writing changes every tool of the id on every band.
    QVariant GetToolProperty(int id, ToolProperty property) const override;
    void SetToolProperty(int id, ToolProperty property, const QVariant& value) override;

signals:
    void BandsChanged();       // anything but the state of single tools
    void ToolChanged(int key); // caption, check mark, state ... of the tools of this key
    void BandDocked(const QString& key, kestrune::BandDock dock); // ChangeBand wrote another place
    void CommandStateChanged(int key);                            // the enabled or visible state of a tool was written
    void BandOpen(kestrune::MenuTool& tool);                      // its sub-tools may be changed before they are shown
    void ToolClick(const QString& band, const kestrune::MenuTool& tool);

private:
    MenuBand* FindBand(const QString& key);

    std::vector<MenuBand> bands_;
    bool accessKeys_ = false;
};

// The number in an action of the form "[#id]" or "[#id#name]", by its numeric prefix; 0: not a command.
int CommandId(const QString& action);

} // namespace kestrune
