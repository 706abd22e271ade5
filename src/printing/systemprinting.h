#pragma once

// Printing over the system's print service, or into files where there is none. Jobs are made by a thread of
// their own, one after the other; those on their way when this goes are finished first.

#include <ports/clock.h>
#include <ports/printing.h>

#include <condition_variable>
#include <deque>
#include <mutex>
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
    struct Job
    {
        PrintJob job;
        std::function<void(const PrintOutcome&)> done;
    };
    void Work();

    Clock& clock_;
    const QString documents_;
    std::mutex mutex_;
    std::condition_variable wake_;
    std::deque<Job> waiting_;
    bool ending_ = false;
    std::thread worker_; // from the first job on
};

} // namespace kestrune
