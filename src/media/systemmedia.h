#pragma once

// Pictures and sounds by this machine's own means.

#include <ports/clock.h>
#include <ports/media.h>

#include <functional>
#include <memory>

namespace kestrune {

class SoundOutput;

class SystemMedia : public Media
{
public:
    // clock: its Post may be called from every thread. log: gets one line when sounds cannot be heard.
    SystemMedia(Clock& clock, std::function<void(const QString& line)> log);
    ~SystemMedia() override;

    void CheckPicture(const QString& path) override;
    void PlayWave(const QString& path) override;
    void PlayNotes(const QString& notes) override;

private:
    struct Told; // outlives this: what the thread has posted may come later
    std::shared_ptr<Told> told_;
    std::unique_ptr<SoundOutput> output_;
};

} // namespace kestrune
