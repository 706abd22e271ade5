#include <menus/defaultmenu.h>

#include <menubar/tamenubar.h>

#include <QCoreApplication>

namespace kestrune {

namespace {

enum class Item
{
    Plain,
    Group, // a line stands in front
    Toggle,
    Menu,
    End, // of the sub-menu
};

struct MenuRow
{
    Item item;
    int key = 0;
    const char* caption = "";
    const char* shortcut = "";
};

// Captions are translated when the menu is made. Keys are few and all with Ctrl+Shift or a function key: in a
// session the keyboard belongs to the host.
constexpr MenuRow kMenuRows[] = {
    {Item::Menu, 100, QT_TRANSLATE_NOOP("Menu", "&File")},
    {Item::Plain, 101, QT_TRANSLATE_NOOP("Menu", "&New"), "Ctrl+Shift+N"},
    {Item::Plain, 103, QT_TRANSLATE_NOOP("Menu", "&Open..."), "Ctrl+Shift+O"},
    {Item::Plain, 104, QT_TRANSLATE_NOOP("Menu", "&Close"), "Ctrl+Shift+W"},
    {Item::Group, 105, QT_TRANSLATE_NOOP("Menu", "&Save")},
    {Item::Plain, 106, QT_TRANSLATE_NOOP("Menu", "Save &As...")},
    {Item::Plain, 108, QT_TRANSLATE_NOOP("Menu", "Save &Layout")},
    {Item::Plain, 109, QT_TRANSLATE_NOOP("Menu", "Save La&yout As...")},
    {Item::Group, 201, QT_TRANSLATE_NOOP("Menu", "Prin&ter On")},
    {Item::Plain, 202, QT_TRANSLATE_NOOP("Menu", "&Print Screen")},
    {Item::Group, 113, QT_TRANSLATE_NOOP("Menu", "&1. Recent")},
    {Item::Group, 110, QT_TRANSLATE_NOOP("Menu", "E&xit"), "Ctrl+Shift+Q"},
    {Item::End},
    {Item::Menu, 300, QT_TRANSLATE_NOOP("Menu", "&Edit")},
    {Item::Plain, 303, QT_TRANSLATE_NOOP("Menu", "&Copy")},
    {Item::Plain, 304, QT_TRANSLATE_NOOP("Menu", "Copy &History")},
    {Item::Plain, 305, QT_TRANSLATE_NOOP("Menu", "&Paste")},
    {Item::Plain, 306, QT_TRANSLATE_NOOP("Menu", "Paste &From...")},
    {Item::Menu, 349, QT_TRANSLATE_NOOP("Menu", "&Select")},
    {Item::Plain, 308, QT_TRANSLATE_NOOP("Menu", "&All")},
    {Item::Plain, 314, QT_TRANSLATE_NOOP("Menu", "&Screen")},
    {Item::Plain, 316, QT_TRANSLATE_NOOP("Menu", "&None")},
    {Item::End},
    {Item::End},
    {Item::Menu, 99, QT_TRANSLATE_NOOP("Menu", "&View")},
    {Item::Toggle, 506, QT_TRANSLATE_NOOP("Menu", "&Extended Screen")},
    {Item::Group, 1201, QT_TRANSLATE_NOOP("Menu", "&Toolbar")},
    {Item::Toggle, 1202, QT_TRANSLATE_NOOP("Menu", "&Status Line")},
    {Item::Toggle, 1203, QT_TRANSLATE_NOOP("Menu", "Session &Bar")},
    {Item::End},
    {Item::Menu, 150, QT_TRANSLATE_NOOP("Menu", "&Tools")},
    {Item::Plain, 603, QT_TRANSLATE_NOOP("Menu", "Cap&ture...")},
    {Item::Plain, 712, QT_TRANSLATE_NOOP("Menu", "&Clone Session")},
    {Item::Menu, 706, QT_TRANSLATE_NOOP("Menu", "&Reset")},
    {Item::Plain, 707, QT_TRANSLATE_NOOP("Menu", "&Terminal")},
    {Item::Plain, 708, QT_TRANSLATE_NOOP("Menu", "&Connection")},
    {Item::End},
    {Item::Group, 705, QT_TRANSLATE_NOOP("Menu", "&Settings...")},
    {Item::End},
    {Item::Menu, 500, QT_TRANSLATE_NOOP("Menu", "&Window")},
    {Item::Plain, 501, QT_TRANSLATE_NOOP("Menu", "&Cascade")},
    {Item::Plain, 502, QT_TRANSLATE_NOOP("Menu", "Tile &Horizontally")},
    {Item::Plain, 503, QT_TRANSLATE_NOOP("Menu", "Tile &Vertically")},
    {Item::Toggle, 599, QT_TRANSLATE_NOOP("Menu", "&Maximize")},
    {Item::Group, 514, QT_TRANSLATE_NOOP("Menu", "&1. Window")},
    {Item::End},
    {Item::Menu, 400, QT_TRANSLATE_NOOP("Menu", "&Help")},
    {Item::Plain, 405, QT_TRANSLATE_NOOP("Menu", "&About Kestrune")},
    {Item::End},
};

constexpr MenuRow kContextRows[] = {
    {Item::Plain, 303, QT_TRANSLATE_NOOP("Menu", "&Copy")},
    {Item::Plain, 305, QT_TRANSLATE_NOOP("Menu", "&Paste")},
    {Item::Menu, 349, QT_TRANSLATE_NOOP("Menu", "&Select")},
    {Item::Plain, 308, QT_TRANSLATE_NOOP("Menu", "&All")},
    {Item::Plain, 314, QT_TRANSLATE_NOOP("Menu", "&Screen")},
    {Item::Plain, 316, QT_TRANSLATE_NOOP("Menu", "&None")},
    {Item::End},
    {Item::Group, 712, QT_TRANSLATE_NOOP("Menu", "C&lone Session")},
    {Item::Plain, 707, QT_TRANSLATE_NOOP("Menu", "&Reset Terminal")},
    {Item::Group, 705, QT_TRANSLATE_NOOP("Menu", "S&ettings...")},
};

constexpr MenuRow kTabRows[] = {
    {Item::Plain, 1301, QT_TRANSLATE_NOOP("Menu", "&Activate")},
    {Item::Toggle, 1302, QT_TRANSLATE_NOOP("Menu", "&Maximize")},
    {Item::Group, 1304, QT_TRANSLATE_NOOP("Menu", "C&lone")},
    {Item::Plain, 1305, QT_TRANSLATE_NOOP("Menu", "&Rename")},
    {Item::Group, 1303, QT_TRANSLATE_NOOP("Menu", "&Close")},
};

struct ButtonRow
{
    int key;
    const char* image;
    const char* caption;
    bool group = false;
    ToolType type = ToolType::Normal;
};

constexpr ButtonRow kButtonRows[] = {
    {101, "new", QT_TRANSLATE_NOOP("Menu", "New session")},
    {103, "open", QT_TRANSLATE_NOOP("Menu", "Open a session or layout")},
    {105, "save", QT_TRANSLATE_NOOP("Menu", "Save session")},
    {303, "copy", QT_TRANSLATE_NOOP("Menu", "Copy"), true},
    {305, "paste", QT_TRANSLATE_NOOP("Menu", "Paste")},
    {712, "clone", QT_TRANSLATE_NOOP("Menu", "Clone session"), true},
    {506, "screen", QT_TRANSLATE_NOOP("Menu", "Extended screen"), false, ToolType::Toggle},
    {707, "reset", QT_TRANSLATE_NOOP("Menu", "Reset terminal"), true},
    {708, "connect", QT_TRANSLATE_NOOP("Menu", "Reset connection")},
    {705, "settings", QT_TRANSLATE_NOOP("Menu", "Settings"), true},
};

struct PanelRow
{
    const char* caption;
    const char* widest; // keeps its width; empty: fits its text
    const char* toolTip;
    const char* image;
    int key;
    bool spring = false;
};

constexpr PanelRow kPanelRows[] = {
    {"Device Status", "", QT_TRANSLATE_NOOP("Menu", "Device"), "", 1103, true},
    {"Connection", "", QT_TRANSLATE_NOOP("Menu", "Connection"), "", 1102},
    {"Emulation", "", QT_TRANSLATE_NOOP("Menu", "Terminal type"), "", 1101},
    {"000,00,00", "000,000,00", QT_TRANSLATE_NOOP("Menu", "Columns, rows, pages"), "", 1104},
    {"000,00,00", "000,000,00", QT_TRANSLATE_NOOP("Menu", "Cursor: column, row, page"), "", 1107},
    {"Idle", "", QT_TRANSLATE_NOOP("Menu", "Printer"), "", 1105},
    {"Capture Off", "", QT_TRANSLATE_NOOP("Menu", "Capture"), "", 1106},
    {"Keyboard", "", QT_TRANSLATE_NOOP("Menu", "Keyboard unlocked"), "keyboard", 1108},
};

QString MenuText(const char* text) { return QCoreApplication::translate("Menu", text); }

QString CommandAction(int key) { return QStringLiteral("[#%1]").arg(key); }

template <std::size_t N>
std::vector<MenuTool> BuildTools(const MenuRow (&rows)[N])
{
    std::vector<MenuTool> top;
    std::vector<std::vector<MenuTool>*> open{&top};
    for (const MenuRow& row : rows) {
        if (row.item == Item::End) {
            open.pop_back();
            continue;
        }
        MenuTool tool;
        tool.key = row.key;
        tool.type = row.item == Item::Menu     ? ToolType::SubMenu
                    : row.item == Item::Toggle ? ToolType::Toggle
                                               : ToolType::Normal;
        tool.caption = MenuText(row.caption);
        tool.beginGroup = row.item == Item::Group;
        tool.shortcut = QLatin1String(row.shortcut);
        tool.action = CommandAction(row.key);
        open.back()->push_back(std::move(tool));
        if (row.item == Item::Menu)
            open.push_back(&open.back()->back().tools);
    }
    return top;
}

std::vector<MenuTool> BuildButtons()
{
    std::vector<MenuTool> tools;
    for (const ButtonRow& row : kButtonRows) {
        MenuTool tool;
        tool.key = row.key;
        tool.type = row.type;
        tool.caption = MenuText(row.caption);
        tool.toolTipText = tool.caption;
        tool.beginGroup = row.group;
        tool.image = QLatin1String(row.image);
        tool.action = CommandAction(row.key);
        tools.push_back(std::move(tool));
    }
    return tools;
}

std::vector<MenuTool> BuildPanels()
{
    std::vector<MenuTool> tools;
    for (const PanelRow& row : kPanelRows) {
        MenuTool tool;
        tool.key = row.key;
        tool.type = ToolType::Panel;
        tool.caption = MenuText(row.caption);
        tool.toolTipText = MenuText(row.toolTip);
        tool.image = QLatin1String(row.image);
        tool.widest = QLatin1String(row.widest);
        tool.spring = row.spring;
        tool.action = CommandAction(row.key);
        tools.push_back(std::move(tool));
    }
    return tools;
}

MenuBand MakeBand(const char* key, BandType type, const char* title, std::vector<MenuTool> tools)
{
    MenuBand band;
    band.key = QLatin1String(key);
    band.type = type;
    band.title = MenuText(title);
    band.tools = std::move(tools);
    return band;
}

} // namespace

void LoadDefaultMenu(taMenuBar& menu)
{
    menu.RemoveBands();
    menu.AddBand(MakeBand("Menu", BandType::MainMenu, "", BuildTools(kMenuRows)));
    menu.AddBand(MakeBand("StatusBar", BandType::StatusBar, QT_TRANSLATE_NOOP("Menu", "&Status Bar"), BuildPanels()));
    menu.AddBand(MakeBand("Toolbar", BandType::ToolBar, QT_TRANSLATE_NOOP("Menu", "&Toolbar"), BuildButtons()));
    menu.AddBand(MakeBand("ContextMenu", BandType::Popup, "", BuildTools(kContextRows)));
    menu.AddBand(MakeBand("SessionBar", BandType::SessionBar, QT_TRANSLATE_NOOP("Menu", "Session list"), {}));
    menu.AddBand(MakeBand("TabCtx", BandType::Popup, "", BuildTools(kTabRows)));
}

} // namespace kestrune
