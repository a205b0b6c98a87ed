#pragma once
// The PNG and JPEG codecs, working on Cairo's ARGB32 surfaces (premultiplied,
// native-endian 32-bit pixels). Failures give a null surface and a reason.

#include <cairo.h>

#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace morvane::gfx::detail {

cairo_surface_t* decodePNG(std::span<const std::uint8_t> bytes, std::string& error);
cairo_surface_t* decodeJPEG(std::span<const std::uint8_t> bytes, std::string& error);
std::vector<std::uint8_t> encodePNG(cairo_surface_t* surface);
std::vector<std::uint8_t> encodeJPEG(cairo_surface_t* surface, double quality);

// The EXIF orientation (1...8) stored in a JPEG's APP1 segment; 1 when absent or unreadable.
int jpegOrientation(std::span<const std::uint8_t> bytes);
// A new surface with an EXIF orientation applied (upright); null if it cannot be made.
cairo_surface_t* applyOrientation(cairo_surface_t* surface, int orientation);

} // namespace morvane::gfx::detail
