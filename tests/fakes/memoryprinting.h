#pragma once

// A printer that keeps its jobs.

#include <ports/clock.h>
#include <ports/printing.h>

#include <QStringList>

#include <utility>
#include <vector>

namespace kestrune {

class MemoryPrinting : public Printing
{
public:
    explicit MemoryPrinting(Clock& clock) : clock_(clock) {}

    void Print(PrintJob job, std::function<void(const PrintOutcome&)> done) override
    {
        jobs.push_back(std::move(job));
        clock_.Post([done = std::move(done), outcome = answer] { done(outcome); });
    }

    // Lines of a page as they lie on paper; overprinted runs follow each other behind a bar, bold is in *, underlined
    // text in _.
    static QStringList Text(const PrintedPage& page)
    {
        QStringList lines;
        for (const PrintedLine& line : page) {
            QString text;
            qsizetype column = 0;
            for (const PrintedRun& run : line) {
                text +=
                    run.column < column ? QStringLiteral("|%1:").arg(run.column) : QString(run.column - column, u' ');
                const QString mark = run.bold ? QStringLiteral("*") : run.underline ? QStringLiteral("_") : QString();
                text += mark + run.text + mark;
                column = run.column + run.text.size();
            }
            lines << text;
        }
        return lines;
    }

    std::vector<PrintJob> jobs;
    PrintOutcome answer{true, QStringLiteral("Printed to somewhere")};

private:
    Clock& clock_;
};

} // namespace kestrune
