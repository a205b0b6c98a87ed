#pragma once
// Shared by the picture tests: each test gets a fresh application (see
// AppSandbox), the UTC time zone and (where it asks) the manual clock.

#include "AppSandbox.h"

#include <morvane/gfx/Color.h>
#include <morvane/gfx/Image.h>
#include <morvane/sys/Forward.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <mutex>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace morvane::test {

class MediaFixture : public testing::Test, protected AppSandbox {
  protected:
    void SetUp() override;
    void TearDown() override;

    // Stops the clock at the date (seconds since 1970, UTC).
    void useManualClock(sys::Date start);
    // Moves the manual clock on.
    void advance(double seconds);

    // Every regular file below the test's root folder, relative to it.
    std::vector<std::string> filesBelowRoot() const;
};

// Collects a loader's callbacks from any thread: each picture with the
// callback's second argument, and how many ran on the thread that made it.
template <class Extra> struct Recorder {
    std::mutex mutex;
    std::vector<std::pair<gfx::Image, Extra>> seen;
    int onCallerThread = 0;
    const std::thread::id caller = std::this_thread::get_id();

    auto callback() {
        return [this](const gfx::Image& image, Extra extra) {
            std::lock_guard lock(mutex);
            seen.emplace_back(image, std::move(extra));
            onCallerThread += std::this_thread::get_id() == caller;
        };
    }
    std::size_t count() {
        std::lock_guard lock(mutex);
        return seen.size();
    }
};

// A picture whose PNG does not shrink much: noise.
gfx::Image noiseImage(int width, int height, unsigned seed = 1);

inline constexpr sys::Date kJan2024 = 1704067200; // 2024-01-01T00:00:00 UTC
inline constexpr double kWeek = 7 * 86400.0;

} // namespace morvane::test
