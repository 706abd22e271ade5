// How long menus take to load and change: a menu file of 2,000 tools (goal: 50 ms), the built-in one, and a tool's
// state by id, as a session's events write it. Prints milliseconds of processor time, the best of several rounds.

#include <menus/loadmenu.h>
#include <menus/menufile.h>

#include <algorithm>
#include <cstdio>
#include <ctime>
#include <functional>

namespace {

using namespace kestrune;

void Measure(const char* what, const std::function<void()>& run)
{
    double best = 1e9;
    for (int round = 0; round < 10; ++round) {
        const std::clock_t start = std::clock();
        run();
        best = std::min(best, 1000.0 * static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC);
    }
    std::printf("%-36s %8.3f ms\n", what, best);
}

QString TextOf(const std::vector<MenuBand>& bands)
{
    return QStringLiteral("[Menu]\r\n") + MenuFileLines(bands).join(QStringLiteral("\r\n"));
}

std::vector<MenuBand> BigMenu(int tools)
{
    MenuBand band;
    band.key = QStringLiteral("Menu");
    for (int i = 1; i <= tools; ++i) {
        MenuTool tool;
        tool.key = 10000 + i;
        tool.caption = QStringLiteral("&Tool %1").arg(i);
        tool.toolTipText = QStringLiteral("What tool %1 does").arg(i);
        tool.imageSource = ImageSource::Resource;
        tool.normalImage = QStringLiteral("101");
        tool.action = QStringLiteral("^C^M");
        if (i % 20 == 1)
            band.tools.push_back(tool); // the parent of the next ones
        else
            band.tools.back().tools.push_back(tool);
    }
    return {band};
}

} // namespace

int main()
{
    taMenuBar menu;
    const QString big = TextOf(BigMenu(2000));
    Measure("load a menu file of 2,000 tools", [&] { menu.SetBands(LoadMenuBag(big)); });
    bool on = false;
    Measure("write a state in it by id", [&] { menu.SetToolProperty(11000, ToolProperty::Enabled, on = !on); });
    Measure("load the built-in menu", [&] { menu.SetBands(LoadMenuBag(BuiltInMenu())); });
    Measure("write a state in it by id", [&] { menu.SetToolProperty(303, ToolProperty::Enabled, on = !on); });
}
