#include <morvane/sys/Sound.h>

#include <morvane/sys/Log.h>

#include <SDL.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <condition_variable>
#include <cstdlib>
#include <mutex>
#include <numbers>
#include <string>
#include <thread>
#include <utility>

namespace morvane::sys {

namespace {

// One device at a time, opened for a chime and closed by a watcher thread
// once its queue has run dry. Chimes that come while one plays join its queue.
struct Player {
    std::mutex mutex;
    std::condition_variable quiet;
    SDL_AudioDeviceID device = 0;
    bool watching = false;
    bool failureLogged = false;
    int asked = 0;
};

Player& player() {
    static Player* instance = new Player; // used until the very end of the process
    return *instance;
}

// Runs on its own thread while a device is open: closes it once nothing has
// been left to play for a little while (the driver's own buffer drains too).
void watch(SDL_AudioDeviceID device) {
    Player& p = player();
    int idleTurns = 0;
    for (;;) {
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
        std::lock_guard lock(p.mutex);
        // A chime queued meanwhile starts the wait over.
        idleTurns = SDL_GetQueuedAudioSize(device) > 0 ? 0 : idleTurns + 1;
        if (idleTurns < 6) continue;
        SDL_CloseAudioDevice(device);
        p.device = 0;
        p.watching = false;
        p.quiet.notify_all();
        return;
    }
}

// A sound server (PulseAudio, PipeWire) is reached through the session's
// runtime folder or an address given for it. Without either there is no
// server to find, and asking for one anyway makes its client library leave a
// runtime folder of its own in the temporary folder: then only the drivers
// that talk to the sound card are tried. A driver named in SDL_AUDIODRIVER
// is left to SDL.
void chooseDriversOutsideASession() {
    if (std::getenv("SDL_AUDIODRIVER") || std::getenv("PULSE_SERVER")) return;
    if (const char* runtime = std::getenv("XDG_RUNTIME_DIR"); runtime && *runtime) return;
    std::string drivers;
    for (int i = 0; i < SDL_GetNumAudioDrivers(); ++i) {
        const std::string name = SDL_GetAudioDriver(i);
        // The disk and dummy drivers are never wanted by default (the disk
        // one writes a file where the program runs).
        if (name == "pulseaudio" || name == "pipewire" || name == "disk" || name == "dummy") continue;
        drivers += (drivers.empty() ? "" : ",") + name;
    }
    if (!drivers.empty()) SDL_SetHint(SDL_HINT_AUDIODRIVER, drivers.c_str());
}

} // namespace

const std::vector<std::int16_t>& Sound::alertSamples() {
    // Two short tones, high then higher, each with a soft start and a
    // ringing decay so that neither clicks.
    static const std::vector<std::int16_t> samples = [] {
        std::vector<std::int16_t> out;
        const struct { double frequency, seconds; } tones[] = {{1318.5, 0.11}, {1760.0, 0.15}};
        for (const auto& tone : tones) {
            const int count = int(tone.seconds * kSampleRate);
            for (int i = 0; i < count; ++i) {
                const double t = double(i) / kSampleRate;
                const double attack = std::min(1.0, t / 0.004);
                const double decay = std::exp(-t * 18);
                const double value = std::sin(2 * std::numbers::pi * tone.frequency * t) * attack * decay;
                out.push_back(std::int16_t(std::lround(value * 0.5 * 32767)));
            }
        }
        return out;
    }();
    return samples;
}

bool Sound::playAlert() {
    Player& p = player();
    std::lock_guard lock(p.mutex);
    ++p.asked;
    if (!p.device) {
        if (SDL_WasInit(SDL_INIT_AUDIO) == 0) chooseDriversOutsideASession();
        if (SDL_WasInit(SDL_INIT_AUDIO) == 0 && SDL_InitSubSystem(SDL_INIT_AUDIO) != 0) {
            if (!std::exchange(p.failureLogged, true))
                Log::platform(std::string("Sound: no audio (") + SDL_GetError() + "); alerts are silent");
            return false;
        }
        SDL_AudioSpec wanted{};
        wanted.freq = kSampleRate;
        wanted.format = AUDIO_S16SYS;
        wanted.channels = 1;
        wanted.samples = 1024;
        p.device = SDL_OpenAudioDevice(nullptr, 0, &wanted, nullptr, 0);
        if (!p.device) {
            if (!std::exchange(p.failureLogged, true))
                Log::platform(std::string("Sound: no audio device (") + SDL_GetError() +
                              "); alerts are silent");
            return false;
        }
        SDL_PauseAudioDevice(p.device, 0);
    }
    const auto& samples = alertSamples();
    const auto bytes = Uint32(samples.size() * sizeof(std::int16_t));
    // A burst of alerts plays as two chimes at most, not as a long ringing.
    if (SDL_GetQueuedAudioSize(p.device) <= bytes) SDL_QueueAudio(p.device, samples.data(), bytes);
    if (!p.watching) {
        p.watching = true;
        std::thread(watch, p.device).detach();
    }
    return true;
}

int Sound::alertsAsked() {
    Player& p = player();
    std::lock_guard lock(p.mutex);
    return p.asked;
}

void Sound::waitUntilQuiet() {
    Player& p = player();
    std::unique_lock lock(p.mutex);
    p.quiet.wait(lock, [&p] { return !p.watching; });
}

} // namespace morvane::sys
