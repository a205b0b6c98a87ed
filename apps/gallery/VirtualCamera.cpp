#include "VirtualCamera.h"

#include <morvane/sys/Camera.h>

#include <cstdlib>
#include <fstream>

namespace gallery {

bool showToCamera(const morvane::gfx::Image& picture, const std::filesystem::path& file) {
    const auto png = picture.pngData();
    std::error_code ec;
    std::filesystem::create_directories(file.parent_path(), ec);
    // Written aside and renamed, so that a camera never reads half a file.
    const auto partial = std::filesystem::path(file).concat(".partial");
    {
        std::ofstream out(partial, std::ios::binary);
        out.write(reinterpret_cast<const char*>(png.data()), std::streamsize(png.size()));
        if (!out) return false;
    }
    std::filesystem::rename(partial, file, ec);
    if (ec) return false;
    const char* chosen = std::getenv("MORVANE_CAMERA");
    if (!chosen || !*chosen)
        morvane::sys::Camera::setDefaultSource(morvane::sys::Camera::Source::picture(file.string()));
    return true;
}

} // namespace gallery
