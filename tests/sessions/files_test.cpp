#include "bench.h"

#include <sessions/files.h>

#include <QDir>

namespace kestrune {
namespace {

using namespace Qt::StringLiterals;

TEST(Files, KindIsFoundByContent)
{
    struct Case
    {
        const char* what;
        QByteArray content;
        FileType kind;
    };
    const Case cases[] = {
        {"session", "[Kestrune]\nTermType=8\n", FileType::Session},
        {"session, type 0", "[Kestrune]\nTermType=0\n", FileType::Session},
        {"no TermType", "[Kestrune]\nHostName=a\n", FileType::Unknown},
        {"empty TermType", "[Kestrune]\nTermType=\n", FileType::Unknown},
        {"layout", "[Kestrune Main]\nFiles=0\n", FileType::Layout},
        {"layout without a key", "[Kestrune Main]\n", FileType::Unknown},
        {"both: the session wins", "[Kestrune Main]\nFiles=0\n[Kestrune]\nTermType=8\n", FileType::Session},
        {"script", "' comment\n\n   SUB Main\n", FileType::Script},
        {"script word behind other lines", "hello\nworld\nDeclare  Sub x\nOption Explicit\n", FileType::Script},
        {"a word that begins like one", "remark at the head\n", FileType::Script},
        {"commented out", "'Sub Main\n", FileType::Unknown},
        {"a word in full only", "subtle\nfunctional\n", FileType::Unknown},
        {"tab in front", "\tsub x\n", FileType::Unknown},
        {"empty", "", FileType::Unknown},
    };
    SessionBench bench;
    for (const Case& row : cases) {
        SCOPED_TRACE(row.what);
        EXPECT_EQ(FileKind(bench.layer, bench.Write(u"file.any"_s, row.content)), row.kind);
    }
    EXPECT_EQ(FileKind(bench.layer, bench.Path(u"not there"_s)), FileType::Unknown);
    EXPECT_EQ(FileKind(bench.layer, bench.layer.folders.HomeDir), FileType::Unknown);
}

TEST(Files, NamesAreLookedUpInTheHomeFolderThenInTheCurrentOne)
{
    SessionBench bench;
    QTemporaryDir current;
    bench.layer.folders.CurrentDir = current.path() + u'/';
    const QString both = bench.SessionFile(u"both.orcf"_s);
    bench.Write(current.filePath(u"both.orcf"_s), "x");
    bench.Write(current.filePath(u"here.cfg"_s), "x");
    struct Case
    {
        QString name, extensions, found;
    };
    const Case cases[] = {
        {u"both.orcf"_s, u"orcf"_s, both},
        {u"both"_s, u"orcf"_s, both},
        {both, u"orcf"_s, both},
        {u"here"_s, u"orcf;cfg"_s, current.filePath(u"here.cfg"_s)},
        {u"here.orcf"_s, u"orcf;cfg"_s, {}},           // a name with a dot gets no extension
        {u"both"_s, SessionExtensions.toString(), {}}, // two dots: a script names its file in full
        {u"none"_s, u"orcf"_s, {}},
        {{}, u"orcf"_s, {}},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.name.toStdString());
        EXPECT_EQ(GetFilePath(bench.layer, row.name, row.extensions), row.found);
    }
}

} // namespace
} // namespace kestrune
