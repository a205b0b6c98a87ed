#pragma once
// What the list benchmarks share: timing, medians, and a private application
// folder with five resource pictures of different shapes.

#include <morvane/gfx/ImageContext.h>
#include <morvane/sys/App.h>
#include <morvane/ui/core/Renderer.h>
#include <morvane/ui/core/Window.h>
#include <morvane/ui/hosts/HeadlessHost.h>
#include <morvane/util/Colors.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <string>
#include <unistd.h>
#include <vector>

namespace morvane::bench {

using Clock = std::chrono::steady_clock;

inline double msSince(Clock::time_point start) {
    return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

inline double median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

// Points the kit's resource and documents folders at a fresh folder holding
// "pic0".."pic4" (wide, tall, near square...); removed when it goes.
class PictureFolder {
  public:
    explicit PictureFolder(const std::string& name)
        : root_(std::filesystem::temp_directory_path() / (name + "-" + std::to_string(getpid()))) {
        std::filesystem::create_directories(root_ / "Resources");
        std::filesystem::create_directories(root_ / "Documents");
        sys::App::setResourceFolder(root_ / "Resources");
        sys::App::setDocumentsFolder(root_ / "Documents");
        const char* colours[] = {"#E07A5F", "#81B29A", "#F2CC8F", "#3D405B", "#9C6644"};
        const int widths[] = {300, 60, 100, 110, 200};
        for (int i = 0; i < 5; ++i) {
            gfx::ImageContext context(gfx::Size(widths[i], 100), gfx::Opacity::Opaque, 1);
            context.canvas().fillRect(gfx::Rect(0, 0, widths[i], 100), Colors::hex(colours[i]));
            const auto png = context.takeImage().pngData();
            std::ofstream(root_ / "Resources" / ("pic" + std::to_string(i) + ".png"), std::ios::binary)
                .write(reinterpret_cast<const char*>(png.data()), std::streamsize(png.size()));
        }
    }
    ~PictureFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(root_, ignored);
    }
    PictureFolder(const PictureFolder&) = delete;
    PictureFolder& operator=(const PictureFolder&) = delete;

  private:
    std::filesystem::path root_;
};

// One frame as the window host makes it: run what is due, lay out, and draw
// at the scale into pixels kept from frame to frame, where only what changed
// since the last frame is drawn again.
class FrameDrawer {
  public:
    explicit FrameDrawer(double scale) : scale_(scale) {}
    void operator()(ui::HeadlessHost& host) {
        host.runUntilIdle();
        host.drawFrame(scale_);
    }

  private:
    double scale_;
};

} // namespace morvane::bench
