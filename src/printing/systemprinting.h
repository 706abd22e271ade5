#pragma once

// Printing over the system's print service, or into files where there is none. Each job is made by a thread of its
// own; jobs still on their way when this goes are finished first.

#include <ports/clock.h>
#include <ports/printing.h>

#include <list>
#include <memory>
#include <thread>

namespace kestrune {

class SystemPrinting : public Printing
{
public:
    // clock: its Post may be called from every thread. documents: the folder for PDF files.
    SystemPrinting(Clock& clock, QString documents);
    ~SystemPrinting() override;
    SystemPrinting(const SystemPrinting&) = delete;
    SystemPrinting& operator=(const SystemPrinting&) = delete;

    void Print(PrintJob job, std::function<void(const PrintOutcome&)> done) override;

private:
    Clock& clock_;
    QString documents_;
    std::list<std::thread> running_;
    std::shared_ptr<bool> alive_ = std::make_shared<bool>(true); // for what is posted and comes too late
};

} // namespace kestrune
