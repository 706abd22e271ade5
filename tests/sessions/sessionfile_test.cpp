#include "bench.h"

#include <sessions/files.h>

#include <unistd.h>

#include <memory>

namespace kestrune {
namespace {

using namespace Qt::StringLiterals;

TEST(SessionFile, WhatIsSavedIsLoaded)
{
    SessionBench bench;
    const QString program = bench.layer.folders.ProgramDir;
    bench.Write(program + u"tables.txt"_s, "1\ta\n");
    const auto session = bench.sessions.Add();
    session->SetAutoClose(true);
    session->SetCaption(u" leading blank, käse, 漢字"_s);
    session->SetIcon(program + u"icons/a.ico"_s);
    session->SetMouseTable(program + u"tables.txt"_s);
    session->SetShowErrs(true);
    session->SetCapsLock(1);
    session->SetCopyPasteShortcut(2);
    session->Settings().Set(u"TermType"_s, qint32(16));
    session->Settings().Set(u"HostName"_s, u"h"_s);
    const QString path = bench.Path(u"a.orcf"_s);
    bench.ask.files = {path};
    EXPECT_TRUE(session->SaveAs());
    EXPECT_FALSE(session->Changed());
    EXPECT_TRUE(IsConfigFile(bench.layer, path));
    EXPECT_EQ(bench.Key(path, u"AutoClose"_s), u"True"_s);
    EXPECT_EQ(bench.Key(path, u"Icon"_s), u"icons\\a.ico"_s);
    EXPECT_EQ(bench.Key(path, u"CustomMouseTable"_s), u"tables.txt"_s);

    const auto again = bench.sessions.Add(path, -1, 0, AddHidden::NotOnLine);
    EXPECT_TRUE(again->AutoClose());
    EXPECT_EQ(again->Caption(), u" leading blank, käse, 漢字"_s);
    EXPECT_EQ(again->Icon(), u"icons\\a.ico"_s);
    EXPECT_EQ(bench.Window(*again).icon, program + u"icons/a.ico"_s);
    EXPECT_EQ(again->Emulator().MouseTable().size(), 1u);
    EXPECT_TRUE(again->ShowErrs());
    EXPECT_EQ(again->CapsLock(), 1);
    EXPECT_EQ(again->CopyPasteShortcut(), 2);
    EXPECT_EQ(again->Settings().Integer(Setting("TermType")), 16);
    EXPECT_EQ(again->SaveDir(), bench.layer.folders.HomeDir);
    EXPECT_FALSE(again->Changed());
}

TEST(SessionFile, DefaultsDoNotStandInIt)
{
    SessionBench bench;
    const QString path = bench.SessionFile(u"a.orcf"_s, "AutoClose=1\r\nCopyPasteShortcut=2\r\nSessionTitle=x\r\n"
                                                        "ShowErrs=True\r\nCapsLock=True\r\n");
    const auto session = bench.sessions.Add(path, -1, 0, AddHidden::NotOnLine);
    EXPECT_TRUE(session->AutoClose() && session->ShowErrs());
    session->SetAutoClose(false);
    session->SetShowErrs(false);
    session->SetCapsLock(0);
    session->SetCaption({});
    session->SetCopyPasteShortcut(0);
    session->Save();
    const QByteArray left = bench.Bytes(path);
    for (const char* key : {"AutoClose", "CopyPasteShortcut", "SessionTitle", "ShowErrs", "CapsLock", "Icon"})
        EXPECT_FALSE(left.contains(key)) << key;
    EXPECT_TRUE(left.contains("TermType=8"));
}

TEST(SessionFile, AutoCloseIsANumberOrAWordAndMasked)
{
    const std::pair<const char*, bool> cases[] = {{"1", true},  {"True", true}, {"true", true}, {"-1", true},
                                                  {"2", false}, {"0", false},   {"Yes", false}, {"", false}};
    for (const auto& [text, on] : cases) {
        SCOPED_TRACE(text);
        SessionBench bench;
        const QString path = bench.SessionFile(u"a.orcf"_s, QByteArray("AutoClose=") + text + "\r\n");
        EXPECT_EQ(bench.sessions.Add(path, -1, 0, AddHidden::NotOnLine)->AutoClose(), on);
    }
}

TEST(SessionFile, NameThatIsNotFoundResetsToDefaultsWithoutAWord)
{
    SessionBench bench;
    const auto session = bench.sessions.Add(bench.SessionFile(u"a.orcf"_s, "SessionTitle=Mine\r\n"));
    for (const QString& name : {u"nowhere.orcf"_s, u"a"_s, QString()}) { // "a": a script names its file in full
        session->SetFileName(u"a.orcf"_s);
        EXPECT_EQ(session->FileName(), bench.Path(u"a.orcf"_s));
        session->SetFileName(name);
        EXPECT_EQ(session->FileName(), QString());
        EXPECT_EQ(session->Caption(), QString());
        EXPECT_EQ(session->Settings().Text(Setting("HostName")), QString());
        EXPECT_EQ(session->Settings().Text(Setting("FontName")), u"DejaVu Sans Mono"_s);
        EXPECT_FALSE(session->Changed());
    }
    EXPECT_TRUE(bench.ask.boxes.empty());
}

TEST(SessionFile, SaveOfANewNameAsksAndAnOldCfgStaysInPlace)
{
    SessionBench bench;
    const QString old = bench.SessionFile(u"old.cfg"_s);
    const auto session = bench.sessions.Add(old, -1, 0, AddHidden::NotOnLine);
    session->SetCaption(u"Mine"_s);
    session->Save();
    EXPECT_EQ(bench.Key(old, u"SessionTitle"_s), u"Mine"_s);
    EXPECT_TRUE(bench.ask.saveRequests.empty());
    session->Save(u"brandnew.orcf"_s); // deliberate: a name that does not exist yet leads to the dialog
    ASSERT_EQ(bench.ask.saveRequests.size(), 1u);
    const FileDialogRequest& dialog = bench.ask.saveRequests.front();
    EXPECT_EQ(dialog.title, u"Save As"_s);
    EXPECT_EQ(dialog.folder, bench.layer.folders.SessionDir);
    EXPECT_EQ(dialog.name, old);
    EXPECT_EQ(dialog.defaultExtension, u"orcf"_s);
    EXPECT_EQ(dialog.filter, u"Kestrune Session (.orcf)|*.orcf|Old Kestrune Session (cfg)|*.cfg"_s);
    EXPECT_EQ(dialog.flags, 0x20080E);
    EXPECT_EQ(session->FileName(), old) << "cancelled: nothing changes";
    const QString other = bench.SessionFile(u"other.orcf"_s);
    session->Save(u"other.orcf"_s); // one that exists is taken
    EXPECT_EQ(session->FileName(), other);
    EXPECT_EQ(bench.recent, QStringList{other});
}

struct BadFile
{
    const char* what;
    QByteArray content;
    QByteArray kept; // bytes that must still stand after a save
};

QByteArray Utf16(const QString& text)
{
    return QByteArray("\xFF\xFE") + QByteArray(reinterpret_cast<const char*>(text.utf16()), text.size() * 2);
}

std::vector<BadFile> BadFiles()
{
    const QByteArray head = "[Kestrune]\r\nTermType=8\r\nDevice=3\r\n";
    QByteArray unknown = head;
    for (int i = 0; i < 1000; ++i)
        unknown += "Unknown" + QByteArray::number(i) + "=value " + QByteArray::number(i) + "\r\n";
    const QByteArray longLine(10 << 20, 'x');
    return {
        {"1000 unknown keys", unknown, unknown.mid(head.size())},
        {"another section and a comment", head + "; mine\r\n[Other]\r\na=b\r\n", "; mine\r\n[Other]\r\na=b\r\n"},
        {"UTF-16", Utf16(u"[Kestrune]\r\nTermType=8\r\nNote=漢字\r\n"_s), Utf16(u"Note=漢字\r\n"_s).mid(2)},
        {"legacy code page", head + "Note=K\xE4se \x80\r\n", "Note=K\xE4se \x80\r\n"},
        {"UTF-8 with mark", "\xEF\xBB\xBF" + head + "Note=K\xC3\xA4se\r\n", "Note=K\xC3\xA4se\r\n"},
        {"CR only", "[Kestrune]\rTermType=8\rNote=x\r", "Note=x\r"},
        {"LF only", "[Kestrune]\nTermType=8\nNote=x\n", "Note=x\n"},
        {"10 MB line", head + "Note=" + longLine + "\r\n", "Note=" + longLine + "\r\n"},
        {"1 MB title", head + "SessionTitle=" + longLine.left(1 << 20) + "\r\nNote=x\r\n", "Note=x\r\n"},
        {"numbers out of range", head + "NormCols=99999999999\r\nBaud=-7\r\nHistoryRows=lots\r\nNote=x\r\n",
         "Note=x\r\n"},
        {"NUL inside", head + QByteArray("Note=a\0b\r\n", 10), QByteArray("Note=a\0b\r\n", 10)},
        {"no line end at the end", head + "Note=x", "Note=x"},
    };
}

TEST(SessionFile, WhateverStandsInItOpensAndKeepsWhatIsNotOurs)
{
    for (const BadFile& row : BadFiles()) {
        SCOPED_TRACE(row.what);
        SessionBench bench;
        const QString path = bench.Write(u"a.orcf"_s, row.content);
        ASSERT_TRUE(IsConfigFile(bench.layer, path));
        const auto session = bench.sessions.Add(path, -1, 0, AddHidden::NotOnLine);
        EXPECT_EQ(session->Settings().Integer(Setting("TermType")), 8);
        EXPECT_LE(session->Caption().size(), 4096);
        session->SetShowErrs(true);
        session->Save();
        EXPECT_TRUE(bench.Bytes(path).contains(row.kept));
        EXPECT_EQ(bench.Key(path, u"ShowErrs"_s), u"True"_s);
        EXPECT_EQ(bench.sessions.Add(path, -1, 0, AddHidden::NotOnLine)->ShowErrs(), true);
    }
}

TEST(SessionFile, MissingMouseTableIsToldAndTheSessionOpens)
{
    SessionBench bench;
    const QString path = bench.SessionFile(u"a.orcf"_s, "CustomMouseTable=gone.txt\r\nShowErrs=True\r\n");
    const auto session = bench.sessions.Add(path, -1, 0, AddHidden::NotOnLine);
    EXPECT_EQ(bench.ask.boxes.size(), 1u);
    EXPECT_TRUE(session->ShowErrs()) << "the keys behind it count too";
    EXPECT_EQ(session->Settings().Text(Setting("HostName")), u"host.example"_s);
    session->Save();
    EXPECT_EQ(bench.Key(path, u"CustomMouseTable"_s), u"gone.txt"_s);
    EXPECT_NO_THROW(bench.sessions.AddClone(session.get()));
}

TEST(SessionFile, FileThatCannotBeReadIsNotWrittenOver)
{
    SessionBench bench;
    const auto session = bench.sessions.Add(bench.SessionFile(u"a.orcf"_s), -1, 0, AddHidden::NotOnLine);
    const QString unreadable = u"/proc/self/mem"_s; // is there, and fails at the first byte
    EXPECT_THROW(session->SetFileName(unreadable), Failure);
    EXPECT_EQ(session->FileName(), QString());
    EXPECT_THROW(bench.sessions.Add(unreadable), Failure);
    EXPECT_EQ(bench.sessions.Count(), 1) << "no invisible session is left behind";
}

TEST(SessionFile, FailedSaveChangesNothing)
{
    struct Full : SessionBench
    {
        // The disk is full from the next write on.
        static SaveCalls Calls(std::shared_ptr<bool> full)
        {
            SaveCalls calls;
            calls.write = [full = std::move(full), real = calls.write](int file, const void* from, size_t size) {
                if (*full) {
                    errno = ENOSPC;
                    return ssize_t(-1);
                }
                return real(file, from, size);
            };
            return calls;
        }
    };
    const auto full = std::make_shared<bool>(false);
    FakeApplication::nextCalls = Full::Calls(full);
    SessionBench bench;
    const QString path = bench.SessionFile(u"a.orcf"_s);
    const QByteArray before = bench.Bytes(path);
    const auto session = bench.sessions.Add(path, -1, 0, AddHidden::NotOnLine);
    session->SetCaption(u"Mine"_s);
    session->Settings().Set(u"HostName"_s, u"other"_s);
    *full = true;
    try {
        session->Save();
        FAIL() << "the disk is full";
    } catch (const Failure& failure) {
        EXPECT_EQ(failure.Number(), ErrorNumber::DiskFull);
        EXPECT_FALSE(failure.Text().isEmpty());
    }
    EXPECT_EQ(bench.Bytes(path), before);
    EXPECT_TRUE(session->Changed());
    bench.ask.files = {bench.Path(u"b.orcf"_s)};
    EXPECT_THROW(session->SaveAs(), Failure);
    EXPECT_EQ(session->FileName(), path) << "the next save goes where the file is";
    EXPECT_EQ(QDir(bench.layer.folders.HomeDir).entryList(QDir::Files), QStringList{u"a.orcf"_s});
    *full = false;
    session->Save();
    EXPECT_EQ(bench.Key(path, u"SessionTitle"_s), u"Mine"_s);
    EXPECT_EQ(bench.Key(path, u"HostName"_s), u"other"_s);
    EXPECT_FALSE(session->Changed());
}

} // namespace
} // namespace kestrune
