#pragma once
// The alert sound: a short two-tone chime of the kit's own (about a quarter
// of a second), played on the default audio device through SDL. Toasts play
// it when they have arrived.
//
//   sys::Sound::playAlert(); // returns at once; the chime plays on its own
//
// An alert asked for while one chime is still waiting to play is dropped: a
// burst of alerts sounds as two chimes at most.
// Without an audio device (a server, a container) alerts are silent and the
// reason is logged once. SDL's disk driver (SDL_AUDIODRIVER=disk with
// SDL_DISKAUDIOFILE) writes what would be heard to a file, for tests.
// Safe from any thread.

#include <cstdint>
#include <vector>

namespace morvane::sys {

class Sound {
  public:
    Sound() = delete;

    // The samples per second of the chime, and its samples (signed 16-bit mono).
    static constexpr int kSampleRate = 44100;
    static const std::vector<std::int16_t>& alertSamples();

    // Starts the chime; false when there is no device to play it on.
    static bool playAlert();
    // How many chimes were asked for so far, played or silent (for tests and
    // the gallery's checks).
    static int alertsAsked();
    // Waits until every chime started so far has been played out and the
    // device is closed again (a program about to end, a test).
    static void waitUntilQuiet();
};

} // namespace morvane::sys
