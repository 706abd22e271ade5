#include <dispatch/failure.h>
#include <fakes/fakesystem.h>
#include <fakes/memoryfilesystem.h>
#include <fakes/print.h>
#include <settings/filespec.h>
#include <settings/strfunc.h>

#include <gtest/gtest.h>

namespace kestrune {
namespace {

using namespace Qt::StringLiterals;

// A machine with drives: the program's own folder, documents, a second drive and a share.
struct WindowsMachine
{
    WindowsMachine()
    {
        files.AddFolder(u"C:\\Work\\Sub"_s);
        files.AddFolder(u"C:\\Docs\\Hosts"_s);
        files.AddFolder(u"D:\\Here"_s);
        files.AddFolder(u"\\\\srv\\share\\dir"_s);
        files.AddFile(u"C:\\Work\\a.orcf"_s);
        files.AddFile(u"D:\\Here\\d.orcf"_s);
        files.AddFile(u"C:\\root.orcf"_s);
        files.AddFile(u"\\\\srv\\share\\dir\\u.orcf"_s);
        files.workingFolder = u"C:\\Work"_s;
        files.workingFolders[u"D:"_s] = u"D:\\Here"_s;
        spec.SetCurrentDir(u"C:\\Work"_s);
    }
    MemoryFileSystem files{MemoryFileSystem::Style::Windows};
    FileSpec spec{PathStyle::Windows(), files};
};

struct NativeMachine
{
    NativeMachine()
    {
        files.AddFolder(u"/home/u/Documents/Hosts"_s);
        files.AddFile(u"/home/u/a.orcf"_s);
        files.AddFile(u"/home/u/odd:name?.orcf"_s);
        files.AddFile(u"/home/u/back\\slash"_s);
        files.AddFile(u"/home/u/Documents/Hosts/b.orcf"_s);
        files.workingFolder = u"/home/u"_s;
        spec.SetCurrentDir(u"/home/u"_s);
    }
    MemoryFileSystem files;
    FileSpec spec{PathStyle::Native(), files};
};

struct ParseCase
{
    const char* about;
    QString spec, base;
    SpecResult result;
    QString normal, drive, dir, file;
};

template <typename Machine>
void RunParseCases(const std::vector<ParseCase>& cases)
{
    for (const auto& c : cases) {
        SCOPED_TRACE(c.about);
        Machine machine;
        QString spec = c.spec;
        SpecParts parts{u"before"_s, u"before"_s, u"before"_s, {}};
        EXPECT_EQ(machine.spec.ParseFileSpec(spec, parts, c.base), c.result);
        EXPECT_EQ(spec, c.normal);
        EXPECT_EQ(parts.drive, c.drive);
        EXPECT_EQ(parts.dir, c.dir);
        EXPECT_EQ(parts.file, c.file);
    }
}

TEST(ParseFileSpec, WindowsStyle)
{
    using R = SpecResult;
    const QString kept = u"before"_s;
    RunParseCases<WindowsMachine>({
        {"file in the current folder",
         u"a.orcf"_s,
         {},
         R::File,
         u"C:\\Work\\a.orcf"_s,
         u"C:"_s,
         u"\\Work\\"_s,
         u"a.orcf"_s},
        {"case does not matter",
         u"c:\\WORK\\A.orcf"_s,
         {},
         R::File,
         u"c:\\WORK\\A.orcf"_s,
         u"c:"_s,
         u"\\WORK\\"_s,
         u"A.orcf"_s},
        {"new file", u"n.orcf"_s, {}, R::NewFile, u"C:\\Work\\n.orcf"_s, u"C:"_s, u"\\Work\\"_s, u"n.orcf"_s},
        {"folder without its backslash",
         u"C:\\Work\\Sub"_s,
         {},
         R::Folder,
         u"C:\\Work\\Sub\\"_s,
         u"C:"_s,
         u"\\Work\\Sub\\"_s,
         {}},
        {"nothing is the base", {}, u"C:\\Docs"_s, R::Folder, u"C:\\Docs\\"_s, u"C:"_s, u"\\Docs\\"_s, {}},
        {"relative folder and file",
         u"Sub\\x"_s,
         {},
         R::NewFile,
         u"C:\\Work\\Sub\\x"_s,
         u"C:"_s,
         u"\\Work\\Sub\\"_s,
         u"x"_s},
        {"from the root of the base's drive",
         u"\\root.orcf"_s,
         {},
         R::File,
         u"C:\\root.orcf"_s,
         u"C:"_s,
         u"\\"_s,
         u"root.orcf"_s},
        {"drive alone takes the base's folder",
         u"C:"_s,
         u"C:\\Docs"_s,
         R::Folder,
         u"C:\\Docs\\"_s,
         u"C:"_s,
         u"\\Docs\\"_s,
         {}},
        {"another drive's working folder",
         u"D:d.orcf"_s,
         {},
         R::File,
         u"D:\\Here\\d.orcf"_s,
         u"D:"_s,
         u"\\Here\\"_s,
         u"d.orcf"_s},
        {"share",
         u"\\\\srv\\share\\dir\\u.orcf"_s,
         {},
         R::File,
         u"\\\\srv\\share\\dir\\u.orcf"_s,
         {},
         u"\\\\srv\\share\\dir\\"_s,
         u"u.orcf"_s},
        {"relative to a share",
         u"u.orcf"_s,
         u"\\\\srv\\share\\dir"_s,
         R::File,
         u"\\\\srv\\share\\dir\\u.orcf"_s,
         {},
         u"\\\\srv\\share\\dir\\"_s,
         u"u.orcf"_s},
        {"folder is not there", u"C:\\none\\x"_s, {}, R::Invalid, u"C:\\none\\x"_s, kept, kept, kept},
        {"character of no name", u"a?.orcf"_s, {}, R::Invalid, u"a?.orcf"_s, kept, kept, kept},
        {"drive is no letter", u"1:\\a"_s, {}, R::Invalid, u"1:\\a"_s, kept, kept, kept},
    });
}

TEST(ParseFileSpec, NativeStyle)
{
    using R = SpecResult;
    const QString kept = u"before"_s;
    const QString hosts = u"/home/u/Documents/Hosts/"_s;
    RunParseCases<NativeMachine>({
        {"relative", u"a.orcf"_s, {}, R::File, u"/home/u/a.orcf"_s, {}, u"/home/u/"_s, u"a.orcf"_s},
        {"what the system allows is allowed",
         u"odd:name?.orcf"_s,
         {},
         R::File,
         u"/home/u/odd:name?.orcf"_s,
         {},
         u"/home/u/"_s,
         u"odd:name?.orcf"_s},
        {"a backslash in an existing name",
         u"back\\slash"_s,
         {},
         R::File,
         u"/home/u/back\\slash"_s,
         {},
         u"/home/u/"_s,
         u"back\\slash"_s},
        {"else it separates", u"Documents\\Hosts\\b.orcf"_s, {}, R::File, hosts + u"b.orcf"_s, {}, hosts, u"b.orcf"_s},
        {"dots and doubled separators", u"./Documents//Hosts/."_s, {}, R::Folder, hosts, {}, hosts, {}},
        {"root", u"/"_s, {}, R::Folder, u"/"_s, {}, u"/"_s, {}},
        {"no such folder", u"/none/x"_s, {}, R::Invalid, u"/none/x"_s, kept, kept, kept},
    });
}

struct TextCase
{
    QString in, out;
};

TEST(FileSpec, SplitsByTextAlone)
{
    WindowsMachine windows;
    struct Case
    {
        QString spec, drive, dir, file, ext;
    };
    for (const auto& c : std::vector<Case>{
             {u"C:\\a\\b.c.d"_s, u"C:"_s, u"\\a\\"_s, u"b.c"_s, u".d"_s},
             {u"\\\\srv\\sh\\f"_s, {}, u"\\\\srv\\sh\\"_s, u"f"_s, {}},
             {u"C:\\a.b\\"_s, u"C:"_s, u"\\a.b\\"_s, {}, {}},
             {u"f."_s, {}, {}, u"f"_s, u"."_s},
         }) {
        SCOPED_TRACE(c.spec.toStdString());
        const auto parts = windows.spec.SplitFileSpec(c.spec);
        EXPECT_EQ(QStringList({parts.drive, parts.dir, parts.file, parts.ext}),
                  QStringList({c.drive, c.dir, c.file, c.ext}));
    }
    EXPECT_EQ(windows.spec.GetFileExt(u"a.orcf"_s), u"orcf"_s);
    EXPECT_EQ(windows.spec.GetDirPart(u"C:\\a\\b"_s), u"C:\\a\\"_s);
}

TEST(FileSpec, BackupNames)
{
    WindowsMachine windows;
    for (const auto& c : std::vector<TextCase>{
             {u"a.orcf"_s, u"a.bak"_s},
             {u"a.bak"_s, u"a.~ak"_s},
             {u"a.BAK"_s, u"a.bak"_s},
             {u"a"_s, u"a.bak"_s},
             {u"C:\\x.y\\a"_s, u"C:\\x.y\\a.bak"_s},
             {u"C:a"_s, u"C:a.bak"_s},
         })
        EXPECT_EQ(windows.spec.BackupName(c.in), c.out);
    EXPECT_EQ(NativeMachine().spec.BackupName(u"/x.y/a"_s), u"/x.y/a.bak"_s);
}

TEST(FileSpec, DotToAbsPath)
{
    WindowsMachine windows;
    for (const auto& c : std::vector<TextCase>{
             {u"."_s, u"C:\\p\\"_s},
             {u".\\data"_s, u"C:\\p\\data"_s},
             {u"..\\data"_s, u"C:\\data"_s},
             {u".."_s, u"C:"_s},
             {u"C:\\a\\..\\..\\b"_s, u"C:\\b"_s},
             {u"\\\\a\\\\b"_s, u"\\a\\b"_s},
         })
        EXPECT_EQ(windows.spec.DotToAbsPath(c.in, u"C:\\p\\"_s), c.out) << c.in.toStdString();
    NativeMachine native;
    for (const auto& c : std::vector<TextCase>{
             {u"."_s, u"/opt/p/"_s}, {u"..\\data"_s, u"/opt/data"_s}, {u"/a/../../b"_s, u"/b"_s}, {u"/a/.."_s, u"/"_s}})
        EXPECT_EQ(native.spec.DotToAbsPath(c.in, u"/opt/p/"_s), c.out) << c.in.toStdString();
}

TEST(FileSpec, ContractsAndExpandsInWindowsStyle)
{
    WindowsMachine windows;
    const QString home = u"C:\\Home"_s, documents = u"C:\\Docs\\"_s;
    for (const auto& c : std::vector<TextCase>{
             {u"C:\\HOME\\Hosts\\a.orcf"_s, u"Hosts\\a.orcf"_s},
             {u"C:\\Home\\Hosts\\"_s, u"Hosts\\"_s},
             {u"C:\\Home"_s, u"."_s},
             {u"C:\\Homes\\a"_s, u"C:\\Homes\\a"_s},
             {u"C:\\Docs\\Hosts\\a"_s, u"My Documents\\Hosts\\a"_s},
             {u"C:\\Docs"_s, u"My Documents"_s},
             {{}, {}},
         })
        EXPECT_EQ(windows.spec.ContractPath(c.in, home, documents), c.out) << c.in.toStdString();
    for (const auto& c : std::vector<TextCase>{
             {u"Hosts\\a"_s, u"C:\\Home\\Hosts\\a"_s},
             {u"."_s, u"C:\\Home"_s},
             {u".\\"_s, u"C:\\Home\\"_s},
             {u"MY documents\\x"_s, u"C:\\Docs\\x"_s},
             {u"My Documents"_s, documents},
             {u"My Documentsx"_s, u"C:\\Home\\My Documentsx"_s},
             {u"\\x"_s, u"\\x"_s},
             {u"E:x"_s, u"E:x"_s},
         })
        EXPECT_EQ(windows.spec.ExpandPath(c.in, home, documents), c.out) << c.in.toStdString();
    EXPECT_EQ(windows.spec.ExpandPath(u"."_s, u"C:\\x\\"_s, {}), u"C:\\x"_s);
}

// What is stored on disk is portable, and leads back to the same file whatever its name holds.
TEST(FileSpec, NativeContractionsLeadBack)
{
    NativeMachine native;
    const QString home = u"/home/u/Documents/Hosts/"_s, documents = u"/home/u/Documents"_s;
    for (const auto& c : std::vector<TextCase>{
             {home + u"sub/a.orcf"_s, u"sub\\a.orcf"_s},
             {documents + u"/x/a"_s, u"My Documents\\x\\a"_s},
             {u"/elsewhere/a"_s, u"/elsewhere/a"_s},
             {u"/home/u/documents/hosts/a"_s, u"/home/u/documents/hosts/a"_s},
             {home + u"a\\b"_s, home + u"a\\b"_s},
             {home + u"c:odd"_s, u"My Documents\\Hosts\\c:odd"_s},
             {home + u"x"_s, u"x"_s},
             {home + u"My Documents/a"_s, u"My Documents\\Hosts\\My Documents\\a"_s},
         }) {
        const QString portable = native.spec.ContractPath(c.in, home, documents);
        EXPECT_EQ(native.spec.ExpandPath(portable, home, documents), c.in);
        EXPECT_EQ(portable, c.out);
    }
    EXPECT_EQ(native.spec.ExpandPath(u"Hosts/b.orcf"_s, documents, {}), documents + u"/Hosts/b.orcf"_s);
}

TEST(FileSpec, MakesPaths)
{
    WindowsMachine windows;
    EXPECT_TRUE(windows.spec.MakePath(u"C:\\new\\er\\est\\"_s));
    EXPECT_TRUE(windows.spec.DirExists(u"C:\\new\\er\\est"_s));
    EXPECT_TRUE(windows.spec.MakePath(u"\\\\srv\\share\\fresh"_s));
    EXPECT_FALSE(windows.spec.MakePath(u"\\\\srv\\other\\fresh"_s)) << "no such share";
    EXPECT_FALSE(windows.spec.MakePath(u"Z:\\x"_s)) << "no such drive";
    EXPECT_FALSE(windows.spec.MakePath(u"relative"_s));
    EXPECT_FALSE(windows.spec.MakePath(u"C:\\Work\\a.orcf\\x"_s)) << "a file is in the way";
    EXPECT_TRUE(NativeMachine().spec.MakePath(u"/home/u/x/y"_s));
}

// A folder that cannot be made is error 76 or 61 by the platform's number, and 5 for whatever has none of its own.
TEST(FileSpec, MakeDirRaisesMappedNumbers)
{
    WindowsMachine windows;
    const auto numberOf = [&](const QString& path) -> quint32 {
        try {
            windows.spec.MakeDir(path, false);
        } catch (const Failure& failure) {
            return quint32(failure.Number());
        }
        return 0;
    };
    EXPECT_EQ(numberOf(u"C:\\none\\x"_s), 76u);
    EXPECT_EQ(numberOf(u"C:\\Work"_s), 58u);
    windows.files.full = true;
    EXPECT_EQ(numberOf(u"C:\\y"_s), 61u);
    EXPECT_FALSE(windows.spec.MakeDir(u"C:\\y"_s, true));
}

TEST(FileSpec, TempNamesRunOut)
{
    NativeMachine native;
    native.files.AddFile(u"/home/u/Work1.tmp"_s);
    EXPECT_EQ(native.spec.TempFileName(u"/home/u/"_s), u"/home/u/Work2.tmp"_s);
    for (int i = 2; i <= 999; ++i)
        native.files.AddFile(u"/home/u/Work%1.tmp"_s.arg(i));
    EXPECT_EQ(native.spec.TempFileName(u"/home/u"_s), QString());
}

TEST(Environ, Expands)
{
    FakeSystem system;
    system.environment = {{u"A"_s, u"one"_s}, {u"SELF"_s, u"%SELF%"_s}};
    for (const auto& c : std::vector<TextCase>{{u"%A%/%A%"_s, u"one/one"_s},
                                               {u"x%NONE%y"_s, u"xy"_s},
                                               {u"50% of %"_s, u"50"_s},
                                               {u"50%"_s, u"50%"_s},
                                               {u"%SELF%"_s, u"%SELF%"_s}})
        EXPECT_EQ(ExpandEnviron(system, c.in), c.out);
}

TEST(Strfunc, Fields)
{
    const QString text = u"a::b::"_s;
    EXPECT_EQ(Field(text, u"::"_s, 0), text);
    EXPECT_EQ(Field(text, u"::"_s, 2), u"b"_s);
    EXPECT_EQ(Field(text, u"::"_s, 3), QString());
    EXPECT_EQ(Field(text, u"::"_s, 9), QString());
    EXPECT_EQ(Field(u"aXbxc"_s, u"x"_s, 1), u"aXb"_s);
    EXPECT_EQ(DCount(text, u"::"_s), 3);
    EXPECT_EQ(DCount({}, u"::"_s), 0);
    EXPECT_EQ(FindNth(u"abcabc"_s, u"bc"_s, 2), 5);
    EXPECT_EQ(FindNth(u"abcabc"_s, u"bc"_s, 3), 0);
    EXPECT_EQ(ChangeDelimiter(text, u"::"_s, u","_s), u"a,b,"_s);
}

} // namespace
} // namespace kestrune
