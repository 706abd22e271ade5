// Which keys a session's host gets, and which the menus: real key events into the whole window, and what came to the
// line.

#include <fakes/windowbench.h>

#include <gtest/gtest.h>

#include <QLineEdit>

namespace kestrune {

using namespace Qt::StringLiterals;

namespace {

struct KeyCase
{
    Qt::Key key;
    Qt::KeyboardModifiers modifiers;
    const char* sent;
};

std::string Pressed(WindowBench& bench, const KeyCase& each)
{
    bench.Press(each.key, each.modifiers);
    return bench.lines.Current().TakeSent();
}

bool MenuIsUp(const WindowBench& bench)
{
    return QApplication::activePopupWidget() != nullptr || bench.window->menuBar()->activeAction() != nullptr;
}

// A menu file with one tool that says hello to the host.
QByteArray FileWithTool(const QByteArray& shortcut, bool enabled = true)
{
    return "[Menu]\r\nBandCount=1\r\nKEY_1=Menu\r\nTYPE_1=2\r\nVISIBLE_1=1\r\nENABLED_1=1\r\nITEMCOUNT_1=1\r\n"
           "key_2=100\r\ntype_2=2\r\ncaption_2=&File\r\nenabled_2=1\r\nvisible_2=1\r\nITEMCOUNT_2=1\r\n"
           "key_3=10001\r\ntype_3=1\r\ncaption_3=Hello\r\nvisible_3=1\r\naction_3=hello\r\n"
           "shortcut_3=" +
           shortcut + "\r\nenabled_3=" + (enabled ? "1" : "0") + "\r\n";
}

void WriteMenu(const WindowBench& bench, const QByteArray& content)
{
    QDir().mkpath(bench.layer.folders.AppDataDir);
    bench.layer.profile.Files().Replace(bench.layer.folders.AppDataDir + kMenuFileName, content);
}

TEST(MenuKeys, EveryKeyOfAHostReachesItWithTheBuiltInMenu)
{
    WindowBench bench;
    bench.Open();
    const auto session = bench.OpenSession();
    for (int letter = 0; letter < 26; ++letter) {
        const Qt::Key key = Qt::Key(Qt::Key_A + letter);
        EXPECT_EQ(Pressed(bench, {key, Qt::ControlModifier, ""}), std::string(1, char(letter + 1))) << letter;
        EXPECT_EQ(Pressed(bench, {key, Qt::AltModifier, ""}), std::string("\x1b") + char('a' + letter)) << letter;
        EXPECT_FALSE(MenuIsUp(bench)) << letter;
    }
    const KeyCase cases[] = {
        {Qt::Key_Alt, Qt::AltModifier, ""},
        {Qt::Key_F10, {}, "\x1b[21~"},
        {Qt::Key_Escape, {}, "\x1b"},
        {Qt::Key_Return, Qt::AltModifier, "\x1b\r"},
        {Qt::Key_F4, Qt::ControlModifier, nullptr},
        {Qt::Key_F6, Qt::ControlModifier, nullptr},
        {Qt::Key_F4, Qt::AltModifier, nullptr},
    };
    for (const KeyCase& each : cases) {
        const std::string sent = Pressed(bench, each);
        EXPECT_TRUE(each.sent != nullptr ? sent == each.sent : !sent.empty()) << each.key << ' ' << sent;
        EXPECT_FALSE(MenuIsUp(bench)) << each.key;
        EXPECT_EQ(QApplication::focusWidget(), &bench.WindowOf(*session).View()) << each.key;
    }
    EXPECT_EQ(bench.Menu().Tool(201)->shortcut, QString()) << "none is shown that does not work";
    EXPECT_TRUE(bench.recorder.commands.isEmpty());
    EXPECT_EQ(bench.Application().Sessions().Count(), 1);
}

TEST(MenuKeys, TheProgramsOwnKeysWorkInASession)
{
    WindowBench bench;
    bench.Open();
    bench.OpenSession();
    bench.wizardResult = WizardResult::Finished;
    EXPECT_EQ(Pressed(bench, {Qt::Key_N, Qt::ControlModifier | Qt::ShiftModifier, ""}), "");
    EXPECT_EQ(bench.Application().Sessions().Count(), 2);
    bench.Press(Qt::Key_M, Qt::ControlModifier | Qt::ShiftModifier); // the menus, without the mouse
    EXPECT_TRUE(MenuIsUp(bench));
    EXPECT_EQ(bench.lines.Current().TakeSent(), "");
}

TEST(MenuKeys, EscapeGoesBackToTheSessionInOneStep)
{
    WindowBench bench;
    bench.Open();
    const auto session = bench.OpenSession();
    for (const bool accessKeys : {false, true}) { // with them the bar itself takes the keyboard
        bench.Application().SetBoolean(GlobalId::MenuAccessKeys, accessKeys);
        bench.Settle();
        bench.Press(accessKeys ? Qt::Key_F : Qt::Key_M,
                    accessKeys ? Qt::AltModifier : Qt::ControlModifier | Qt::ShiftModifier);
        ASSERT_NE(QApplication::activePopupWidget(), nullptr);
        QTest::keyClick(QApplication::activePopupWidget(), Qt::Key_Escape);
        EXPECT_FALSE(MenuIsUp(bench));
        EXPECT_EQ(QApplication::focusWidget(), &bench.WindowOf(*session).View());
        EXPECT_EQ(Pressed(bench, {Qt::Key_H, {}, ""}), "h") << "typed for the session, not for the bar";
    }
}

TEST(MenuKeys, ATabIsRenamedByKey)
{
    WindowBench bench;
    bench.Open();
    const auto session = bench.OpenSession();
    bench.Press(Qt::Key_R, Qt::ControlModifier | Qt::ShiftModifier);
    auto* box = qobject_cast<QLineEdit*>(QApplication::focusWidget());
    ASSERT_NE(box, nullptr);
    QTest::keyClicks(box, u"Stock"_s);
    QTest::keyClick(box, Qt::Key_Return);
    EXPECT_EQ(bench.WindowOf(*session).Title(), u"Stock"_s);
    EXPECT_EQ(Pressed(bench, {Qt::Key_H, {}, ""}), "h") << "the keyboard is the session's again";
}

TEST(MenuKeys, AccessKeysCanBeGivenToTheMenusAndBack)
{
    WindowBench bench;
    bench.Open();
    const auto session = bench.OpenSession();
    bench.Application().SetBoolean(GlobalId::MenuAccessKeys, true);
    bench.Settle();
    EXPECT_EQ(bench.Stored(u"MenuAccessKeys"_s), u"1"_s);
    EXPECT_EQ(Pressed(bench, {Qt::Key_F, Qt::AltModifier, ""}), "");
    EXPECT_TRUE(MenuIsUp(bench));
    bench.CloseMenus();
    EXPECT_EQ(Pressed(bench, {Qt::Key_Q, Qt::AltModifier, ""}), "\x1bq") << "no menu has this letter";
    EXPECT_EQ(Pressed(bench, {Qt::Key_P, Qt::AltModifier, ""}), "");
    EXPECT_EQ(session->Emulator().PrinterMode(), 1) << "the built-in menu's key is in force too";

    bench.Application().SetBoolean(GlobalId::MenuAccessKeys, false);
    bench.Settle();
    EXPECT_EQ(Pressed(bench, {Qt::Key_F, Qt::AltModifier, ""}), "\x1b"
                                                                "f");
    EXPECT_FALSE(MenuIsUp(bench));
}

TEST(MenuKeys, WithoutASessionTheMenusHaveThem)
{
    WindowBench bench;
    bench.Open();
    bench.Press(Qt::Key_F, Qt::AltModifier);
    EXPECT_TRUE(MenuIsUp(bench));
}

TEST(MenuKeys, AKeyThatAMenuFileGivesIsTaken)
{
    struct Row
    {
        const char* shortcut;
        KeyCase key;
        bool enabled = true;
    };
    const Row rows[] = {
        {"Ctrl+L", {Qt::Key_L, Qt::ControlModifier, "hello"}},
        {"Ctrl+L", {Qt::Key_K, Qt::ControlModifier, "\x0b"}},
        {"F5", {Qt::Key_F5, {}, "hello"}},
        {"Shift+Ctrl+F1", {Qt::Key_F1, Qt::ControlModifier | Qt::ShiftModifier, "hello"}},
        {"Alt+P", {Qt::Key_P, Qt::AltModifier, "hello"}},
        {"Alt+P",
         {Qt::Key_F, Qt::AltModifier,
          "\x1b"
          "f"}},
        {"Alt+P", {Qt::Key_P, Qt::AltModifier, "\x1bp"}, false}, // greyed: the host's
        {"Alt+Bksp", {Qt::Key_Backspace, Qt::AltModifier, "hello"}},
        {"nonsense", {Qt::Key_P, Qt::AltModifier, "\x1bp"}},
    };
    for (const Row& row : rows) {
        WindowBench bench;
        WriteMenu(bench, FileWithTool(row.shortcut, row.enabled));
        bench.Open();
        bench.OpenSession();
        EXPECT_EQ(Pressed(bench, row.key), row.key.sent) << row.shortcut;
    }
}

} // namespace

} // namespace kestrune
