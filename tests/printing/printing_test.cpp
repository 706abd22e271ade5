// Where prints go on a system without a print service, and that no file is lost by them.

#include <platform/eventclock.h>
#include <platform/eventwaiter.h>
#include <printing/systemprinting.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace kestrune {

using namespace Qt::StringLiterals;

namespace {

struct PrintingBench
{
    PrintOutcome Print(PrintJob job)
    {
        const auto wait = waiter.Begin();
        PrintOutcome outcome;
        printing.Print(std::move(job), [&](const PrintOutcome& told) {
            outcome = told;
            wait->End();
        });
        wait->Run();
        return outcome;
    }
    QStringList Files(const QString& pattern) const
    {
        return QDir(Documents()).entryList({pattern}, QDir::Files, QDir::Name);
    }
    QString Documents() const { return folder.filePath(u"Documents"_s); }
    static QByteArray Content(const QString& path)
    {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : "cannot be read";
    }

    QTemporaryDir folder;
    EventClock clock;
    EventWaiter waiter;
    SystemPrinting printing{clock, Documents()};
};

PrintJob TextJob(const QString& printer, int pages, int lines = 1)
{
    PrintJob job;
    job.printer = printer;
    job.title = u"a/host: 1"_s;
    job.look.fontName = u"DejaVu Sans Mono"_s;
    const PrintedRun run{.column = 2, .bold = false, .underline = false, .text = u"text"_s};
    job.pages.assign(size_t(pages), PrintedPage(size_t(lines), PrintedLine{run}));
    return job;
}

int Sheets(const QByteArray& pdf)
{
    const QByteArray mark = "/Type /Page\n";
    return int(pdf.count(mark));
}

TEST(SystemPrinting, APdfFileOfItsOwnForEachJob)
{
    PrintingBench bench;
    for (int i = 0; i < 2; ++i) {
        const PrintOutcome outcome = bench.Print(TextJob(u"PDF"_s, 3));
        EXPECT_TRUE(outcome.printed) << outcome.text.toStdString();
        EXPECT_TRUE(outcome.text.contains(bench.Documents())) << "the user is told where it is";
    }
    const QStringList files = bench.Files(u"a-host- 1 *.pdf"_s);
    ASSERT_EQ(files.size(), 2);
    for (const QString& file : files)
        EXPECT_EQ(Sheets(PrintingBench::Content(bench.Documents() + u'/' + file)), 3);

    const QString named = bench.folder.filePath(u"report.pdf"_s);
    EXPECT_TRUE(bench.Print(TextJob(named, 1)).printed);
    const QByteArray first = PrintingBench::Content(named);
    EXPECT_TRUE(bench.Print(TextJob(named, 2)).printed);
    EXPECT_EQ(PrintingBench::Content(named), first) << "no print takes the place of another";
    EXPECT_EQ(Sheets(PrintingBench::Content(bench.folder.filePath(u"report (2).pdf"_s))), 2);
}

TEST(SystemPrinting, WhatDoesNotFitGoesOnOnTheNextSheet)
{
    PrintingBench bench;
    const QString file = bench.folder.filePath(u"long.pdf"_s);
    PrintJob job = TextJob(file, 1, 200);
    job.look.paperSize = 9;
    EXPECT_TRUE(bench.Print(job).printed);
    EXPECT_GT(Sheets(PrintingBench::Content(file)), 2);
    EXPECT_TRUE(PrintingBench::Content(file).contains("/MediaBox [0 0 595")) << "A4";
}

TEST(SystemPrinting, AFileGetsTheTextOrTheBytesBehindWhatItHas)
{
    PrintingBench bench;
    const QString file = bench.folder.filePath(u"spool"_s);
    EXPECT_TRUE(bench.Print(TextJob(file, 2)).printed);
    PrintJob raw;
    raw.printer = file;
    raw.raw = QByteArray("\x1b"
                         "E\0\xff",
                         4);
    EXPECT_TRUE(bench.Print(raw).printed);
    EXPECT_EQ(PrintingBench::Content(file), "  text\n\f  text\n" + raw.raw);

    raw.printer = u"PDF"_s;
    raw.title = u"host"_s;
    EXPECT_TRUE(bench.Print(raw).printed);
    const QStringList kept = bench.Files(u"host *.prn"_s);
    ASSERT_EQ(kept.size(), 1) << "bytes for a printer are no PDF";
    EXPECT_EQ(PrintingBench::Content(bench.Documents() + u'/' + kept[0]), raw.raw);
}

TEST(SystemPrinting, WhatCannotBePrintedSaysWhy)
{
    PrintingBench bench;
    for (const QString& printer :
         {u"A printer that nobody has"_s, bench.folder.filePath(u"no folder/file"_s), u"/proc/kestrune.pdf"_s}) {
        const PrintOutcome outcome = bench.Print(TextJob(printer, 1));
        EXPECT_FALSE(outcome.printed);
        EXPECT_TRUE(outcome.text.contains(printer)) << outcome.text.toStdString();
    }
}

} // namespace

} // namespace kestrune
