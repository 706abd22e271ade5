#include <dispatch/failure.h>
#include <fakes/print.h>
#include <platform/inifile.h>

#include <gtest/gtest.h>

namespace kestrune {
namespace {

using namespace Qt::StringLiterals;

const QByteArray kSample = "; head\r\nbefore=any\r\n\r\n[One]\r\n  a = 1 \r\nA=2\r\n;c=3\r\nalone\r\n#h=4\r\n\r\n"
                           "; about two\r\n[ two ]\r\nq=\"x y\"\r\n[one]\r\nlate=5\r\n";

TEST(IniDocument, ReadsAsTheReaderDoes)
{
    const auto document = IniDocument::Parse(kSample + "[Q]\r\n1=\"a\"\r\n2='a'\r\n3=\"a'\r\n4=\"\r\n5=\"\"a\"\"\r\n"
                                                       "6=a=b ; no comment\r\n7=\r\n[Br]acket]\r\nx=1\r\n[open\r\ny=2");
    struct Case
    {
        QString section, key, value; // "-": none
    };
    for (const auto& c : std::vector<Case>{
             {u"ONE"_s, u"a"_s, u"1"_s}, // of two equal names the first counts, blanks are dropped
             {u"one"_s, u"c"_s, u"-"_s}, // comment
             {u"one"_s, u"alone"_s, u"-"_s},
             {u"one"_s, u"#h"_s, u"4"_s},
             {u"one"_s, u"late"_s, u"-"_s}, // the first section of a name counts
             {u"two"_s, u" q "_s, u"x y"_s},
             {{}, u"before"_s, u"-"_s},
             {u"Q"_s, u"1"_s, u"a"_s},
             {u"Q"_s, u"2"_s, u"a"_s},
             {u"Q"_s, u"3"_s, u"\"a'"_s},
             {u"Q"_s, u"4"_s, u"\""_s},
             {u"Q"_s, u"5"_s, u"\"a\""_s},
             {u"Q"_s, u"6"_s, u"a=b ; no comment"_s},
             {u"Q"_s, u"7"_s, QString()},
             {u"br]acket"_s, u"y"_s, u"2"_s}, // a header that does not close is none
         })
        EXPECT_EQ(document.Get(c.section, c.key).value_or(u"-"_s), c.value) << c.key.toStdString();
    EXPECT_EQ(document.Keys(u"one"_s), QStringList({u"a"_s, u"alone"_s, u"#h"_s}));
    EXPECT_EQ(document.Sections(), QStringList({u"One"_s, u"two"_s, u"Q"_s, u"Br]acket"_s}));
    EXPECT_EQ(document.SectionLines(u"two"_s), QStringList({u"q=\"x y\""_s}));
}

// Whatever the change, the lines it is not about stay byte for byte.
TEST(IniDocument, ChangesOneLineOnly)
{
    struct Case
    {
        const char* about;
        std::function<void(IniDocument&)> change;
        QByteArray from, to; // replaced in the sample
    };
    for (const auto& c : std::vector<Case>{
             {"a value, its blanks and spelling kept", [](auto& d) { d.Set(u"one"_s, u"A"_s, u"9"_s); }, "  a = 1 \r\n",
              "  a = 9\r\n"},
             {"a name alone", [](auto& d) { d.Set(u"one"_s, u"ALONE"_s, u"9"_s); }, "alone\r\n", "alone=9\r\n"},
             {"a new key behind the section's last", [](auto& d) { d.Set(u"ONE"_s, u"n"_s, u"9"_s); }, "#h=4\r\n",
              "#h=4\r\nn=9\r\n"},
             {"a new section", [](auto& d) { d.Set(u"new"_s, u"n"_s, u"9"_s); }, "late=5\r\n",
              "late=5\r\n\r\n[new]\r\nn=9\r\n"},
             {"no line can be smuggled in", [](auto& d) { d.Set(u"two"_s, u"q"_s, u"1\r\n[x]\r\ny=2"_s); }, "\"x y\"",
              "1"},
             {"a key goes with its doubles", [](auto& d) { d.Remove(u"one"_s, u"a"_s); }, "  a = 1 \r\nA=2\r\n", ""},
             {"a section goes with its doubles, the next one's comment stays",
              [](auto& d) { d.RemoveSection(u"ONE"_s); }, "[One]\r\n  a = 1 \r\nA=2\r\n;c=3\r\nalone\r\n#h=4\r\n\r\n",
              ""},
             {"a section is replaced",
              [](auto& d) {
                  d.ReplaceSection(u"two"_s, {u"m=1"_s, u"n=2"_s});
              },
              "q=\"x y\"\r\n", "m=1\r\nn=2\r\n"},
             {"nothing", [](auto& d) { d.Remove(u"two"_s, u"none"_s); }, "", ""},
         }) {
        SCOPED_TRACE(c.about);
        auto document = IniDocument::Parse(kSample);
        c.change(document);
        QByteArray expected = c.from.isEmpty() ? kSample : QByteArray(kSample).replace(c.from, c.to);
        if (QByteArray(c.about).contains("section goes"))
            expected.replace("[one]\r\nlate=5\r\n", "");
        EXPECT_EQ(document.Serialise(), expected);
    }
}

TEST(IniDocument, KeepsLineEndAndEncoding)
{
    const QString text = u"[s]|k=Müller|"_s;
    for (const QString& end : {u"\r\n"_s, u"\n"_s, u"\r"_s})
        for (int i = 0; i <= int(TextEncoding::Utf16BeMark); ++i) {
            SCOPED_TRACE(i);
            const auto encoding = TextEncoding(i);
            const QString file = QString(text).replace(u'|', end);
            auto document = IniDocument::Parse(EncodeText(file, encoding));
            document.Set(u"s"_s, u"n"_s, u"é"_s);
            EXPECT_EQ(document.Serialise(), EncodeText(QString(file + u"n=é"_s + end), encoding));
            EXPECT_EQ(document.Get(u"s"_s, u"k"_s), u"Müller"_s);
        }
}

TEST(IniDocument, SurvivesWhatFilesHold)
{
    const QByteArray longLine = "[s]\nlong=" + QByteArray(10'000'000, 'x') + "\nk=1\n";
    QByteArray manyKeys = "[s]\n";
    for (int i = 0; i < 1000; ++i)
        manyKeys += "unknown" + QByteArray::number(i) + "=" + QByteArray::number(i) + "\n";
    struct Case
    {
        const char* about;
        QByteArray content;
    };
    for (const auto& c : std::vector<Case>{
             {"10 MB in a line", longLine},
             {"1,000 unknown keys", manyKeys},
             {"NUL inside", QByteArray("[s]\na\0b=1\0\nk=1\0 2\n", 18)},
             {"mixed line ends", "[s]\r\na=1\rb=2\nc=3\r\n"},
             {"invalid UTF-8 behind a mark", "\xEF\xBB\xBF[s]\na=\xFF\xC3\nb=1\n"},
             {"no line end at the end", "[s]\na=1"},
         }) {
        SCOPED_TRACE(c.about);
        auto document = IniDocument::Parse(c.content);
        EXPECT_EQ(document.Serialise(), c.content);
        document.Set(u"s"_s, u"fresh"_s, u"v"_s);
        const QByteArray changed = document.Serialise();
        EXPECT_TRUE(changed.startsWith(c.content));
        EXPECT_EQ(IniDocument::Parse(changed).Get(u"s"_s, u"fresh"_s), u"v"_s);
        document.Remove(u"s"_s, u"fresh"_s);
        EXPECT_TRUE(document.Serialise().startsWith(c.content));
    }
    // Half a character at the end must not shift what is written behind it.
    auto odd = IniDocument::Parse(EncodeText(u"[s]\r\na=1"_s, TextEncoding::Utf16LeMark) + "x");
    odd.Set(u"s"_s, u"b"_s, u"2"_s);
    EXPECT_EQ(IniDocument::Parse(odd.Serialise()).Get(u"s"_s, u"b"_s), u"2"_s);
}

// A key that the file lost must not turn the rest into another encoding's text.
TEST(IniDocument, StaysReadableWhenTheTellTaleGoes)
{
    auto document = IniDocument::Parse("[s]\r\na=\xE9\r\nb=\xC3\xA9\r\n");
    document.Remove(u"s"_s, u"a"_s);
    EXPECT_EQ(IniDocument::Parse(document.Serialise()).Get(u"s"_s, u"b"_s), u"\u00c3\u00a9"_s);
}

TEST(IniDocument, RefusesNamesThatWouldReadAsSomethingElse)
{
    auto document = IniDocument::Parse(kSample);
    for (const QString& key : {u""_s, u" "_s, u"a=b"_s, u";a"_s, u"[a"_s, u"a\nb"_s})
        EXPECT_THROW(document.Set(u"one"_s, key, u"1"_s), Failure) << key.toStdString();
    EXPECT_THROW(document.Set(u"a\r\nb"_s, u"k"_s, u"1"_s), Failure);
    EXPECT_EQ(document.Serialise(), kSample);
}

} // namespace
} // namespace kestrune
