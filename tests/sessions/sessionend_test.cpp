#include "bench.h"

#include <ports/line.h>

namespace kestrune {
namespace {

using namespace Qt::StringLiterals;

constexpr int AskBoth = TerminatePrompt::UnsavedChanges | TerminatePrompt::LiveConnection;

struct PromptCase
{
    const char* what;
    int prompt;
    Device device;
    bool connected, changed, noWarning, sweepWithAnother;
    std::deque<int> answers;
    bool goesOn;
    std::vector<int> flags; // of the boxes shown
};

TEST(SessionEnd, AsksWhatThePromptSays)
{
    using D = Device;
    constexpr int ask = 32 + 128 + 4, askAll = 32 + 128 + 9, save = 32 + 3;
    const PromptCase cases[] = {
        {"nothing to ask", AskBoth, D::Telnet, false, false, false, false, {}, true, {}},
        {"prompt 0", 0, D::Telnet, true, true, false, false, {}, true, {}},
        {"prompt 1 asks about saving only", 1, D::Telnet, true, true, false, false, {7}, true, {save}},
        {"live, yes", 2, D::Telnet, true, true, false, false, {6}, true, {ask}},
        {"live, no", 3, D::Telnet, true, true, false, false, {7}, false, {ask}},
        {"live, box closed", 3, D::Telnet, true, true, false, false, {2}, false, {ask}},
        {"live, warning off", 3, D::Telnet, true, false, true, false, {}, true, {}},
        {"one of several", 2, D::Telnet, true, false, false, true, {6}, true, {askAll}},
        {"one of several, yes to all", 2, D::Telnet, true, false, false, true, {14}, true, {askAll}},
        {"local shell", 2, D::Extension, true, false, false, false, {6}, true, {ask}},
        {"save cancelled after the line was given up",
         3,
         D::Telnet,
         true,
         true,
         false,
         false,
         {6, 2},
         false,
         {ask, save}},
    };
    for (const PromptCase& row : cases) {
        SCOPED_TRACE(row.what);
        SessionBench bench;
        const auto session = bench.sessions.Add(bench.SessionFile(u"a.orcf"_s));
        session->Settings().SetValue(Setting("Device"), qint16(row.device));
        if (row.connected)
            bench.Connect(*session);
        session->SetChanged(row.changed);
        bench.noCloseWarning = row.noWarning;
        if (row.sweepWithAnother) {
            bench.sessions.Add();
            bench.closeSweep = true;
        }
        bench.ask.answers = row.answers;
        EXPECT_EQ(session->QueryTerminate(row.prompt), row.goesOn);
        std::vector<int> flags;
        for (const auto& box : bench.ask.boxes)
            flags.push_back(box.flags);
        EXPECT_EQ(flags, row.flags);
        EXPECT_TRUE(bench.ask.answers.empty());
        const bool all = !row.answers.empty() && row.answers.front() == MsgResult::YesToAll;
        EXPECT_EQ(bench.pendingPrompt, all ? 0 : 3);
        EXPECT_FALSE(session->Terminated());
    }
}

TEST(SessionEnd, SerialLineIsNotAskedAboutAndAModemIsHungUp)
{
    SessionBench bench;
    bench.lines.devices = {Device::SerialPort, Device::Modem, Device::Telnet};
    const auto session = bench.sessions.Add(bench.SessionFile(u"a.orcf"_s));
    const auto with = [&](Device device, std::deque<int> answers) {
        session->Emulator().SetOnLine(false);
        if (bench.lines.current)
            bench.lines.Current().Drop();
        session->Settings().SetValue(Setting("Device"), qint16(device));
        bench.Connect(*session);
        if (device == Device::Modem)
            bench.lines.Current().Call(DialStatus::Connected);
        bench.ask.boxes.clear();
        bench.ask.answers = std::move(answers);
        return session->QueryTerminate(TerminatePrompt::LiveConnection);
    };
    EXPECT_TRUE(with(Device::SerialPort, {}));
    EXPECT_TRUE(bench.ask.boxes.empty());
    EXPECT_FALSE(with(Device::Modem, {MsgResult::No}));
    EXPECT_TRUE(session->Emulator().OnLine());
    EXPECT_TRUE(with(Device::Modem, {MsgResult::Yes + MsgResult::Checked}));
    EXPECT_EQ(bench.ask.boxes.at(0).flags, 164);
    EXPECT_EQ(bench.ask.boxes.at(0).text, u"Do you want to disconnect dial-up\r\nconnection for \"a\" ?"_s);
    EXPECT_EQ(bench.lines.Current().hangUps, 1) << "before anything else is asked";
    EXPECT_TRUE(bench.noCloseWarning);
}

TEST(SessionEnd, QuestionsNameTheSession)
{
    SessionBench bench;
    const auto session = bench.sessions.Add(bench.SessionFile(u"a.orcf"_s));
    bench.lines.Current().Connect();
    session->SetChanged(true);
    bench.ask.answers = {MsgResult::Yes, MsgResult::No};
    EXPECT_TRUE(session->QueryTerminate(AskBoth));
    EXPECT_EQ(bench.ask.boxes.at(0).text, u"Do you want to disconnect session\r\n\"a\" from host.example ?"_s);
    EXPECT_EQ(bench.ask.boxes.at(1).text, u"Do you want to save your changes to \r\n\"a\" ?"_s);
}

TEST(SessionEnd, DeviceAndLineAreGoneInOrder)
{
    SessionBench bench;
    bench.funcBarVisible = true;
    bench.funcBarBank = 3;
    const auto session = bench.sessions.Add(bench.SessionFile(u"a.orcf"_s));
    bench.lines.Current().Connect();
    FakeSessionWindow& window = bench.Window(*session);
    session->Emulator().SetFuncBarBank(5);
    session->Delete();
    EXPECT_TRUE(session->Terminated());
    EXPECT_TRUE(window.unloaded);
    EXPECT_FALSE(window.visible);
    EXPECT_EQ(bench.funcBarBank, 5);
    EXPECT_EQ(bench.sessions.Count(), 0);
    EXPECT_EQ(bench.order.Count(), 0u);
    EXPECT_TRUE(bench.lines.current == nullptr || bench.lines.Current().closing);
    // What guards on the end does nothing, what needs the control fails.
    session->Show();
    session->Hide();
    session->SetVisible(true);
    session->Terminate();
    EXPECT_TRUE(session->QueryTerminate(AskBoth));
    EXPECT_EQ(session->Index(), -1);
    EXPECT_FALSE(session->Busy());
    EXPECT_FALSE(session->Changed());
    try {
        session->Emulator();
        FAIL() << "the control is gone";
    } catch (const Failure& failure) {
        EXPECT_EQ(failure.Number(), ErrorNumber::ObjectNotSet);
    }
    EXPECT_THROW(session->Save(), Failure);
}

// The question is open while another client ends the session.
TEST(SessionEnd, SessionGoneBehindItsOwnQuestion)
{
    struct EndsIt : FakeQuestions
    {
        int MsgBox(const MsgBoxRequest& request) override
        {
            if (session)
                session->TerminateSession(false);
            return FakeQuestions::MsgBox(request);
        }
        std::shared_ptr<clsSession> session;
    } ask;
    struct Bench : SessionBench
    {
        Questions& Ask() override { return *asked; }
        Questions* asked = nullptr;
    } bench;
    bench.asked = &ask;
    const auto session = bench.sessions.Add(bench.SessionFile(u"a.orcf"_s));
    bench.lines.Current().Connect();
    session->SetChanged(true);
    ask.session = session;
    ask.answers = {MsgResult::Yes};
    session->Terminate(AskBoth);
    EXPECT_TRUE(session->Terminated());
    EXPECT_EQ(ask.boxes.size(), 1u) << "nothing more to ask about";
}

struct SaveOnClose
{
    const char* what;
    bool folderGone, readOnly, hasFile;
    std::optional<QString> saveAs; // what the dialog gives, below the home folder
    std::vector<QString> words;    // after the question
    bool closes;
};

TEST(SessionEnd, SaveOnCloseLeadsToSaveAsWhenTheFileCannotBeWritten)
{
    const QString tail = u" To save a copy, click OK, then give the session a new name in the Save As dialog box."_s;
    const SaveOnClose cases[] = {
        {"saved", false, false, true, {}, {}, true},
        {"no file, dialog cancelled", false, false, false, {}, {}, false},
        {"no file, named", false, false, false, u"new.orcf"_s, {}, true},
        {"folder gone, cancelled",
         true,
         false,
         true,
         {},
         {u"The folder or file name '%1' is not valid."_s + tail},
         false},
        {"folder gone, saved elsewhere",
         true,
         false,
         true,
         u"new.orcf"_s,
         {u"The folder or file name '%1' is not valid."_s + tail},
         true},
        {"read-only, saved elsewhere", false, true, true, u"new.orcf"_s, {u"'a.orcf' is read-only."_s + tail}, true},
    };
    for (const SaveOnClose& row : cases) {
        SCOPED_TRACE(row.what);
        SessionBench bench;
        QDir(bench.layer.folders.HomeDir).mkpath(u"sub"_s);
        const QString file = bench.SessionFile(bench.Path(u"sub/a.orcf"_s));
        const auto session = bench.sessions.Add(row.hasFile ? file : QString(), -1, 0, AddHidden::NotOnLine);
        session->SetCaption(u"Mine"_s);
        if (row.folderGone)
            QDir(bench.Path(u"sub"_s)).removeRecursively();
        if (row.readOnly)
            QFile::setPermissions(file, QFileDevice::ReadOwner);
        bench.ask.answers = {MsgResult::Yes};
        if (row.saveAs)
            bench.ask.files = {bench.Path(*row.saveAs)};
        session->Terminate();
        EXPECT_EQ(session->Terminated(), row.closes);
        ASSERT_EQ(bench.ask.boxes.size(), 1 + row.words.size());
        for (std::size_t i = 0; i < row.words.size(); ++i) {
            const QString words = row.words[i];
            EXPECT_EQ(bench.ask.boxes[i + 1].text, words.contains(u"%1"_s) ? words.arg(file) : words);
            EXPECT_EQ(bench.ask.boxes[i + 1].flags, MsgFlag::Exclamation);
        }
        if (row.saveAs) {
            EXPECT_EQ(bench.Key(bench.Path(*row.saveAs), u"SessionTitle"_s), u"Mine"_s);
            EXPECT_EQ(bench.recent.value(0), bench.Path(*row.saveAs));
            EXPECT_FALSE(bench.recent.contains(file));
        } else if (!row.closes) {
            EXPECT_TRUE(session->Changed());
        }
        EXPECT_EQ(bench.ask.hourglass, 0);
    }
}

} // namespace
} // namespace kestrune
