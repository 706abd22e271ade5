#pragma once

// OutputFiles on the disk, each written by a thread of its own.

#include <ports/clock.h>
#include <ports/outputfiles.h>

namespace kestrune {

class BackgroundFiles : public OutputFiles
{
public:
    static constexpr qsizetype MaxQueued = qsizetype{64} * 1024 * 1024; // a disk that is further behind has failed

    // clock: its Post may be called from every thread, as an EventClock's may.
    explicit BackgroundFiles(Clock& clock) : clock_(clock) {}
    std::unique_ptr<OutputFile> Open(const QString& path, Mode mode, Failed failed) override;

private:
    Clock& clock_;
};

} // namespace kestrune
