#include <dispatch/failure.h>
#include <fakes/memoryfilesystem.h>
#include <fakes/print.h>
#include <platform/textcodec.h>
#include <settings/keyfiles.h>
#include <settings/profile.h>

#include <gtest/gtest.h>

namespace kestrune {
namespace {

using namespace Qt::StringLiterals;

class ProfileTest : public testing::Test
{
protected:
    ProfileTest() { files.AddFolder(u"/d"_s); }

    QByteArray Text() const { return files.Kind(file) == PathKind::File ? files.Content(file) : QByteArray("<none>"); }
    quint32 NumberOf(const std::function<void()>& run)
    {
        try {
            run();
        } catch (const Failure& failure) {
            EXPECT_FALSE(failure.Text().isEmpty());
            return quint32(failure.Number());
        }
        return 0;
    }

    const QString file = u"/d/a.ini"_s, fallback = u"/d/b.ini"_s, s = u"S"_s, k = u"K"_s;
    MemoryFileSystem files;
    Profile profile{files};
};

TEST_F(ProfileTest, ReadsByType)
{
    struct Case
    {
        QByteArray text;
        int number;
        bool boolean;
        int numberOrBool;
    };
    for (const auto& c : std::vector<Case>{{"12abc", 12, true, 12},
                                           {"True", 0, true, -1},
                                           {"t", 0, true, -1},
                                           {"Yes", 0, false, 0},
                                           {"0", 0, false, 0},
                                           {"-1", -1, true, -1},
                                           {"", 7, true, 7}}) {
        SCOPED_TRACE(c.text.toStdString());
        files.AddFile(file, "[S]\r\nK=" + c.text + "\r\n");
        EXPECT_EQ(profile.ProfileGetInt(s, k, 7, file), c.number);
        EXPECT_EQ(profile.ProfileGetBool(s, k, true, file), c.boolean);
        EXPECT_EQ(profile.ProfileGetIntOrBool(s, k, 7, file), c.numberOrBool);
    }
    files.AddFile(fallback, "[S]\nK=5\nL=6\n");
    EXPECT_EQ(profile.ProfileGetInt(s, k, 7, file, fallback), 5) << "an empty value looks in the second file";
    EXPECT_EQ(profile.ProfileGetString(s, k, u"x"_s, u"/gone/a.ini"_s), u"x"_s);
}

TEST_F(ProfileTest, BuffersCutWhatIsRead)
{
    files.AddFile(file, "[S]\nK=" + QByteArray(5000, '1') + "\n" + QByteArray(2000, 'A') + "=1\n" +
                            QByteArray(2000, 'B') + "=1\n" + QByteArray(2000, 'C') + "=1\n");
    EXPECT_EQ(profile.ProfileGetString(s, k, {}, file).size(), 4095);
    EXPECT_EQ(profile.ProfileGetKeys(s, file).size(), 3) << "K and two long ones fit 4096 characters";
}

TEST_F(ProfileTest, DefaultsAreNotStored)
{
    enum class Type
    {
        String,
        Int,
        Bool
    };
    struct Case
    {
        const char* about;
        Type type;
        QString value, defaultValue, inFallback; // "-": no fallback file, "": it lacks the key
        QByteArray line;                         // empty: the key goes
    };
    for (const auto& c : std::vector<Case>{
             {"text equal to its default", Type::String, u"0"_s, u"0"_s, u"-"_s, ""},
             {"other text", Type::String, u"1"_s, u"0"_s, u"-"_s, "K=1"},
             {"empty text", Type::String, {}, u"x"_s, u"-"_s, ""},
             {"the fallback counts, not the default", Type::String, u"a"_s, u"a"_s, u"b"_s, "K=a"},
             {"as in the fallback", Type::String, u"b"_s, u"a"_s, u"b"_s, ""},
             {"text with a quote in front", Type::String, u"'a"_s, {}, u"-"_s, "K=\"'a\""},
             {"text with a blank behind", Type::String, u"a "_s, {}, u"-"_s, "K=\"a \""},
             {"a default of 0 always stores", Type::Int, u"0"_s, u"0"_s, u"-"_s, "K=0"},
             {"number equal to its default", Type::Int, u"4"_s, u"4"_s, u"-"_s, ""},
             {"number as in the fallback", Type::Int, u"4"_s, u"0"_s, u"4"_s, ""},
             {"a fallback without the key is no 0", Type::Int, u"0"_s, u"0"_s, u""_s, "K=0"},
             {"true by default stores true", Type::Bool, u"1"_s, u"1"_s, u"-"_s, "K=True"},
             {"true by default stores false", Type::Bool, u"0"_s, u"1"_s, u"-"_s, "K=False"},
             {"false and false", Type::Bool, u"0"_s, u"0"_s, u"-"_s, ""},
             {"true as in the fallback", Type::Bool, u"1"_s, u"0"_s, u"1"_s, ""},
         }) {
        SCOPED_TRACE(c.about);
        files.AddFile(file, "[S]\nA=1\nK=old\n");
        files.AddFile(fallback, "[S]\n" + (c.inFallback.isEmpty() ? QByteArray() : "K=" + c.inFallback.toLatin1()));
        const QString second = c.inFallback == u"-"_s ? QString() : fallback;
        if (c.type == Type::String)
            profile.ProfileSetString(s, k, c.value, c.defaultValue, file, second);
        else if (c.type == Type::Int)
            profile.ProfileSetInt(s, k, c.value.toInt(), c.defaultValue.toInt(), file, second);
        else
            profile.ProfileSetBool(s, k, c.value.toInt() != 0, c.defaultValue.toInt() != 0, file, second);
        EXPECT_EQ(Text(), c.line.isEmpty() ? QByteArray("[S]\nA=1\n") : "[S]\nA=1\n" + c.line + "\n");
        if (c.type == Type::String && !c.line.isEmpty()) {
            EXPECT_EQ(profile.ProfileGetString(s, k, c.defaultValue, file, second), c.value);
        }
    }
}

// A wide value turns a file without a mark into UTF-16 with one; a file with a mark keeps what it is.
TEST_F(ProfileTest, WideValuesFindRoom)
{
    struct Case
    {
        const char* about;
        QByteArray before;
        QString value;
        TextEncoding after;
    };
    const QByteArray old = "[S]\r\nName=M\xFCller\r\n";
    const QString decoded = DecodeText(old, TextEncoding::Ansi);
    for (const auto& c : std::vector<Case>{
             {"new file", {}, u"€"_s, TextEncoding::Utf16LeMark},
             {"legacy code page", old, u"日本"_s, TextEncoding::Utf16LeMark},
             {"legacy code page, narrow value", old, u"caf\u00e9"_s, TextEncoding::Ansi},
             {"narrow value that the code page lacks", old, u"\u0080"_s, TextEncoding::Utf16LeMark},
             {"narrow value that would pass for UTF-8", "[S]\r\n", u"\u00c3\u00a9"_s, TextEncoding::Utf16LeMark},
             {"UTF-8 with mark", EncodeText(decoded, TextEncoding::Utf8Mark), u"€"_s, TextEncoding::Utf8Mark},
             {"UTF-16, big end first", EncodeText(decoded, TextEncoding::Utf16BeMark), u"€"_s,
              TextEncoding::Utf16BeMark},
             {"UTF-8 without mark, narrow value", EncodeText(decoded, TextEncoding::Utf8), u"\u00e9"_s,
              TextEncoding::Utf8},
         }) {
        SCOPED_TRACE(c.about);
        files.AddFile(file, c.before);
        profile.ProfileSetString(s, k, c.value, {}, file);
        EXPECT_EQ(DetectEncoding(Text()), c.after);
        EXPECT_EQ(profile.ProfileGetString(s, k, {}, file), c.value);
        if (c.before.contains("ller")) {
            EXPECT_EQ(profile.ProfileGetString(s, u"Name"_s, {}, file), u"M\u00fcller"_s);
        }
    }
}

TEST_F(ProfileTest, GroupIsOneReplacementOnTopOfWhatOthersWrote)
{
    files.AddFile(file, "[S]\nK=1\n");
    {
        ProfileGroup group(profile, file);
        profile.ProfileSetString(s, k, u"2"_s, {}, file);
        profile.ProfileSetString(s, u"L"_s, u"3"_s, {}, file);
        EXPECT_EQ(profile.ProfileGetString(s, k, {}, file), u"2"_s) << "reads see the group's changes";
        EXPECT_EQ(Text(), "[S]\nK=1\n") << "nothing is written yet";
        Profile(files).ProfileSetString(s, u"Other"_s, u"9"_s, {}, file);
        group.Commit();
    }
    EXPECT_EQ(Text(), "[S]\nK=2\nOther=9\nL=3\n");
}

TEST_F(ProfileTest, GroupsOfOneFileJoin)
{
    ProfileKeyFiles keys(profile);
    files.AddFile(file, "[S]\nK=1\n");
    {
        ProfileGroup outer(profile, file);
        keys.Change(file, s, [](KeyFile& f) { f.SetInt(u"A"_s, 5, 0); });
        {
            ProfileGroup dropped(profile, file);
            profile.ProfileSetString(s, k, u"lost"_s, {}, file);
        }
        EXPECT_EQ(Text(), "[S]\nK=1\n") << "the inner end writes nothing";
        outer.Commit();
    }
    EXPECT_EQ(Text(), "[S]\nK=1\nA=5\n");
    {
        ProfileGroup abandoned(profile, file);
        profile.ProfileDeleteSection(s, file);
    }
    EXPECT_EQ(Text(), "[S]\nK=1\nA=5\n");
}

TEST_F(ProfileTest, GroupSaysWhatItCouldNotDo)
{
    const auto saveTo = [&](const QString& path) {
        return NumberOf([&] {
            ProfileGroup group(profile, path);
            profile.ProfileSetString(s, k, u"2"_s, {}, path);
            group.Commit();
        });
    };
    files.AddFile(file, "[S]\nK=1\n");
    EXPECT_EQ(saveTo(u"/gone/a.ini"_s), 53u);
    EXPECT_EQ(saveTo(u"/d"_s), 75u) << "a folder";
    files.full = true;
    EXPECT_EQ(saveTo(file), 61u);
    files.full = false;
    files.SetReadOnly(file);
    EXPECT_EQ(saveTo(file), 75u);
    EXPECT_EQ(Text(), "[S]\nK=1\n");
    profile.ProfileSetString(s, k, u"2"_s, {}, file);
    EXPECT_EQ(Text(), "[S]\nK=1\n") << "a single write is silent";
}

TEST_F(ProfileTest, KeyFilesServeComponents)
{
    ProfileKeyFiles keys(profile);
    EXPECT_EQ(NumberOf([&] { keys.Read(file, s, [](const KeyFile&) {}); }), 53u);
    keys.Change(file, s, [](KeyFile& f) {
        f.SetString(u"Host"_s, u" h "_s, {});
        f.SetBool(u"On"_s, true, false);
        f.SetInt(u"Same"_s, 3, 3);
        EXPECT_EQ(f.GetString(u"Host"_s, {}), u" h "_s);
    });
    EXPECT_EQ(Text(), "[S]\r\nHost=\" h \"\r\nOn=True\r\n");
    keys.Read(file, s, [](const KeyFile& f) {
        EXPECT_EQ(f.Keys(), QStringList({u"Host"_s, u"On"_s}));
        EXPECT_TRUE(f.GetBool(u"on"_s, false));
        EXPECT_EQ(f.GetInt(u"Same"_s, 3), 3);
        EXPECT_FALSE(f.Contains(u"Same"_s));
    });
    EXPECT_EQ(NumberOf([&] { keys.Change(file, s, [](KeyFile& f) { f.SetInt(u"a=b"_s, 1, 0); }); }), 5u);
}

} // namespace
} // namespace kestrune
