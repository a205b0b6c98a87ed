// See MediaFixture.h.
#include "MediaFixture.h"

#include <morvane/sys/Clock.h>
#include <morvane/sys/RunLoop.h>
#include <morvane/util/Dates.h>

#include <random>

namespace morvane::test {

namespace fs = std::filesystem;

void MediaFixture::SetUp() {
    enterSandbox("media");
    Dates::setTimeZone("UTC");
}

void MediaFixture::TearDown() {
    leaveSandbox();
    Dates::setTimeZone("");
}

void MediaFixture::useManualClock(sys::Date start) {
    sys::Clock::useManual(start);
}

void MediaFixture::advance(double seconds) {
    sys::RunLoop::main().advance(seconds);
}

std::vector<std::string> MediaFixture::filesBelowRoot() const {
    std::vector<std::string> files;
    for (const auto& entry : fs::recursive_directory_iterator(root)) {
        if (entry.is_regular_file() || entry.is_symlink())
            files.push_back(entry.path().lexically_relative(root).string());
    }
    std::sort(files.begin(), files.end());
    return files;
}

gfx::Image noiseImage(int width, int height, unsigned seed) {
    std::mt19937 random(seed);
    std::vector<std::uint8_t> pixels(std::size_t(width) * std::size_t(height) * 4);
    for (std::size_t i = 0; i < pixels.size(); ++i)
        pixels[i] = (i % 4 == 3) ? 255 : std::uint8_t(random());
    return gfx::Image::fromPixels(pixels.data(), width, height, std::size_t(width) * 4,
                                  gfx::PixelFormat::RGBA);
}

} // namespace morvane::test
