#include <fakes/failures.h>
#include <fakes/print.h>
#include <menus/commands.h>
#include <menus/loadmenu.h>
#include <menus/menufile.h>

#include <gtest/gtest.h>

#include <map>
#include <set>

#include "randommenu.h"

namespace kestrune {

using namespace Qt::StringLiterals;

namespace {

QString FileOf(const QStringList& lines) { return u"[Menu]\r\n"_s + lines.join(u"\r\n"_s) + u"\r\n"_s; }

// What a text makes of the caption of its only tool.
QString CaptionIn(const QString& text)
{
    const std::vector<MenuBand> bands = LoadMenuBag(text);
    return bands.size() == 1 && bands[0].tools.size() == 1 ? bands[0].tools[0].caption : u"(no tool)"_s;
}

const QStringList kOneTool{u"BandCount=1"_s, u"KEY_1=Menu"_s, u"TYPE_1=2"_s, u"ITEMCOUNT_1=1"_s, u"key_2=100"_s};

TEST(MenuFile, RandomMenusReadAndWrittenAreTheSame)
{
    for (unsigned seed = 0; seed < 100; ++seed) {
        const std::vector<MenuBand> bands = RandomMenu(seed).Bands();
        ASSERT_TRUE(LoadMenuBag(FileOf(MenuFileLines(bands))) == bands) << seed;
    }
}

TEST(MenuFile, BuiltInMenuReadAndWrittenIsTheSame)
{
    const std::vector<MenuBand> bands = LoadMenuBag(BuiltInMenu());
    EXPECT_TRUE(LoadMenuBag(FileOf(MenuFileLines(bands))) == bands);
    QStringList standing;
    const QStringList lines = BuiltInMenu().split(u'\n');
    for (const QString& line : lines)
        if (!line.isEmpty() && !line.startsWith(u';') && !line.startsWith(u'['))
            standing.append(line);
    EXPECT_EQ(MenuFileLines(bands), standing); // the file itself is as the writer writes
}

TEST(MenuFile, LinesOfTheSection)
{
    const auto with = [](const QString& line) { return FileOf(kOneTool + QStringList{line}); };
    const std::pair<QString, QString> rows[] = {
        {with(u"caption_2=&New"_s), u"&New"_s},
        {with(u"CAPTION_2=&New"_s), u"&New"_s},
        {with(u"caption_2=\"&New\""_s), u"&New"_s},
        {with(u"caption_2=\"\"&New\"\""_s), u"\"&New\""_s}, // one pair
        {with(u"caption_2=\"&New"_s), u"\"&New"_s},
        {with(u"caption_2=\""_s), u"\""_s},
        {with(u"caption_2= a = b "_s), u" a = b "_s},
        {with(u" caption_2=x"_s), {}}, // names are not trimmed
        {with(u"caption_2 =x"_s), {}},
        {with(u";caption_2=x"_s), {}},
        {with(u"caption_2"_s), {}},
        {with(u"caption_2=one\r\ncaption_2=two"_s), u"two"_s}, // the later line wins
        {with(u"caption_2=one\r\n[Other]\r\ncaption_2=two"_s), u"one"_s},
        {u"[Other]\r\ncaption_2=x\r\n"_s + with(u"caption_2=y"_s), u"y"_s},
        {with(u"caption_2=x"_s).replace(u"[Menu]"_s, u"[mENU]"_s), u"x"_s},
        {with(u"caption_2=x"_s).remove(u'\r'), u"x"_s}, // as editors on Unix write
        {with(u"caption_2=x"_s).chopped(2), u"x"_s},    // no line end at the end of the file
    };
    for (const auto& [text, caption] : rows)
        EXPECT_EQ(CaptionIn(text), caption) << text.toStdString();
}

TEST(MenuFile, ValuesAreReadByTheirKind)
{
    const std::vector<MenuBand> bands = LoadMenuBag(
        FileOf(kOneTool + QStringList{u"style_2=67abc"_s, u"enabled_2=5"_s, u"visible_2=true"_s, u"checked_2=0"_s,
                                      u"minwidth_2=90"_s, u"imagesource_2=1"_s, u"normalimage_2=101"_s}));
    const MenuTool& tool = bands.at(0).tools.at(0);
    EXPECT_EQ(tool.style, 67);
    EXPECT_TRUE(tool.enabled);
    EXPECT_TRUE(tool.visible);
    EXPECT_FALSE(tool.checked);
    EXPECT_EQ(tool.width, 90 * 15);
    EXPECT_EQ(tool.imageSource, ImageSource::Resource);
    EXPECT_EQ(bands[0].dock, BandDock::Top); // what a file without the key gets
    EXPECT_FALSE(bands[0].enabled || bands[0].visible);
    EXPECT_EQ(bands[0].icons, IconSize::Small);
}

// A bad band is left out, a bad tool or count makes the file bad.
TEST(MenuFile, WhatABadFileDoes)
{
    struct Row
    {
        const char* what;
        QStringList lines;
        int failure;
        int bands = 0;
    };
    const Row rows[] = {
        {"no count", {u"KEY_1=Menu"_s}, 32767},
        {"negative count", {u"BandCount=-1"_s}, 32767},
        {"no bands at all", {u"BandCount=0"_s}, 0, 0},
        {"band without key", {u"BandCount=2"_s, u"KEY_2=Menu"_s}, 0, 1},
        {"band twice", {u"BandCount=2"_s, u"KEY_1=Menu"_s, u"KEY_2=MENU"_s}, 0, 1},
        {"band with a bad truth", {u"BandCount=2"_s, u"KEY_1=A"_s, u"LOCKED_1=perhaps"_s, u"KEY_2=B"_s}, 0, 1},
        {"band with a style out of range", {u"BandCount=1"_s, u"KEY_1=A"_s, u"STYLE_1=70000"_s}, 0, 0},
        {"more bands than there are", {u"BandCount=2000000000"_s, u"KEY_1=A"_s}, 0, 1},
        {"tool without key", {u"BandCount=1"_s, u"KEY_1=A"_s, u"ITEMCOUNT_1=1"_s}, 32767},
        {"tool with a key in words", {u"BandCount=1"_s, u"KEY_1=A"_s, u"ITEMCOUNT_1=1"_s, u"key_2=File"_s}, 32767},
        {"tool with a bad truth", kOneTool + QStringList{u"enabled_2=yes"_s}, 13},
        {"tool with a style out of range", kOneTool + QStringList{u"style_2=40000"_s}, 6},
        {"more tools than there are", kOneTool + QStringList{u"ITEMCOUNT_1=2000000000"_s}, 32767},
        {"unknown keys", kOneTool + QStringList{u"colour_2=red"_s, u"Version=9"_s}, 0, 1},
    };
    for (const Row& row : rows) {
        std::vector<MenuBand> bands;
        EXPECT_EQ(FailureNumber([&] { bands = LoadMenuBag(FileOf(row.lines)); }), row.failure) << row.what;
        EXPECT_EQ(bands.size(), std::size_t(row.bands)) << row.what;
    }
    EXPECT_EQ(FailureNumber([] { LoadMenuBag(u"BandCount=1\r\nKEY_1=A\r\n"_s); }), 32767); // no section
    QStringList deep{u"BandCount=1"_s, u"KEY_1=A"_s, u"ITEMCOUNT_1=1"_s};
    for (int i = 2; i < 1000; ++i)
        deep += {u"key_%1=1"_s.arg(i), u"ITEMCOUNT_%1=1"_s.arg(i)};
    EXPECT_EQ(FailureNumber([&] { LoadMenuBag(FileOf(deep)); }), 32767);
}

// The number does not move past the tools of a band that is left out, so the next one reads the first of them.
TEST(MenuFile, TheBandBehindALeftOutOneReadsTheWrongNumbers)
{
    const std::vector<MenuBand> bands = LoadMenuBag(
        FileOf({u"BandCount=3"_s, u"KEY_1=A"_s, u"KEY_2=a"_s, u"ITEMCOUNT_2=1"_s, u"KEY_3=100"_s, u"KEY_4=B"_s}));
    ASSERT_EQ(bands.size(), 2u);
    EXPECT_EQ(bands[1].key, u"100"_s);
}

TEST(BuiltInMenu, HasTheSixBandsAndAPlaceForEveryCommand)
{
    taMenuBar menu;
    menu.SetBands(LoadMenuBag(BuiltInMenu()));
    QStringList keys;
    for (const MenuBand& band : menu.Bands())
        keys.append(band.key);
    EXPECT_EQ(keys,
              (QStringList{u"Menu"_s, u"StatusBar"_s, u"Toolbar"_s, u"ContextMenu"_s, u"SessionBar"_s, u"TabCtx"_s}));
    const std::map<QString, std::size_t> counts{{u"Menu"_s, 7},         {u"StatusBar"_s, 8},  {u"Toolbar"_s, 18},
                                                {u"ContextMenu"_s, 14}, {u"SessionBar"_s, 0}, {u"TabCtx"_s, 5}};
    for (const auto& [band, count] : counts)
        EXPECT_EQ(menu.Band(band)->tools.size(), count) << band.toStdString();

    std::map<QString, int> shortcuts; // by text, the command
    menu.EachTool([&](MenuTool& tool) {
        EXPECT_EQ(CommandId(tool.action), tool.key);
        EXPECT_FALSE(tool.caption.isEmpty()) << tool.key;
        EXPECT_TRUE(tool.enabled && tool.visible) << tool.key;
        EXPECT_FALSE(ToolKeyName(tool.key).empty() && tool.key != 1302) << tool.key;
        EXPECT_TRUE(tool.shortcut.isEmpty() || shortcuts.emplace(tool.shortcut, tool.key).first->second == tool.key);
    });
    for (const CommandRow& row : Commands())
        EXPECT_NE(menu.Tool(row.id), nullptr) << row.id;
}

TEST(ToolKeys, TableHasEveryKeyOnce)
{
    std::set<std::string_view> names;
    std::set<int> ids;
    for (const ToolKey& key : kToolKeys) {
        EXPECT_TRUE(names.insert(key.name).second) << key.name;
        EXPECT_TRUE(ids.insert(key.id).second) << key.id;
    }
    const QStringList lines = ToolKeyTable().split(u"\r\n"_s, Qt::SkipEmptyParts);
    EXPECT_EQ(lines.size(), 103);
    EXPECT_EQ(lines.first(), u"FILE_MENU=100"_s);
    EXPECT_EQ(lines.last(), u"TABCTX_RENAME=1305"_s);
}

} // namespace

} // namespace kestrune
