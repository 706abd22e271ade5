#pragma once

// Menus of any shape that a menu file can hold, from a seed.

#include <menubar/tamenubar.h>

#include <random>

namespace kestrune {

class RandomMenu
{
public:
    explicit RandomMenu(unsigned seed) : random_(seed) {}

    std::vector<MenuBand> Bands()
    {
        constexpr BandType types[] = {BandType::Popup, BandType::MainMenu, BandType::ToolBar, BandType::StatusBar,
                                      BandType::SessionBar};
        std::vector<MenuBand> bands(Below(6));
        for (std::size_t i = 0; i < bands.size(); ++i) {
            MenuBand& band = bands[i];
            band.key = QStringLiteral("band %1").arg(i);
            band.type = types[Below(5)];
            band.style = Short();
            band.title = Text();
            band.dock = static_cast<BandDock>(1 + Below(5)); // 0 is left out and read as 1, deliberately
            band.locked = Coin();
            band.icons = Coin() ? IconSize::Large : IconSize::Small;
            band.enabled = Coin();
            band.visible = Coin();
            band.tools = Tools(0);
        }
        return bands;
    }

private:
    std::size_t Below(unsigned limit) { return random_() % limit; }
    bool Coin() { return Below(2) != 0; }
    qint16 Short() { return static_cast<qint16>(Below(3) == 0 ? random_() : 0); }

    QString Text()
    {
        static const QStringList texts{QString(),
                                       QStringLiteral("&New"),
                                       QStringLiteral("\"quoted\""),
                                       QStringLiteral("\"half"),
                                       QStringLiteral("\""),
                                       QStringLiteral("\"\""),
                                       QStringLiteral(" blanks "),
                                       QStringLiteral("a=b;c"),
                                       QStringLiteral("[Menu]"),
                                       QStringLiteral(";no comment"),
                                       QStringLiteral("\u00c4\u4e2d"),
                                       QStringLiteral("\t")};
        return texts[static_cast<qsizetype>(Below(static_cast<unsigned>(texts.size())))];
    }

    std::vector<MenuTool> Tools(int depth)
    {
        constexpr ImageSource sources[] = {ImageSource::None, ImageSource::Resource, ImageSource::File};
        std::vector<MenuTool> tools(depth < 5 ? Below(4) : 0);
        for (MenuTool& tool : tools) {
            tool.key = 1 + static_cast<int>(Below(20000));
            tool.type = static_cast<ToolType>(Below(16));
            tool.style = Short();
            tool.caption = Text();
            tool.enabled = Coin();
            tool.visible = Coin();
            tool.checked = Coin();
            tool.beginGroup = Coin();
            tool.isDefault = Coin();
            tool.shortcut = Text();
            tool.toolTipText = Text();
            tool.imageSource = sources[Below(3)];
            tool.normalImage = Text();
            tool.checkedImage = Text();
            tool.width = static_cast<int>(Below(500)) * 15;
            tool.action = Text();
            tool.tools = Tools(depth + 1);
        }
        return tools;
    }

    std::mt19937 random_;
};

} // namespace kestrune
