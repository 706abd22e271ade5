#include "soundoutput.h"

#include <alsa/asoundlib.h>

#include <algorithm>
#include <chrono>
#include <memory>
#include <utility>

namespace kestrune {

namespace {

constexpr unsigned kLatency = 100'000; // microseconds of sound that wait in the device
constexpr int kPatience = 100;         // milliseconds between two looks at whether the sound is still wanted
constexpr auto kLook = std::chrono::milliseconds(10); // likewise, while the last of it plays
constexpr int kFramesAtOnce = 1024;

struct Close
{
    void operator()(snd_pcm_t* device) const { snd_pcm_close(device); }
};
using Device = std::unique_ptr<snd_pcm_t, Close>;

bool PlaysStill(snd_pcm_t* device)
{
    snd_pcm_sframes_t waiting = 0;
    return snd_pcm_state(device) == SND_PCM_STATE_RUNNING && snd_pcm_delay(device, &waiting) >= 0 && waiting > 0;
}

// The library writes to the terminal otherwise.
void SayNothing(const char*, int, const char*, int, const char*, ...) {}

} // namespace

SoundOutput::SoundOutput(std::function<void(const char*)> noDevice) : noDevice_(std::move(noDevice)) {}

SoundOutput::~SoundOutput()
{
    {
        const std::scoped_lock lock(mutex_);
        ending_ = true;
        next_.reset();
    }
    wake_.notify_one();
    if (worker_.joinable())
        worker_.join();
}

void SoundOutput::Play(Sound sound)
{
    {
        const std::scoped_lock lock(mutex_);
        next_ = std::move(sound);
    }
    if (!worker_.joinable())
        worker_ = std::thread([this] { Work(); });
    wake_.notify_one();
}

bool SoundOutput::IsWanted()
{
    const std::scoped_lock lock(mutex_);
    return !ending_ && !next_;
}

void SoundOutput::Work()
{
    snd_lib_error_set_handler(SayNothing);
    for (;;) {
        Sound sound;
        {
            std::unique_lock lock(mutex_);
            wake_.wait(lock, [this] { return ending_ || next_; });
            if (ending_)
                return;
            sound = *std::exchange(next_, std::nullopt);
        }
        if (const int error = PlayHere(sound); error < 0)
            noDevice_(snd_strerror(error));
    }
}

int SoundOutput::PlayHere(const Sound& sound)
{
    snd_pcm_t* opened = nullptr;
    if (const int error = snd_pcm_open(&opened, "default", SND_PCM_STREAM_PLAYBACK, SND_PCM_NONBLOCK); error < 0)
        return error;
    const Device device(opened);
    const auto channels = size_t(sound.channels);
    if (const int error = snd_pcm_set_params(opened, SND_PCM_FORMAT_S16, SND_PCM_ACCESS_RW_INTERLEAVED,
                                             unsigned(sound.channels), unsigned(sound.rate), 1, kLatency);
        error < 0)
        return error;
    for (size_t at = 0; at + channels <= sound.samples.size() && IsWanted();) {
        const size_t left = (sound.samples.size() - at) / channels;
        const auto written =
            snd_pcm_writei(opened, &sound.samples[at], snd_pcm_uframes_t(std::min<size_t>(left, kFramesAtOnce)));
        if (written == -EAGAIN)
            snd_pcm_wait(opened, kPatience);
        else if (written >= 0)
            at += size_t(written) * channels;
        else if (const int error = snd_pcm_recover(opened, int(written), 1); error < 0)
            return error;
    }
    if (snd_pcm_state(opened) == SND_PCM_STATE_PREPARED) // too short to have begun by itself
        snd_pcm_start(opened);
    while (IsWanted() && PlaysStill(opened))
        std::this_thread::sleep_for(kLook);
    snd_pcm_drop(opened);
    return 0;
}

} // namespace kestrune
