#include "AppSandbox.h"

#include <morvane/gfx/ImageContext.h>
#include <morvane/media/ResourcePictures.h>
#include <morvane/media/ZBImageModel.h>
#include <morvane/sys/App.h>
#include <morvane/sys/Clock.h>
#include <morvane/sys/Queue.h>
#include <morvane/sys/RunLoop.h>

#include <gtest/gtest.h>

#include <fstream>

#include <unistd.h>

namespace morvane::test {

namespace fs = std::filesystem;

void AppSandbox::enterSandbox(std::string_view prefix) {
    const auto* info = testing::UnitTest::GetInstance()->current_test_info();
    root = fs::temp_directory_path() / ("morvane-" + std::string(prefix) + "-" + std::to_string(getpid()) +
                                        "-" + info->test_suite_name() + "-" + info->name());
    fs::remove_all(root);
    documents = root / "Documents";
    resources = root / "Resources";
    fs::create_directories(documents);
    fs::create_directories(resources);
    sys::App::setDocumentsFolder(documents);
    sys::App::setResourceFolder(resources);
    ResourcePictures::clearCache();
    ZBImageModel::clearMemoryCache();
}

void AppSandbox::leaveSandbox() {
    sys::Queue::waitIdle();
    sys::RunLoop::main().discardPending();
    sys::Clock::useReal();
    sys::App::setDocumentsFolder({});
    sys::App::setResourceFolder({});
    std::error_code ignored;
    fs::remove_all(root, ignored);
}

void AppSandbox::resourcePicture(const std::string& name, int width, int height,
                                 const gfx::Color& color) const {
    std::ofstream(resources / (name + ".png"), std::ios::binary) << pngBytes(width, height, color);
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

} // namespace morvane::test
