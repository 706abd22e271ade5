#include <fakes/failures.h>
#include <fakes/shellbench.h>
#include <menus/loadmenu.h>
#include <menus/menufile.h>

#include <gtest/gtest.h>

#include "menuparts.h"

namespace kestrune {

using namespace Qt::StringLiterals;

namespace {

// Which of the three menus comes up is seen by the key of its only band.
class LoadMenuTest : public testing::Test
{
protected:
    static QByteArray MenuOf(const char* band, const char* more = "")
    {
        return QByteArray("[Menu]\r\nBandCount=1\r\nTYPE_1=2\r\nKEY_1=") + band + "\r\n" + more + "\r\n";
    }
    void Put(const QString& folder, const QByteArray& content) const
    {
        if (!content.isNull())
            world_.layer.profile.Files().Replace(folder + kMenuFileName, content);
    }

    FakeSurroundings world_;
};

TEST_F(LoadMenuTest, SearchOrder)
{
    struct Row
    {
        const char* what;
        QByteArray personal;
        QByteArray master;
        MenuSource source;
        QString first; // key of the first band
        std::size_t bands = 1;
    };
    const QByteArray none;
    const Row rows[] = {
        {"neither", none, none, MenuSource::BuiltIn, u"Menu"_s, 6},
        {"personal alone", MenuOf("P"), none, MenuSource::Personal, u"P"_s},
        {"master alone", none, MenuOf("M"), MenuSource::Master, u"M"_s},
        {"both", MenuOf("P"), MenuOf("M"), MenuSource::Personal, u"P"_s},
        {"master that overrides", MenuOf("P"), MenuOf("M", "OverrideUserMenu=1"), MenuSource::Master, u"M"_s},
        {"override without a menu", MenuOf("P"), "[Menu]\r\nOverrideUserMenu=True\r\n", MenuSource::BuiltIn, u"Menu"_s,
         6},
        {"personal without count", "[Menu]\r\nKEY_1=P\r\n", MenuOf("M"), MenuSource::Master, u"M"_s},
        {"personal with a bad tool", MenuOf("P", "ITEMCOUNT_1=1"), MenuOf("M"), MenuSource::Master, u"M"_s},
        {"both bad", MenuOf("P", "ITEMCOUNT_1=1"), MenuOf("M", "ITEMCOUNT_1=1"), MenuSource::BuiltIn, u"Menu"_s, 6},
        {"negative count", "[Menu]\r\nBandCount=-5\r\n", none, MenuSource::BuiltIn, u"Menu"_s, 6},
        {"personal empty", "[Menu]\r\nBandCount=0\r\n", MenuOf("M"), MenuSource::Personal, {}, 0},
        {"no menu file at all", "\x01\x02\xff", none, MenuSource::BuiltIn, u"Menu"_s, 6},
    };
    for (const Row& row : rows) {
        for (const QString& folder : {world_.layer.folders.AppDataDir, world_.layer.folders.ProgramDir})
            QFile::remove(folder + kMenuFileName);
        Put(world_.layer.folders.AppDataDir, row.personal);
        Put(world_.layer.folders.ProgramDir, row.master);
        taMenuBar menu;
        EXPECT_EQ(LoadMenu(menu, world_.layer), row.source) << row.what;
        ASSERT_EQ(menu.Bands().size(), row.bands) << row.what;
        EXPECT_EQ(row.bands != 0 ? menu.Bands()[0].key : QString(), row.first) << row.what;
    }
}

TEST_F(LoadMenuTest, BadFilesLeaveWhatStands)
{
    const QString file = world_.layer.folders.AppDataDir + kMenuFileName;
    taMenuBar menu;
    menu.SetBands({BandOf(u"Standing"_s)});
    EXPECT_FALSE(LoadMenuFile(menu, world_.layer, file));
    Put(world_.layer.folders.AppDataDir, MenuOf("P", "ITEMCOUNT_1=1"));
    EXPECT_FALSE(LoadMenuFile(menu, world_.layer, file));
    EXPECT_EQ(menu.Bands()[0].key, u"Standing"_s);
}

TEST_F(LoadMenuTest, WrittenInPlaceOfTheSection)
{
    const QString file = world_.layer.folders.AppDataDir + kMenuFileName;
    Put(world_.layer.folders.AppDataDir, "[Other]\r\nkeep=me\r\n[Menu]\r\nBandCount=1\r\nKEY_1=Old\r\nstale=1\r\n");
    const std::vector<MenuBand> bands = LoadMenuBag(BuiltInMenu());
    WriteMenuFile(world_.layer.profile, file, bands, true);
    taMenuBar menu;
    ASSERT_TRUE(LoadMenuFile(menu, world_.layer, file));
    EXPECT_TRUE(menu.Bands() == bands);
    const Profile& profile = world_.layer.profile;
    EXPECT_EQ(profile.ProfileGetString(u"Other"_s, u"keep"_s, {}, file), u"me"_s);
    EXPECT_EQ(profile.ProfileGetString(u"Menu"_s, u"stale"_s, u"-"_s, file), u"-"_s);
    EXPECT_TRUE(profile.ProfileGetBool(u"Menu"_s, u"OverrideUserMenu"_s, false, file));
    WriteMenuFile(world_.layer.profile, file, bands, false);
    EXPECT_EQ(profile.ProfileGetString(u"Menu"_s, u"OverrideUserMenu"_s, u"-"_s, file), u"-"_s); // the default

    const QString nowhere = world_.layer.folders.AppDataDir + u"none/"_s + kMenuFileName;
    EXPECT_NE(FailureNumber([&] { WriteMenuFile(world_.layer.profile, nowhere, bands, false); }), 0);
}

} // namespace

} // namespace kestrune
