#pragma once

// Plays sounds, one at a time, by a thread of its own: a sound device may block, and may take its time to open.

#include <media/sound.h>

#include <condition_variable>
#include <functional>
#include <mutex>
#include <optional>
#include <thread>

namespace kestrune {

class SoundOutput
{
public:
    // noDevice: told from the thread, whenever a sound could not be played, with the system's reason.
    explicit SoundOutput(std::function<void(const char* reason)> noDevice);
    ~SoundOutput(); // a sound that plays is cut off
    SoundOutput(const SoundOutput&) = delete;
    SoundOutput& operator=(const SoundOutput&) = delete;

    void Play(Sound sound); // in place of what is playing

private:
    void Work();
    bool IsWanted();                  // false: another sound waits, or the end
    int PlayHere(const Sound& sound); // 0, or the error of the sound library

    std::function<void(const char*)> noDevice_;
    std::mutex mutex_;
    std::condition_variable wake_;
    std::optional<Sound> next_;
    bool ending_ = false;
    std::thread worker_; // from the first sound on
};

} // namespace kestrune
