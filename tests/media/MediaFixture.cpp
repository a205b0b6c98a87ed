#include "MediaFixture.h"

#include <morvane/gfx/ImageContext.h>
#include <morvane/media/ResourcePictures.h>
#include <morvane/media/ZBImageModel.h>
#include <morvane/sys/App.h>
#include <morvane/sys/Clock.h>
#include <morvane/sys/Queue.h>
#include <morvane/sys/RunLoop.h>
#include <morvane/util/Dates.h>

#include <random>
#include <unistd.h>

namespace morvane::test {

namespace fs = std::filesystem;

void MediaFixture::SetUp() {
    const auto* info = testing::UnitTest::GetInstance()->current_test_info();
    root = fs::temp_directory_path() /
           ("morvane-media-" + std::to_string(getpid()) + "-" + info->test_suite_name() + "-" + info->name());
    fs::remove_all(root);
    documents = root / "Documents";
    resources = root / "Resources";
    fs::create_directories(documents);
    fs::create_directories(resources);
    sys::App::setDocumentsFolder(documents);
    sys::App::setResourceFolder(resources);
    Dates::setTimeZone("UTC");
    ResourcePictures::clearCache();
    ZBImageModel::clearMemoryCache();
}

void MediaFixture::TearDown() {
    sys::Queue::waitIdle();
    sys::RunLoop::main().discardPending();
    sys::Clock::useReal();
    sys::App::setDocumentsFolder({});
    sys::App::setResourceFolder({});
    Dates::setTimeZone("");
    std::error_code ignored;
    fs::remove_all(root, ignored);
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

gfx::Image solidImage(int width, int height, const gfx::Color& color, double scale) {
    gfx::ImageContext context(gfx::Size(width / scale, height / scale), gfx::Opacity::Transparent, scale);
    context.canvas().fillRect(gfx::Rect(0, 0, width / scale, height / scale), color);
    return context.takeImage();
}

std::string pngBytes(int width, int height, const gfx::Color& color) {
    auto data = solidImage(width, height, color).pngData();
    return std::string(data.begin(), data.end());
}

std::string jpegBytes(int width, int height, const gfx::Color& color) {
    auto data = solidImage(width, height, color).jpegData(0.9);
    return std::string(data.begin(), data.end());
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
