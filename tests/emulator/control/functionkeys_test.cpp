// What the settings make of function keys and of Break, and what the function bar says of them.

#include <emulator/control/functionkeys.h>
#include <fakes/emulatorbench.h>

#include <gtest/gtest.h>

namespace kestrune {

using namespace Qt::StringLiterals;

namespace {

struct BankCase
{
    int bank;
    uint8_t modifiers;
    int codeOfF2;
    QString name;
};

TEST(FunctionKeys, BanksAreTheModifiers)
{
    using namespace emu;
    const BankCase cases[] = {
        {1, 0, 113, u""_s},
        {2, Modifier::Shift, 1113, u"Shift"_s},
        {3, Modifier::Control, 2113, u"Ctrl"_s},
        {4, Modifier::Shift | Modifier::Control, 3113, u"Ctrl+Shift"_s},
        {5, Modifier::Alt, 4113, u"Alt"_s},
        {8, Modifier::Shift | Modifier::Control | Modifier::Alt, 7113, u"Ctrl+Alt+Shift"_s},
    };
    for (const BankCase& c : cases) {
        SCOPED_TRACE(c.bank);
        EXPECT_EQ(FunctionBankOf(c.modifiers), c.bank);
        EXPECT_EQ(FunctionBankModifiers(c.bank), c.modifiers);
        EXPECT_EQ(FunctionKeyCode(2, c.bank), c.codeOfF2);
        EXPECT_EQ(FunctionBankName(c.bank), c.name);
        EXPECT_EQ(FunctionKey(2, c.bank).key, Key::F2);
        EXPECT_EQ(FunctionKey(2, c.bank).modifiers, c.modifiers);
    }
    EXPECT_EQ(FunctionKeyCode(1, -1), 112); // no bank: the keys alone
    EXPECT_EQ(FunctionKeyCode(1, 9), 112);
}

TEST(FunctionKeys, LabelIsTheGivenOneElseTheText)
{
    EmulatorBench bench;
    EmulatorSettings& settings = bench.control.Settings();
    EXPECT_EQ(FunctionLabel(settings, 3, 1), QString());
    settings.SetFKeys(114, u"\x1bQlist\r\n"_s);
    EXPECT_EQ(FunctionLabel(settings, 3, 1), u"^[Qlist"_s);
    settings.SetFKeys(10114, u"List"_s);
    EXPECT_EQ(FunctionLabel(settings, 3, 1), u"List"_s);
    settings.SetFKeys(5114, u"alt"_s); // there are no labels beside Alt
    EXPECT_EQ(FunctionLabel(settings, 3, 6), u"alt"_s);
    EXPECT_EQ(FunctionLabel(settings, 3, 2), QString());
}

TEST(FunctionKeys, UpperKeysOnShift)
{
    EmulatorBench bench(EmulatorBench::LinuxConsole);
    bench.Connect();
    const auto sent = [&bench](emu::Key key, uint8_t modifiers) {
        bench.control.TypeKey({key, modifiers, {}});
        return bench.Host().TakeSent();
    };
    const std::string f11 = sent(emu::Key::F11, 0);
    const std::string f20 = sent(emu::Key::F20, 0);
    EXPECT_NE(sent(emu::Key::F1, emu::Modifier::Shift), f11);
    bench.control.Settings().SetValue(Setting("MapUpperFKeys"), true);
    EXPECT_EQ(sent(emu::Key::F1, emu::Modifier::Shift), f11);
    EXPECT_EQ(sent(emu::Key::F10, emu::Modifier::Shift), f20);
    EXPECT_EQ(sent(emu::Key::F11, 0), f11);
    bench.control.Settings().SetFKeys(1112, u"given"_s); // the key that was pressed names its text
    bench.control.TypeKey({emu::Key::F1, emu::Modifier::Shift, {}}, 1112);
    EXPECT_EQ(bench.Host().TakeSent(), "given");
}

TEST(FunctionKeys, BreakKeyDoesWhatTheSettingSays)
{
    struct Case
    {
        int action;
        int character;
        std::string sent;
        int breaks;
    };
    const Case cases[] = {{0, 0, "", 1},      {1, 0, "", 0},     {2, 28, "\x03", 0},
                          {3, 28, "\x1c", 0}, {3, 0, "\x03", 0}, {99, 0, "", 1}};
    for (const Case& c : cases) {
        SCOPED_TRACE(c.action);
        EmulatorBench bench;
        bench.Connect();
        bench.Host().TakeSent();
        bench.control.Settings().SetValue(Setting("BreakKeyAction"), c.action);
        bench.control.Settings().SetValue(Setting("SSHBreakCharacter"), c.character);
        bench.control.TypeKey({emu::Key::Break, 0, {}}, 3);
        EXPECT_EQ(bench.Host().TakeSent(), c.sent);
        EXPECT_EQ(bench.Host().breaks, c.breaks);
    }
}

} // namespace

} // namespace kestrune
