#pragma once
// The gallery's cameras look at pictures of its own: a dish for the camera
// screen, a boarding pass for the QR reader. A person who wants a real camera
// (or another virtual one) says so with MORVANE_CAMERA, which then wins.

#include <morvane/gfx/Image.h>

#include <filesystem>

namespace gallery {

// Writes the picture as a PNG file and points the kit's default camera at
// it, unless MORVANE_CAMERA chose a camera. False when it cannot be written.
bool showToCamera(const morvane::gfx::Image& picture, const std::filesystem::path& file);

} // namespace gallery
