#pragma once
// Shared by the picture tests: each test gets fresh documents and resource
// folders, the UTC time zone and (where it asks) the manual clock; plus small
// pictures made on the spot.

#include <morvane/gfx/Color.h>
#include <morvane/gfx/Image.h>
#include <morvane/sys/Forward.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

namespace morvane::test {

class MediaFixture : public testing::Test {
  protected:
    void SetUp() override;
    void TearDown() override;

    // Stops the clock at the date (seconds since 1970, UTC).
    void useManualClock(sys::Date start);
    // Moves the manual clock on.
    void advance(double seconds);

    // Every regular file below the test's root folder, relative to it.
    std::vector<std::string> filesBelowRoot() const;

    std::filesystem::path root;      // everything the test may touch
    std::filesystem::path documents; // root/Documents
    std::filesystem::path resources; // root/Resources
};

// A picture of one colour, or one with a transparent border around a square.
gfx::Image solidImage(int width, int height, const gfx::Color& color, double scale = 1);
std::string pngBytes(int width, int height, const gfx::Color& color);
std::string jpegBytes(int width, int height, const gfx::Color& color);
// A picture whose PNG does not shrink much: noise.
gfx::Image noiseImage(int width, int height, unsigned seed = 1);

inline constexpr sys::Date kJan2024 = 1704067200; // 2024-01-01T00:00:00 UTC
inline constexpr double kWeek = 7 * 86400.0;

} // namespace morvane::test
