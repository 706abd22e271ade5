#pragma once

// Gathers what a host prints into jobs. A job begins with the first byte and ends when nothing has come for a while,
// or when it is closed.

#include <emulator/engine/terminal.h>
#include <ports/clock.h>
#include <ports/printing.h>

#include <functional>
#include <memory>
#include <string>
#include <string_view>

namespace kestrune {

class SlavePrinter
{
public:
    static constexpr size_t MaxJob = size_t{64} * 1024 * 1024; // bytes; what is longer goes on in another job

    struct Setup // as the settings stand when a job begins
    {
        QString printer;
        QString title;
        PageLook look;
        bool raw = false;   // the bytes go out as they are
        bool eject = false; // a job of raw bytes, or to a text file, ends with a form feed
        int timeout = 0;    // seconds without data that end a job; 0: none do
        emu::HostCharset charset = emu::HostCharset::Latin1;
        bool eightBitControls = true;
    };
    using Told = std::function<void(const PrintOutcome&)>;

    SlavePrinter(Printing& printing, Clock& clock, Told told)
        : printing_(printing), clock_(clock), told_(std::move(told))
    {}

    void Put(std::string_view bytes, const std::function<Setup()>& setup);
    void Close(); // the job that is open goes to the printer
    bool HasJob() const { return job_ != nullptr; }

private:
    struct Job
    {
        Setup setup;
        std::string bytes;
    };
    void Watch(Clock::Duration pause);

    Printing& printing_;
    Clock& clock_;
    Told told_;
    std::unique_ptr<Job> job_;
    Clock::Duration lastData_{0};
    std::unique_ptr<Clock::Timer> idle_;
};

} // namespace kestrune
