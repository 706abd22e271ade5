// Which menu comes up: the user's file, the installation's, the built-in one, by what is wrong with each; in the real
// window, for the program without a session and for a session.

#include <fakes/windowbench.h>

#include <gtest/gtest.h>

namespace kestrune {

using namespace Qt::StringLiterals;

namespace {

// A menu with one sub-menu of this caption, and whatever else the test wants.
QByteArray Menu(const QByteArray& caption, const QByteArray& more = {})
{
    return "[Menu]\r\nBandCount=1\r\nKEY_1=Menu\r\nTYPE_1=2\r\nENABLED_1=True\r\nVISIBLE_1=True\r\nITEMCOUNT_1=1\r\n"
           "key_2=100\r\ntype_2=2\r\ncaption_2=" +
           caption + "\r\nenabled_2=True\r\nvisible_2=True\r\n" + more;
}

struct FileCase
{
    const char* what;
    std::optional<QByteArray> personal, master;
    QString shown; // captions of the menu bar
    MenuSource source;
};

const QString kBuiltIn =
    u"&File &Edit &View &Tools &Window &Help"_s; // host tools are hidden until their services are on

const FileCase kFileCases[] = {
    {"no file", {}, {}, kBuiltIn, MenuSource::BuiltIn},
    {"a personal file", Menu("Mine"), {}, u"Mine"_s, MenuSource::Personal},
    {"a master file", {}, Menu("Ours"), u"Ours"_s, MenuSource::Master},
    {"both", Menu("Mine"), Menu("Ours"), u"Mine"_s, MenuSource::Personal},
    {"a master that overrides", Menu("Mine"), Menu("Ours", "OverrideUserMenu=1\r\n"), u"Ours"_s, MenuSource::Master},
    {"an override that is off", Menu("Mine"), Menu("Ours", "OverrideUserMenu=False\r\n"), u"Mine"_s,
     MenuSource::Personal},
    {"a master that overrides and is no menu", Menu("Mine"), "[Menu]\r\nOverrideUserMenu=True\r\n", kBuiltIn,
     MenuSource::BuiltIn},
    {"no BandCount", QByteArray(Menu("Mine")).replace("BandCount", "Bands"), Menu("Ours"), u"Ours"_s,
     MenuSource::Master},
    {"a negative BandCount", QByteArray(Menu("Mine")).replace("BandCount=1", "BandCount=-1"), Menu("Ours"), u"Ours"_s,
     MenuSource::Master},
    {"both negative", QByteArray(Menu("Mine")).replace("BandCount=1", "BandCount=-2"),
     QByteArray(Menu("Ours")).replace("BandCount=1", "BandCount=-2"), kBuiltIn, MenuSource::BuiltIn},
    {"an empty menu", "[Menu]\r\nBandCount=0\r\n", Menu("Ours"), QString(), MenuSource::Personal},
    {"an empty file", "", Menu("Ours"), u"Ours"_s, MenuSource::Master},
    {"another kind of file",
     QByteArray("\x7f"
                "ELF\0\0\0[Menu\0",
                13),
     {},
     kBuiltIn,
     MenuSource::BuiltIn},
    {"a tool that cannot be added", QByteArray(Menu("Mine")).replace("key_2=100", "key_2=File"), Menu("Ours"),
     u"Ours"_s, MenuSource::Master},
    {"a type that is no number of its kind", QByteArray(Menu("Mine")).replace("TYPE_1=2", "TYPE_1=99999"), Menu("Ours"),
     u"Ours"_s, MenuSource::Master},
    {"a band whose key stands already",
     QByteArray(Menu("Mine", "KEY_3=menu\r\nTYPE_3=2\r\nKEY_4=Toolbar\r\nTYPE_4=4\r\n"))
         .replace("BandCount=1", "BandCount=3"),
     {},
     u"Mine"_s,
     MenuSource::Personal},
    {"a band with a truth that is none", QByteArray(Menu("Mine")).replace("ENABLED_1=True", "ENABLED_1=perhaps"),
     Menu("Ours"), QString(), MenuSource::Personal}, // left out, and nothing else is there
    {"unknown keys", Menu("Mine", "COLOUR_1=green\r\nflavour_2=mint\r\n"), {}, u"Mine"_s, MenuSource::Personal},
    {"UTF-16",
     QByteArray("\xff\xfe", 2) +
         [] {
             const QString text = QString::fromLatin1(Menu("Mine"));
             return QByteArray(reinterpret_cast<const char*>(text.utf16()), text.size() * 2);
         }(),
     {},
     u"Mine"_s,
     MenuSource::Personal},
};

void Put(const WindowBench& bench, const QString& folder, const std::optional<QByteArray>& content)
{
    QDir().mkpath(folder);
    if (content)
        bench.layer.profile.Files().Replace(folder + kMenuFileName, *content);
}

QString Captions(const WindowBench& bench)
{
    QStringList captions;
    for (const QAction* action : bench.window->menuBar()->actions())
        if (action->isVisible() && !action->text().isEmpty())
            captions.append(action->text());
    return captions.join(u' ');
}

TEST(MenuFiles, TheFirstThatCanBeUsedComesUp)
{
    for (const FileCase& each : kFileCases) {
        SCOPED_TRACE(each.what);
        WindowBench bench;
        Put(bench, bench.layer.folders.AppDataDir, each.personal);
        Put(bench, bench.layer.folders.ProgramDir, each.master);
        bench.layer.profile.ProfileSetBool(u"MVServices"_s, u"Enabled"_s, false, true,
                                           InstallationIniFile(bench.layer.folders));
        bench.Open();
        EXPECT_EQ(bench.Application().Menu().FrameMenuSource(), each.source);
        EXPECT_EQ(Captions(bench), each.shown);
        bench.OpenSession();
        EXPECT_EQ(Captions(bench), each.shown) << "in a session";
        EXPECT_TRUE(bench.ask.boxes.empty()) << "no message";
    }
}

// A folder in the file's place, as a file without leave to read it is.
TEST(MenuFiles, OneThatCannotBeReadIsPassedOver)
{
    WindowBench bench;
    QDir().mkpath(bench.layer.folders.AppDataDir + kMenuFileName);
    Put(bench, bench.layer.folders.ProgramDir, Menu("Ours"));
    bench.Open();
    EXPECT_EQ(Captions(bench), u"Ours"_s);
}

} // namespace

} // namespace kestrune
