// Text that goes to and from the clipboard: in which form it is pasted, how copies look, what the host may put there.

#include <fakes/emulatorbench.h>
#include <fakes/failures.h>
#include <fakes/print.h>

#include <gtest/gtest.h>

namespace kestrune {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

struct PasteFormCase
{
    const char* name;
    std::vector<std::pair<QString, int>> settings;
    QString text;
    std::string sent;
};

class PasteForms : public testing::TestWithParam<PasteFormCase>
{};

TEST_P(PasteForms, AreThoseOfTheSettings)
{
    EmulatorBench bench;
    bench.Connect();
    for (const auto& [name, value] : GetParam().settings)
        bench.control.Settings().Set(name, value);
    bench.texts.files[u"/text"_s] = GetParam().text;
    bench.control.Paste(u"/text"_s, Cause::Script);
    EXPECT_EQ(bench.Host().TakeSent(), GetParam().sent);
}

const QString kLines = u"one\r\ntwo\nthree\r"_s;

INSTANTIATE_TEST_SUITE_P(
    All, PasteForms,
    testing::Values(PasteFormCase{"LineEndsAreEnter", {}, kLines, "one\rtwo\rthree\r"},
                    PasteFormCase{"BothCharacters", {{u"PasteEOLMode"_s, 1}}, kLines, "one\r\ntwo\r\nthree\r\n"},
                    PasteFormCase{"LineFeed", {{u"PasteEOLMode"_s, 2}}, kLines, "one\ntwo\nthree\n"},
                    PasteFormCase{"ACharacterOfItsOwn",
                                  {{u"PasteEOLMode"_s, 3}, {u"PasteEOLChar"_s, 0xFE}},
                                  kLines,
                                  "one\xFEtwo\xFEthree\xFE"},
                    PasteFormCase{"Joined", {{u"PasteEOLMode"_s, 4}}, kLines, "onetwothree"},
                    PasteFormCase{"UnknownModesAreTheUsualOnes",
                                  {{u"PasteEOLMode"_s, 9}, {u"PasteEOFMode"_s, -1}},
                                  u"a\n"_s,
                                  "a\r"},
                    PasteFormCase{"EndOfInput", {{u"PasteEOFMode"_s, 1}}, u"a"_s, "a\x04"},
                    PasteFormCase{"EndOfFile", {{u"PasteEOFMode"_s, 2}}, u"a"_s, "a\x1a"},
                    PasteFormCase{"AnEndOfItsOwn", {{u"PasteEOFMode"_s, 3}, {u"PasteEOFChar"_s, 7}}, u"a"_s, "a\x07"},
                    PasteFormCase{"NoSuchCharacter", {{u"PasteEOFMode"_s, 3}, {u"PasteEOFChar"_s, 300}}, u"a"_s, "a"},
                    PasteFormCase{"WithoutTheLastEnd", {{u"PasteOptions"_s, 4}}, u"a\nb\r\n\n"_s, "a\rb"}),
    [](const auto& test) { return test.param.name; });

TEST(EmulatorPasting, TheEndFollowsTheMarksOfABracketedPaste)
{
    EmulatorBench bench;
    bench.Connect();
    bench.HostSays("\x1b[?2004h");
    bench.control.Settings().Set(u"PasteEOFMode"_s, 1);
    bench.texts.files[u"/text"_s] = u"a"_s;
    bench.control.Paste(u"/text"_s, Cause::Script);
    EXPECT_EQ(bench.Host().TakeSent(), "\x1b[200~a\x1b[201~\x04");
}

TEST(EmulatorPasting, SlowlyIsALineAtATimeAndCanBeStopped)
{
    EmulatorBench bench;
    bench.Connect();
    bench.control.Settings().Set(u"PasteOptions"_s, 2);
    bench.control.Settings().Set(u"AsciiDelay"_s, 200);
    bench.texts.files[u"/text"_s] = u"a\nb\nc\nd"_s;
    bench.control.Paste(u"/text"_s, Cause::Script);
    EXPECT_EQ(bench.Host().TakeSent(), "a\r");
    bench.Host().Drain(); // the line has long been ready
    EXPECT_EQ(bench.Host().TakeSent(), "");
    bench.clock.Advance(199ms);
    EXPECT_EQ(bench.Host().TakeSent(), "");
    bench.clock.Advance(1ms);
    EXPECT_EQ(bench.Host().TakeSent(), "b\r");
    bench.clock.Advance(200ms);
    EXPECT_EQ(bench.Host().TakeSent(), "c\r");
    EXPECT_EQ(bench.control.BytesOut(), 6);
    bench.control.Abort();
    bench.clock.Advance(1s);
    EXPECT_EQ(bench.Host().TakeSent(), "");
}

TEST(EmulatorPasting, LinesNeedNotBeAskedAboutButControlCharactersAre)
{
    EmulatorBench bench;
    bench.Connect();
    bench.control.Settings().Set(u"PasteOptions"_s, 1);
    bench.clipboard.standard = u"a\nb\n"_s;
    bench.control.Paste();
    EXPECT_TRUE(bench.ask.boxes.empty());
    EXPECT_EQ(bench.Host().TakeSent(), "a\rb\r");
    bench.ask.answers = {MsgResult::Cancel};
    bench.clipboard.standard = u"a\x1b[201~b"_s;
    bench.control.Paste();
    EXPECT_EQ(bench.ask.boxes.size(), 1U);
    EXPECT_EQ(bench.Host().TakeSent(), "");
}

// --- copy

TEST(EmulatorCopy, HasTheLooksOfTheScreen)
{
    EmulatorBench bench(EmulatorBench::LinuxConsole);
    bench.Connect();
    bench.control.Settings().SetPalette(1, 0x0000FF); // BGR
    bench.control.Settings().Set(u"FontName"_s, u"Mono; 'x'"_s);
    bench.HostSays("a\x1b[31;1mb\x1b[m\x1b[4;3m<\\{\x1b[m\xC3\xA9\xF0\x9F\x98\x80   \r\nnext");
    bench.control.Copy(0, 0, ctlEmulator::ToEdge, 1);
    EXPECT_EQ(bench.clipboard.standard, u"ab<\\{é😀\nnext"_s);
    const QString& html = bench.clipboard.html;
    EXPECT_TRUE(html.startsWith(u"<pre style=\"font-family:'Mono x'"_s)) << html.toStdString();
    EXPECT_TRUE(html.contains(u"font-weight:bold"_s)) << html.toStdString();
    EXPECT_TRUE(html.contains(u"font-style:italic;text-decoration:underline;\">&lt;\\{</span>é😀\nnext</pre>"_s))
        << html.toStdString();
    const std::string rtf = bench.clipboard.rtf.toStdString();
    EXPECT_NE(rtf.find("\\i\\ul <\\\\\\{}"), std::string::npos) << rtf;
    EXPECT_NE(rtf.find("\\u233?\\u-10179?\\u-8704?}\\par\n"), std::string::npos) << rtf;
    EXPECT_EQ(std::count(rtf.begin(), rtf.end(), '{') - 1, std::count(rtf.begin(), rtf.end(), '}')) << rtf; // "\{"
}

TEST(EmulatorCopy, ColoursAreThoseThatAreSeen)
{
    EmulatorBench bench(EmulatorBench::LinuxConsole);
    bench.Connect();
    auto& settings = bench.control.Settings();
    settings.SetPalette(1, 0x302010); // red as the user has it, BGR
    settings.SetColors(8, AttributeColor(1, 2));
    settings.SetPalette(2, 0x605040);
    bench.HostSays("\x1b[31mx\x1b[m\x1b[4my");
    bench.control.Copy(0, 0, 1, 0);
    EXPECT_TRUE(bench.clipboard.html.contains(u"<span style=\"color:#102030;\">x</span>"_s))
        << bench.clipboard.html.toStdString();
    EXPECT_TRUE(bench.clipboard.html.contains(u"color:#102030;background-color:#405060;"_s))
        << bench.clipboard.html.toStdString();
    EXPECT_TRUE(bench.clipboard.rtf.contains("\\red16\\green32\\blue48;"));
}

TEST(EmulatorCopy, IsPlainWhereTheUserWantsItAndWhenNothingIsSelectedIsNone)
{
    EmulatorBench bench;
    bench.Connect();
    bench.HostSays("one\r\ntwo\r\n");
    bench.clipboard.standard = u"as it was"_s;
    bench.control.Copy();
    EXPECT_EQ(bench.clipboard.standard, u"as it was"_s);
    bench.control.Settings().Set(u"CopyPlainText"_s, true);
    bench.control.CopyHistory();
    EXPECT_EQ(bench.clipboard.standard, u"one\ntwo"_s);
    EXPECT_EQ(bench.clipboard.html, QString());
    EXPECT_TRUE(bench.clipboard.rtf.isEmpty());
}

// --- OSC 52

TEST(EmulatorClipboard, TheHostWritesOnlyWhereItIsAllowedAndNeverReads)
{
    EmulatorBench bench;
    bench.Connect();
    QStringList told;
    QObject::connect(&bench.control, &ctlEmulator::DeviceStatus, [&](const QString& text) { told << text; });
    bench.clipboard.standard = u"mine"_s;
    bench.HostSays("\x1b]52;c;aGVsbG8=\x07");
    bench.HostSays("\x1b]52;c;aGVsbG8=\x07\x1b]52;c;?\x07");
    EXPECT_EQ(bench.clipboard.standard, u"mine"_s);
    ASSERT_EQ(told.size(), 1); // not with every copy
    EXPECT_TRUE(told[0].contains(u"HostSetsClipboard"_s));
    bench.control.Settings().Set(u"HostSetsClipboard"_s, true);
    bench.HostSays("\x1b]52;c;aGVsbG8=\x07\x1b]52;c;?\x07");
    EXPECT_EQ(bench.clipboard.standard, u"hello"_s);
    EXPECT_TRUE(told.back().contains(u'5')) << told.back().toStdString();
    EXPECT_EQ(bench.Host().TakeSent(), "");
}

} // namespace

} // namespace kestrune
