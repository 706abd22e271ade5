#include "bench.h"

#include <dispatch/propertybag.h>

namespace kestrune {
namespace {

using namespace Qt::StringLiterals;

TEST(Session, IsCreatedInvisibleWithItsPartsInPlace)
{
    SessionBench bench;
    bench.funcBarVisible = true;
    const auto session = bench.sessions.Add({}, 0, 0, AddHidden::NotShown | AddHidden::NotOnLine);
    EXPECT_EQ(session->Id(), u"1"_s);
    EXPECT_EQ(session->frmSession()->Tag(), u"1"_s);
    EXPECT_EQ(session->Index(), 0);
    EXPECT_FALSE(session->Visible());
    EXPECT_FALSE(session->Changed());
    EXPECT_EQ(session->WindowState(), WindowMinimised); // as long as it is not visible
    EXPECT_EQ(session->Caption(), QString());
    EXPECT_EQ(session->frmSession()->Title(), u"New Session"_s);
    EXPECT_EQ(session->Emulator().Title(), u"New Session"_s);
    EXPECT_EQ(session->Settings().Text(Setting("FontName")), u"DejaVu Sans Mono"_s);
    EXPECT_EQ(session->Emulator().FuncBarBank(), -1); // stored 0
    EXPECT_TRUE(bench.sessionCreated);
    EXPECT_EQ(bench.sessions.Add()->Id(), u"2"_s);
}

TEST(Session, WithoutTheWantedFontTakesTheProgramsOwn)
{
    SessionBench bench;
    bench.frame.fonts = {u"Serif"_s};
    EXPECT_EQ(bench.sessions.Add()->Settings().Text(Setting("FontName")), u"Kestrune"_s);
}

struct TitleCase
{
    const char* what;
    int format;
    QString caption;
    bool server;
    QString first, second; // titles of two sessions on one file "name.orcf"
};

TEST(Session, TitleFollowsCaptionFileServerAndFormat)
{
    const TitleCase cases[] = {
        {"id behind, round", 0, {}, false, u"name (1)"_s, u"name (2)"_s},
        {"id behind, square", 1, {}, false, u"name [1]"_s, u"name [2]"_s},
        {"id in front, round", 2, {}, false, u"(1) name"_s, u"(2) name"_s},
        {"id in front, square", 3, {}, false, u"[1] name"_s, u"[2] name"_s},
        {"ordinal, round", 4, {}, false, u"name (1)"_s, u"name (2)"_s},
        {"ordinal, square", 5, {}, false, u"name [1]"_s, u"name [2]"_s},
        {"unknown format", 99, {}, false, u"name (1)"_s, u"name (2)"_s},
        {"the user's own", 2, u"Mine"_s, false, u"(1) Mine"_s, u"(2) name"_s},
        {"server", 4, u"Mine"_s, true, u"Mine [server] (1)"_s, u"name (2)"_s},
    };
    for (const TitleCase& row : cases) {
        SCOPED_TRACE(row.what);
        SessionBench bench;
        bench.titleFormat = row.format;
        const QString file = bench.SessionFile(u"name.orcf"_s);
        const auto first = bench.sessions.Add(file);
        const auto second = bench.sessions.Add(file);
        first->SetCaption(row.caption);
        first->SetServer(row.server ? 1 : 0, u"srv"_s);
        EXPECT_EQ(first->frmSession()->Title(), row.first);
        EXPECT_EQ(second->frmSession()->Title(), row.second);
    }
}

TEST(Session, NumberInTheTitleGoesWhenTheOtherSessionGoes)
{
    SessionBench bench;
    const QString file = bench.SessionFile(u"name.orcf"_s);
    const auto first = bench.sessions.Add(file);
    const auto second = bench.sessions.Add(file);
    EXPECT_EQ(second->frmSession()->Title(), u"name (2)"_s);
    first->Terminate(0);
    EXPECT_EQ(second->frmSession()->Title(), u"name"_s);
}

TEST(Session, ChangedMergesItsOwnFlagAndTheEmulators)
{
    SessionBench bench;
    const auto session = bench.sessions.Add();
    session->SetCaption({});
    EXPECT_FALSE(session->Changed()) << "the same text";
    session->Settings().Set(u"HostName"_s, u"elsewhere"_s);
    EXPECT_TRUE(session->Changed()) << "seen when somebody asks";
    session->Settings().SetChanged(false);
    EXPECT_TRUE(session->Changed()) << "and kept";
    session->SetChanged(false);
    session->SetChanged(true);
    EXPECT_FALSE(session->Settings().Changed()) << "true touches the session's flag only";
    session->Settings().SetChanged(true);
    session->SetChanged(false);
    EXPECT_FALSE(session->Settings().Changed()) << "false clears both";
    session->SetAutoClose(true);
    EXPECT_TRUE(session->Changed());
}

TEST(Session, MoveChangesOnlyWhatIsGivenAndIsNotRecorded)
{
    SessionBench bench;
    const auto session = bench.sessions.Add();
    bench.recorder.TakeLog();
    session->Move(10);
    EXPECT_EQ(bench.Window(*session).place, (WindowPlace{10, 0, 640, 400, 0}));
    session->Resize(300, 200);
    session->SetTop(7);
    EXPECT_EQ(bench.Window(*session).place, (WindowPlace{10, 7, 300, 200, 0}));
    EXPECT_EQ(session->Left(), 10);
    EXPECT_EQ(session->Height(), 200);
    session->SetWindowState(WindowMaximised);
    session->SetWindowState(7); // ignored
    EXPECT_EQ(session->WindowState(), WindowMaximised);
    EXPECT_EQ(bench.recorder.TakeLog(), QStringList());
}

TEST(Session, StateGivenBeforeTheFirstShowIsKeptForIt)
{
    SessionBench bench;
    const auto session = bench.sessions.Add({}, -1, 0, AddHidden::NotShown);
    session->SetWindowState(WindowMaximised);
    EXPECT_EQ(session->WindowState(), WindowMinimised);
    session->Show();
    EXPECT_EQ(session->WindowState(), WindowMaximised);
    session->Hide();
    EXPECT_EQ(bench.frame.emptied, 1);
}

TEST(Session, IsShownWithoutActivationWhileAModalDialogIsUp)
{
    SessionBench bench;
    const auto session = bench.sessions.Add({}, 0, 0, AddHidden::NotShown);
    bench.Window(*session).modalDialogUp = true;
    session->Show();
    EXPECT_TRUE(bench.Window(*session).visible);
    EXPECT_EQ(bench.frame.active, nullptr);
}

TEST(Session, CopyAndPasteShortcutsAreOursUnlessTheUserGaveOthers)
{
    struct Case
    {
        QString copy, paste; // present
        int mode;
        QString newCopy, newPaste;
    };
    const Case cases[] = {
        {{}, {}, 1, u"Ctrl+Ins"_s, u"Shift+Ins"_s},
        {u"CTRL+INS"_s, u"shift+ins"_s, 2, u"Ctrl+C"_s, u"Ctrl+V"_s},
        {u"Ctrl+C"_s, u"Ctrl+V"_s, 0, {}, {}},
        {u"Ctrl+K"_s, {}, 1, u"Ctrl+K"_s, {}},
        {u"Ctrl+C"_s, u"F9"_s, 1, u"Ctrl+C"_s, u"F9"_s},
        {u"Ctrl+C"_s, u"Ctrl+V"_s, 3, u"Ctrl+C"_s, u"Ctrl+V"_s}, // no such mode
    };
    for (const Case& row : cases) {
        SCOPED_TRACE((row.copy + u" / "_s + row.paste).toStdString());
        SessionBench bench;
        const auto session = bench.sessions.Add();
        MenuTools& tools = session->frmSession()->Tools();
        session->SetCopyPasteShortcut(row.mode == 0 ? 1 : 0); // so that the let below is a change
        tools.SetToolProperty(Tool::Copy, ToolProperty::Shortcut, row.copy);
        tools.SetToolProperty(Tool::Paste, ToolProperty::Shortcut, row.paste);
        session->SetCopyPasteShortcut(row.mode);
        EXPECT_EQ(tools.GetToolProperty(Tool::Copy, ToolProperty::Shortcut).toString(), row.newCopy);
        EXPECT_EQ(tools.GetToolProperty(Tool::Paste, ToolProperty::Shortcut).toString(), row.newPaste);
    }
}

TEST(Session, SevenSettingsTravelInABag)
{
    SessionBench bench;
    const auto from = bench.sessions.Add();
    const QString mouse = bench.Write(u"mouse.txt"_s, "1\ta\tb\tc\n");
    from->SetAutoClose(true);
    from->SetCaption(u" Käse"_s);
    from->SetIcon(u"a.ico"_s);
    from->SetMouseTable(mouse);
    from->SetShowErrs(true);
    from->SetCapsLock(-1);
    from->SetCopyPasteShortcut(2);
    PropertyBag bag;
    from->WriteProperties(bag);
    const auto to = bench.sessions.Add();
    to->ReadProperties(bag);
    EXPECT_TRUE(to->AutoClose());
    EXPECT_EQ(to->Caption(), u" Käse"_s);
    EXPECT_EQ(to->Icon(), u"a.ico"_s);
    EXPECT_EQ(to->MouseTable(), mouse);
    EXPECT_TRUE(to->ShowErrs());
    EXPECT_EQ(to->CapsLock(), 1);
    EXPECT_TRUE(to->Emulator().CapsLock());
    EXPECT_EQ(to->CopyPasteShortcut(), 2);
    EXPECT_EQ(bag.ReadProperty(u"SessionMouseTable"_s).ToText(), mouse);
    EXPECT_THROW(to->MousePatterns(), Failure);
    EXPECT_THROW(to->SetScript({}), Failure);
}

TEST(Session, MouseTableReadsPatternsAndDecodesControls)
{
    SessionBench bench;
    const auto session = bench.sessions.Add();
    const QString path = bench.Write(bench.layer.folders.ProgramDir + u"mouse.txt"_s, "; comment\r\n"
                                                                                      "   ;another\r\n"
                                                                                      "\r\n"
                                                                                      "1\t[0-9]+\t^M\t\\^?\r\n"
                                                                                      "2\tonly a pattern\n");
    session->MouseTableLoad(u"mouse.txt"_s); // relative to the program
    const auto& table = session->Emulator().MouseTable();
    ASSERT_EQ(table.size(), 2u);
    EXPECT_EQ(table[0].button, 1);
    EXPECT_EQ(table[0].pattern, u"[0-9]+"_s);
    EXPECT_EQ(table[0].rClick, u"\r"_s);
    EXPECT_EQ(table[0].rDblClk, QString(QChar(255)));
    EXPECT_EQ(table[1].rClick, QString()) << "missing fields are empty";
    session->MouseTableLoad({});
    EXPECT_TRUE(session->Emulator().MouseTable().empty());
    try {
        session->MouseTableLoad(path + u".gone"_s);
        FAIL() << "a table that is not there";
    } catch (const Failure& failure) {
        EXPECT_EQ(failure.Number(), ErrorNumber::FileNotFound);
        EXPECT_FALSE(failure.Text().isEmpty());
    }
}

TEST(Session, GlobalMouseTableIsOptional)
{
    SessionBench bench;
    bench.customMouseTable = u"not there.txt"_s;
    EXPECT_NO_THROW(bench.sessions.Add());
}

TEST(Session, OldNamesHaveSubstitutes)
{
    SessionBench bench;
    const auto session = bench.sessions.Add();
    for (const auto& [asked, used] : {std::pair{u"CLOSE"_s, u"Terminate"_s}, std::pair{u"input"_s, u"ReadText"_s},
                                      std::pair{u"Select"_s, u"SetSelection"_s}}) {
        QString name = asked;
        EXPECT_TRUE(session->Callback(name));
        EXPECT_EQ(name, used);
    }
    QString other = u"Delete"_s;
    EXPECT_FALSE(session->Callback(other));
    EXPECT_EQ(other, u"Delete"_s);
}

TEST(Session, PasteKeepsTheFileNameAndOutputSendsTheBytesOfWriteText)
{
    SessionBench bench;
    const auto session = bench.sessions.Add(bench.SessionFile(u"a.orcf"_s));
    bench.lines.Current().Connect();
    bench.texts.files.insert(u"/p.txt"_s, u"paste"_s);
    session->Paste(u"/p.txt"_s);
    EXPECT_EQ(session->PasteFromFileName(), u"/p.txt"_s);
    bench.clipboard.standard = u"clip"_s;
    session->Paste();
    EXPECT_EQ(session->PasteFromFileName(), u"/p.txt"_s);
    bench.clock.RunPosted();
    EXPECT_EQ(bench.lines.Current().TakeSent(), "pasteclip");
    session->Output(u"x"_s);
    session->Emulator().WriteText(u"x"_s);
    EXPECT_EQ(bench.lines.Current().TakeSent(), "xx");
}

TEST(Session, CopyEnablesThePasteTool)
{
    SessionBench bench;
    const auto session = bench.sessions.Add();
    session->Emulator().Emulate(u"text"_s);
    session->Copy(0, 0, 3, 0);
    EXPECT_EQ(bench.clipboard.standard, u"text"_s);
    EXPECT_TRUE(bench.Window(*session).tools.GetToolProperty(Tool::Paste, ToolProperty::Enabled).toBool());
}

} // namespace
} // namespace kestrune
