#include "toolstates.h"

#include <menus/menucmd.h>

#include <QCoreApplication>

#include <algorithm>

namespace kestrune {

using namespace Qt::StringLiterals;

namespace {

constexpr bool Within(int id, int first, int last) { return id >= first && id <= last; }
constexpr bool IsHostTool(int id) { return Within(id, 350, 399); }

constexpr bool NeedsNoSession(int id)
{
    constexpr int single[] = {101, 103, 110, 113, 154, 513, 705, 711, 804};
    return std::find(std::begin(single), std::end(single), id) != std::end(single) || Within(id, 400, 449) ||
           Within(id, 1200, 1299) || Within(id, 10000, 19999);
}

constexpr int kHintPanel = 1103;

void ToFrameState(MenuTool& tool, int id, bool hostTools)
{
    if (NeedsNoSession(id)) {
        tool.enabled = true;
    } else if (id == kHintPanel) {
        tool.caption = QCoreApplication::translate("Menu", "Create a new session or open an existing one");
        tool.enabled = true;
    } else if (IsHostTool(id)) {
        tool.visible = hostTools;
        tool.enabled = false;
    }
}

MenuTool MacroItem(int id, const QString& line)
{
    const QStringList fields = line.split(u'\t');
    MenuTool tool;
    tool.key = id;
    tool.style = ToolStyle::TextAndIcon;
    tool.caption = fields.value(2).isEmpty() ? fields.value(0) : fields.value(2);
    if (const qsizetype mark = tool.caption.indexOf(u'&'); mark >= 0)
        tool.caption.insert(mark, u'&'); // only the first, deliberately: a second one may mark an access key
    tool.toolTipText = fields.value(1);
    tool.action = u"[#%1#%2]"_s.arg(id).arg(fields.value(0));
    return tool;
}

void RefreshRunMacro(MenuTool& tool, const QStringList& macros)
{
    std::erase_if(tool.tools,
                  [](const MenuTool& item) { return item.key > ToolId::MacroFirst && item.key < ToolId::MacroEnd; });
    tool.enabled = !macros.isEmpty();
    const auto most = static_cast<qsizetype>(ToolId::MacroEnd - ToolId::MacroFirst - 1);
    for (qsizetype i = 0; i < std::min(macros.size(), most); ++i)
        tool.tools.push_back(MacroItem(ToolId::MacroFirst + 1 + static_cast<int>(i), macros[i]));
}

} // namespace

void ToFrameState(MenuTool& tool, bool hostTools)
{
    tool.visible = true;
    tool.enabled = tool.type == ToolType::SubMenu;
    for (const int id : {tool.key, CommandId(tool.action)})
        ToFrameState(tool, id, hostTools);
}

void ToSessionState(MenuTool& tool, bool hostTools)
{
    if (IsHostTool(tool.key) || IsHostTool(CommandId(tool.action))) {
        tool.visible = hostTools;
        tool.enabled = true;
    }
}

// Control and Shift with a character send nothing of their own, nor does a key with Meta: these are the keys that
// terminals keep for themselves. All others mean something to some host.
void LeaveKeyToHost(MenuTool& tool)
{
    const QStringList parts = tool.shortcut.split(u'+');
    const auto has = [&](const char* name) { return parts.contains(QLatin1String(name), Qt::CaseInsensitive); };
    const bool ownKey = has("Meta") || (has("Ctrl") && has("Shift") && !has("Alt") && parts.last().size() == 1);
    if (!ownKey)
        tool.shortcut.clear();
}

bool IsGeneratedItem(const MenuTool& tool)
{
    const int id = CommandId(tool.action);
    return Within(id, ToolId::RecentFirst + 1, ToolId::RecentEnd - 1) ||
           Within(id, ToolId::WindowFirst + 1, ToolId::WindowEnd - 1);
}

void InsertBehind(std::vector<MenuTool>& tools, std::size_t placeholder, const std::vector<ListedItem>& items)
{
    tools[placeholder].visible = false;
    std::vector<MenuTool> made;
    int number = 1;
    for (const ListedItem& item : items) {
        MenuTool tool = tools[placeholder];
        tool.key = item.key;
        tool.visible = true;
        tool.enabled = true;
        tool.checked = item.checked;
        tool.beginGroup = tool.beginGroup && number == 1; // the line that stands in front of the hidden placeholder
        tool.caption = u"&%1  "_s.arg(number++) + QString(item.text).replace(u'&', "&&"_L1); // no access key
        tool.action = u"[#%1]"_s.arg(item.key);
        tool.shortcut.clear();
        tool.tools.clear();
        made.push_back(std::move(tool));
    }
    const auto behind = static_cast<std::ptrdiff_t>(placeholder + 1);
    tools.insert(tools.begin() + behind, std::make_move_iterator(made.begin()), std::make_move_iterator(made.end()));
}

void RefreshMacroItems(std::vector<MenuTool>& tools, const QStringList& macros)
{
    for (MenuTool& tool : tools) {
        if (tool.key == ToolId::MacroRun)
            RefreshRunMacro(tool, macros);
        else if (tool.key == ToolId::MacroEdit)
            tool.enabled = !macros.isEmpty();
        else
            RefreshMacroItems(tool.tools, macros);
    }
}

} // namespace kestrune
