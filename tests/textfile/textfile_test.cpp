#include <dispatch/failure.h>
#include <fakes/print.h>
#include <platform/nativefiles.h>
#include <platform/textcodec.h>
#include <textfile/textfile.h>
#include <textfile/textfiles.h>

#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace kestrune::textfile {
namespace {

using namespace Qt::StringLiterals;

class TextFileTest : public testing::Test
{
protected:
    void Put(const QByteArray& content) { files.Replace(path, content); }
    OrxHandle Open(std::uint32_t access, std::uint32_t disposition, std::uint32_t share = OrxShareNone) const
    {
        return orxOpenFileW(path.toStdU16String().c_str(), access, share, disposition);
    }
    QStringList Lines(std::int32_t encoding = OrxDetect) const
    {
        const auto file = Open(OrxRead, OrxOpenExisting, OrxShareRead);
        orxSetFileEncoding(file, encoding);
        orxSetTransferCharset(file, OrxCharsetUtf16);
        QStringList lines;
        for (QString line; orxReadLineW(file, &line);)
            lines += line;
        EXPECT_TRUE(orxFileAtEOF(file));
        EXPECT_TRUE(orxCloseFile(file));
        return lines;
    }

    QTemporaryDir dir;
    const QString path = dir.filePath(u"Straße.txt"_s);
    NativeFileSystem files;
};

TEST_F(TextFileTest, ReadsLinesHoweverTheyEnd)
{
    struct Case
    {
        QString text;
        QStringList lines;
    };
    for (const auto& c : std::vector<Case>{{u"a\r\nb\nc\rd"_s, {u"a"_s, u"b"_s, u"c"_s, u"d"_s}},
                                           {u"a\n\r\n\r"_s, {u"a"_s, {}, {}}},
                                           {u"\r\r\n"_s, {{}, {}}},
                                           {u"日本\r\n😀"_s, {u"日本"_s, u"😀"_s}},
                                           {{}, {}}})
        for (const auto encoding : {TextEncoding::Utf8Mark, TextEncoding::Utf16LeMark, TextEncoding::Utf16BeMark}) {
            Put(EncodeText(c.text, encoding));
            EXPECT_EQ(Lines(), c.lines) << c.text.toStdString();
        }
}

// Line ends and characters that fall on the border of what is read at once.
TEST_F(TextFileTest, BlocksDoNotShow)
{
    constexpr qsizetype kBlock = 1 << 16;
    for (qsizetype length = kBlock - 3; length < kBlock + 2; ++length) {
        const QString head(length, u'x');
        Put(EncodeText(QString(head + u"\r\nñ\r\n"_s), TextEncoding::Utf8));
        EXPECT_EQ(Lines(), QStringList({head, u"ñ"_s}));
        Put(EncodeText(QString(head + u"日\r"_s), TextEncoding::Utf8));
        EXPECT_EQ(Lines(), QStringList(head + u"日"_s));
    }
    const QString huge(10'000'000, u'y');
    Put((huge + u"\nend"_s).toLatin1());
    EXPECT_EQ(Lines(), QStringList({huge, u"end"_s}));
}

TEST_F(TextFileTest, FileThatShrinksWhileItIsReadJustEnds)
{
    Put(QByteArray(200'000, 'a') + "\nsecond\n");
    const auto file = Open(OrxRead, OrxOpenExisting, OrxShareRead);
    char16_t first[10];
    EXPECT_EQ(orxReadFile(file, first, 10), 10u);
    ASSERT_TRUE(QFile::resize(path, 100));
    QString line;
    EXPECT_TRUE(orxReadLineW(file, &line));
    EXPECT_LT(line.size(), 200'000);
    EXPECT_FALSE(orxReadLineW(file, &line));
    EXPECT_TRUE(orxCloseFile(file));
}

TEST_F(TextFileTest, WritesEveryEncoding)
{
    struct Case
    {
        std::int32_t number;
        TextEncoding encoding;
    };
    for (const auto& c : std::vector<Case>{{1, TextEncoding::Ansi},
                                           {2, TextEncoding::Utf16LeMark},
                                           {3, TextEncoding::Utf8Mark},
                                           {130, TextEncoding::Utf16Le},
                                           {131, TextEncoding::Utf8}}) {
        const QString text = c.number == 1 ? u"é€\r\n"_s : u"é€\r\n😀"_s;
        const auto file = Open(OrxRead | OrxWrite, OrxCreateAlways);
        ASSERT_TRUE(orxSetFileEncoding(file, c.number));
        for (const QChar half : text) // a pair of surrogates comes in two calls
            EXPECT_EQ(orxWriteFile(file, &half, 1), 1u);
        EXPECT_EQ(orxGetFileEncoding(file, 0), c.number);
        EXPECT_TRUE(orxCloseFile(file));
        EXPECT_EQ(files.Read(path), EncodeText(text, c.encoding)) << c.number;
    }
    const auto appended = Open(OrxRead | OrxWrite, OrxOpenAlways);
    orxSetFileEncoding(appended, OrxDetect);
    EXPECT_EQ(orxSetFilePointer(appended, 0, 2), orxGetFileSize(appended));
    EXPECT_EQ(orxWriteFile(appended, u"!", 1), 1u);
    EXPECT_TRUE(orxCloseFile(appended));
    EXPECT_EQ(Lines(), QStringList({u"é€"_s, u"😀!"_s}));
}

TEST_F(TextFileTest, OpensByTheNumbers)
{
    EXPECT_EQ(Open(OrxRead, OrxOpenExisting), 0u);
    EXPECT_EQ(Open(OrxWrite, OrxTruncateExisting), 0u);
    const auto created = Open(OrxWrite, OrxCreateNew);
    EXPECT_NE(created, 0u);
    EXPECT_EQ(Open(OrxWrite, OrxOpenAlways), 0u) << "one writer at a time";
    orxCloseFile(created);
    EXPECT_FALSE(orxCloseFile(created));
    EXPECT_EQ(Open(OrxWrite, OrxCreateNew), 0u);
    EXPECT_EQ(orxOpenFileW(dir.path().toStdU16String().c_str(), OrxRead, 1, OrxOpenExisting), 0u);
    EXPECT_EQ(orxReadFile(77, nullptr, 1), 0u);
    Put("\xE9\xFF");
    const auto binary = Open(OrxRead, OrxOpenExisting, OrxShareRead);
    orxSetFileBinary(binary, -1);
    QByteArray bytes(8, '\0');
    EXPECT_EQ(orxReadFile(binary, bytes.data(), 8), 2u);
    EXPECT_EQ(bytes.left(2), "\xE9\xFF");
    EXPECT_EQ(orxSetFilePointer(binary, -1, 1), 1);
    orxCloseFile(binary);
}

TEST_F(TextFileTest, ListsFiles)
{
    for (const auto& name : {u"a.orcf"_s, u"B.ORCF"_s, u"c[1].txt"_s, u"noext"_s})
        files.Replace(dir.filePath(name), "12345");
    files.MakeFolder(dir.filePath(u"sub.orcf"_s));
    const auto list = [&](const QString& pattern) {
        QStringList names;
        OrxFindRecord record;
        const auto find = orxFindFirstFileW(dir.filePath(pattern).toStdU16String().c_str(), &record);
        for (bool more = find != 0; more; more = orxFindNextFileW(find, &record)) {
            const bool folder = orxFindAttributes(find) & OrxAttributeFolder;
            EXPECT_TRUE(folder || record.size == 5);
            names += record.name + (folder ? u"/"_s : QString());
        }
        EXPECT_EQ(orxFindClose(find), find != 0);
        return names;
    };
    EXPECT_EQ(list(u"*.orcf"_s), QStringList({u"B.ORCF"_s, u"a.orcf"_s, u"sub.orcf/"_s}));
    EXPECT_EQ(list(u"c[?].*"_s), QStringList(u"c[1].txt"_s));
    EXPECT_EQ(list(u"*.*"_s).size(), 5);
    EXPECT_EQ(list(u"none*"_s), QStringList());
}

TEST_F(TextFileTest, ReadTellsWhatItFoundAndWritesItBackAlike)
{
    struct Case
    {
        TextEncoding encoding;
        TextCode code;
    };
    const QString text = u"[é]\r\nk=ü\r\n"_s;
    for (const auto& c : std::vector<Case>{{TextEncoding::Ansi, TextCode::Ansi},
                                           {TextEncoding::Utf8Mark, TextCode::Utf8},
                                           {TextEncoding::Utf16LeMark, TextCode::Utf16},
                                           {TextEncoding::Utf8, TextCode::Utf8NoMark},
                                           {TextEncoding::Utf16Le, TextCode::Utf16NoMark}}) {
        const QByteArray content = EncodeText(text, c.encoding);
        Put(content);
        auto code = TextCode::ByContent;
        EXPECT_EQ(ReadTextFile(path, code), text);
        EXPECT_EQ(code, c.code);
        WriteTextFile(files, path, text, code);
        EXPECT_EQ(files.Read(path), content);
        EXPECT_EQ(ReadTextFile(path, code), text) << "named outright";
    }
    auto code = TextCode::ByContent;
    Put(EncodeText(text, TextEncoding::Utf16BeMark));
    EXPECT_EQ(ReadTextFile(path, code), text);
    code = TextCode::Binary;
    Put(QByteArray("\0\x80\xFF", 3));
    EXPECT_EQ(ReadTextFile(path, code), QString(QChar(0)) + u"\u0080\u00ff"_s);
    EXPECT_EQ(ReadTextFile(dir.filePath(u"none"_s), code), QString());
}

TEST_F(TextFileTest, WritesByContent)
{
    for (const auto& [text, encoding] : std::vector<std::pair<QString, TextEncoding>>{
             {u"plain é"_s, TextEncoding::Ansi},
             {u"€"_s, TextEncoding::Utf16LeMark},
             {u"\u00c3\u00a9"_s, TextEncoding::Utf16LeMark}, // as Ansi it would pass for UTF-8
             {u"\u0080"_s, TextEncoding::Utf16LeMark}}) {
        WriteTextFile(files, path, text, TextCode::ByContent);
        EXPECT_EQ(DetectEncoding(files.Read(path)), encoding) << text.toStdString();
        auto code = TextCode::ByContent;
        EXPECT_EQ(ReadTextFile(path, code), text);
    }
}

TEST_F(TextFileTest, EnsureUnicodeConvertsOnlyWhatMust)
{
    struct Case
    {
        const char* about;
        QByteArray before;
        QString value;
        TextEncoding after;
    };
    for (const auto& c : std::vector<Case>{
             {"narrow value", "k=\xFC", u"é"_s, TextEncoding::Ansi},
             {"legacy code page", "k=\xFC", u"日"_s, TextEncoding::Utf16LeMark},
             {"UTF-8 with mark", "\xEF\xBB\xBFk=\xC3\xBC", u"日"_s, TextEncoding::Utf16LeMark},
             {"UTF-16, big end first", EncodeText(u"k=ü"_s, TextEncoding::Utf16BeMark), u"日"_s,
              TextEncoding::Utf16LeMark},
             {"UTF-16 already", EncodeText(u"k=ü"_s, TextEncoding::Utf16LeMark), u"日"_s, TextEncoding::Utf16LeMark}}) {
        Put(c.before);
        EnsureUnicodeFile(files, path, c.value);
        EXPECT_EQ(files.Read(path), EncodeText(u"k=ü"_s, c.after)) << c.about;
    }
    EXPECT_TRUE(IsWideText(u"\uF8FD"_s));
    EXPECT_FALSE(HasWideChars(u"\uF8FCx\uF8FE\u00ff"_s, true));
    EXPECT_TRUE(HasWideChars(u"\uF8FF"_s, true));
}

TEST_F(TextFileTest, ReplaceFileKeepsABackupOrTheOldFile)
{
    const QString backup = dir.filePath(u"b.bak"_s);
    EXPECT_TRUE(ReplaceFile(files, path, u"one"_s, TextCode::Ansi, backup));
    EXPECT_FALSE(PathFileExists(files, backup)) << "there was nothing to keep";
    EXPECT_TRUE(ReplaceFile(files, path, u"two"_s, TextCode::Ansi, backup));
    EXPECT_TRUE(ReplaceFile(files, path, u"three"_s, TextCode::Ansi, backup));
    EXPECT_EQ(files.Read(backup), "two");

    SaveCalls calls;
    calls.write = [n = 0](int file, const void* from, std::size_t size) mutable -> ssize_t {
        errno = ENOSPC;
        return n++ == 0 ? ::write(file, from, size) : -1; // the copy still fits, the new text does not
    };
    NativeFileSystem full(calls);
    EXPECT_FALSE(ReplaceFile(full, path, u"four"_s, TextCode::Ansi, backup));
    EXPECT_EQ(files.Read(path), "three");
    EXPECT_EQ(files.Read(backup), "two");
    EXPECT_EQ(files.List(dir.path()).size(), 2);
}

TEST_F(TextFileTest, QuietHelpersReturnAndOthersRaise)
{
    const QString none = dir.filePath(u"none"_s), file = dir.filePath(u"f"_s);
    files.Replace(file, "x");
    EXPECT_FALSE(DeleteFileAt(files, none, true));
    EXPECT_THROW(DeleteFileAt(files, none, false), Failure);
    EXPECT_FALSE(CreateFolderAt(files, dir.path(), true));
    EXPECT_TRUE(CopyFileTo(files, file, none, false));
    EXPECT_FALSE(RenameFileAt(files, file, none, true)) << "a target that exists stays";
    EXPECT_TRUE(IsWritableFile(files, dir.filePath(u"new"_s)));
    EXPECT_FALSE(PathFileExists(files, dir.filePath(u"new"_s))) << "the test takes its own file away";
    QFile::setPermissions(file, QFile::ReadOwner);
    EXPECT_FALSE(IsWritableFile(files, file));
    EXPECT_FALSE(IsWritableFile(files, dir.filePath(u"gone/new"_s)));
}

} // namespace
} // namespace kestrune::textfile
