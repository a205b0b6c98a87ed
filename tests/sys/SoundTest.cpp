// The alert sound through SDL's disk driver, which writes what a speaker
// would play to a file, and with no audio at all.
#include <morvane/sys/Log.h>
#include <morvane/sys/Sound.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

#include <unistd.h>

using morvane::sys::Log;
using morvane::sys::Sound;
namespace fs = std::filesystem;

// The chime comes out whole: the non-silent stretch of what the device
// played is exactly the chime's samples, about a quarter of a second of them.
// A burst of five alerts plays as two chimes, one after the other. (The disk driver
// starts its file afresh each time the device opens: it holds the last
// session, after the device was closed and opened again.)
TEST(Sound, the_alert_plays_out_whole_on_the_device) {
    const fs::path file = fs::temp_directory_path() / ("morvane-sound-" + std::to_string(getpid()) + ".raw");
    setenv("SDL_AUDIODRIVER", "disk", 1);
    setenv("SDL_DISKAUDIOFILE", file.c_str(), 1);
    ASSERT_TRUE(Sound::playAlert());
    Sound::waitUntilQuiet();
    for (int i = 0; i < 5; ++i)
        ASSERT_TRUE(Sound::playAlert());
    Sound::waitUntilQuiet();

    std::ifstream in(file, std::ios::binary);
    const std::vector<char> bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    fs::remove(file);
    std::vector<std::int16_t> played(bytes.size() / 2);
    std::memcpy(played.data(), bytes.data(), played.size() * 2);

    const auto& chime = Sound::alertSamples();
    EXPECT_NEAR(double(chime.size()) / Sound::kSampleRate, 0.26, 0.02);
    // Each device session starts with the chime; find them by their first loud sample.
    int found = 0;
    for (std::size_t at = 0; at + chime.size() <= played.size();) {
        if (played[at] == 0) {
            ++at;
            continue;
        }
        const std::size_t start = at - std::min<std::size_t>(at, 1); // the chime's first sample is 0
        EXPECT_TRUE(std::equal(chime.begin(), chime.end(), played.begin() + std::ptrdiff_t(start)))
            << "chime " << found << " at sample " << start;
        ++found;
        at = start + chime.size();
    }
    EXPECT_EQ(found, 2);
}

// With no audio the alert is silent, says why once, and nothing fails.
TEST(SoundDeathTest, without_audio_the_alert_is_silent_and_logged_once) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(
        {
            setenv("SDL_AUDIODRIVER", "no-such-driver", 1);
            Log::Capture log;
            const bool played = Sound::playAlert() || Sound::playAlert();
            const auto lines = log.texts();
            std::exit(!played && lines.size() == 1 && lines[0].starts_with("Sound: no audio") ? 0 : 1);
        },
        ::testing::ExitedWithCode(0), "");
}
