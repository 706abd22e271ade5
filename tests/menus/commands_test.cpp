#include <app/missingpieces.h>
#include <fakes/print.h>
#include <fakes/shellbench.h>
#include <menus/commands.h>

#include <gtest/gtest.h>

namespace kestrune {

using namespace Qt::StringLiterals;

namespace {

// A shell with one session, and everything that a command does as one line.
class CommandBench : public ShellBench
{
public:
    explicit CommandBench(int device = 3)
    {
        Run();
        const QByteArray content = "[Kestrune]\r\nTermType=8\r\nHostName=host\r\nDevice=" + QByteArray::number(device);
        session = Application().Sessions().Add(Write(u"a.orcf"_s, content), 0);
        LoadMenu(menu, layer);
        log.clear();
        ask.boxes.clear();
        recorder.commands.clear();
    }
    // A click on the command's tool in a session's own menu.
    QString Click(int id, clsSession* in)
    {
        for (const MenuBand& band : menu.Bands())
            if (const MenuTool* tool = menu.Tool(band.key, id)) {
                Application().Menu().ToolClick(menu, band.key, *tool, in);
                break;
            }
        QStringList did = log + pieces.log;
        if (!ask.boxes.empty())
            did.append(u"box"_s);
        if (!frame->notices.isEmpty())
            did.append(u"notice"_s);
        if (frame->arranged >= 0)
            did.append(u"arrange %1"_s.arg(frame->arranged));
        for (const QString& line : recorder.commands)
            did.append(u"record "_s + line);
        return did.join(u"; "_s);
    }
    std::shared_ptr<clsSession> session;
    taMenuBar menu;
};

struct CommandCase
{
    int id;
    const char* does; // opened; told in a box or a notice; recorded as id, session, text, value
};

// With a user who cancels every dialog.
constexpr CommandCase kCases[] = {
    {101, "wizard"},
    {103, ""},
    {104, "record 104 1  0"},
    {105, "record 105 1  0"},
    {106, ""},
    {108, ""},
    {109, ""},
    {110, "record 110 1  0"},
    {201, "record 201 1  1"},
    {202, "record 202 1  0"},
    {203, "settings P"},
    {303, "record 303 1  0"},
    {304, "record 304 1  0"},
    {305, "record 305 1  0"},
    {306, ""},
    {308, "record 308 1  0"},
    {313, "settings Q"},
    {314, "record 314 1  0"},
    {316, "record 316 1  0"},
    {351, "settings R"},
    {401, "help 0"},
    {403, "help 1"},
    {404, "help 1"},
    {405, ""},
    {411, "notice"}, // no documents are installed
    {412, "notice"},
    {414, "notice"},
    {415, "notice"},
    {501, "arrange 0"},
    {502, "arrange 1"},
    {503, "arrange 2"},
    {506, "record 506 1  1"},
    {513, "editor Main"},
    {599, "record 599 1  2"},
    {601, "upload 1"},
    {602, "download 1"},
    {603, "capture 1"},
    {611, "upload 1"},
    {612, "download 1"},
    {704, ""}, // for a line with a dialer alone
    {705, "settings "},
    {707, "record 707 1  1"},
    {708, "record 708 1  2"},
    {711, "designer"},
    {712, "record 712 2  0"},
    {804, "recorder"},
    {805, "editor Macro"},
    {1201, "record 1201 1  0"},
    {1202, "record 1202 1  0"},
    {1203, "record 1203 1  0"},
    {1204, "record 1204 1  1"},
    {1301, "record 1301 1  0"},
    {1302, "record 1302 1  2"},
    {1303, "record 1303 1  0"},
    {1304, "record 1304 2  0"},
    {1305, ""},
};

TEST(Commands, EachDoesWhatItsRowSays)
{
    ASSERT_EQ(std::size(kCases), Commands().size());
    for (const CommandCase& each : kCases) {
        const CommandRow* row = FindCommand(each.id);
        ASSERT_NE(row, nullptr) << each.id;
        EXPECT_EQ(row->key, ToolKeyName(each.id));
        {
            CommandBench bench;
            EXPECT_EQ(bench.Click(each.id, bench.session.get()), QLatin1String(each.does)) << each.id;
        }
        if (row->needs == Needs::Session) {
            CommandBench bench;
            EXPECT_EQ(bench.Click(each.id, nullptr), QString()) << each.id << " without a session";
        }
    }
}

TEST(Commands, DialogsThatAreAnswered)
{
    struct Row
    {
        int id;
        std::function<void(CommandBench&)> before;
        QString does;
        int device = 3;
    };
    const auto answer = [](const char* name) {
        return [name](CommandBench& bench) { bench.ask.files = {bench.Home(QLatin1String(name))}; };
    };
    const auto dial = [](DialResult result) {
        return [result](CommandBench& bench) {
            bench.pieces.dialResult = result;
            bench.pieces.dialNumber = u"555"_s;
        };
    };
    const Row rows[] = {
        {101, [](CommandBench& b) { b.wizardResult = WizardResult::Finished; }, u"wizard; record 101 2  0"_s},
        {103, [](CommandBench& b) { b.ask.files = {b.SessionFile(u"b.orcf"_s)}; }, u"record 103 1  0"_s},
        {106, answer("c.orcf"), u"record 106 1 c.orcf 0"_s},
        {108, answer("l.orlo"), u"record 108 1 l.orlo 0"_s},
        {109, answer("l.orlo"), u"record 109 1 l.orlo 0"_s},
        {306,
         [](CommandBench& b) {
             b.ask.files = {b.Write(u"t.txt"_s, "x")};
             b.texts.files[b.Home(u"t.txt"_s)] = u"x"_s;
         },
         u"record 306 1 t.txt 0"_s},
        {415,
         [](CommandBench& b) {
             QDir(b.layer.folders.ProgramDir).mkpath(u"doc"_s);
             b.layer.profile.Files().Replace(b.layer.folders.ProgramDir + u"doc/guiman.pdf"_s, "%PDF");
         },
         u"document %1"_s},
        {611, [](CommandBench& b) { b.pieces.hostTools = {354}; }, u"host tool 354/1"_s},
        {612, [](CommandBench& b) { b.pieces.hostTools = {355}; }, u"host tool 355/1"_s},
        {352, {}, u"host tool 352/1"_s},
        {704, dial(DialResult::Cancelled), u"dial 1"_s, 4},
        {704, dial(DialResult::HangUp), u"dial 1; record 704 1 555 2"_s, 4},
        {704, dial(DialResult::Dial), u"dial 1; record 704 1 555 1"_s, 4},
    };
    for (const Row& row : rows) {
        CommandBench bench(row.device);
        if (row.before)
            row.before(bench);
        QString does = row.does;
        if (does.contains(u'%'))
            does = does.arg(bench.layer.folders.ProgramDir + u"doc/guiman.pdf"_s);
        EXPECT_EQ(bench.Click(row.id, bench.session.get()), does) << row.id;
    }
}

TEST(Commands, PiecesThatAreNotThereSaySo)
{
    FakeQuestions ask;
    QString opened;
    MissingCommandPieces pieces(ask, [&](const QString& path) { opened = path; }, {});
    CommandBench bench;
    QString number;
    pieces.ShowUpload(*bench.session);
    pieces.ShowDownload(*bench.session);
    EXPECT_EQ(pieces.ShowDial(*bench.session, number), DialResult::Cancelled);
    EXPECT_FALSE(pieces.ShowMenuDesigner(nullptr));
    pieces.StartMacroRecorder();
    pieces.OpenScriptEditor({}, {});
    pieces.RunMacro({}, nullptr);
    pieces.InvokeMVService(352, {});
    EXPECT_EQ(ask.boxes.size(), 8u);
    for (const MsgBoxRequest& box : ask.boxes)
        EXPECT_TRUE(box.text.contains(u"has not been implemented at this time."_s)) << box.text.toStdString();
    pieces.OpenDocument(u"/doc"_s);
    EXPECT_EQ(opened, u"/doc"_s);
}

} // namespace

} // namespace kestrune
