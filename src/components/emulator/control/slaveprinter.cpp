#include "slaveprinter.h"

#include <emulator/engine/printlayout.h>

#include <utility>

namespace kestrune {

namespace {

PrintedLine PrintedLineOf(const emu::PrintLine& line)
{
    PrintedLine printed;
    for (const emu::PrintRun& run : line.runs)
        printed.push_back({run.column, run.bold, run.underline, QString::fromStdString(run.utf8)});
    return printed;
}

std::vector<PrintedPage> PagesOf(std::string_view bytes, const SlavePrinter::Setup& setup)
{
    emu::PrintLayout layout(setup.charset, setup.eightBitControls);
    layout.Feed(bytes);
    std::vector<PrintedPage> pages;
    for (const emu::PrintPage& page : layout.Take()) {
        pages.emplace_back();
        for (const emu::PrintLine& line : page.lines)
            pages.back().push_back(PrintedLineOf(line));
    }
    return pages;
}

} // namespace

void SlavePrinter::Put(std::string_view bytes, const std::function<Setup()>& setup)
{
    if (bytes.empty())
        return;
    if (job_ && job_->bytes.size() + bytes.size() > MaxJob)
        Close();
    if (!job_)
        job_ = std::make_unique<Job>(Job{setup(), {}});
    job_->bytes += bytes;
    lastData_ = clock_.Now();
    if (!idle_ && job_->setup.timeout > 0)
        Watch(std::chrono::seconds(job_->setup.timeout));
}

// One timer for many pieces of data: it looks when the last one came.
void SlavePrinter::Watch(Clock::Duration pause)
{
    idle_ = clock_.After(pause, [this] {
        const Clock::Duration end = lastData_ + std::chrono::seconds(job_->setup.timeout);
        if (clock_.Now() >= end)
            Close();
        else
            Watch(end - clock_.Now());
    });
}

void SlavePrinter::Close()
{
    idle_.reset();
    const auto ended = std::exchange(job_, nullptr);
    if (!ended)
        return;
    const Setup& setup = ended->setup;
    PrintJob job{.printer = setup.printer, .title = setup.title, .look = setup.look, .pages = {}, .raw = {}};
    if (setup.raw)
        job.raw = QByteArray::fromStdString(setup.eject ? ended->bytes + '\f' : ended->bytes);
    else
        job.pages = PagesOf(ended->bytes, setup);
    if (setup.raw || !job.pages.empty())
        printing_.Print(std::move(job), told_);
}

} // namespace kestrune
