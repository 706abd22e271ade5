#include "systemprinting.h"

#include "pagepainter.h"

#include <platform/processors.h>

#include <QCoreApplication>
#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QPdfWriter>
#include <QPrinter>
#include <QPrinterInfo>
#include <QProcess>

#include <utility>

namespace kestrune {

using namespace Qt::StringLiterals;

namespace {

QString PrintTr(const char* text) { return QCoreApplication::translate("Printing", text); }

PrintOutcome Failed(const QString& where, const QString& why)
{
    return {false, PrintTr("Not printed to %1: %2").arg(QDir::toNativeSeparators(where), why)};
}
PrintOutcome Printed(const QString& where) { return {true, PrintTr("Printed to %1").arg(where)}; }

bool IsPath(const QString& printer) { return printer.contains(u'/') || QDir::isAbsolutePath(printer); }
bool IsPdf(const QString& path) { return path.endsWith(".pdf"_L1, Qt::CaseInsensitive); }

// A name that no file has: it is made here, so that two jobs at once get two.
std::optional<QString> NewFile(const QString& wanted, QString& why)
{
    const QFileInfo info(wanted);
    for (int number = 1;; ++number) {
        const QString name =
            number == 1 ? info.fileName() : u"%1 (%2).%3"_s.arg(info.completeBaseName()).arg(number).arg(info.suffix());
        QFile file(info.dir().filePath(name));
        if (file.open(QIODevice::WriteOnly | QIODevice::NewOnly))
            return file.fileName();
        if (!QFileInfo::exists(file.fileName())) {
            why = file.errorString();
            return std::nullopt;
        }
    }
}

QString FileNameFor(const PrintJob& job, const QString& suffix)
{
    QString title = job.title.isEmpty() ? PrintTr("Session") : job.title;
    for (QChar& c : title) // what no file system takes in a name
        if (c < u' ' || u"/\\:*?\"<>|"_s.contains(c))
            c = u'-';
    const QString time = QDateTime::currentDateTime().toString(u"yyyy-MM-dd HH.mm.ss"_s);
    constexpr int longestTitle = 60;
    return u"%1 %2.%3"_s.arg(title.left(longestTitle), time, suffix);
}

PrintOutcome ToPdf(const PrintJob& job, const QString& wanted)
{
    QString why;
    QDir().mkpath(QFileInfo(wanted).path());
    const auto path = NewFile(wanted, why);
    if (!path)
        return Failed(wanted, why);
    QPdfWriter writer(*path);
    writer.setTitle(job.title);
    writer.setCreator(u"Kestrune"_s);
    SetUpPaper(writer, job.look);
    if (!PaintPages(writer, job))
        return Failed(*path, PrintTr("the file cannot be written."));
    return Printed(*path);
}

QByteArray PlainBytes(const PrintJob& job)
{
    QString text;
    for (const PrintedPage& page : job.pages) {
        if (&page != &job.pages.front())
            text += u'\f';
        for (const PrintedLine& line : page) {
            QString row;
            for (const PrintedRun& run : line) {
                row = row.leftJustified(run.column);
                row.replace(run.column, run.text.size(), run.text);
            }
            text += row + u'\n';
        }
    }
    return text.toUtf8();
}

PrintOutcome ToFile(const QByteArray& bytes, const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::Append) || file.write(bytes) != bytes.size() || !file.flush())
        return Failed(path, file.errorString());
    return Printed(path);
}

PrintOutcome RawToPrinter(const PrintJob& job, const QString& printer)
{
    QProcess spool;
    spool.start(u"lp"_s, {u"-d"_s, printer, u"-o"_s, u"raw"_s, u"-t"_s, job.title});
    spool.write(job.raw);
    spool.closeWriteChannel();
    constexpr int patience = 60'000; // milliseconds
    if (!spool.waitForFinished(patience))
        return Failed(printer, spool.errorString());
    if (spool.exitStatus() != QProcess::NormalExit || spool.exitCode() != 0)
        return Failed(printer, QString::fromLocal8Bit(spool.readAllStandardError()).trimmed());
    return Printed(printer);
}

PrintOutcome ToPrinter(const PrintJob& job, const QPrinterInfo& info)
{
    if (!job.raw.isEmpty())
        return RawToPrinter(job, info.printerName());
    QPrinter printer(info, QPrinter::HighResolution);
    printer.setDocName(job.title);
    if (job.look.colorMode == 1)
        printer.setColorMode(QPrinter::GrayScale);
    SetUpPaper(printer, job.look);
    if (!PaintPages(printer, job))
        return Failed(info.printerName(), PrintTr("the printer does not answer."));
    return Printed(info.printerName());
}

PrintOutcome ToDocuments(const PrintJob& job, const QDir& documents)
{
    if (job.raw.isEmpty())
        return ToPdf(job, documents.filePath(FileNameFor(job, u"pdf"_s)));
    // Only a printer understands these bytes: they are kept for one.
    QString why;
    const QString wanted = documents.filePath(FileNameFor(job, u"prn"_s));
    QDir().mkpath(documents.path());
    const auto path = NewFile(wanted, why);
    return path ? ToFile(job.raw, *path) : Failed(wanted, why);
}

PrintOutcome Carry(const PrintJob& job, const QString& documents)
{
    const QString& where = job.printer;
    if (IsPath(where))
        return IsPdf(where) && job.raw.isEmpty() ? ToPdf(job, where)
                                                 : ToFile(job.raw.isEmpty() ? PlainBytes(job) : job.raw, where);
    if (where.compare("PDF"_L1, Qt::CaseInsensitive) == 0)
        return ToDocuments(job, QDir(documents));
    const QPrinterInfo info = where.isEmpty() ? QPrinterInfo::defaultPrinter() : QPrinterInfo::printerInfo(where);
    if (!info.isNull())
        return ToPrinter(job, info);
    return where.isEmpty() ? ToDocuments(job, QDir(documents)) : Failed(where, PrintTr("there is no such printer."));
}

} // namespace

SystemPrinting::SystemPrinting(Clock& clock, QString documents) : clock_(clock), documents_(std::move(documents)) {}

SystemPrinting::~SystemPrinting()
{
    {
        const std::scoped_lock lock(mutex_);
        ending_ = true;
    }
    wake_.notify_one();
    if (worker_.joinable())
        worker_.join();
}

void SystemPrinting::Print(PrintJob job, std::function<void(const PrintOutcome&)> done)
{
    {
        const std::scoped_lock lock(mutex_);
        waiting_.push_back({std::move(job), std::move(done)});
    }
    wake_.notify_one();
    if (!worker_.joinable())
        worker_ = std::thread([this] { Work(); });
}

void SystemPrinting::Work()
{
    GiveBackProcessors();
    std::unique_lock lock(mutex_);
    for (;;) {
        wake_.wait(lock, [this] { return ending_ || !waiting_.empty(); });
        if (waiting_.empty())
            return;
        const Job next = std::move(waiting_.front());
        waiting_.pop_front();
        lock.unlock();
        const PrintOutcome outcome = Carry(next.job, documents_);
        clock_.Post([outcome, done = next.done] { done(outcome); });
        lock.lock();
    }
}

} // namespace kestrune
